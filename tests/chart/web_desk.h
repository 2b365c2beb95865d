// A desk over the sample data, and requests to it.
#pragma once

#include "app/chart_data.h"
#include "web/desk.h"
#include "web/http.h"

#include <gtest/gtest.h>

/// One for the process, as reading takes long; tests leave nothing on it.
inline Desk& SampleDesk() {
  static const ChartData& data = *[] {
    auto* const made = new ChartData;
    EXPECT_EQ(made->Open(LayerOptions()), "");
    return made;
  }();
  static Desk desk(data);
  return desk;
}

/// Of "NAME=VALUE&NAME=VALUE", taken as it stands.
inline HttpRequest RequestOf(const std::string& path, const std::string& query) {
  HttpRequest request = {path, {}, "http://127.0.0.1:8077"};
  for (size_t at = 0; at < query.size();) {
    const size_t end = std::min(query.find('&', at), query.size()), equals = query.find('=', at);
    request.query.emplace_back(query.substr(at, equals - at), query.substr(equals + 1, end - equals - 1));
    at = end + 1;
  }
  return request;
}

#include "web/json.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(Json, NestsWithCommasWhereTheyBelong) {
  JsonWriter json;
  json.Begin('{').Key("a").Begin('[').Integer(1).Begin('[').End(']').Begin('{').End('}').End(']');
  json.Key("b").Text("{").Key("c").Bool(false).Key("d").Null().End('}');
  EXPECT_EQ(json.Take(), R"({"a":[1,[],{}],"b":"{","c":false,"d":null})");
}

TEST(Json, TextsAreUtf8WhateverTheyWere) {
  const auto quoted = [](std::string_view text) { return JsonWriter().Text(text).Take(); };
  EXPECT_EQ(quoted(std::string_view("\"\\/\n\0\x7F", 6)), R"("\"\\/\u000a\u0000\u007f")");
  EXPECT_EQ(quoted("\u00E9\u20AC\U0001F6E9"), "\"\u00E9\u20AC\U0001F6E9\"");
  // The Unicode Standard, table 3-7: what is not well-formed, byte by byte.
  EXPECT_EQ(quoted("a\xE9z"), "\"a\uFFFDz\"");
  EXPECT_EQ(quoted("\xC0\x80"), "\"\uFFFD\uFFFD\"");
  EXPECT_EQ(quoted("\xED\xA0\x80"), "\"\uFFFD\uFFFD\uFFFD\"");
  EXPECT_EQ(quoted("\xF4\x90\x80\x80"), "\"\uFFFD\uFFFD\uFFFD\uFFFD\"");
  EXPECT_EQ(quoted("\xE2\x82"), "\"\uFFFD\uFFFD\"");
}

TEST(Json, NumbersAreFiniteAndShort) {
  const auto number = [](double value, int decimals) { return JsonWriter().Number(value, decimals).Take(); };
  EXPECT_EQ(number(-122.309, 6), "-122.309");
  EXPECT_EQ(number(100, 3), "100");
  EXPECT_EQ(number(100, 0), "100");
  EXPECT_EQ(number(-1e-9, 6), "0");
  EXPECT_EQ(number(std::numeric_limits<double>::quiet_NaN(), 6), "null");
  EXPECT_EQ(number(-std::numeric_limits<double>::infinity(), 6), "null");
  EXPECT_EQ(number(1e308, 99).size(), 309U);
}

}  // namespace

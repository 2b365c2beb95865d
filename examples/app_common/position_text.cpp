#include "app_common/position_text.h"

#include "app_common/option_table.h"

#include <cstring>

namespace {

// A latitude with its letter and a longitude without one, or the other way round, is half a position that
// reads as a whole one: "N48 30.0" would lie at N48 E30. Signs and commas tell the halves apart as well, and
// the quadrant form ("50N40") has one letter for both.
std::string MissingHalf(const char* text) {
  K7LatLon quadrant;
  if (quadrant.ParseLatLon424Format(text) || std::strpbrk(text, "+-,;")) return {};
  const bool latitude = std::strpbrk(text, "NSns");
  const bool longitude = std::strpbrk(text, "EWew");
  if (latitude == longitude) return {};
  return latitude ? "no longitude: there is no E or W" : "no latitude: there is no N or S";
}

}  // namespace

std::string ReadPosition(const std::string& text, K7LatLon& place) {
  static const char* const EXAMPLE = " (write it as \"N48 30.0 W123 30.0\")";
  const std::string missing = MissingHalf(text.c_str());
  if (!missing.empty()) return "the position " + Quoted(text) + " has " + missing + EXAMPLE;
  if (place.ParsePosition(text.c_str()) == 0) return "cannot read the position " + Quoted(text) + EXAMPLE;
  return {};
}

std::string PositionText(const K7LatLon& place, int decimals) {
  K7String lat, lon;
  place.FormatLat(K7FmtString("%%H%%02d %%0%d.%dM", decimals + 3, decimals), lat);
  place.FormatLon(K7FmtString("%%H%%03d %%0%d.%dM", decimals + 3, decimals), lon);
  return std::string(lat) + " " + std::string(lon);
}

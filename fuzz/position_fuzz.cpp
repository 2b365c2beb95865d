// Any bytes as a position or as a template: nothing crashes, and what is accepted makes sense.

#include <k7/geodesy/latlon.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

bool InRange(const K7LatLon& p) { return std::fabs(p.Lat()) <= 90 && std::fabs(p.Lon()) <= 180; }

// Where the two parsers of whole positions mean different things: out of range, a half without a number (it
// reads as 0), and longitudes packed into seven digits beside their letter.
bool MayDiffer(const std::string& text, const K7LatLon& loose) {
  int digits = 0, longest = 0;
  for (char c : text) {
    digits = K7String::IsDigit(c) ? digits + 1 : 0;
    longest = std::max(longest, digits);
  }
  const bool packed = longest >= 7 && text.find_first_of("EWew") != std::string::npos;
  return packed || !InRange(loose) || loose.Lat() == 0 || loose.Lon() == 0;
}

void CheckReadsBack(const K7LatLon& p, const char* latFormat, const char* lonFormat, double resolution) {
  K7String lat, lon;
  Require(p.FormatLat(latFormat, lat) && p.FormatLon(lonFormat, lon));
  const std::string text = std::string(lat) + " " + std::string(lon);
  K7LatLon back;
  Require(back.ParsePosition(text.c_str()) == static_cast<int>(text.size()));
  Require(std::fabs(back.Lat() - p.Lat()) <= resolution && std::fabs(back.Lon() - p.Lon()) <= resolution);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const char* const text = bytes.c_str();
  const int length = static_cast<int>(std::strlen(text));

  K7LatLon one(1, 2);
  Require(one.ParseLat(text) == length || one.Lat() == 0);
  Require(one.ParseLon(text) == length || one.Lon() == 0);
  Require(InRange(one));
  one.ParseLatLon424Format(text);
  Require(InRange(one));
  one.ParseLatLonFmsFormat(text);

  K7LatLon loose, position(1, 2);
  const bool parsed = loose.ParseLatLon(text) > 0;
  const int consumed = position.ParsePosition(text);
  Require(consumed == 0 || consumed == length);
  if (consumed == 0) Require(position.Lat() == 1 && position.Lon() == 2);
  if (parsed && !MayDiffer(text, loose))
    Require(consumed == length && position.Lat() == loose.Lat() && position.Lon() == loose.Lon());
  if (consumed > 0) {
    Require(InRange(position));
    CheckReadsBack(position, "%H %02d %04.1M", "%H %03d %04.1M", 0.0501 / 60);
    CheckReadsBack(position, "%H%02d%x%02m'%05.2S", "%H%03d%x%02m'%05.2S", 0.00501 / 3600);
  }

  K7String out("kept");
  if (!K7LatLon(47.99999, 0).FormatLat(text, out)) Require(out == "kept");
  return 0;
}

// Positions as text: templates and parsers.

#include <gtest/gtest.h>
#include <k7/geodesy/latlon.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace {

const double INF = std::numeric_limits<double>::infinity();

std::string Lat(double lat, const char* fmt) {
  K7String out("refused");
  K7LatLon(lat, 0).FormatLat(fmt, out);
  return static_cast<const char*>(out);
}

std::string Lon(double lon, const char* fmt) {
  K7String out("refused");
  K7LatLon(0, lon).FormatLon(fmt, out);
  return static_cast<const char*>(out);
}

struct Angle {
  const char* text;
  int consumed;
  double value;
};

struct Position {
  const char* text;
  double lat, lon;
};

}  // namespace

TEST(PositionFormat, WritesFieldsAndCarries) {
  EXPECT_EQ(Lat(47.508, "%H %02d %04.1M"), "N 47 30.5");
  EXPECT_EQ(Lon(-2.25, "%H %03d %04.1M"), "W 002 15.0");
  EXPECT_EQ(Lat(-0.0, "%H%d"), "N0");
  EXPECT_EQ(Lat(47.99999, "%H %02d %04.1M"), "N 48 00.0");
  EXPECT_EQ(Lat(47.99999, "%H %02d %08.4M"), "N 47 059.9994");
  EXPECT_EQ(Lat(-47.5, "%d%H"), "48S");         // degrees alone are rounded
  EXPECT_EQ(Lat(47.508333, "%d %m"), "47 30");  // 29.9988 seconds
  EXPECT_EQ(Lat(47.508334, "%d %m"), "47 31");  // 30.0024 seconds
  EXPECT_EQ(Lat(47.9999, "%d %m"), "48 0");     // rounded minutes carry
  EXPECT_EQ(Lat(12.1, "%02d%x%02m'%02s\""),
            "12\xB0"
            "06'00\"");                                    // 5 minutes 59.99.. seconds in binary
  EXPECT_EQ(Lat(12.99999, "%d %m %4.1S|"), "13 0  0.0|");  // 59.964 seconds
  EXPECT_EQ(Lat(12.99999, "%d %m %.2S"), "12 59 59.96");
  EXPECT_EQ(Lat(12.34565, "%9.4D|%D|%.0D"), "  12.3456|12.345650|12");  // just below the tie in binary
  EXPECT_EQ(Lat(1, "100%% %y %A%04z %5% %"), "100% %y %A%04z %5% %");
  EXPECT_EQ(Lat(1, std::string(1000, '.').append("%255.255D").c_str()).size(), 1257u);
}

TEST(PositionFormat, RefusesAndLeavesTheTextAlone) {
  for (const char* fmt :
       {"%E", "%f", "%h", "%.1d", "%3.1m", "%.s", "%1.2.3M", "%256d", "%.256D", "%99999999999d"})
    EXPECT_EQ(Lat(1, fmt), "refused") << fmt;
  for (double lat : {INF, -INF, std::nan(""), 3e9}) EXPECT_EQ(Lat(lat, "%d"), "refused");
  K7String out("kept");
  EXPECT_FALSE(K7LatLon().FormatLat(nullptr, out));
  EXPECT_EQ(out, "kept");
  K7String self("%H %02d");
  EXPECT_TRUE(K7LatLon(7, 0).FormatLat(self, self));
  EXPECT_EQ(self, "N 07");
}

// snprintf rounds by the whole binary value: ties, and what only looks like one, are where a shortcut shows.
TEST(PositionFormat, RoundsAsPrintfDoes) {
  std::mt19937_64 bits(11);
  for (int i = 0; i < 200000; ++i) {
    const int precision = static_cast<int>(bits() % 13), width = static_cast<int>(bits() % 16);
    double value = std::uniform_real_distribution<>(0, i % 2 ? 180 : 2e9)(bits);
    if (i % 3 == 0) value = std::ldexp(std::floor(std::ldexp(value, 10)), -10);
    if (i % 3 == 1) value = std::round(value * 1e5) / 1e5 + 5e-6;
    const std::string flag = bits() % 2 ? "0" : "";
    const std::string shape = "%" + flag + std::to_string(width) + "." + std::to_string(precision);
    char expected[64];
    std::snprintf(expected, sizeof expected, (shape + "f").c_str(), value);
    ASSERT_EQ(Lat(value, (shape + "D").c_str()), expected) << shape;
  }
}

// Whatever the library writes it reads back, to half of the last digit, and nothing ever prints as 60.
TEST(PositionText, TemplatesReadBackOverTheGlobe) {
  const struct {
    const char* lat;
    const char* lon;
    double resolution;  // half of the last place, in degrees
  } templates[] = {
      {"%H %02d %04.1M", "%H %03d %04.1M", 0.05 / 60},
      {"%H%02d%x%02m'%04.1S", "%H%03d%x%02m'%04.1S", 0.05 / 3600},
      {"%02d %04.1M %H", "%03d %04.1M %H", 0.05 / 60},
      {"%02d%02m%02s%H", "%03d%02m%02s%H", 0.5 / 3600},
      {"%H%02d%02m", "%H%03d%02m", 0.5 / 60},
      {"%H%02d%02m%05.2S", "%H%03d%02m%05.2S", 0.005 / 3600},
      {"%H%02d%05.2M", "%H%03d%05.2M", 0.005 / 60},
      {"%H%d %m %s", "%H%d %m %s", 0.5 / 3600},
      {"%.6D%H", "%.6D%H", 0.5e-6},
  };
  std::mt19937_64 bits(3);
  std::uniform_real_distribution<> uniform(-1, 1);
  for (int i = 0; i < 40000; ++i) {
    double lat = uniform(bits) * 90, lon = uniform(bits) * 180;
    // Half of the positions lie within rounding of whole minutes.
    if (i % 2 == 0) {
      lat = std::round(lat * 60) / 60 * (1 - uniform(bits) * 1e-7);
      lon = std::round(lon * 60) / 60 * (1 - uniform(bits) * 1e-7);
    }
    lat = std::fmin(std::fmax(lat, -90), 90);
    lon = std::fmin(std::fmax(lon, -180), 180);
    const auto& t = templates[static_cast<size_t>(i) % std::size(templates)];
    const std::string text = Lat(lat, t.lat) + std::string(1, " ,;"[i % 3]) + Lon(lon, t.lon);
    K7LatLon read(5, 6);
    ASSERT_EQ(read.ParsePosition(text.c_str()), static_cast<int>(text.size())) << text;
    ASSERT_NEAR(read.Lat(), lat, t.resolution + 1e-9) << text;
    ASSERT_NEAR(read.Lon(), lon, t.resolution + 1e-9) << text;
    ASSERT_TRUE(i % 9 != 7 || text.find(" 60") == std::string::npos) << text;
  }
}

// Values worked out by hand.
TEST(PositionParse, ReadsOneCoordinate) {
  const Angle latitudes[] = {
      {"N47 30.5", 8, 47 + 30.5 / 60},
      {"4730", 4, 47.5},
      {"473015", 6, 47 + 30.0 / 60 + 15.0 / 3600},
      {"4730155", 7, 47 + 30.0 / 60 + 15.5 / 3600},
      {"47301525", 8, 47 + 30.0 / 60 + 15.25 / 3600},
      {"47 3015", 7, 47 + 30.0 / 60 + 15.0 / 3600},
      {"47 60", 5, 48},
      {"-47:30", 6, -47.5},
      {"N-47", 4, 47},
      {"47-30-00s", 9, -47.5},
      {"47\xB0"
       "30'00\"",
       9, 47.5},
      {"47. 30", 6, 47.5},
      {" .5/", 4, 5},
      {"90 0 0", 6, 90},
      {"N", 1, 0},
  };
  for (const Angle& a : latitudes) {
    K7LatLon p(1, 2);
    EXPECT_EQ(p.ParseLat(a.text), a.consumed) << a.text;
    EXPECT_NEAR(p.Lat(), a.value, 1e-13) << a.text;
    EXPECT_EQ(p.Lon(), 2);
  }
  for (const char* bad : {"123",  "12345", "N47N",  "47.5 30",  "47 30 15 5", "47 123", "4730 1500",
                          "91",   "90 1",  "47 61", "47 30 61", "E47",        "47+",    "1e5",
                          "0x1F", "47,5",  "nan",   "inf",      "47\xC2\xB0", ""}) {
    K7LatLon p(1, 2);
    EXPECT_EQ(p.ParseLat(bad), 0) << bad;
    EXPECT_EQ(p.Lat(), 0) << bad;
  }
  K7LatLon p(1, 2);
  EXPECT_EQ(p.ParseLon("1230w"), 5);
  EXPECT_EQ(p.Lon(), -12.5);
  EXPECT_EQ(p.ParseLon("122 30"), 0);
  EXPECT_EQ(p.ParseLon(std::string(400, '9').c_str()), 0);
  EXPECT_EQ(p.ParseLat(nullptr), 0);
}

TEST(PositionParse, KeepsTheTwoFixedForms) {
  const Position quadrants[] = {{"50N40", 50, -140}, {"5040N", 50, -40},  {"5040E", 50, 40},
                                {"5040S", -50, 40},  {"5040W", -50, -40}, {"80E80", 80, 180}};
  for (const Position& q : quadrants) {
    K7LatLon p;
    EXPECT_TRUE(p.ParseLatLon424Format(q.text)) << q.text;
    EXPECT_EQ(p.Lat(), q.lat) << q.text;
    EXPECT_EQ(p.Lon(), q.lon) << q.text;
  }
  K7LatLon p(1, 2);
  for (const char* bad : {"95N40", "50N81", "50X40", "504NN", "5040n", "50N401", ""})
    EXPECT_FALSE(p.ParseLatLon424Format(bad)) << bad;
  EXPECT_EQ(p.Lat(), 1);

  EXPECT_TRUE(p.ParseLatLonFmsFormat("472815S1221830W"));
  EXPECT_NEAR(p.Lat(), -(47 + 28.0 / 60 + 15.0 / 3600), 1e-13);
  EXPECT_NEAR(p.Lon(), -(122 + 18.0 / 60 + 30.0 / 3600), 1e-13);
  EXPECT_FALSE(p.ParseLatLonFmsFormat("4760N12200W"));
  EXPECT_LT(p.Lat(), 0);
  // Only the longitude is bad: the latitude has been stored.
  EXPECT_FALSE(p.ParseLatLonFmsFormat("47N181W"));
  EXPECT_EQ(p.Lat(), 47);
  EXPECT_FALSE(p.ParseLatLonFmsFormat("48N122W "));
  EXPECT_EQ(p.ParseLatLon("9030N00000E"), 7);
  EXPECT_EQ(p.Lat(), 90.5);
}

TEST(PositionParse, SplitsAWholePosition) {
  const Position positions[] = {{"N47 30 W12 15", 47.5, -12.25}, {"4730N 1215W", 47.5, -12.25},
                                {"47.5N 12.25w", 47.5, -12.25},  {"47.5-12.25", 47.5, -12.25},
                                {"-47.5 +12.25", -47.5, 12.25},  {"47 30 12 18", 47, 30.205},
                                {"47 1215E", 47, 12.25}};
  for (const Position& q : positions) {
    K7LatLon p, typed;
    const bool parsed = p.ParseLatLon(q.text) == static_cast<int>(std::string(q.text).size());
    // An E or W behind its digits needs the N or S that ends the latitude.
    EXPECT_EQ(parsed, std::string(q.text) != "47 1215E") << q.text;
    EXPECT_EQ(typed.ParsePosition(q.text) > 0, parsed);
    if (!parsed) continue;
    EXPECT_NEAR(p.Lat(), q.lat, 1e-13) << q.text;
    EXPECT_NEAR(p.Lon(), q.lon, 1e-13) << q.text;
    EXPECT_EQ(typed.Lat(), p.Lat());
    EXPECT_EQ(typed.Lon(), p.Lon());
  }
}

TEST(PositionParse, ReadsWhatPeopleType) {
  const double lat = 47 + 30.0 / 60 + 15.0 / 3600, lon = -(122 + 18.0 / 60 + 30.0 / 3600);
  for (const char* text : {"N47 30.25 W122 18.5", "47 30.25N 122 18.5W", "n47 30.25, w122 18.5",
                           "N473015W1221830", "N473015 W1221830", "473015N1221830W", "473015N, 1221830W",
                           "47 30 15, -122 18 30", "N4730.25W12218.5", "+4730.25-12218.5",
                           "47\xC2\xB0"
                           "30\xE2\x80\xB2"
                           "15\xE2\x80\xB3N 122\xC2\xB0"
                           "18\xE2\x80\xB2"
                           "30\xE2\x80\xB3W"}) {
    K7LatLon p;
    EXPECT_EQ(p.ParsePosition(text), static_cast<int>(std::string(text).size())) << text;
    EXPECT_NEAR(p.Lat(), lat, 1e-13) << text;
    EXPECT_NEAR(p.Lon(), lon, 1e-13) << text;
  }
  const Position others[] = {{"47.5, -122.3", 47.5, -122.3},
                             {"47.5 -122.3", 47.5, -122.3},
                             {"47.5;122.3", 47.5, 122.3},
                             {"4728N12218W", 47 + 28.0 / 60, -122.3},
                             {"50N40", 50, -140},
                             {"90 -180", 90, -180},
                             // Without a letter seven digits are degrees of two, as ParseLon has them.
                             {"47 -1221305", 47, -(12 + 21.0 / 60 + 30.5 / 3600)}};
  for (const Position& q : others) {
    K7LatLon p;
    EXPECT_GT(p.ParsePosition(q.text), 0) << q.text;
    EXPECT_NEAR(p.Lat(), q.lat, 1e-13) << q.text;
    EXPECT_NEAR(p.Lon(), q.lon, 1e-13) << q.text;
  }
  K7LatLon p(1, 2);
  for (const char* bad :
       {"47,5 122,3", "47 30.0 122 18.5", "9030N00000E", "91, 0", "47, 181", "N W", "N47", "W122 N47",
        "47.5E, 122N", "047.5, 12", "47 30 15 122 18 30", "47\xC2 12", "1e2, 3", ""})
    EXPECT_EQ(p.ParsePosition(bad), 0) << bad;
  EXPECT_EQ(p.ParsePosition(nullptr), 0);
  EXPECT_EQ(p.ParseLatLon(nullptr), 0);
  EXPECT_EQ(p.Lat(), 1);
  EXPECT_EQ(p.Lon(), 2);
}

TEST(PositionText, IgnoresDecimalCommas) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) GTEST_SKIP() << "locale de_DE.UTF-8 is not installed";
  K7LatLon p;
  EXPECT_EQ(p.ParsePosition("47.5, -122.3"), 12);
  EXPECT_EQ(Lat(p.Lat(), "%.1D %.12D"), "47.5 47.500000000000");
  std::setlocale(LC_NUMERIC, before.c_str());
}

// Positions as text: templates and parsers.

#include <gtest/gtest.h>
#include <k7/geodesy/latlon.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
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

// The text between the outer quotes of a line, with \xNN as bytes.
std::string Quoted(const std::string& line) {
  const size_t begin = line.find('"') + 1;
  std::string text = line.substr(begin, line.rfind('"') - begin);
  for (size_t at; (at = text.find("\\x")) != std::string::npos;)
    text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
  return text;
}

int RunParser(const std::string& parser, const char* text, K7LatLon& p) {
  if (parser == "lat") return p.ParseLat(text);
  if (parser == "lon") return p.ParseLon(text);
  if (parser == "424") return p.ParseLatLon424Format(text);
  if (parser == "fms") return p.ParseLatLonFmsFormat(text);
  if (parser == "latlon") return p.ParseLatLon(text);
  return p.ParsePosition(text);
}

}  // namespace

TEST(PositionFormat, WritesFieldsAndCarries) {
  EXPECT_EQ(Lat(47.508, "%H %02d %04.1M"), "N 47 30.5");
  EXPECT_EQ(Lon(-2.25, "%H %03d %04.1M"), "W 002 15.0");
  EXPECT_EQ(Lat(-0.0, "%H%d"), "N0");
  EXPECT_EQ(Lat(47.99999, "%H %02d %04.1M"), "N 48 00.0");
  EXPECT_EQ(Lat(47.99999, "%H %02d %08.4M"), "N 47 059.9994");
  EXPECT_EQ(Lat(-47.5, "%d%H"), "48S");                          // degrees alone are rounded
  EXPECT_EQ(Lat(47.508333, "%d %m"), "47 30");                   // 29.9988 seconds
  EXPECT_EQ(Lat(47.508334, "%d %m"), "47 31");                   // 30.0024 seconds
  EXPECT_EQ(Lat(47.9999, "%d %m"), "48 0");                      // rounded minutes carry
  EXPECT_EQ(Lat(12.1, "%02d%x%02m %02s"), "12\xB0\x30\x36 00");  // 5 minutes 59.99.. seconds in binary
  EXPECT_EQ(Lat(12.99999, "%d %m %4.1S|"), "13 0  0.0|");        // 59.964 seconds
  EXPECT_EQ(Lat(12.99999, "%d %m %.2S"), "12 59 59.96");
  EXPECT_EQ(Lat(12.34565, "%9.4D|%D|%.0D"), "  12.3456|12.345650|12");  // just below the tie in binary
  EXPECT_EQ(Lat(1, "100%% %y %A%04z %5% %"), "100% %y %A%04z %5% %");
  EXPECT_EQ(Lat(1, std::string(1900, '.').append("%255.255D").c_str()).size(), 2157u);
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
    const std::string text = Lat(lat, t.lat) + " ,;"[i / 9 % 3] + Lon(lon, t.lon);
    K7LatLon read(5, 6);
    ASSERT_EQ(read.ParsePosition(text.c_str()), static_cast<int>(text.size())) << text;
    ASSERT_NEAR(read.Lat(), lat, t.resolution + 1e-9) << text;
    ASSERT_NEAR(read.Lon(), lon, t.resolution + 1e-9) << text;
    ASSERT_TRUE(i % 9 != 7 || text.find(" 60") == std::string::npos) << text;
  }
}

TEST(PositionParse, ReadsAndLeavesWhatTheTableSays) {
  std::ifstream in(K7_TEST_DATA "/geodesy/positions.txt");
  int lines = 0;
  for (std::string line; std::getline(in, line);) {
    if (line[0] == '#') continue;
    ++lines;
    std::istringstream words(line);
    std::string parser;
    int result;
    double lat, lon;
    words >> parser >> result >> lat >> lon;
    K7LatLon p(1, 2);
    EXPECT_EQ(RunParser(parser, Quoted(line).c_str(), p), result) << line;
    EXPECT_NEAR(p.Lat(), lat, 1e-13) << line;
    EXPECT_NEAR(p.Lon(), lon, 1e-13) << line;
  }
  EXPECT_GT(lines, 100);
  K7LatLon p;
  for (const char* parser : {"lat", "lon", "latlon", "position"}) EXPECT_EQ(RunParser(parser, nullptr, p), 0);
}

TEST(PositionText, IgnoresDecimalCommas) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) GTEST_SKIP() << "locale de_DE.UTF-8 is not installed";
  K7LatLon p;
  EXPECT_EQ(p.ParsePosition("47.5, -122.3"), 12);
  EXPECT_EQ(Lat(p.Lat(), "%.1D %.12D"), "47.5 47.500000000000");
  std::setlocale(LC_NUMERIC, before.c_str());
}

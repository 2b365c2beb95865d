// Positions as text: templates and parsers.

#include <gtest/gtest.h>
#include <k7/geodesy/latlon.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace {

template <auto FORMAT>
std::string Formatted(double degrees, const char* fmt) {
  K7String out("refused");
  (K7LatLon(degrees, degrees).*FORMAT)(fmt, out);
  return static_cast<const char*>(out);
}
constexpr auto Lat = Formatted<&K7LatLon::FormatLat>, Lon = Formatted<&K7LatLon::FormatLon>;

// The text between the outer quotes of a line, with \xNN as bytes.
std::string Quoted(const std::string& line) {
  const size_t begin = line.find('"') + 1;
  std::string text = line.substr(begin, line.rfind('"') - begin);
  for (size_t at; (at = text.find("\\x")) != std::string::npos;)
    text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
  return text;
}

// Visits the words before the quotes and what stands in them.
template <class Visit>
void ForTable(const char* file, int least, Visit visit) {
  std::ifstream in(std::string(K7_TEST_DATA "/geodesy/") + file);
  int lines = 0;
  for (std::string line; std::getline(in, line);) {
    if (line[0] == '#') continue;
    SCOPED_TRACE(line);
    std::istringstream words(line);
    visit(words, Quoted(line));
    ++lines;
  }
  EXPECT_GE(lines, least);
}

int RunParser(const std::string& parser, const char* text, K7LatLon& p) {
  if (parser == "lat") return p.ParseLat(text);
  if (parser == "lon") return p.ParseLon(text);
  if (parser == "424") return p.ParseLatLon424Format(text);
  if (parser == "fms") return p.ParseLatLonFmsFormat(text);
  return parser == "latlon" ? p.ParseLatLon(text) : p.ParsePosition(text);
}

}  // namespace

TEST(PositionFormat, WritesWhatTheTableSays) {
  ForTable("formats.txt", 30, [](std::istringstream& words, const std::string& row) {
    std::string axis, value;
    words >> axis >> value;
    const size_t cut = row.rfind('=');
    EXPECT_EQ((axis == "lat" ? Lat : Lon)(std::stod(value), row.substr(0, cut).c_str()), row.substr(cut + 1));
  });
  EXPECT_EQ(Lat(1, std::string(1900, '.').append("%255.255D").c_str()).size(), 2157u);
  K7String text("%H %02d");
  EXPECT_FALSE(K7LatLon().FormatLat(nullptr, text));
  EXPECT_TRUE(K7LatLon(7, 0).FormatLat(text, text));
  EXPECT_EQ(text, "N 07");
}

// snprintf rounds by the whole binary value: ties, and what only looks like one, are where a shortcut shows.
TEST(PositionFormat, RoundsAsPrintfDoes) {
  std::mt19937_64 bits(11);
  for (int i = 0; i < 200000; ++i) {
    const int precision = i % 1000 ? static_cast<int>(bits() % 13) : 255,
              width = static_cast<int>(bits() % 16);
    double value = std::uniform_real_distribution<>(0, i % 2 ? 180 : 2147483646)(bits);
    if (i % 3 == 0) value = std::ldexp(std::floor(std::ldexp(value, 10)), -10);
    if (i % 3 == 1) value = std::round(value * 1e5) / 1e5 + 5e-6;
    const std::string flag = bits() % 2 ? "0" : "";
    const std::string shape = "%" + flag + std::to_string(width) + "." + std::to_string(precision);
    char expected[300];
    std::snprintf(expected, sizeof expected, (shape + "f").c_str(), value);
    ASSERT_EQ(Lat(value, (shape + "D").c_str()), expected) << shape;
  }
}

// Whatever the library writes it reads back, to half of the last digit.
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
      {"%H%d %m %s", "%H%d %m %s", 0.5 / 3600},
      {"%.6D%H", "%.6D%H", 0.5e-6},
  };
  std::mt19937_64 bits(3);
  std::uniform_real_distribution<> uniform(-1, 1);
  for (int i = 0; i < 40000; ++i) {
    // Half of the positions lie within rounding of whole minutes.
    const auto coordinate = [&](double limit) {
      const double any = uniform(bits) * limit;
      const double near = std::round(any * 60) / 60 * (1 - uniform(bits) * 1e-7);
      return std::fmin(std::fmax(i % 2 ? any : near, -limit), limit);
    };
    const double lat = coordinate(90), lon = coordinate(180);
    const auto& t = templates[static_cast<size_t>(i / 2) % std::size(templates)];
    const std::string text = Lat(lat, t.lat) + " ,;"[i / 16 % 3] + Lon(lon, t.lon);
    K7LatLon read(5, 6);
    ASSERT_EQ(read.ParsePosition(text.c_str()), static_cast<int>(text.size())) << text;
    ASSERT_NEAR(read.Lat(), lat, t.resolution + 1e-9) << text;
    ASSERT_NEAR(read.Lon(), lon, t.resolution + 1e-9) << text;
    const bool spaced = t.lat[4] == ' ';
    ASSERT_TRUE(!spaced || text.find(" 60") == std::string::npos) << text;
  }
}

TEST(PositionParse, ReadsAndLeavesWhatTheTableSays) {
  ForTable("positions.txt", 100, [](std::istringstream& words, const std::string& text) {
    std::string parser;
    int result;
    double lat, lon;
    words >> parser >> result >> lat >> lon;
    K7LatLon p(1, 2);
    EXPECT_EQ(RunParser(parser, text.c_str(), p), result);
    EXPECT_NEAR(p.Lat(), lat, 1e-13);
    EXPECT_NEAR(p.Lon(), lon, 1e-13);
  });
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

// What the page is answered, about the sample: beside great circles worked out here, and the lines of text
// that its navigation data were imported from.

#include "web_desk.h"

#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

namespace {

constexpr double RADIAN = std::numbers::pi / 180, EARTH_NM = 3437.74677;
const std::string NAVDATA = K7_SAMPLE_DATA "/navdata/";

HttpAnswer Ask(const std::string& path, const std::string& query) {
  const HttpRequest request = RequestOf("/api/" + path, query);
  for (const Endpoint& endpoint : Endpoints())
    if (endpoint.path == request.path) return endpoint.answer(request, SampleDesk());
  return {.status = 404};
}

// The number behind the first member of that name.
double Number(const std::string& json, const std::string& name) {
  const size_t at = json.find("\"" + name + "\":");
  return at == std::string::npos ? NAN : std::strtod(json.c_str() + at + name.size() + 3, nullptr);
}

bool Has(const HttpAnswer& answer, const std::string& text) {
  return answer.body.find(text) != std::string::npos;
}

struct Place {
  double lat, lon;
};

double DistanceNM(const Place& a, const Place& b) {
  const double u = std::sin((b.lat - a.lat) / 2 * RADIAN), v = std::sin((b.lon - a.lon) / 2 * RADIAN);
  return 2 * EARTH_NM *
         std::asin(std::sqrt(u * u + std::cos(a.lat * RADIAN) * std::cos(b.lat * RADIAN) * v * v));
}

double Course(const Place& a, const Place& b) {
  const double turn = (b.lon - a.lon) * RADIAN;
  const double degrees =
      std::atan2(std::sin(turn) * std::cos(b.lat * RADIAN),
                 std::cos(a.lat * RADIAN) * std::sin(b.lat * RADIAN) -
                     std::sin(a.lat * RADIAN) * std::cos(b.lat * RADIAN) * std::cos(turn)) /
      RADIAN;
  return degrees < 0 ? degrees + 360 : degrees;
}

struct Navaid {
  Place place;
  std::string freq, ident, name;
};

std::vector<Navaid> RawNavaids() {
  std::vector<Navaid> navaids;
  std::ifstream file(NAVDATA + "nav.dat");
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string code, skipped, word;
    Navaid navaid;
    words >> code >> navaid.place.lat >> navaid.place.lon >> skipped >> navaid.freq >> skipped >> skipped >>
        navaid.ident;
    while (words >> word && word != "NDB" && word.find("VOR") != 0)
      navaid.name += (navaid.name.empty() ? "" : " ") + word;
    if (code == "2" || code == "3") navaids.push_back(navaid);
  }
  return navaids;
}

}  // namespace

// Through a gnomonic chart r miles from the middle lies what is atan(r / R) away.
TEST(Api, PlacesUnderPixelsLieWhereTheProjectionHasThem) {
  const Place middle = {47.6, -122.3};
  const std::string view = "projection=gnomonic&lat=47.6&lon=-122.3&range=600&turn=30&width=800&height=600";
  struct {
    const char* pixel;
    double miles, course;
  } const CASES[] = {
      {"&x=400&y=0", 600, 30}, {"&x=700&y=300", 600, 120}, {"&x=400&y=-300&ratio=1.5", 1200, 30}};
  for (const auto& c : CASES) {
    const std::string at = Ask("at.json", view + c.pixel).body;
    const Place place = {Number(at, "lat"), Number(at, "lon")};
    EXPECT_NEAR(DistanceNM(middle, place), EARTH_NM * std::atan(c.miles / EARTH_NM), 1e-3) << at;
    EXPECT_NEAR(Course(middle, place), c.course, 1e-4) << at;
  }
  EXPECT_EQ(Ask("at.json", "projection=orthographic&x=0&y=0").body, R"({"off":true})");
}

TEST(Api, AViewSaysWhatItsPictureShows) {
  const std::string query =
      "projection=stereographic&lat=48.5&lon=-123&range=60&turn=-20&width=400&height=240&ratio=2&theme=night";
  const HttpAnswer png = Ask("view.png", query), json = Ask("view.json", query);
  ASSERT_EQ(png.status, 200) << png.body;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(png.body.data());
  EXPECT_EQ(bytes[18] * 256 + bytes[19], 800);
  EXPECT_EQ(bytes[22] * 256 + bytes[23], 480);
  EXPECT_NEAR(Number(json.body, "nmPerPixel"), 60 / 120.0, 1e-6);
  EXPECT_NEAR(Number(json.body, "north"), 20, 1e-4);
  // A pixel of 1/96 inch: 0.5 x 1852 x 96 / 0.0254 is 3,499,842.
  EXPECT_TRUE(Has(json, R"("scale":"1 : 3,500,000")")) << json.body;
  ASSERT_EQ(png.headers.size(), 1u);
  EXPECT_EQ(png.headers[0].second, json.body);
  // What another projection would need is kept in addresses and changes nothing here.
  EXPECT_TRUE(Has(Ask("view.json", "projection=perspective&range=60&p=Pitch:-70&p=Altitude (ft):60000"),
                  R"("tilted":true)"));
  EXPECT_TRUE(Has(Ask("about.json", ""), R"({"name":"airports","title":"Airports","visible":true})"));
}

TEST(Api, EveryNavaidIsFoundByIdentifierAndNameAndPickedWhereItLies) {
  const std::vector<Navaid> navaids = RawNavaids();
  ASSERT_EQ(navaids.size(), 25u);
  for (const Navaid& navaid : navaids) {
    const HttpAnswer found = Ask("search.json", "q=" + navaid.ident);
    EXPECT_LT(DistanceNM(navaid.place, {Number(found.body, "lat"), Number(found.body, "lon")}), 0.001)
        << found.body;
    EXPECT_TRUE(Has(found, "\"text\":\"" + navaid.ident + "  " + navaid.name)) << found.body;
    EXPECT_TRUE(Has(Ask("search.json", "q=" + navaid.name), "\"ident\":\"" + navaid.ident + "\""))
        << navaid.name;
    std::ostringstream view;
    view << "range=5&width=400&height=400&x=200&y=200&lat=" << navaid.place.lat
         << "&lon=" << navaid.place.lon;
    const HttpAnswer pick = Ask("pick.json", view.str());
    EXPECT_TRUE(Has(pick, "[\"Ident\",\"" + navaid.ident + "\"]")) << pick.body;
    EXPECT_TRUE(Has(pick, "[\"Magnetic Variation\",\"")) << pick.body;
    EXPECT_TRUE(Has(pick, "\"point\":\"" + navaid.ident + "@")) << pick.body;
  }
  EXPECT_TRUE(Has(Ask("search.json", "q=N47 30.0 W122 18.5"), "\"lat\":47.5,\"lon\":-122.308333"));
  EXPECT_TRUE(Has(Ask("search.json", "q=KSAE"), "KSEA"));
}

TEST(Api, ARouteHasGreatCirclesAndItsTextIsTheSameRoute) {
  const Place sea = {47.4354, -122.3096}, huh = {48.9453, -122.5793}, end = {49.5, -120.25};
  const HttpAnswer route = Ask("route.json", "route=SEA; HUH;49.5,-120.25&speed=90");
  const double first = DistanceNM(sea, huh), second = DistanceNM(huh, end);
  EXPECT_NEAR(Number(route.body, "distance_nm"), first + second, 0.02) << route.body;
  EXPECT_NEAR(Number(route.body, "course_true"), Course(sea, huh), 0.06);
  const size_t last = route.body.rfind("{\"from\"");
  EXPECT_NEAR(Number(route.body.substr(last), "distance_nm"), second, 0.02);
  EXPECT_NEAR(Number(route.body.substr(last), "course_true"), Course(huh, end), 0.06);
  const auto minutes = static_cast<int>(std::lround((first + second) / 90 * 60));
  EXPECT_TRUE(Has(route, "\"total_time\":\"" + std::to_string(minutes / 60) + ":")) << route.body;
  const size_t text = route.body.find("\"route\":\"") + 9;
  EXPECT_EQ(
      Ask("route.json", "speed=90&route=" + route.body.substr(text, route.body.find('"', text) - text)).body,
      route.body);
  EXPECT_EQ(Ask("view.png", "route=SEA").status, 200);
  EXPECT_EQ(Ask("view.png", "projection=mercator&route=0,0;0,180;89,10").status, 200);
  const HttpAnswer profile = Ask("profile.svg", "route=SEA;HUH&width=640&height=200");
  EXPECT_EQ(profile.type, "image/svg+xml");
  EXPECT_TRUE(Has(profile, R"(width="640px")") || Has(profile, R"(width="640")"))
      << profile.body.substr(0, 200);
}

TEST(Api, AFoundWayGoesAlongAirwaysOfTheRawData) {
  std::vector<std::string> lines;
  std::ifstream file(NAVDATA + "awy.dat");
  for (std::string line; std::getline(file, line);) lines.push_back(" " + line + " ");
  const std::string found = Ask("find.json", "from=KSEA&to=CYVR").body;
  int flown = 0;
  const auto text = [&](const char* name, size_t from) {
    const size_t at = found.find(std::string("\"") + name + "\":\"", from) + std::string(name).size() + 4;
    return found.substr(at, found.find('"', at) - at);
  };
  for (size_t leg = found.find("\"legs\""); (leg = found.find("{\"from\"", leg)) != std::string::npos;
       ++leg) {
    const std::string from = text("from", leg), to = text("to", leg), airway = text("airway", leg);
    if (airway.empty()) continue;
    ++flown;
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                            [&](const std::string& line) {
                              return line.find(" " + from + " ") != std::string::npos &&
                                     line.find(" " + to + " ") != std::string::npos &&
                                     line.find(airway) != std::string::npos;
                            }))
        << from << " " << airway << " " << to;
  }
  EXPECT_GT(flown, 1) << found;
  EXPECT_EQ(Ask("route.json", "route=" + text("route", 0)).status, 200);
}

TEST(Api, WhatMeansHarmGetsOneSentence) {
  const std::string many(20000, ';'), long1(5000, 'A');
  const std::pair<const char*, std::vector<std::string>> CASES[] = {
      {"view.png",
       {"lat=nan", "lon=inf", "range=1e308", "range=-1", "turn=361", "width=1e9", "width=0x100",
        "width=4096&height=4096&ratio=3", "theme=none", "show=" + long1, "projection=globe", "p=Pitch",
        "p=Pitch:nan", "PROJECTION=mercator\x01", "theme=\xC3", "dim=101"}},
      {"at.json", {"x=1", "x=1e308&y=1"}},
      {"pick.json", {"x=-1&y=1", "x=5&y=99999"}},
      {"search.json", {"", "q=  ", "q=" + long1, "q=\xFF", "q=a&lat=91&lon=0"}},
      {"route.json",
       {"route=" + many, "route=" + long1, "route=SEA@", "route=@1,2", "route=SEA;SEA", "route=nan,nan",
        "route=SEA;HUH&speed=0"}},
      {"profile.svg",
       {"route=SEA", "route=SEA;HUH&height=1e9", "route=0,0;0,179", "route=SEA;HUH&altitude=-5"}},
      {"find.json", {"from=SEA", "from=SEA&to=" + long1}}};
  for (const auto& [path, queries] : CASES)
    for (const std::string& query : queries) {
      const HttpAnswer answer = Ask(path, query);
      EXPECT_EQ(answer.status, 400) << path << "?" << query.substr(0, 60);
      EXPECT_EQ(answer.body.find("{\"problem\":\""), 0u);
      EXPECT_EQ(answer.body.find('\n'), std::string::npos);
    }
  std::string points;
  for (int i = 0; i < 10000; ++i) points += std::to_string(i % 80) + "," + std::to_string(i % 170) + ";";
  EXPECT_TRUE(Has(Ask("route.json", "route=" + points), "at most 200 points"));
}

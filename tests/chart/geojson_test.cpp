#include "web/geojson.h"
#include "web/geo_cut.h"
#include "web_desk.h"

#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr double TURN = 2 * std::numbers::pi;

// The shoelace formula; positive counter-clockwise.
double AreaOf(const GeoLine& ring) {
  double twice = 0;
  for (size_t i = 0; i + 1 < ring.size(); ++i)
    twice += ring[i].lon * ring[i + 1].lat - ring[i + 1].lon * ring[i].lat;
  return twice / 2;
}

// A star of random rays: what it encloses are the triangles between them.
std::vector<K7LatLon> Star(double lat, double lon, int rays, double least, double most, std::mt19937& random,
                           double& area) {
  std::uniform_real_distribution<double> length(least, most);
  std::vector<double> radii;
  std::vector<K7LatLon> points;
  for (int i = 0; i < rays; ++i) {
    radii.push_back(length(random));
    const double angle = TURN * i / rays;
    points.emplace_back(lat + radii.back() * std::sin(angle),
                        std::remainder(lon + radii.back() * std::cos(angle), 360));
  }
  area = 0;
  for (int i = 0; i < rays; ++i)
    area += radii[static_cast<size_t>(i)] * radii[static_cast<size_t>((i + 1) % rays)] *
            std::sin(TURN / rays) / 2;
  return points;
}

TEST(GeoCut, AreasAcross180KeepWhatTheyEnclose) {
  std::mt19937 random(7946);
  for (int round = 0; round < 300; ++round) {
    const double lon = 172 + round % 17;
    double outer, inner;
    std::vector<std::vector<K7LatLon>> rings = {Star(10, lon, 3 + round % 40, 5, 20, random, outer),
                                                Star(10, lon, 9, 0.5, 2, random, inner)};
    if (round % 2) std::reverse(rings[0].begin(), rings[0].end());
    if (round % 3) rings[1].push_back(rings[1].front());
    double sum = 0;
    for (const GeoPolygon& polygon : CutArea(rings))
      for (size_t i = 0; i < polygon.size(); ++i) {
        EXPECT_EQ(AreaOf(polygon[i]) > 0, i == 0);
        EXPECT_EQ(polygon[i].front().lon, polygon[i].back().lon);
        for (const GeoPoint& p : polygon[i]) EXPECT_LE(std::fabs(p.lon), 180);
        sum += AreaOf(polygon[i]);
      }
    EXPECT_NEAR(sum, outer - inner, 1e-9) << round;
  }
}

TEST(GeoCut, RingsAroundAPoleHoldIt) {
  for (const double lat : {70.0, -70.0}) {
    std::vector<K7LatLon> circle;
    for (int lon = 10; lon < 370; lon += 10) circle.emplace_back(lat, std::remainder(lon, 360));
    double sum = 0;
    for (const GeoPolygon& polygon : CutArea({circle})) sum += AreaOf(polygon[0]);
    EXPECT_NEAR(sum, 360 * 20, 1e-9);
  }
}

TEST(GeoCut, LinesEndAt180AndGoOnBeyond) {
  const std::vector<GeoLine> pieces = CutLine({{0, 170}, {10, -170}, {0, 170}});
  ASSERT_EQ(pieces.size(), 3U);
  EXPECT_EQ(pieces[0].back().lon, 180);
  EXPECT_EQ(pieces[0].back().lat, 5);
  for (const GeoLine& piece : pieces)
    for (const GeoPoint& p : piece) EXPECT_LE(std::fabs(p.lon), 180);
}

std::string Ask(const std::string& query) {
  return AnswerGeoJson(RequestOf("/geojson", query), SampleDesk()).body;
}

TEST(GeoJson, HoldsWhatTheDataSay) {
  // As their operators publish them: the VOR of Seattle sends on 116.8 at N47 26.1 W122 18.6.
  const std::string vors = Ask("bbox=-122.4,47.4,-122.2,47.5&types=vor");
  EXPECT_NE(vors.find("\"Ident\":\"SEA\""), std::string::npos) << vors;
  EXPECT_NE(vors.find("\"Freq\":116.8,"), std::string::npos);
  EXPECT_NE(vors.find("\"count\":1,\"truncated\":false"), std::string::npos);
  EXPECT_NE(Ask("bbox=-123,47,-122,49&types=special-use-airspace").find("\"Floor\":\"GND\""),
            std::string::npos);
  EXPECT_NE(Ask("bbox=170,50,-170,70&layers=land").find("MultiPolygon"), std::string::npos);
  EXPECT_NE(Ask("bbox=-180,-90,180,90&limit=3").find("\"count\":3,\"truncated\":true"), std::string::npos);
}

TEST(GeoJson, RefusesWhatMakesNoSense) {
  const std::string whole = "&bbox=-1,-1,1,1";
  for (const std::string& query :
       {std::string("bbox=1,2,3"), std::string("bbox=nan,0,1,1"), std::string("bbox=0,2,1,1"),
        std::string("bbox=0,0,inf,1"), "limit=0" + whole, "limit=1e9" + whole, "types=car" + whole,
        "types=" + whole, "layers=terrain" + whole})
    EXPECT_EQ(AnswerGeoJson(RequestOf("/geojson", query), SampleDesk()).status, 400) << query;
}

}  // namespace

#include <k7/geodesy.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "store/scene.h"

namespace {

using Random = std::mt19937;

double Between(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// Anywhere, with crowds at the poles and on both sides of 180.
K7LatLon Place(Random& random, int i) {
  if (i % 4 == 1) return {Between(random, 86, 90) * (i % 8 < 4 ? 1 : -1), Between(random, -180, 180)};
  if (i % 4 == 2) return {Between(random, -20, 20), std::remainder(180 + Between(random, -3, 3), 360)};
  return {Between(random, -90, 90), Between(random, -180, 180)};
}

K7LatLon Position(int32_t lat, int32_t lon) {
  return {K7NavData::FixPt2DecDeg(lat), K7NavData::FixPt2DecDeg(lon)};
}

K7LatLon Along(const K7LatLon& from, const K7LatLon& to, double distance) {
  K7LatLon at;
  at.EndPoint(from, from.InitCourse(to), distance);
  return at;
}

// The nearest of points sown along a great circle.
double SownDistance(const K7LatLon& at, const K7LatLon& from, const K7LatLon& to, double step) {
  double least = at.Distance(to);
  for (double along = 0; along < from.Distance(to); along += step)
    least = std::min(least, at.Distance(Along(from, to, along)));
  return least;
}

class Places : public testing::Test, protected Scene {
 protected:
  void SetUp() override {
    for (int i = 0; i < 2500; i++) {
      const K7LatLon at = Place(m_random, i);
      const auto vor = MakeFix<K7VHFNavaid>(K7NAV_VOR, "V" + std::to_string(i), at.Lat(), at.Lon());
      writer.Add(*vor);
      m_points.push_back(Position(vor->lat, vor->lon));
    }
    for (int i = 0; i < 300; i++) {
      const auto seg = Make<K7AirwaySeg>(K7NAV_HIGH_AIRWAY);
      const K7LatLon from = Place(m_random, i);
      K7LatLon to;
      to.EndPoint(from, Between(m_random, 0, 360), Between(m_random, 5, 900));
      seg->fromLat = K7NavData::DecDeg2FixPt(from.Lat());
      seg->fromLon = K7NavData::DecDeg2FixPt(from.Lon());
      seg->toLat = K7NavData::DecDeg2FixPt(to.Lat());
      seg->toLon = K7NavData::DecDeg2FixPt(to.Lon());
      writer.Add(*seg);
      m_lines.emplace_back(Position(seg->fromLat, seg->fromLon), Position(seg->toLat, seg->toLon));
    }
    Open();
  }

  Random m_random{7};
  std::vector<K7LatLon> m_points;
  std::vector<std::pair<K7LatLon, K7LatLon>> m_lines;
};

}  // namespace

TEST_F(Places, AreaHoldsWhatLiesInIt) {
  for (int i = 0; i < 300; i++) {
    const K7LatLon corner = Place(m_random, i);
    const double east = std::remainder(corner.Lon() + Between(m_random, 0, 60), 360);
    const K7ChartRect area(std::min(90.0, corner.Lat() + Between(m_random, 0, 30)), corner.Lat(), east,
                           corner.Lon());
    std::vector<int> within;
    for (size_t p = 0; p < m_points.size(); p++) {
      if (area.PtIn(m_points[p].Lat(), m_points[p].Lon())) within.push_back(static_cast<int>(p));
    }
    EXPECT_EQ(Indexes(store.AreaQuery(K7NAV_VOR, area)), within);
    // A line that runs through the area is among those whose bounds meet it.
    const std::vector<int> lines = Indexes(store.AreaQuery(K7NAV_HIGH_AIRWAY, area));
    for (size_t n = 0; n < m_lines.size(); n++) {
      const auto& [from, to] = m_lines[n];
      for (int part = 0; part <= 20; part++) {
        const K7LatLon at = Along(from, to, from.Distance(to) * part / 20);
        if (!area.PtIn(at.Lat(), at.Lon()) || !area.PtIn(at.Lat() + 1e-6, at.Lon() - 1e-6)) continue;
        EXPECT_TRUE(std::binary_search(lines.begin(), lines.end(), static_cast<int>(n))) << n << " " << part;
      }
    }
  }
  EXPECT_EQ(Indexes(store.AreaQuery(K7NAV_VOR, K7ChartRect())).size(), 0u);
  EXPECT_EQ(Indexes(store.AreaQuery(K7NAV_VOR, K7ChartRect(90, -90, 180, -180))).size(), m_points.size());
}

TEST_F(Places, NearestComeFirst) {
  for (int i = 0; i < 200; i++) {
    const K7LatLon at = i == 0   ? K7LatLon(90, 0)
                        : i == 1 ? K7LatLon(-90, 77)
                        : i == 2 ? K7LatLon(3, 180)
                                 : Place(m_random, i);
    const double reach = i % 3 ? 20000 : Between(m_random, 0, 600);
    std::vector<std::pair<double, int>> byDistance;
    for (size_t p = 0; p < m_points.size(); p++) byDistance.emplace_back(at.Distance(m_points[p]), p);
    std::sort(byDistance.begin(), byDistance.end());
    std::vector<int> nearest;
    for (const auto& [distance, index] : byDistance) {
      if (distance <= reach && nearest.size() < 12) nearest.push_back(index);
    }
    EXPECT_EQ(Indexes(store.NearestQuery(K7NAV_VOR, at, 12, reach)), nearest);
    const std::vector<int> lines = Indexes(store.NearestQuery(K7NAV_HIGH_AIRWAY, at, 1, 20000));
    ASSERT_EQ(lines.size(), 1u);
    if (i >= 8) continue;
    const auto sown = [&](const auto& line) { return SownDistance(at, line.first, line.second, 2); };
    double least = 20000;
    for (const auto& line : m_lines) least = std::min(least, sown(line));
    EXPECT_NEAR(sown(m_lines[static_cast<size_t>(lines[0])]), least, 1.0);
  }
  EXPECT_TRUE(Indexes(store.NearestQuery(K7NAV_VOR, K7LatLon(0, 0), 0, 100)).empty());
  EXPECT_TRUE(Indexes(store.NearestQuery(K7NAV_VOR, K7LatLon(0, 0), 5, NAN)).empty());
}

TEST_F(Places, StripHoldsWhatLiesBesideTheLineInOrder) {
  for (int i = 0; i < 16; i++) {
    const K7LatLon from = Place(m_random, i);
    K7LatLon to;
    to.EndPoint(from, Between(m_random, 0, 360), Between(m_random, 0, 3000));
    const double width = Between(m_random, 10, 80);
    const std::vector<int> found = Indexes(store.LineQuery(K7NAV_VOR, from, to, width));
    double along = 0;
    for (const int index : found) {
      const K7LatLon& point = m_points[static_cast<size_t>(index)];
      double cross, here;
      K7GrtCirc(from, to).OrthoDist(point, cross, here);
      EXPECT_GE(std::max(here, 0.0), along - 1e-6);
      along = std::clamp(here, 0.0, from.Distance(to));
    }
    for (size_t p = 0; p < m_points.size(); p++) {
      if (from.Distance(m_points[p]) > from.Distance(to) + width) continue;
      const double distance = SownDistance(m_points[p], from, to, 4);
      if (std::abs(distance - width) < 0.6) continue;
      EXPECT_EQ(std::count(found.begin(), found.end(), static_cast<int>(p)), distance < width)
          << i << " " << p;
    }
  }
}

TEST(Store, AirspacesAreWhereTheirBoundariesSay) {
  struct Sector {
    K7LatLon center;
    double first, last;  // bearings
    char arc;
  };
  const Sector sectors[] = {
      {{10, 179.8}, 30, 120, 'R'}, {{-47, 8}, 300, 60, 'R'}, {{88.9, -30}, 200, 110, 'L'}};
  constexpr double RADIUS = 40;
  Scene scene;
  uint32_t sequence = 0;
  const auto addPiece = [&](K7NavKey airspace, char via, const K7LatLon& start, const K7LatLon& center) {
    const auto piece = Make<K7AirspaceSeg>(K7NAV_AIRSPACE_SEG);
    piece->airspace = airspace;
    piece->sequence = sequence++;
    piece->via = via;
    piece->lat = K7NavData::DecDeg2FixPt(start.Lat());
    piece->lon = K7NavData::DecDeg2FixPt(start.Lon());
    piece->centerLat = K7NavData::DecDeg2FixPt(center.Lat());
    piece->centerLon = K7NavData::DecDeg2FixPt(center.Lon());
    piece->radius = RADIUS;
    scene.writer.Add(*piece);
  };
  const auto addAirspace = [&](const K7ChartRect& bounds) {
    const auto airspace = Make<K7SUAirspace>(K7NAV_SPECIAL_USE_AIRSPACE);
    airspace->north = K7NavData::DecDeg2FixPt(bounds.North());
    airspace->south = K7NavData::DecDeg2FixPt(bounds.South());
    airspace->east = K7NavData::DecDeg2FixPt(bounds.East());
    airspace->west = K7NavData::DecDeg2FixPt(bounds.West());
    return scene.writer.Add(*airspace);
  };
  const K7ChartRect bounds[] = {{10.7, 9.3, -179.5, 179.8}, {-46.3, -47, 9, 7}, {90, 88, 180, -180}};
  for (int i = 0; i < 3; i++) {
    const Sector& sector = sectors[i];
    const K7NavKey key = addAirspace(bounds[i]);
    K7LatLon first, last;
    first.EndPoint(sector.center, sector.first, RADIUS);
    last.EndPoint(sector.center, sector.last, RADIUS);
    addPiece(key, 'G', sector.center, {});
    addPiece(key, sector.arc, first, sector.center);
    addPiece(key, 'G', last, {});
  }
  const K7NavKey cap = addAirspace({90, 80, 180, -180});
  for (const double lon : {0., 100., 170., -90.}) addPiece(cap, 'H', {80, lon}, {});
  const K7NavKey circle = addAirspace({-9, -11, 21, 19});
  addPiece(circle, 'C', {}, {-10, 20});
  addAirspace({1, -1, 1, -1});  // without a boundary
  scene.Open();

  Random random(3);
  const auto holds = [&](const K7LatLon& at, uint32_t idx) {
    const std::vector<int> found = Indexes(scene.store.AirspacesAt(K7NAV_SPECIAL_USE_AIRSPACE, at));
    return std::count(found.begin(), found.end(), static_cast<int>(idx)) == 1;
  };
  for (uint32_t i = 0; i < 3; i++) {
    const Sector& sector = sectors[i];
    const double turn =
        std::fmod((sector.arc == 'R' ? sector.last - sector.first : sector.first - sector.last) + 360, 360);
    for (int n = 0; n < 500; n++) {
      K7LatLon at;
      // As near to the edge as an arc's chord lies.
      const double distance = n % 2 ? RADIUS + (n % 4 < 2 ? 0.01 : -0.01) : Between(random, 1, 2 * RADIUS);
      at.EndPoint(sector.center, Between(random, 0, 360), distance);
      const double bearing = sector.center.InitCourse(at);
      const double along =
          std::fmod((sector.arc == 'R' ? bearing - sector.first : sector.first - bearing) + 360, 360);
      if (std::min(along, std::abs(along - turn)) < 0.01) continue;
      EXPECT_EQ(holds(at, i), along < turn && distance < RADIUS) << i << " " << bearing << " " << distance;
    }
  }
  for (int n = 0; n < 300; n++) {
    const K7LatLon at(n % 2 ? Between(random, 80.0001, 90) : Between(random, 79.9, 79.9999),
                      Between(random, -180, 180));
    EXPECT_EQ(holds(at, cap.Idx()), at.Lat() > 80) << at.Lat() << " " << at.Lon();
    K7LatLon beside;
    beside.EndPoint(K7LatLon(-10, 20), at.Lon(), n % 2 ? RADIUS - 0.001 : RADIUS + 0.001);
    EXPECT_EQ(holds(beside, circle.Idx()), n % 2 == 1);
  }
  EXPECT_TRUE(Indexes(scene.store.AirspacesAt(K7NAV_SPECIAL_USE_AIRSPACE, K7LatLon(0, 0))).empty());
}

// Routes against a plain Dijkstra over the same records, by another formula of distance.

#include "route/route.h"
#include "route/airway_graph.h"
#include "route/direct_route.h"

#include <cmath>
#include <map>
#include <numbers>
#include <random>

#include "store/scene.h"

namespace {

// By the half-angle formula, in place of the library's vectors.
double Apart(const K7LatLon& a, const K7LatLon& b) {
  constexpr double RAD = std::numbers::pi / 180;
  const double p = std::sin((b.Lat() - a.Lat()) / 2 * RAD), d = std::sin((b.Lon() - a.Lon()) / 2 * RAD);
  const double h = p * p + std::cos(a.Lat() * RAD) * std::cos(b.Lat() * RAD) * d * d;
  return 2 * std::asin(std::min(1.0, std::sqrt(h))) * 3437.74677;
}

K7LatLon Stored(double lat, double lon) {
  return {K7NavData::FixPt2DecDeg(K7NavData::DecDeg2FixPt(lat)),
          K7NavData::FixPt2DecDeg(K7NavData::DecDeg2FixPt(lon))};
}

struct Limits {
  int low, high;  // feet
};
struct Stretch {
  size_t from, to;
  std::string airway;
  bool forth, back;
  Limits there, home;
};

class RouteTest : public testing::Test, public Scene {
 protected:
  size_t AddFix(const std::string& ident, double lat, double lon, K7NavType type = K7NAV_ENROUTE_FIX) {
    const auto fix = MakeFix<K7Waypoint>(type, ident, lat, lon);
    keys.push_back(writer.Add(*fix));
    places.push_back(Stored(lat, lon));
    idents.push_back(ident);
    return places.size() - 1;
  }
  std::unique_ptr<K7AirwaySeg> Segment(size_t from, size_t to, const std::string& airway, K7NavType type) {
    auto seg = Make<K7AirwaySeg>(type);
    airway.copy(seg->ident, 6);
    seg->fromKey = keys[from];
    seg->toKey = keys[to];
    idents[from].copy(seg->fromIdent, 8);
    idents[to].copy(seg->toIdent, 8);
    seg->fromLat = K7NavData::DecDeg2FixPt(places[from].Lat());
    seg->fromLon = K7NavData::DecDeg2FixPt(places[from].Lon());
    seg->toLat = K7NavData::DecDeg2FixPt(places[to].Lat());
    seg->toLon = K7NavData::DecDeg2FixPt(places[to].Lon());
    return seg;
  }
  void AddBothWays(size_t from, size_t to, const std::string& airway) {
    writer.Add(*Segment(from, to, airway, K7NAV_LOW_AIRWAY));
    stretches.push_back({from, to, airway, true, true, {0, 17999}, {0, 17999}});
  }
  void AddRandomStretch(std::mt19937& random) {
    const size_t from = random() % places.size(), to = random() % places.size();
    if (from == to) return;
    const bool high = random() % 2;
    Stretch s = {from, to,   "V" + std::to_string(random() % 5),
                 true, true, {high ? 18000 : 0, high ? INT32_MAX : 17999},
                 {}};
    const auto seg = Segment(from, to, s.airway, high ? K7NAV_HIGH_AIRWAY : K7NAV_LOW_AIRWAY);
    const auto turn = random() % 4;
    seg->direction = turn == 0 ? 'F' : turn == 1 ? 'B' : ' ';
    s.forth = turn != 1;
    s.back = turn != 0;
    if (random() % 2) seg->mea = K7Alt(static_cast<uint32_t>(s.there.low = 9000));
    if (random() % 3 == 0) s.there.low = 26247, seg->mea = K7Alt(8000, K7Alt::METRIC);
    if (random() % 3 == 0) seg->maa = K7Alt(static_cast<uint32_t>(s.there.high = 25000), K7Alt::FLIGHT_LEVEL);
    if (random() % 5 == 0) s.there.high = INT32_MAX, seg->maa = K7Alt(K7Alt::UNLIMITED);
    s.home = s.there;
    if (random() % 3 == 0) seg->meaOpposite = K7Alt(static_cast<uint32_t>(s.home.low = 12000));
    writer.Add(*seg);
    stretches.push_back(s);
  }
  void Read() {
    Open();
    ASSERT_TRUE(graph.Read(store));
  }

  bool Leads(const Stretch& s, size_t from, size_t to, const RouteRequest& request) const {
    const auto flown = [&](const Limits& l) {
      return !request.feet || (*request.feet >= l.low && *request.feet <= l.high);
    };
    return (s.from == from && s.to == to && s.forth && flown(s.there)) ||
           (s.to == from && s.from == to && s.back && flown(s.home));
  }
  // The least length of the way, and the distance from `to` of the nearest that is reached from `from`.
  double Dijkstra(size_t from, size_t to, const RouteRequest& request, double& nearest) const {
    const size_t count = places.size();
    std::vector<char> onAirways(count), done(count);
    for (const Stretch& s : stretches) onAirways[s.from] = onAirways[s.to] = true;
    std::vector<double> cost(count, INFINITY);
    for (size_t i = 0; i < count; ++i)
      if (onAirways[i] && (i == from || Apart(places[from], places[i]) <= request.directNM))
        cost[i] = Apart(places[from], places[i]);
    double best =
        Apart(places[from], places[to]) <= request.directNM ? Apart(places[from], places[to]) : INFINITY;
    nearest = INFINITY;
    for (;;) {
      size_t at = count;
      for (size_t i = 0; i < count; ++i)
        if (!done[i] && cost[i] < INFINITY && (at == count || cost[i] < cost[at])) at = i;
      if (at == count) return best;
      done[at] = true;
      const double left = Apart(places[at], places[to]);
      nearest = std::min(nearest, left);
      if (at == to || left <= request.directNM) best = std::min(best, cost[at] + left);
      for (size_t i = 0; i < count; ++i)
        for (const Stretch& s : stretches)
          if (Leads(s, at, i, request)) cost[i] = std::min(cost[i], cost[at] + Apart(places[at], places[i]));
    }
  }
  size_t FixOf(const std::string& ident) const {
    return static_cast<size_t>(std::find(idents.begin(), idents.end(), ident) - idents.begin());
  }
  // Every leg is one that may be flown, direct ones stand at the ends, and lengths add up.
  void ExpectFlown(const Route& route, const RouteRequest& request) const {
    ASSERT_EQ(route.fixes.size(), route.legs.size() + 1);
    double sum = 0;
    for (size_t i = 0; i < route.legs.size(); ++i) {
      const RouteLeg& leg = route.legs[i];
      const size_t from = FixOf(route.fixes[i].ident), to = FixOf(route.fixes[i + 1].ident);
      sum += leg.distance;
      if (leg.airway.empty()) {
        EXPECT_TRUE(i == 0 || i + 1 == route.legs.size());
        EXPECT_LE(leg.distance, request.directNM);
      } else {
        EXPECT_TRUE(std::any_of(
            stretches.begin(), stretches.end(),
            [&](const Stretch& s) { return s.airway == leg.airway && Leads(s, from, to, request); }))
            << route.fixes[i].ident << " " << leg.airway << " " << route.fixes[i + 1].ident;
      }
    }
    EXPECT_NEAR(sum, route.distance, 1e-9);
  }
  Route Find(const RouteRequest& request) {
    Route route;
    EXPECT_EQ(FindRoute(store, graph, request, route), "");
    return route;
  }

  std::vector<K7NavKey> keys;
  std::vector<K7LatLon> places;
  std::vector<std::string> idents;
  std::vector<Stretch> stretches;
  AirwayGraph graph;
};

class RandomRouteTest : public RouteTest, public testing::WithParamInterface<unsigned> {};

// About a mid-latitude place, the line of 180 degrees, and the north pole.
TEST_P(RandomRouteTest, IsTheShortestOrThereIsNone) {
  std::mt19937 random(GetParam());
  std::uniform_real_distribution<> off(-1.5, 1.5);
  constexpr double LATS[] = {48, -17, 89}, LONS[] = {-123, 180, 20};
  for (int i = 0; i < 24; ++i) {
    const size_t about = GetParam() % 3;
    const double wide = about == 2 ? 120 : 1;
    const double lon = std::remainder(LONS[about] + wide * off(random), 360);
    AddFix("F" + std::to_string(i), std::min(90.0, LATS[about] + off(random) / (about == 2 ? 1.5 : 1)), lon);
  }
  for (int i = 0; i < 45; ++i) AddRandomStretch(random);
  Read();
  int found = 0, none = 0;
  for (int trip = 0; trip < 60; ++trip) {
    const size_t from = random() % places.size(), to = random() % places.size();
    RouteRequest request = {idents[from], idents[to], std::vector{0.0, 12.0, 40.0}[random() % 3], {}};
    if (const auto level = random() % 4) request.feet = std::vector{0, 10000, 20000, 30000}[level];
    double nearest;
    const double expected = from == to ? INFINITY : Dijkstra(from, to, request, nearest);
    Route route;
    const std::string why = FindRoute(store, graph, request, route);
    SCOPED_TRACE(why + " " + RouteTable(route));
    ASSERT_EQ(why.empty(), std::isfinite(expected));
    ++(why.empty() ? found : none);
    if (why.empty()) {
      EXPECT_NEAR(route.distance, expected, 1e-5);
      ExpectFlown(route, request);
    } else if (why.find("come no nearer") != std::string::npos) {
      K7String text;
      text.Format(", %.1f NM from it", nearest);
      EXPECT_NE(why.find(std::string(text)), std::string::npos) << nearest;
    }
  }
  EXPECT_GT(found, 5);
  EXPECT_GT(none, 1);
}

INSTANTIATE_TEST_SUITE_P(Networks, RandomRouteTest, testing::Range(0U, 12U));

TEST_F(RouteTest, AnIdentifierMeansThePlaceNearestToTheOtherEnd) {
  AddFix("HOME", 48, -123);
  AddFix("SAME", 10, 10);
  AddFix("SAME", 48.4, -122.9, K7NAV_TERMINAL_FIX);
  AddFix("SAME", -30, 150);
  Read();
  for (const bool forth : {true, false}) {
    RouteRequest request = {"home", "same", 100, {}};
    if (!forth) std::swap(request.from, request.to);
    const Route route = Find(request);
    EXPECT_NEAR(route.distance, Apart(places[0], places[2]), 1e-6);
    ASSERT_EQ(route.notes.size(), 1U);
    EXPECT_NE(RouteTable(route).find("SAME is also 2 other places: taken is the one nearest to HOME"),
              std::string::npos);
  }
  Route route;
  EXPECT_EQ(FindRoute(store, graph, {"HOME", "HOME", 100, {}}, route), "HOME and HOME are the same place");
  EXPECT_EQ(FindRoute(store, graph, {"HOME", "SAEM", 100, {}}, route),
            "there is no airport, navaid or fix 'SAEM'; spelled like it are SAME");
  EXPECT_EQ(DirectRoute(store, {"HOME", "same@-29,151"}, route), "");
  EXPECT_NEAR(route.distance, Apart(places[0], places[3]), 1e-6);
}

// A position joins the network like an airport off it; segments whose ends have no record are not its own.
TEST_F(RouteTest, PositionsAreEndsAndIdentifiersThatReadAsOneComeFirst) {
  AddFix("5040N", 48, -123);
  AddFix("MID", 49, -123.1);
  AddFix("END", 50, -123);
  AddBothWays(0, 1, "V1");
  keys[2].Reset();
  AddBothWays(1, 2, "V1");
  Read();
  const K7LatLon start(47.9, -122.95), end(50.1, -122.9);
  Route route = Find({"47.9 -122.95", "N50 06.0 W122 54.0", 12, {}});
  EXPECT_NEAR(route.distance,
              Apart(start, places[0]) + Apart(places[0], places[1]) + Apart(places[1], places[2]) +
                  Apart(places[2], end),
              1e-6);
  ASSERT_EQ(route.legs.size(), 4U);
  EXPECT_TRUE(route.legs[0].airway.empty() && route.legs[1].airway == "V1" && route.legs[3].airway.empty());
  EXPECT_EQ(route.fixes[0].ident, "4754N12257W");
  EXPECT_EQ(route.toName, "position N50 06.0 W122 54.0");
  EXPECT_EQ(Find({"5040N", "47.9,-122.95", 12, {}}).fixes[0].place.Lat(), places[0].Lat());
  EXPECT_EQ(FindRoute(store, graph, {"0 180", "0 -180", 12, {}}, route),
            "0 180 and 0 -180 are the same place");
  EXPECT_NE(FindRoute(store, graph, {"48.7 -190", "MID", 12, {}}, route).find("48.7 -190"),
            std::string::npos);
}

TEST_F(RouteTest, ChangesAirwaysAsSeldomAsItsWayAllows) {
  for (const char* const ident : {"A1", "B1", "C1", "D1"})
    AddFix(ident, 48 + static_cast<double>(places.size()) / 3, -123);
  for (const auto& [leg, airway] : std::vector<std::pair<size_t, const char*>>{
           {0, "V1"}, {0, "V2"}, {1, "V2"}, {1, "V3"}, {2, "V3"}, {2, "V2"}, {2, "V4"}})
    AddBothWays(leg, leg + 1, airway);
  Read();
  for (const RouteLeg& leg : Find({"A1", "D1", 0, {}}).legs) EXPECT_EQ(leg.airway, "V2");
}

// Ways round in a circle that cost nothing, at the pole and across 180, would keep a search for ever.
TEST_F(RouteTest, NearlyNoLengthAndOnePlaceWrittenTwiceEnd) {
  const double least = 1.0 / (1 << 23);
  for (const auto& [lat, lon] : std::vector<std::pair<double, double>>{
           {90, 10}, {90, 130}, {90 - least, 10}, {90 - least, 10 + least}, {80, 180}, {80, -180}, {60, 1}})
    AddFix("P" + std::to_string(places.size()), lat, lon);
  for (const auto& [from, to] :
       std::vector<std::pair<size_t, size_t>>{{0, 1}, {0, 2}, {1, 3}, {2, 3}, {3, 4}})
    AddBothWays(from, to, "V1");
  AddBothWays(5, 0, "V2");
  AddFix("AWAY", -60, 1);
  Read();
  EXPECT_NEAR(Find({"P0", "P5", 0, {}}).distance, Apart(places[0], places[5]), 1e-6);
  EXPECT_NEAR(Find({"P1", "P4", 0, {}}).distance, Apart(places[1], places[4]), 1e-6);
  Route route;
  EXPECT_NE(FindRoute(store, graph, {"P0", "AWAY", 0, {}}, route), "");
}

// Whichever way a segment is flown, one of its courses is that of leaving and the other, turned round, that
// of arriving; what states none has the great circle's, true without a model.
TEST_F(RouteTest, LegsHaveTheCoursesOfBothEnds) {
  const auto vor = MakeFix<K7VHFNavaid>(K7NAV_VOR, "A1", 48, -130);
  vor->freq = 11680;
  vor->flags = K7VHFNavaid::VOR | K7VHFNavaid::DME;
  keys.push_back(writer.Add(*vor));
  places.push_back(Stored(48, -130));
  idents.emplace_back("A1");
  AddFix("B1", 48.2, -127);
  AddFix("C1", 48, -122);
  const auto segment = Segment(0, 1, "V1", K7NAV_LOW_AIRWAY);
  segment->course = K7Course(850);
  segment->courseOpposite = K7Course(2670);
  writer.Add(*segment);
  AddBothWays(1, 2, "V1");
  Read();
  const Route there = Find({"A1", "C1", 0, {}}), back = Find({"C1", "A1", 0, {}});
  ASSERT_EQ(there.legs.size(), 2U);
  ASSERT_EQ(back.legs.size(), 2U);
  EXPECT_EQ(CourseText(there.legs[0]) + " " + ArrivalText(there.legs[0]), "085 087");
  EXPECT_EQ(CourseText(back.legs[1]) + " " + ArrivalText(back.legs[1]), "267 265");
  EXPECT_TRUE(there.legs[1].isTrue && there.legs[1].isArrivalTrue);
  EXPECT_NEAR(there.legs[1].course, places[1].InitCourse(places[2]), 1e-9);
  EXPECT_NEAR(there.legs[1].arrival, places[1].FinalCourse(places[2]), 1e-6);
  EXPECT_EQ(there.fixes[0].kind, "VOR-DME 116.8");
  EXPECT_EQ(there.fixes[1].kind, "fix");
}

// The airways place a fix where its own record does not.
TEST_F(RouteTest, StartsOnTheAirwaysAtAFixThatTheyPlaceElsewhere) {
  AddFix("A1", 48, -123);
  AddFix("B1", 49, -123);
  places[0] = Stored(48.01, -123.02);
  AddBothWays(0, 1, "V1");
  Read();
  const Route route = Find({"A1", "B1", 0, {}});
  ASSERT_EQ(route.legs.size(), 1U);
  EXPECT_NEAR(route.distance, Apart(places[0], places[1]), 1e-6);
}

}  // namespace

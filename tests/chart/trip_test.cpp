// Trip sheets: what their figures say, that strips show the whole way, and that pages hold all that is
// written.

#include "chart_fixture.h"
#include "drawing_trace.h"
#include "layers/route_layer.h"
#include "sheet/trip_sheet.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

Route RouteOver(const std::vector<K7LatLon>& places) {
  Route route;
  for (const K7LatLon& place : places) {
    route.fixes.push_back({"F" + std::to_string(100 + route.fixes.size()), {}, place, "fix"});
    if (route.fixes.size() == 1) continue;
    RouteLeg& leg = route.legs.emplace_back();
    leg.distance = route.fixes[route.legs.size() - 1].place.Distance(place);
    route.distance += leg.distance;
  }
  return route;
}

K7LatLon PlaceAt(const Route& route, double distance) {
  size_t leg = 0;
  while (leg + 1 < route.legs.size() && distance > route.legs[leg].distance)
    distance -= route.legs[leg++].distance;
  K7LatLon at;
  const K7LatLon& from = route.fixes[leg].place;
  at.EndPoint(from, from.InitCourse(route.fixes[leg + 1].place), distance);
  return at;
}

const std::vector<K7LatLon> WAYS[] = {{{47.4, -122.3}, {47.9, -122.3}, {49.2, -123.2}},
                                      {{48, -123}, {48.02, -123.01}},
                                      {{61.2, -150}, {52, 179}, {51, 172}},
                                      {{70, -100}, {89, -60}, {80, 100}},
                                      {{48, -123}, {49, -121}, {48, -119}, {49, -117}, {47.8, -117.2}},
                                      {{10, 20}, {12, 20}, {10, 20}},
                                      {{51.5, 0}, {-34, 151}},
                                      {{-33, 151}, {-33, 151}, {-37, 144}}};

// By the library's own views of the charts that the strips ask for.
TEST(RouteStripsTest, ShowTheWholeWayWithOverlap) {
  for (const bool trackUp : {false, true})
    for (const std::vector<K7LatLon>& way : WAYS) {
      SCOPED_TRACE(testing::Message() << "from " << way[0].Lat() << (trackUp ? " track up" : " north up"));
      const Route route = RouteOver(way);
      const StripFrame frame = FrameOnPaper(PAPERS[0],
                                            route.distance > 5000  ? 1e7
                                            : route.distance > 500 ? 2e6
                                                                   : 5e5,
                                            trackUp);
      const std::vector<RouteStrip> strips = CutStrips(route, frame);
      ASSERT_FALSE(strips.empty());
      EXPECT_EQ(strips.front().from, 0);
      EXPECT_NEAR(strips.back().to, route.distance, 1e-6);
      const double perNM = 10;
      for (size_t i = 0; i < strips.size(); ++i) {
        const RouteStrip& strip = strips[i];
        if (i > 0) {
          const RouteStrip& before = strips[i - 1];
          EXPECT_LE(strip.from, before.to - 0.09 * (before.to - before.from));
          EXPECT_GT(strip.from, before.from);
          EXPECT_GT(strip.to, before.to);
        }
        const K7LatLon& c = strip.center;
        const double range = std::min(frame.width, frame.height) / 2;
        const std::unique_ptr<K7Projection> projection(K7MapView::CreateProjection(
            i % 2 ? K7_PROJ_LAMBERT : K7_PROJ_STEREOGRAPHIC, c.Lat(), c.Lon(), range, nullptr));
        const int width = static_cast<int>(frame.width * perNM),
                  height = static_cast<int>(frame.height * perNM);
        K7MapView view(projection.get(), width, height);
        view.SetTurn(strip.turn);
        ASSERT_EQ(view.LookAt(c.Lat(), c.Lon(), range), 0);
        double startY = 0, endY = 0;
        for (int part = 0; part <= 20; ++part) {
          const K7LatLon at = PlaceAt(route, strip.from + (strip.to - strip.from) * part / 20);
          double x = NAN, y = NAN;
          ASSERT_TRUE(view.ToDevice(at.Lat(), at.Lon(), x, y));
          const double side = trackUp ? 1 / 3.0 : 0.1, slack = 0.01;
          EXPECT_GE(x / width, side - slack);
          EXPECT_LE(x / width, 1 - side + slack);
          EXPECT_GE(y / height, 0.1 - slack);
          EXPECT_LE(y / height, 0.9 + slack);
          (part == 0 ? startY : endY) = y;
        }
        const double way0 = PlaceAt(route, strip.from).Distance(PlaceAt(route, strip.to));
        if (trackUp && way0 > 1) {
          EXPECT_NEAR((startY - endY) / perNM / way0, 1, 0.02);
        }
      }
    }
  // A straight way is not cut finer than it need be, nor a way into more strips than anyone prints.
  const Route straight = RouteOver({{48, -123}, {50, -123}});
  const StripFrame frame = FrameOnPaper(PAPERS[0], 5e5, true);
  EXPECT_EQ(CutStrips(straight, frame).size(), std::ceil(120.0 / (0.8 * frame.height) / 0.9 - 0.1));
  EXPECT_TRUE(CutStrips(RouteOver({{48, -123}, {-40, 10}}), frame).empty());
  EXPECT_TRUE(CutStrips(RouteOver({{48, -123}}), frame).empty());
}

// 29.1 and 15.0 NM at 120 kt end after 14.55 and 22.05 minutes.
TEST(TripTest, TimesAddUpAndGroundIsThatOfTheLeg) {
  EXPECT_EQ(MinutesTo(29.1, 120), 15);
  EXPECT_EQ(MinutesTo(44.1, 120), 22);
  EXPECT_EQ(MinutesTo(951, 95), 601);
  EXPECT_EQ(TimeText(601), "10:01");
  Profile profile;
  profile.fixes = {{"A", {}, 0}, {"B", {}, 10}, {"C", {}, 20}, {"D", {}, 30}};
  for (const auto& [nm, feet] : std::vector<std::pair<double, int>>{
           {0, 100}, {5, 300}, {10, 5001}, {15, -20}, {20, 90}, {25, K7_NO_ELEV}, {30, 201}}) {
    K7TerElevPoint& point = profile.points.emplace_back();
    point.distance = nm;
    point.elev = feet;
  }
  const struct {
    int highest, clear;
    bool hasGaps;
  } LEGS[] = {{5001, 7100, false}, {5001, 7100, false}, {201, 1300, true}};
  for (size_t leg = 0; leg < 3; ++leg) {
    const LegGround ground = GroundUnder(profile, leg);
    ASSERT_TRUE(ground.highest);
    EXPECT_EQ(ground.highest->elev, LEGS[leg].highest);
    EXPECT_EQ(ClearAltitude(ground), LEGS[leg].clear);
    EXPECT_EQ(ground.hasGaps, LEGS[leg].hasGaps);
  }
  Route route = RouteOver({{48, -123}, {48.2, -123}, {48.4, -123}, {48.6, -123}, {48.8, -123}});
  route.legs[1].airway = route.legs[2].airway = "V1";
  EXPECT_EQ(RouteText(route), "F100 F101 V1 F103 F104");
}

// Every fix has its row, with the minutes that its leg takes, on pages whose numbers run on.
TEST_F(ChartTest, TripSheetsHoldEveryLegOfALongRoute) {
  for (const Paper& paper : PAPERS) {
    std::vector<K7LatLon> way;
    for (int i = 0; i <= 80; ++i) way.push_back({48.0 + i % 2 * 0.05, -126 + i * 0.1});
    const Route route = RouteOver(way);
    Trip trip{route, 100, ProfileOf(route, 4000), {std::string(400, 'x'), "A source."}};
    for (const ProfileFix& fix : trip.profile.fixes)
      trip.profile.points.push_back({fix.place.Lat(), fix.place.Lon(), fix.distance, 1234, 0});
    const StripFrame frame = FrameOnPaper(paper, 2e6, true);
    const std::vector<RouteStrip> strips = CutStrips(route, frame);
    RouteLayer layer(route);
    Chart bare({&layer}, theme, progress);
    DrawingTrace trace(paper.width, paper.height);
    const StripPages pages{route, strips, frame, 2e6, {}};
    ASSERT_EQ(DrawTripSheet(trace.Cairo(), paper, theme, trip, pages, bare), "");
    int shown = 1;
    for (const std::string& line : trace.Lines()) shown += line.find("show-page") != std::string::npos;
    std::map<std::string, int> texts;
    for (const DrawingTrace::Text& text : trace.Texts()) {
      ++texts[text.text];
      EXPECT_TRUE(text.x >= 0 && text.x < paper.width && text.y > 0 && text.y < paper.height) << text.text;
    }
    for (int page = 1; page <= shown; ++page)
      EXPECT_EQ(texts["page " + std::to_string(page) + " of " + std::to_string(shown)], 1);
    for (const RouteFix& fix : route.fixes) EXPECT_GE(texts[fix.ident], 1) << fix.ident;
    // Kinds, and the head of each page of rows.
    EXPECT_GE(texts["fix"], 81 + 3);
    // 1234 ft want 2234 ft, to the next hundred.
    EXPECT_EQ(texts["2300"], 80);
    EXPECT_EQ(texts[TimeText(static_cast<int>(std::lround(route.distance / 100 * 60)))], 1);
  }
}

}  // namespace

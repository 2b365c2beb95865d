// Routes on charts: that the whole of one is seen, and what is written beside it.

#include "layers/route_layer.h"
#include "chart_fixture.h"
#include "layers/route_frame.h"

#include <cairo.h>

#include <cmath>
#include <set>

namespace {

Route RouteOver(const std::vector<K7LatLon>& places) {
  Route route;
  for (const K7LatLon& place : places) {
    route.fixes.push_back({"F" + std::to_string(route.fixes.size()), {}, place});
    if (route.fixes.size() == 1) continue;
    RouteLeg& leg = route.legs.emplace_back();
    leg.airway = "V" + std::to_string(route.legs.size());
    leg.course = 10.0 * static_cast<double>(route.legs.size());
    leg.distance = 100 + static_cast<double>(route.legs.size());
  }
  return route;
}

TEST(RouteFrameTest, ShowsAllOfARouteInEveryProjection) {
  const std::vector<K7LatLon> ways[] = {{{47.4, -122.3}, {47.9, -122.3}, {49.2, -123.2}},
                                        {{61.2, -150}, {52, 179}, {35.8, 140.4}},
                                        {{51.5, -0.5}, {25.3, 55.4}},
                                        {{70, -100}, {82, 170}},
                                        {{-1, 10}, {1, 10.2}}};
  Theme theme;
  NoProgress progress;
  for (int type = 0; type < 9; ++type)
    for (const std::vector<K7LatLon>& way : ways) {
      SCOPED_TRACE(std::to_string(type) + " from " + std::to_string(way[0].Lat()));
      ChartRequest request;
      request.type = static_cast<K7ProjType>(type);
      FrameRoute(RouteOver(way), 1400, 900, request);
      Chart chart({}, theme, progress);
      ASSERT_EQ(chart.Show(request, 1400, 900, 1), "");
      double least = INFINITY, most = -INFINITY, x, y;
      for (const K7LatLon& place : way) {
        EXPECT_TRUE(chart.View()->ToDevice(place.Lat(), place.Lon(), x, y));
        least = std::min({least, x / 1400, y / 900});
        most = std::max({most, x / 1400, y / 900});
      }
      EXPECT_GT(most - least, 0.5);
    }
}

// The labels that a layer of a route alone puts on a sheet of that size.
class RouteSheet {
 public:
  RouteSheet(const Route& route, int width, int height)
      : m_layer(route),
        m_chart({&m_layer}, m_theme, m_progress),
        m_surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 8, 8)),
        m_cairo(cairo_create(m_surface)),
        m_plan(m_cairo, {0, 0, width * 1.0, height * 1.0}) {
    ChartRequest request;
    FrameRoute(route, width, height, request);
    EXPECT_EQ(m_chart.Show(request, width, height, 1), "");
    m_chart.OfferLabels(12, m_plan);
    for (const Label& label : m_plan.Labels()) written.insert(label.text);
  }
  ~RouteSheet() {
    cairo_destroy(m_cairo);
    cairo_surface_destroy(m_surface);
  }
  RouteSheet(const RouteSheet&) = delete;
  RouteSheet& operator=(const RouteSheet&) = delete;
  const Chart& Shown() const { return m_chart; }
  const LabelPlan& Plan() const { return m_plan; }

  std::multiset<std::string> written;

 private:
  Theme m_theme;
  NoProgress m_progress;
  RouteLayer m_layer;
  Chart m_chart;
  cairo_surface_t* m_surface;
  cairo_t* m_cairo;
  LabelPlan m_plan;
};

// Fifteen legs along one airway, too short for its name beside any, then a direct one and another airway.
TEST(RouteLayerTest, NamesAnAirwayOnceWithItsLengthWhereItsLegsAreShort) {
  std::vector<K7LatLon> way;
  for (int i = 0; i <= 15; ++i) way.push_back({48, -126 + i * 0.4});
  way.push_back({48, -114});
  way.push_back({48, -108});
  Route route = RouteOver(way);
  double flown = 0;
  for (size_t i = 0; i < 15; ++i) {
    route.legs[i].airway = "J77";
    flown += route.legs[i].distance = 10 + static_cast<double>(i);
  }
  route.legs[15].airway.clear();
  const RouteSheet sheet(route, 1000, 300);
  EXPECT_EQ(sheet.written.count("J77  " + std::to_string(std::lround(flown)) + " NM"), 1U);
  size_t named = 0;
  for (const std::string& text : sheet.written) named += text.find("J77") != std::string::npos;
  EXPECT_EQ(named, 1U);
  EXPECT_EQ(sheet.written.count("160\xC2\xB0 116 NM"), 1U);
  EXPECT_EQ(sheet.written.count("V17  170\xC2\xB0 117 NM"), 1U);
}

TEST(RouteLayerTest, WritesOfEveryLegAndNeverOnTheLine) {
  std::vector<K7LatLon> way(9);
  for (int i = 0; i < 9; ++i) way[static_cast<size_t>(i)] = {48.0 + i % 2, -126 + i * 0.6};
  const Route route = RouteOver(way);
  const RouteSheet sheet(route, 1400, 900);
  for (const Label& label : sheet.Plan().Labels()) {
    const TurnedBox box = sheet.Plan().PlaceOf(label);
    for (size_t i = 0; i + 1 < way.size(); ++i)
      for (double part = 0; part <= 1; part += 0.01) {
        K7LatLon at;
        at.EndPoint(way[i], way[i].InitCourse(way[i + 1]), way[i].Distance(way[i + 1]) * part);
        double x, y;
        ASSERT_TRUE(sheet.Shown().View()->ToDevice(at.Lat(), at.Lon(), x, y));
        EXPECT_FALSE(std::fabs((x - box.x) * box.cos + (y - box.y) * box.sin) < box.halfLength &&
                     std::fabs((y - box.y) * box.cos - (x - box.x) * box.sin) < box.halfWidth)
            << label.text;
      }
  }
  for (int leg = 1; leg <= 8; ++leg)
    EXPECT_EQ(sheet.written.count("V" + std::to_string(leg) + "  0" + std::to_string(leg) + "0\xC2\xB0 10" +
                                  std::to_string(leg) + " NM"),
              1U);
  for (const RouteFix& fix : route.fixes) EXPECT_EQ(sheet.written.count(fix.ident), 1U) << fix.ident;
}

}  // namespace

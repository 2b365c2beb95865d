// Lines of navigation data: what is written along airways, where isogonic lines run, what shape airspaces
// have.

#include "chart_fixture.h"
#include "layers/airspace_outline.h"
#include "layers/airway_layer.h"
#include "layers/edge_band.h"
#include "layers/isogonic_layer.h"
#include "memory_store.h"

#include <k7/geodesy/magvar.h>

#include <cairo.h>

#include <cmath>
#include <numbers>
#include <set>

namespace {

constexpr double RAD = std::numbers::pi / 180;

// Course and distance by the half-angle formulas, in place of the library's vectors.
double Course(const K7LatLon& a, const K7LatLon& b) {
  const double p = a.Lat() * RAD, q = b.Lat() * RAD, d = (b.Lon() - a.Lon()) * RAD;
  return std::atan2(std::sin(d) * std::cos(q),
                    std::cos(p) * std::sin(q) - std::sin(p) * std::cos(q) * std::cos(d)) /
         RAD;
}

double Distance(const K7LatLon& a, const K7LatLon& b) {
  const double p = std::sin((b.Lat() - a.Lat()) / 2 * RAD), d = std::sin((b.Lon() - a.Lon()) / 2 * RAD);
  const double h = p * p + std::cos(a.Lat() * RAD) * std::cos(b.Lat() * RAD) * d * d;
  return 2 * std::asin(std::sqrt(h)) / RAD * 60;
}

class NavLinesTest : public testing::Test {
 protected:
  NavLinesTest() : model(K7_SAMPLE_DATA "/magnetic/WMM.COF") {
    K7MagVar::SetFilename(K7_SAMPLE_DATA "/magnetic/WMM.COF");
    surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 8, 8);
    cairo = cairo_create(surface);
  }
  ~NavLinesTest() override {
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }

  LabelPlan Labelled(Layer& layer, double range) {
    Chart chart({&layer}, theme, progress);
    EXPECT_EQ(chart.Show({K7_PROJ_LAMBERT, {48.5, -123.5}, range, {}}, 1400, 900, 1), "");
    LabelPlan plan(cairo, {0, 0, 1400, 900});
    chart.OfferLabels(12, plan);
    return plan;
  }

  Tarsvald::MagVarWMM model;
  MemoryStore store;
  NoProgress progress;
  Theme theme;
  cairo_surface_t* surface;
  cairo_t* cairo;
};

TEST_F(NavLinesTest, WritesMagneticCoursesAltitudeAndAllNames) {
  const K7LatLon from(48.1, -124.6), to(49.2, -122.3);
  store.AddAirway("V4", from, to);
  store.AddAirway("V495", to, from);
  AirwayLayer layer(&store);
  std::set<std::string> expected = {"V4-V495", "4000", std::to_string(std::lround(Distance(from, to)))};
  for (const auto& [a, b] : {std::pair(from, to), std::pair(to, from)}) {
    K7String text;
    text.Format(
        "%03d\xC2\xB0",
        static_cast<int>(std::lround(Course(a, b) - model.Position(a.Lat(), a.Lon(), 0, 0, 0)) + 360) % 360);
    expected.insert(std::string(text));
  }
  std::set<std::string> written;
  const LabelPlan plan = Labelled(layer, 90);
  for (const Label& label : plan.Labels()) written.insert(label.text);
  EXPECT_EQ(written, expected);
}

TEST_F(NavLinesTest, IsogonicsRunWhereTheModelSays) {
  const ChartRequest views[] = {{K7_PROJ_LAMBERT, {48.5, -123.5}, 300, {}},
                                {K7_PROJ_MERCATOR, {-35, 20}, 1500, {}},
                                {K7_PROJ_ORTHOGRAPHIC, {60, 10}, 0, {}}};
  for (const ChartRequest& view : views) {
    IsogonicLayer layer;
    Chart chart({&layer}, theme, progress);
    ASSERT_EQ(chart.Show(view, 1400, 900, 1), "");
    EXPECT_GE(layer.Lines().size(), 4U);
    for (const auto& [variation, line] : layer.Lines())
      for (double along = 0; along < line.Length(); along += 7) {
        const DevicePoint p = line.SpotAt(along).at;
        double lat, lon;
        ASSERT_TRUE(chart.View()->FromDevice(p.x, p.y, lat, lon));
        // Towards the limb and the poles a degree is less than a pixel.
        if (std::fabs(lat) > 80 || Distance({lat, lon}, view.center) > 3600) continue;
        EXPECT_NEAR(model.Position(lat, lon, 0, 0, NAN), variation, 0.05) << lat << " " << lon;
      }
  }
}

TEST_F(NavLinesTest, ArcsOfAirspacesHaveTheirRadiusAndSense) {
  const K7LatLon centre(48.5, -123);
  K7AirspaceSeg north, east;
  K7LatLon start, end;
  start.EndPoint(centre, 0, 12);
  end.EndPoint(centre, 90, 12);
  for (const auto& [piece, at] : {std::pair(&north, start), std::pair(&east, end)}) {
    piece->lat = K7NavData::DecDeg2FixPt(at.Lat());
    piece->lon = K7NavData::DecDeg2FixPt(at.Lon());
    piece->centerLat = K7NavData::DecDeg2FixPt(centre.Lat());
    piece->centerLon = K7NavData::DecDeg2FixPt(centre.Lon());
  }
  for (const char via : {K7AirspaceSeg::CLOCKWISE_ARC, K7AirspaceSeg::COUNTER_ARC, K7AirspaceSeg::CIRCLE}) {
    north.via = via;
    north.radius = 12;
    const K7AirspaceSeg pieces[] = {north, east};
    std::vector<K7LatLon> outline = AirspaceOutline({pieces, via == K7AirspaceSeg::CIRCLE ? 1U : 2U});
    // The straight way back from the arc's end is no part of it.
    while (via != K7AirspaceSeg::CIRCLE && Distance(outline.back(), end) > 0.001) outline.pop_back();
    double most = 0;
    for (const K7LatLon& p : outline) {
      EXPECT_NEAR(Distance(centre, p), 12, 0.001);
      const double course = std::fmod(Course(centre, p) + 360, 360);
      most = std::fmax(most, course > 359.9 ? 0 : course);
    }
    EXPECT_EQ(most < 90.1, via == K7AirspaceSeg::CLOCKWISE_ARC) << via << most;
  }
}

TEST_F(NavLinesTest, BandsLieInsideTheirAreas) {
  DeviceLine ring;
  for (int i = 0; i <= 180; ++i)
    ring.points.push_back({100 + 80 * std::cos(2 * i * RAD), 100 + 80 * std::sin(2 * i * RAD)});
  std::vector<double> t;
  LineSink hatching;
  AddEdgeBand(ring, 6, t);
  AddHatching(ring, 6, 5, hatching);
  double area = 0;
  for (size_t i = 0; i < t.size(); i += 6)
    area +=
        std::fabs((t[i + 2] - t[i]) * (t[i + 5] - t[i + 1]) - (t[i + 4] - t[i]) * (t[i + 3] - t[i + 1])) / 2;
  EXPECT_NEAR(area, std::numbers::pi * (80 * 80 - 74 * 74), 10);
  for (size_t i = 0; i < t.size(); i += 2) {
    const double radius = std::hypot(t[i] - 100, t[i + 1] - 100);
    EXPECT_TRUE(radius < 80.001 && radius > 73.9) << radius;
  }
  EXPECT_NEAR(static_cast<double>(hatching.lines.size()), 2 * std::numbers::pi * 80 / 5, 1);
  for (const DeviceLine& stroke : hatching.lines) {
    EXPECT_NEAR(std::hypot(stroke.points[0].x - 100, stroke.points[0].y - 100), 80, 0.1);
    EXPECT_NEAR(std::hypot(stroke.points[1].x - 100, stroke.points[1].y - 100), 74, 0.1);
  }
}

}  // namespace

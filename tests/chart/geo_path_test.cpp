// What k7chart draws, against picking: a pixel is painted exactly when the position under it lies in the
// area, and every point of a line lies on it, in each projection, about centres at the seam, the poles and
// between.

#include "layers/shape_layer.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int WIDTH = 240;
constexpr int HEIGHT = 160;

struct Case {
  K7ProjType type;
  GeoPoint centre;
  double rangeNM;
  double pitch = -90;  // of the general perspective
};

struct Quiet : Progress {
  void Step(const std::string&) override {}
  void Within(double) override {}
};

class DrawnMap : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    m_surface = cairo_image_surface_create(CAIRO_FORMAT_A8, WIDTH, HEIGHT);
    m_cairo = cairo_create(m_surface);
    cairo_set_antialias(m_cairo, CAIRO_ANTIALIAS_NONE);
    grfx = std::make_unique<CairoGrfx>(m_cairo, WIDTH, HEIGHT);
    const Case& c = GetParam();
    projection = MakeProjection(c.type, c.centre.lat, c.centre.lon, c.rangeNM);
    if (c.pitch != -90) {
      const double params[] = {3e6, 30, 10, c.pitch};  // altitude, heading, bank, pitch
      for (int i = 0; i < 4; ++i) projection->ParamValue(i, params[i]);
    }
    view = std::make_unique<View>(*projection, *grfx);
    ASSERT_TRUE(view->LookAt(c.centre.lat, c.centre.lon, c.rangeNM));
  }
  void TearDown() override {
    cairo_destroy(m_cairo);
    cairo_surface_destroy(m_surface);
  }

  bool Painted(int x, int y) {
    cairo_surface_flush(m_surface);
    return cairo_image_surface_get_data(m_surface)[y * cairo_image_surface_get_stride(m_surface) + x] != 0;
  }

  // Whether the pixel's corners and middle agree on lying in an area, and how.
  template <class Inside>
  bool Clear(int x, int y, Inside inside, bool& in) {
    int hits = 0;
    for (const auto& [dx, dy] : {std::pair{0.5, 0.5}, {-0.6, -0.6}, {1.6, -0.6}, {-0.6, 1.6}, {1.6, 1.6}}) {
      GeoPoint p;
      hits += view->FromDevice(x + dx, y + dy, p) && inside(p);
    }
    in = hits == 5;
    return hits == 0 || hits == 5;
  }

  template <class Inside>
  void ExpectFilled(const std::vector<GeoLine>& rings, Inside inside) {
    cairo_set_operator(m_cairo, CAIRO_OPERATOR_CLEAR);
    cairo_paint(m_cairo);
    cairo_set_operator(m_cairo, CAIRO_OPERATOR_OVER);
    cairo_set_fill_rule(m_cairo, CAIRO_FILL_RULE_EVEN_ODD);
    GeoPath(*view).AddArea(rings);
    cairo_fill(m_cairo);
    int wrong = 0;
    for (int y = 0; y < HEIGHT; y += 5)
      for (int x = 0; x < WIDTH; x += 5) {
        bool in = false;
        if (Clear(x, y, inside, in)) wrong += Painted(x, y) != in;
      }
    // One may lie in a sliver thinner than itself.
    EXPECT_LE(wrong, 1) << "pixels";
  }

  // Within a pixel: the parallel runs between the pixel's neighbours. On a limb one side of it is off the
  // map.
  bool OnParallel(double x, double y, double lat) {
    double south = 90, north = -90;
    bool offMap = false;
    for (const auto& [dx, dy] : {std::pair{-1.0, -1.0}, {1.0, -1.0}, {-1.0, 1.0}, {1.0, 1.0}}) {
      GeoPoint p;
      if (!view->FromDevice(x + dx, y + dy, p)) {
        offMap = true;
        continue;
      }
      south = std::min(south, p.lat);
      north = std::max(north, p.lat);
    }
    return offMap || (south <= lat && lat <= north);
  }

  // At a limb, where two pixels may be a continent.
  bool Squeezed(const DevicePoint& at, const GeoPoint& place) {
    for (const auto& [dx, dy] : {std::pair{-2.0, 0.0}, {2.0, 0.0}, {0.0, -2.0}, {0.0, 2.0}}) {
      GeoPoint p;
      if (!view->FromDevice(at.x + dx, at.y + dy, p)) return true;
      if (K7LatLon(p.lat, p.lon).Distance(K7LatLon(place.lat, place.lon)) > 500) return true;
    }
    return false;
  }

  cairo_surface_t* m_surface = nullptr;
  cairo_t* m_cairo = nullptr;
  std::unique_ptr<CairoGrfx> grfx;
  std::unique_ptr<K7Projection> projection;
  std::unique_ptr<View> view;
};

// A box of latitude and longitude as a clockwise ring.
GeoLine Box(double south, double north, double west, double east) {
  return {{south, west}, {north, west}, {north, east}, {south, east}, {south, west}};
}

bool InBox(const GeoPoint& p, double south, double north, double west, double east) {
  return p.lat > south && p.lat < north && p.lon > west && p.lon < east;
}

TEST_P(DrawnMap, AreasFillWhatPickingFindsInThem) {
  ExpectFilled({Box(20, 70, -170, -60)}, [](const GeoPoint& p) { return InBox(p, 20, 70, -170, -60); });
  // Up to the seam on both sides, as data sets are cut there.
  ExpectFilled({Box(-50, 65, 120, 180)}, [](const GeoPoint& p) { return InBox(p, -50, 65, 120, 180.1); });
  ExpectFilled({Box(-50, 65, -180, -150)}, [](const GeoPoint& p) { return InBox(p, -50, 65, -180.1, -150); });
  // Around a pole, closed along it.
  ExpectFilled({Box(-90, -62, -180, 180)}, [](const GeoPoint& p) { return p.lat < -62; });
  // With a hole, which may hold all that shows.
  GeoLine hole = Box(-40, 88, -175, 175);
  ExpectFilled({Box(-80, 89, -179, 179), GeoLine(hole.rbegin(), hole.rend())}, [](const GeoPoint& p) {
    return InBox(p, -80, 89, -179, 179) && !InBox(p, -40, 88, -175, 175);
  });
}

// Airspaces run along whole degrees, and charts are centred on their corners; some run across the seam uncut.
TEST_P(DrawnMap, AnEdgeThroughTheCentreIsAnEdge) {
  const double south = std::min(GetParam().centre.lat, 78.0);
  const double lon = GetParam().centre.lon;
  ExpectFilled({Box(south, south + 12, lon - 10, lon + 10)}, [&](const GeoPoint& p) {
    return p.lat > south && p.lat < south + 12 && std::fabs(std::remainder(p.lon - lon, 360)) < 10;
  });
}

TEST_P(DrawnMap, LinesStayOnTheirParallel) {
  for (double lat = -75; lat <= 75; lat += 15) {
    cairo_new_path(m_cairo);
    GeoPath(*view).AddLine({{lat, -180}, {lat, 180}});
    cairo_path_t* const path = cairo_copy_path(m_cairo);
    double lastX = 0, lastY = 0;
    int bad = 0;
    for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
      const double x = path->data[i + 1].point.x;
      const double y = path->data[i + 1].point.y;
      const bool inWindow = x > 2 && x < WIDTH - 2 && y > 2 && y < HEIGHT - 2;
      if (inWindow && !OnParallel(x, y, lat)) ++bad;
      // Half way along a segment the line is still there.
      if (path->data[i].header.type == CAIRO_PATH_LINE_TO && inWindow) {
        const double mx = (x + lastX) / 2, my = (y + lastY) / 2;
        if (mx > 2 && mx < WIDTH - 2 && my > 2 && my < HEIGHT - 2 && !OnParallel(mx, my, lat)) ++bad;
      }
      lastX = x;
      lastY = y;
    }
    cairo_path_destroy(path);
    EXPECT_EQ(bad, 0) << "parallel " << lat;
  }
}

TEST_P(DrawnMap, LandIsLandAndSeaIsSea) {
  ShapeLayer land(LayerKind::Land, K7_SAMPLE_DATA "/ne_110m_land.shp");
  Quiet progress;
  ASSERT_EQ(land.Load(progress), "");
  land.Draw(*view, 0.1, progress);
  const auto expect = [&](bool isLand, const std::vector<GeoPoint>& places) {
    for (const GeoPoint& p : places) {
      DevicePoint at;
      if (!view->Shows(p, at) || at.x >= WIDTH || at.y >= HEIGHT || Squeezed(at, p)) continue;
      EXPECT_EQ(Painted(static_cast<int>(at.x), static_cast<int>(at.y)), isLand) << p.lat << " " << p.lon;
    }
  };
  // The middles of continents, and of oceans.
  expect(true, {{62, -110},
                {40, -100},
                {-10, -55},
                {5, 20},
                {25, 5},
                {55, 40},
                {62, 100},
                {35, 95},
                {-25, 135},

                {-80, 60},
                {-85, 100},
                {75, -40}});
  expect(false, {{0, -150},
                 {0, 178},
                 {-40, -120},
                 {30, -40},
                 {-30, -15},
                 {-25, 80},
                 {35, 170},
                 {85, 0},
                 {87, 179},
                 {-60, -100},
                 {-60, 90},
                 {45, -40},
                 {-15, -110}});
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const GeoPoint centre : {GeoPoint{48.5, -123.5}, GeoPoint{0, 180}, GeoPoint{-12, -179},
                                  GeoPoint{89.9, 0}, GeoPoint{-90, 40}})
      for (const double range : {0.0, 1500.0}) {
        const bool mercatorPole = type == K7_PROJ_MERCATOR && std::fabs(centre.lat) > 85;
        if (!mercatorPole) cases.push_back({static_cast<K7ProjType>(type), centre, range});
      }
  for (const double pitch : {-60.0, -25.0}) cases.push_back({K7_PROJ_PERSPECTIVE, {48.5, -123.5}, 0, pitch});
  return cases;
}

INSTANTIATE_TEST_SUITE_P(AllProjections, DrawnMap, testing::ValuesIn(Cases()));

}  // namespace

// Views against brute force over their pixels and against distances on the sphere.
#include <k7/core.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>

#include "projection/path_recorder.h"
#include "projection/soft_grfx.h"

namespace {

using Owned = std::unique_ptr<K7Projection>;

Owned Make(int type, double lat, double lon, double range) {
  return Owned(K7MapView::CreateProjection(static_cast<K7ProjType>(type), lat, lon, range, nullptr));
}

// All nine projections about a place, in a window whose sides are odd, even, or one of each.
template <class Check>
void ForAllProjections(double lat, double lon, double range, Check check) {
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const auto& [width, height] : {std::pair{401, 301}, {400, 300}, {301, 400}}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " window " << width << "x" << height);
      const Owned projection = Make(type, lat, lon, range);
      Looking view(*projection, width, height, lat, lon, range);
      check(view);
    }
}

// Of those whose world has an end, and no part that is left out of it.
TEST(MapView, TheWorldFitsTheWindow) {
  for (const int type :
       {K7_PROJ_ORTHOGRAPHIC, K7_PROJ_RECTANGULAR, K7_PROJ_MILLER, K7_PROJ_ALBERS, K7_PROJ_PERSPECTIVE})
    for (const auto& [width, height] : {std::pair{401, 101}, {400, 300}, {101, 400}}) {
      const Owned projection = Make(type, 10, 20, 0);
      Looking view(*projection, width, height, 10, 20, 0);
      PathRecorder recorder;
      K7MapPath(view).WholeMap(&recorder);
      EXPECT_EQ(recorder.Beyond(width, height), 0) << type;
      EXPECT_GT(recorder.Beyond(0.96 * width, 0.96 * height), 0) << type;
      double dx = 0, dy = 0;
      EXPECT_TRUE(view.IsGlobe() || view.ToDevice(90, 20, dx, dy)) << type;
    }
}

// Magnified as a chart of one mile is, half a pixel before the zoom is hundreds behind it. The range reaches
// the nearer edge along the meridian, and the zoom gives back the view that has it.
TEST(MapView, CentreRangeAndZoomAreThoseAskedFor) {
  for (const auto& asked : {std::array{48.5, -123.5, 1.0}, {-33, 151, 40}, {20, 179, 200}}) {
    const double lat0 = asked[0], lon0 = asked[1], range = asked[2];
    ForAllProjections(lat0, lon0, range, [&](K7MapView& view) {
      const double x = view.Width() / 2.0, y = view.Height() / 2.0, half = std::min(x, y);
      double lat = 0, lon = 0, dx = 0, dy = 0, ax = 0, ay = 0;
      ASSERT_TRUE(view.FromDevice(x, y, lat, lon));
      EXPECT_NEAR(lat, lat0, 1e-7);
      EXPECT_NEAR(lon, lon0, 1e-7);
      EXPECT_TRUE(view.ToDevice(lat0, lon0, dx, dy));
      EXPECT_NEAR(dx, x, 1e-3);
      EXPECT_NEAR(dy, y, 1e-3);
      ASSERT_TRUE(view.FromDevice(x, y - half, lat, lon));
      EXPECT_NEAR(K7LatLon(lat0, lon0).Distance(K7LatLon(lat, lon)) / range, 1, 1e-3 + 1e-4 * range);
      EXPECT_NEAR(view.NMPerPixel() * half / range, 1, 0.01);
      const double scale = view.NMPerPixel(), east = lon0 + range / 200 - (lon0 > 170 ? 360 : 0);
      EXPECT_TRUE(view.ToDevice(lat0, east, ax, ay));
      ASSERT_EQ(view.LookAtZoom(lat0, lon0, view.Zoom()), 0);
      EXPECT_TRUE(view.ToDevice(lat0, east, dx, dy));
      EXPECT_EQ(dx, ax);
      EXPECT_EQ(dy, ay);
      EXPECT_NEAR(view.NMPerPixel() / scale, 1, 0.01);
    });
  }
}

// Mercator is true at the equator, where a mile is a minute, and larger by the secant of the latitude
// elsewhere; at zoom 1 the window is two radii wide. Stated, it is what was stated, and the picture as
// before.
TEST(MapView, AStatedScaleHoldsUntilTheNextLook) {
  const Owned projection = Make(K7_PROJ_MERCATOR, 60, 10, 0);
  const double zoom = 64,
               miles = 2 * 10800 / std::acos(-1.0) * std::cos(60 * std::acos(-1.0) / 180) / (400 * zoom);
  K7MapView view(projection.get(), 400, 300);
  view.SetNMPerPixel(7);
  EXPECT_NE(view.NMPerPixel(), 7);
  for (int look = 0; look < 2; ++look) {
    ASSERT_EQ(view.LookAtZoom(60, 10, zoom), 0);
    EXPECT_NEAR(view.NMPerPixel() / miles, 1, 1e-6) << look;
    const K7ChartRect extent = view.GetExtent();
    for (const double stated : {0.25, 0.0, -1.0, double{NAN}, double{INFINITY}}) view.SetNMPerPixel(stated);
    double north = 0, east = 0;
    EXPECT_EQ(view.NMPerPixel(), 0.25);
    EXPECT_TRUE(view.Scale(60, 10, north, east));
    EXPECT_NEAR(north / miles, 1, 1e-6);
    EXPECT_EQ(view.GetExtent().North(), extent.North());
    EXPECT_EQ(view.Zoom(), zoom);
  }
}

// In the middle: also of an eye so low that the range lies far behind its horizon.
TEST(MapView, APixelSpansItsMiles) {
  for (const double feet : {10.0, 1e3, 1e5, 1e8}) {
    static const double HALF = 0.01;
    K7PerspectiveProjection eye(4);
    eye.ParamValue(0, feet);
    Looking view(eye, 400, 300, 40, 20, 300);
    double aLat = 0, aLon = 0, bLat = 0, bLon = 0;
    ASSERT_TRUE(view.FromDevice(200, 150 - HALF, aLat, aLon));
    ASSERT_TRUE(view.FromDevice(200, 150 + HALF, bLat, bLon));
    EXPECT_NEAR(K7LatLon(aLat, aLon).Distance(K7LatLon(bLat, bLon)) / (2 * HALF * view.NMPerPixel()), 1,
                1e-3);
  }
}

// The same picture, turned about its middle: places, and the area that a path encloses.
TEST(MapView, ATurnedViewShowsTheSameTurned) {
  static const int FOUR = 4;
  for (const double turn : {37.0, 90.0, -141.0, 360.0})
    ForAllProjections(48.5, -123.5, 300, [&](const K7MapView& upright) {
      K7MapView view(upright.Projection(), upright.Width(), upright.Height());
      view.SetTurn(turn);
      ASSERT_EQ(view.LookAt(48.5, -123.5, 300), 0);
      EXPECT_NEAR(view.NMPerPixel() / upright.NMPerPixel(), 1, 1e-9);
      double angle = 0;
      ASSERT_TRUE(view.TrueNorth(48.5, -123.5, angle));
      EXPECT_NEAR(std::remainder(angle + turn, 360), 0, 1e-4);
      const double middleX = view.Width() / 2.0, middleY = view.Height() / 2.0;
      const double c = std::cos(turn * std::acos(-1.0) / 180), s = std::sin(turn * std::acos(-1.0) / 180);
      const K7LatLon corners[] = {{50, -125}, {50, -120}, {47, -121}, {48, -128}};
      PathRecorder area;
      K7MapPath(view).Area(&area, corners, &FOUR, 1);
      PathRecorder outline;
      K7MapPath(upright).Area(&outline, corners, &FOUR, 1);
      int compared = 0;
      for (double dx = 5; dx < view.Width(); dx += 17)
        for (double dy = 5; dy < view.Height(); dy += 17) {
          const double x = middleX + c * (dx - middleX) - s * (dy - middleY);
          const double y = middleY + s * (dx - middleX) + c * (dy - middleY);
          double lat = 0, lon = 0, otherLat = 1, otherLon = 1, ax = 0, ay = 0;
          ASSERT_TRUE(view.FromDevice(dx, dy, lat, lon));
          ASSERT_TRUE(upright.FromDevice(x, y, otherLat, otherLon));
          EXPECT_NEAR(K7LatLon(lat, lon).Distance({otherLat, otherLon}), 0, 1e-3);
          EXPECT_TRUE(view.ToDevice(otherLat, otherLon, ax, ay));
          EXPECT_NEAR(std::hypot(ax - dx, ay - dy), 0, 1e-3);
          // Beyond the guard band of the other window, the other path ends.
          if (x < 0 || y < 0 || x > view.Width() || y > view.Height() || outline.Distance(x, y) < 1) continue;
          EXPECT_EQ(area.Encloses(dx, dy), outline.Encloses(x, y)) << dx << " " << dy;
          ++compared;
        }
      EXPECT_GT(compared, 80);
    });
  // The whole world turned is as much of the world, whole in its window.
  const Owned world = Make(K7_PROJ_MILLER, 30, 0, 0);
  K7MapView view(world.get(), 300, 200);
  view.SetTurn(90);
  ASSERT_EQ(view.LookAt(30, 0, 0), 0);
  double x = 0, y = 0;
  EXPECT_TRUE(view.ToDevice(0, 179.9, x, y) && view.ToDevice(89.9, 0, x, y) && view.ToDevice(-89.9, 0, x, y));
  view.SetTurn(NAN);
  EXPECT_EQ(view.LookAt(30, 0, 300), K7_ERR_BAD_ARGUMENT);
}

// Whatever magnification the host's context has of its own, and whether it asks by the view or by itself.
TEST(MapView, AnyContextCanBeSetUp) {
  ForAllProjections(48.5, -123.5, 300, [](const K7MapView& view) {
    for (const double zoom : {1.0, 0.3, 40.0}) {
      SoftGrfx host(view.Width(), view.Height(), zoom);
      view.SetUp(&host);
      double aLat = 0, aLon = 0, bLat = 1, bLon = 1;
      ASSERT_TRUE(view.FromDevice(70, 90, aLat, aLon));
      ASSERT_TRUE(view.Projection()->Device2LatLon(70, 90, &host, view.Width(), view.Height(), bLat, bLon));
      EXPECT_NEAR(aLat, bLat, 1e-9);
      EXPECT_NEAR(aLon, bLon, 1e-9);
    }
  });
  K7MercatorProjection projection;
  Looking view(projection, 100, 100, 0, 0, 100);
  view.SetUp(nullptr);
  EXPECT_EQ(view.LookAt(0, 0, -1), K7_ERR_BAD_ARGUMENT);
  SoftGrfx host(100, 100);
  view.SetUp(&host);  // shows nothing any more: leaves the cube of -1 to 1
  double x = 0, y = 0, z = 0;
  ASSERT_TRUE(host.UnProject(100, 50, 0.5, x, y, z));
  EXPECT_EQ(x, 1);
}

// The smallest box around the positions of all pixels, longitudes from the centre's, and little more.
void ExpectExtent(K7Projection& projection, double lat, double lon, double range, double turn = 0) {
  SCOPED_TRACE(testing::Message() << projection.Name() << " " << lat << " " << lon << " range " << range
                                  << " turned by " << turn);
  K7MapView view(&projection, 161, 121);
  view.SetTurn(turn);
  if (view.LookAt(lat, lon, range) != 0) return;
  double edges[] = {-90, -90, -180, -180};  // north, south, east and west, the way out positive
  for (int y = 0; y <= view.Height(); ++y)
    for (int x = 0; x <= view.Width(); ++x) {
      double dx, dy;
      if (!view.FromDevice(x, y, lat, lon) || !view.ToDevice(lat, lon, dx, dy)) continue;
      const double off = std::remainder(lon - view.CenterLon(), 360);
      const double out[] = {lat, -lat, off, -off};
      for (int i = 0; i < 4; ++i) edges[i] = std::max(edges[i], out[i]);
    }
  double n = 0, s = 0, e = 0, w = 0;
  ASSERT_TRUE(view.GetExtent(n, s, e, w));
  const double extent[] = {n, -s, e - view.CenterLon(), view.CenterLon() - w};
  const double slack[] = {8 * (edges[0] + edges[1]) / view.Height(),
                          8 * (edges[2] + edges[3]) / view.Width()};
  for (int i = 0; i < 4; ++i) {
    EXPECT_GE(extent[i], edges[i] - 1e-9) << i;
    EXPECT_LE(extent[i], edges[i] + slack[i / 2] + 1e-9) << i;
  }
}

TEST(MapView, TheExtentHoldsWhatIsSeenAndLittleMore) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> lats(-84, 84), lons(-180, 180), ranges(5, 700);
  for (int i = 0; i < 45; ++i) {
    const double lat = lats(random), lon = lons(random), range = ranges(random);
    const Owned projection = Make(i % 9, lat, lon, range);
    for (const double turn : {0.0, lons(random)}) ExpectExtent(*projection, lat, lon, range, turn);
  }
  // With edges that run askew to the meridians.
  K7PerspectiveProjection askew(4);
  const double params[] = {1e6, 35, 5, -78, 20};
  for (int i = 0; i < 5; ++i) askew.ParamValue(i, params[i]);
  askew.SetClipPlanes();
  ExpectExtent(askew, 80, 20, 0);
  // Cones that are not laid about the chart, up to their seam, their wide end and around their point, and
  // windows that are larger than the map.
  const Owned lambert(K7Projection::Create(K7_PROJ_LAMBERT, nullptr));  // about W90
  const Owned albers(K7Projection::Create(K7_PROJ_ALBERS, nullptr));
  K7LambertProjection south(-40, -30, 20, 0);
  for (K7Projection* cone : {lambert.get(), albers.get(), static_cast<K7Projection*>(&south)})
    for (const auto& [lat, lon] : {std::pair{48.0, 60.0}, {50.0, 85.0}, {-70.0, 89.9}, {86.0, -200.0}})
      for (const double range : {20.0, 700.0}) ExpectExtent(*cone, lat, lon, range);
  Looking thin(*lambert, 1, 1761, 40, 0, 0);
  EXPECT_EQ(thin.GetExtent(), K7ChartRect(90, -80, 180, -180));
}

TEST(MapView, APoleBringsAllLongitudes) {
  for (const int type : {K7_PROJ_LAMBERT, K7_PROJ_ORTHOGRAPHIC, K7_PROJ_STEREOGRAPHIC, K7_PROJ_GNOMONIC})
    for (const double side : {1.0, -1.0})
      for (const double range :
           {600, 302, 290}) {  // with the pole well within the edge, hardly, and hardly not
        const Owned projection = Make(type, side * 85, 30, 600);
        Looking view(*projection, 200, 200, side * 85, 30, range);
        const K7ChartRect extent = view.GetExtent();
        SCOPED_TRACE(testing::Message() << type << " " << side << " " << range);
        EXPECT_EQ((side > 0 ? extent.North() : -extent.South()) == 90, range > 300);
        EXPECT_EQ(extent.West() == -180 && extent.East() == 180, range > 300);
        EXPECT_NEAR(side > 0 ? extent.South() : -extent.North(), 85 - range / 60 * std::sqrt(2.0), 1.5);
      }
  const Owned globe = Make(K7_PROJ_ORTHOGRAPHIC, 40, 30, 0);
  Looking round(*globe, 200, 200, 40, 30, 0);
  EXPECT_EQ(round.GetExtent(), K7ChartRect(90, round.GetExtent().South(), 180, -180));
  EXPECT_NEAR(round.GetExtent().South(), -50, 1e-6);
  const Owned across = Make(K7_PROJ_MERCATOR, 0, 180, 600);
  Looking view(*across, 200, 200, 0, 180, 600);
  EXPECT_NEAR(view.GetExtent().West(), 170, 0.2);
  EXPECT_NEAR(view.GetExtent().East(), -170, 0.2);
}

// One pixel along the direction of north is one pixel's miles of latitude; a turn to the right of it, one
// pixel's miles to the east.
TEST(MapView, ScaleAndNorthAreThoseOfThePixels) {
  ForAllProjections(60, 20, 900, [](const K7MapView& view) {
    const double lat = 66, lon = 35;
    double dx = 0, dy = 0, north = 0, east = 0, angle = 0;
    if (!view.ToDevice(lat, lon, dx, dy)) return;
    ASSERT_TRUE(view.Scale(lat, lon, north, east));
    ASSERT_TRUE(view.TrueNorth(lat, lon, angle));
    const double up = angle * std::acos(-1.0) / 180;
    double aLat = 0, aLon = 0, bLat = 0, bLon = 0;
    ASSERT_TRUE(view.FromDevice(dx + std::sin(up), dy - std::cos(up), aLat, aLon));
    EXPECT_NEAR((aLat - lat) * 60 / north, 1, 0.01);
    EXPECT_NEAR(aLon, lon, 0.01);
    ASSERT_TRUE(view.FromDevice(dx + std::cos(up), dy + std::sin(up), bLat, bLon));
    if (view.Projection()->Type() != K7_PROJ_STEREOGRAPHIC && !view.Projection()->IsConic()) return;
    EXPECT_NEAR(K7LatLon(lat, lon).Distance(K7LatLon(bLat, bLon)) / east, 1, 0.1);
  });
}

TEST(MapView, ACylinderStretchesEastByTheSecant) {
  const Owned projection = Make(K7_PROJ_RECTANGULAR, 60, 10, 100);
  Looking view(*projection, 300, 300, 60, 10, 100);
  double north = 0, east = 0;
  ASSERT_TRUE(view.Scale(60, 10, north, east));
  EXPECT_NEAR(north / east, 2, 1e-6);
  EXPECT_FALSE(view.Scale(90, 10, north, east));
  // So small that rounding leaves nothing of a step at the equator, but of one far north.
  K7MercatorProjection mercator;
  K7MapView tiny(&mercator, 100, 100);
  int none = 0;
  for (double zoom = 1e-14; zoom < 1e-9; zoom *= 1.1) {
    if (tiny.LookAtZoom(80, 0, zoom) != 0) continue;
    const bool found = tiny.Scale(0, 0, north, east);
    none += !found;
    EXPECT_TRUE(!found || std::isfinite(north + east)) << zoom;
    double angle = 0;
    tiny.TrueNorth(0, 0, angle);
    EXPECT_EQ(angle, 0) << zoom;
  }
  EXPECT_GT(none, 0);
}

TEST(MapView, WhatGivesNoPictureIsRefusedAndShowsNothing) {
  const auto refused = [](K7Projection* projection, double lat, double lon, double range, int width = 100) {
    K7MapView view(projection, width, 100);
    const int code = view.LookAt(lat, lon, range);
    double dx = 0, dy = 0;
    PathRecorder recorder;
    if (code != 0) {
      EXPECT_FALSE(view.IsSet());
      EXPECT_FALSE(view.FromDevice(50, 50, lat, lon));
      EXPECT_FALSE(view.ToDevice(lat, lon, dx, dy));
      EXPECT_TRUE(view.GetExtent().IsEmpty());
      EXPECT_EQ(K7MapPath(view).WholeMap(&recorder), K7_ERR_BAD_ARGUMENT);
    }
    return code;
  };
  K7MercatorProjection mercator;
  K7LambertProjection tangent(40, 40, 0, 0);
  K7AlbersProjection cylinder(-30, 30, 0, 0);
  K7PerspectiveProjection level(4);
  level.ParamValue(3, 0);
  level.SetClipPlanes();
  const struct {
    K7Projection* projection;
    double lat, lon, range;
    int code;
  } rows[] = {{nullptr, 0, 0, 0, K7_ERR_BAD_ARGUMENT},
              {&mercator, 91, 0, 100, K7_ERR_BAD_ARGUMENT},
              {&mercator, 0, NAN, 100, K7_ERR_BAD_ARGUMENT},
              {&mercator, 0, 0, -1, K7_ERR_BAD_ARGUMENT},
              {&mercator, 90, 0, 100, K7_ERR_PROJECTION_RANGE},
              {&tangent, 40, 0, 100, K7_ERR_PROJECTION_RANGE},
              {&cylinder, 40, 0, 100, K7_ERR_PROJECTION_RANGE},
              {&level, 40, 0, 0, K7_ERR_PROJECTION_RANGE},
              {&mercator, 0, 0, 100, K7_OK},
              // Beyond where the map is cut, beyond the digits of positions, and before everything.
              {&mercator, 89.985, 0, 0.05, K7_ERR_PROJECTION_RANGE},
              {&mercator, 0, 0, 1e-9, K7_ERR_PROJECTION_RANGE},
              {&mercator, 0, 0, INFINITY, K7_ERR_PROJECTION_RANGE}};
  for (const auto& [projection, lat, lon, range, code] : rows)
    EXPECT_EQ(refused(projection, lat, lon, range), code) << lat << " " << lon << " " << range;
  EXPECT_EQ(refused(&mercator, 0, 0, 100, 0), K7_ERR_BAD_ARGUMENT);
  for (const double parallel : {90.0, -100.0, 400.0}) {
    K7RectangularProjection rectangular(parallel);
    K7LambertProjection outer(parallel, 30, 0, 0), inner(30, parallel, 0, 0);
    for (K7Projection* wrong : {static_cast<K7Projection*>(&rectangular), static_cast<K7Projection*>(&outer),
                                static_cast<K7Projection*>(&inner)})
      EXPECT_EQ(refused(wrong, 40, 0, 100), K7_ERR_PROJECTION_RANGE) << parallel;
  }
  // Eyes in the ground, cameras that look up or tip over, and what no angle of a picture is.
  for (const auto& [parameter, value] : {std::pair{0, 0.5}, {3, 80.0}, {3, -91.0}, {4, 0.0}, {4, 90.0}}) {
    K7PerspectiveProjection eye(4);
    eye.ParamValue(parameter, value);
    eye.SetClipPlanes();
    EXPECT_EQ(refused(&eye, 40, 0, 0), K7_ERR_PROJECTION_RANGE) << parameter << " " << value;
  }
  K7MapView view(&mercator, 100, 100);
  K7MapPath early(view);
  PathRecorder recorder;
  double lat, lon;
  EXPECT_FALSE(view.FromDevice(50, 50, lat, lon));
  EXPECT_EQ(view.LookAtZoom(0, 0, 1e13), K7_ERR_PROJECTION_RANGE);
  EXPECT_EQ(view.LookAtZoom(0, 0, 0), K7_ERR_PROJECTION_RANGE);
  EXPECT_EQ(view.LookAtZoom(0, 0, 1), K7_OK);
  EXPECT_EQ(view.LookAtZoom(91, 0, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_FALSE(view.IsSet());
  EXPECT_EQ(view.LookAtZoom(0, 0, 1), K7_OK);
  EXPECT_EQ(view.LookAt(0, 0, -1), K7_ERR_BAD_ARGUMENT);
  EXPECT_FALSE(view.IsSet());
  EXPECT_EQ(view.LookAtZoom(0, 0, 1), K7_OK);
  // A path that has not taken up what the view looks at.
  EXPECT_EQ(early.WholeMap(&recorder), K7_ERR_BAD_ARGUMENT);
  early.SetView(view);
  EXPECT_GT(early.WholeMap(&recorder), 0);
  EXPECT_FALSE(K7MapView(nullptr, 1, 1).IsGlobe());
  SoftGrfx flat(100, 100, 0);
  EXPECT_FALSE(mercator.Device2LatLon(50, 50, &flat, 100, 100, lat, lon));
}

// A cone has its point and its seam where its own meridian has them, wherever one looks.
TEST(MapView, AConeIsCutAtItsOwnSeam) {
  const Owned projection(K7Projection::Create(K7_PROJ_LAMBERT, nullptr));  // about W90
  Looking view(*projection, 400, 300, 50, 60, 800);
  const K7LatLon across[] = {{50, 70}, {50, 80}, {50, 100}, {50, 110}};
  PathRecorder recorder;
  EXPECT_GT(K7MapPath(view).Line(&recorder, across, 4), 0);
  for (const PathRecorder::Piece& piece : recorder.pieces)
    for (size_t i = 1; i < piece.points.size(); ++i)
      EXPECT_LT(
          std::hypot(piece.points[i].x - piece.points[i - 1].x, piece.points[i].y - piece.points[i - 1].y),
          60);
}

}  // namespace

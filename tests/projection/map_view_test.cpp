// Views against brute force over their pixels and against distances on the sphere.
#include <k7/foundation/error_string.h>
#include <k7/projection.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <thread>

#include "projection/path_recorder.h"
#include "projection/soft_grfx.h"

namespace {

using Owned = std::unique_ptr<K7Projection>;

Owned Make(int type, double lat, double lon, double range) {
  return Owned(K7MapView::CreateProjection(static_cast<K7ProjType>(type), lat, lon, range, nullptr));
}

bool IsGlobe(int type) { return Make(type, 0, 0, 0)->IsAzimuthal(); }

// All nine projections about a place, in a window whose sides are odd, even, or one of each.
template <class Check>
void ForAllProjections(double lat, double lon, double range, Check check) {
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const auto& [width, height] : {std::pair{401, 301}, {400, 300}, {301, 400}}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " window " << width << "x" << height);
      const Owned projection = Make(type, lat, lon, range);
      K7MapView view(projection.get(), width, height);
      ASSERT_EQ(view.LookAt(lat, lon, range), 0);
      check(view);
    }
}

// Of those whose world has an end, and no part that is left out of it.
TEST(MapView, TheWorldFitsTheWindow) {
  for (const int type :
       {K7_PROJ_ORTHOGRAPHIC, K7_PROJ_RECTANGULAR, K7_PROJ_MILLER, K7_PROJ_ALBERS, K7_PROJ_PERSPECTIVE})
    for (const auto& [width, height] : {std::pair{401, 101}, {400, 300}, {101, 400}}) {
      const Owned projection = Make(type, 10, 20, 0);
      K7MapView view(projection.get(), width, height);
      ASSERT_EQ(view.LookAt(10, 20, 0), 0);
      PathRecorder recorder;
      K7MapPath(view).WholeMap(&recorder);
      double right = 0, bottom = 0;
      for (const PathRecorder::Point& p : recorder.pieces.at(0).points) {
        right = std::max(right, p.x);
        bottom = std::max(bottom, p.y);
      }
      EXPECT_EQ(recorder.Beyond(width, height), 0) << type;
      EXPECT_TRUE(right > 0.96 * width || bottom > 0.96 * height) << type << " " << right << " " << bottom;
      double dx = 0, dy = 0;
      EXPECT_TRUE(IsGlobe(type) || view.ToDevice(90, 20, dx, dy)) << type;
    }
}

// Magnified as a chart of one mile is, half a pixel before the zoom is hundreds behind it.
TEST(MapView, TheMiddleOfAnyWindowIsTheCentre) {
  ForAllProjections(48.5, -123.5, 1, [](const K7MapView& view) {
    double lat = 0, lon = 0, dx = 0, dy = 0;
    ASSERT_TRUE(view.FromDevice(view.Width() / 2.0, view.Height() / 2.0, lat, lon));
    EXPECT_NEAR(lat, 48.5, 1e-7);
    EXPECT_NEAR(lon, -123.5, 1e-7);
    EXPECT_TRUE(view.ToDevice(48.5, -123.5, dx, dy));
    EXPECT_NEAR(dx, view.Width() / 2.0, 1e-3);
    EXPECT_NEAR(dy, view.Height() / 2.0, 1e-3);
  });
}

TEST(MapView, TheRangeReachesTheNearerEdgeAlongTheMeridian) {
  ForAllProjections(-33, 151, 40, [](const K7MapView& view) {
    const double half = std::min(view.Width(), view.Height()) / 2.0;
    double lat = 0, lon = 0;
    ASSERT_TRUE(view.FromDevice(view.Width() / 2.0, view.Height() / 2.0 - half, lat, lon));
    EXPECT_NEAR(K7LatLon(-33, 151).Distance(K7LatLon(lat, lon)), 40, 0.4);
    EXPECT_NEAR(view.NMPerPixel() * half, 40, 0.2);
  });
}

TEST(MapView, AZoomGivesBackTheViewThatHasIt) {
  ForAllProjections(20, 179, 200, [](K7MapView& view) {
    const double zoom = view.Zoom(), scale = view.NMPerPixel();
    double ax = 0, ay = 0, bx = 0, by = 0;
    EXPECT_TRUE(view.ToDevice(21, -180, ax, ay));
    ASSERT_EQ(view.LookAtZoom(20, 179, zoom), 0);
    EXPECT_TRUE(view.ToDevice(21, -180, bx, by));
    EXPECT_EQ(ax, bx);
    EXPECT_EQ(ay, by);
    EXPECT_NEAR(view.NMPerPixel() / scale, 1, 0.01);
  });
}

// In the middle: also of an eye so low that the range lies far behind its
// horizon.
TEST(MapView, APixelSpansItsMiles) {
  const auto check = [](const K7MapView& view, double tolerance) {
    static const double HALF = 0.01;
    double aLat = 0, aLon = 0, bLat = 0, bLon = 0;
    const double x = view.Width() / 2.0, y = view.Height() / 2.0;
    ASSERT_TRUE(view.FromDevice(x, y - HALF, aLat, aLon));
    ASSERT_TRUE(view.FromDevice(x, y + HALF, bLat, bLon));
    EXPECT_NEAR(K7LatLon(aLat, aLon).Distance(K7LatLon(bLat, bLon)) / (2 * HALF * view.NMPerPixel()), 1,
                tolerance);
  };
  for (const double feet : {10.0, 1e3, 1e5, 1e8}) {
    K7PerspectiveProjection eye(4);
    eye.ParamValue(0, feet);
    K7MapView view(&eye, 400, 300);
    ASSERT_EQ(view.LookAt(40, 20, 300), 0);
    check(view, 1e-3);
  }
  ForAllProjections(48.5, -123.5, 300, [&](const K7MapView& view) { check(view, 0.01); });
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
  K7MapView view(&projection, 100, 100);
  SoftGrfx host(100, 100);
  view.SetUp(&host);  // shows nothing: leaves the cube of -1 to 1
  double x = 0, y = 0, z = 0;
  ASSERT_TRUE(host.UnProject(100, 50, 0.5, x, y, z));
  EXPECT_EQ(x, 1);
  EXPECT_EQ(view.LookAt(0, 0, 100), 0);
  view.SetUp(nullptr);
}

// The smallest box around the positions of all pixels, longitudes from the centre's.
void ExpectExtent(const K7MapView& view, double slackPixels) {
  double north = -90, south = 90, east = -180, west = 180;
  for (int y = 0; y <= view.Height(); ++y)
    for (int x = 0; x <= view.Width(); ++x) {
      double lat, lon, dx, dy;
      if (!view.FromDevice(x, y, lat, lon) || !view.ToDevice(lat, lon, dx, dy)) continue;
      const double off = std::remainder(lon - view.CenterLon(), 360);
      north = std::max(north, lat);
      south = std::min(south, lat);
      east = std::max(east, off);
      west = std::min(west, off);
    }
  double n = 0, s = 0, e = 0, w = 0;
  ASSERT_TRUE(view.GetExtent(n, s, e, w));
  const double lat = slackPixels * (north - south) / view.Height() + 1e-9;
  const double lon = slackPixels * (east - west) / view.Width() + 1e-9;
  EXPECT_GE(n, north - 1e-9);
  EXPECT_LE(s, south + 1e-9);
  EXPECT_GE(e - view.CenterLon(), east - 1e-9);
  EXPECT_LE(w - view.CenterLon(), west + 1e-9);
  EXPECT_LE(n, north + lat);
  EXPECT_GE(s, south - lat);
  EXPECT_LE(e - view.CenterLon(), east + lon);
  EXPECT_GE(w - view.CenterLon(), west - lon);
}

TEST(MapView, TheExtentHoldsWhatIsSeenAndLittleMore) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> lats(-84, 84), lons(-180, 180), ranges(5, 700);
  for (int i = 0; i < 45; ++i) {
    const double lat = lats(random), lon = lons(random), range = ranges(random);
    SCOPED_TRACE(testing::Message() << "type " << i % 9 << " at " << lat << " " << lon << " range " << range);
    const Owned projection = Make(i % 9, lat, lon, range);
    K7MapView view(projection.get(), 161, 121);
    ASSERT_EQ(view.LookAt(lat, lon, range), 0);
    ExpectExtent(view, 8);
  }
  // With edges that run askew to the meridians.
  K7PerspectiveProjection askew(4);
  const double params[] = {1e6, 35, 5, -78, 20};
  for (int i = 0; i < 5; ++i) askew.ParamValue(i, params[i]);
  askew.SetClipPlanes();
  K7MapView view(&askew, 161, 121);
  ASSERT_EQ(view.LookAt(80, 20, 0), 0);
  ExpectExtent(view, 8);
}

// Also for cones that are not laid about the chart, up to their seam, their wide end and around their point,
// and for windows that are larger than the map.
TEST(MapView, TheExtentOfAConeThatLiesElsewhere) {
  const Owned lambert(K7Projection::Create(K7_PROJ_LAMBERT, nullptr));  // about W90
  const Owned albers(K7Projection::Create(K7_PROJ_ALBERS, nullptr));
  K7LambertProjection south(-40, -30, 20, 0);
  for (K7Projection* projection : {lambert.get(), albers.get(), static_cast<K7Projection*>(&south)})
    for (const auto& [lat, lon] : {std::pair{48.0, 60.0}, {50.0, 85.0}, {-70.0, 89.9}, {86.0, -200.0}})
      for (const double range : {20.0, 700.0}) {
        K7MapView view(projection, 161, 121);
        SCOPED_TRACE(testing::Message() << projection->Name() << " " << lat << " " << lon << " " << range);
        if (view.LookAt(lat, lon, range) == 0) ExpectExtent(view, 8);
      }
  K7MapView thin(lambert.get(), 1, 1761);
  ASSERT_EQ(thin.LookAt(40, 0, 0), 0);
  EXPECT_EQ(thin.GetExtent(), K7ChartRect(90, -80, 180, -180));
}

TEST(MapView, APoleBringsAllLongitudes) {
  for (const int type : {K7_PROJ_LAMBERT, K7_PROJ_ORTHOGRAPHIC, K7_PROJ_STEREOGRAPHIC, K7_PROJ_GNOMONIC})
    for (const double side : {1.0, -1.0}) {
      const Owned projection = Make(type, side * 85, 30, 600);
      K7MapView view(projection.get(), 200, 200);
      ASSERT_EQ(view.LookAt(side * 85, 30, 600), 0);
      const K7ChartRect extent = view.GetExtent();
      EXPECT_EQ(side > 0 ? extent.North() : -extent.South(), 90) << type;
      EXPECT_EQ(extent.West(), -180) << type;
      EXPECT_EQ(extent.East(), 180) << type;
      EXPECT_NEAR(side > 0 ? extent.South() : -extent.North(), 85 - 10 * std::sqrt(2.0), 1.5) << type;
      // Hardly within the edge, and hardly not.
      ASSERT_EQ(view.LookAt(side * 85, 30, 302), 0);
      EXPECT_EQ(side > 0 ? view.GetExtent().North() : -view.GetExtent().South(), 90) << type;
      EXPECT_EQ(view.GetExtent().West(), -180) << type;
      ASSERT_EQ(view.LookAt(side * 85, 30, 290), 0);
      EXPECT_GT(view.GetExtent().West(), -180) << type;
    }
  const Owned globe = Make(K7_PROJ_ORTHOGRAPHIC, 40, 30, 0);
  K7MapView round(globe.get(), 200, 200);
  ASSERT_EQ(round.LookAt(40, 30, 0), 0);
  EXPECT_EQ(round.GetExtent(), K7ChartRect(90, round.GetExtent().South(), 180, -180));
  EXPECT_NEAR(round.GetExtent().South(), -50, 1e-6);
  const Owned across = Make(K7_PROJ_MERCATOR, 0, 180, 600);
  K7MapView view(across.get(), 200, 200);
  ASSERT_EQ(view.LookAt(0, 180, 600), 0);
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
  K7MapView view(projection.get(), 300, 300);
  ASSERT_EQ(view.LookAt(60, 10, 100), 0);
  double north = 0, east = 0;
  ASSERT_TRUE(view.Scale(60, 10, north, east));
  EXPECT_NEAR(north / east, 2, 1e-6);
  EXPECT_FALSE(view.Scale(90, 10, north, east));
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
  EXPECT_EQ(refused(nullptr, 0, 0, 0), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(refused(&mercator, 0, 0, 100, 0), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(refused(&mercator, 91, 0, 100), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(refused(&mercator, 0, NAN, 100), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(refused(&mercator, 0, 0, -1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(refused(&mercator, 90, 0, 100), K7_ERR_PROJECTION_RANGE);
  for (const double parallel : {90.0, -100.0, 400.0}) {
    K7RectangularProjection rectangular(parallel);
    EXPECT_EQ(refused(&rectangular, 0, 0, 100), K7_ERR_PROJECTION_RANGE) << parallel;
    K7LambertProjection lambert(parallel, 30, 0, 0);
    EXPECT_EQ(refused(&lambert, 40, 0, 100), K7_ERR_PROJECTION_RANGE) << parallel;
  }
  K7LambertProjection tangent(40, 40, 0, 0);
  EXPECT_EQ(refused(&tangent, 40, 0, 100), K7_ERR_PROJECTION_RANGE);
  K7AlbersProjection cylinder(-30, 30, 0, 0);
  EXPECT_EQ(refused(&cylinder, 40, 0, 100), K7_ERR_PROJECTION_RANGE);
  K7PerspectiveProjection level(4);
  level.ParamValue(3, 0);
  level.SetClipPlanes();
  EXPECT_EQ(refused(&level, 40, 0, 0), K7_ERR_PROJECTION_RANGE);
  EXPECT_EQ(refused(&mercator, 0, 0, 100), K7_OK);
  // Beyond where the map is cut, beyond the digits of positions, and before everything.
  EXPECT_EQ(refused(&mercator, 89.985, 0, 0.05), K7_ERR_PROJECTION_RANGE);
  EXPECT_EQ(refused(&mercator, 0, 0, 1e-9), K7_ERR_PROJECTION_RANGE);
  EXPECT_EQ(refused(&mercator, 0, 0, INFINITY), K7_ERR_PROJECTION_RANGE);
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
  // A path that has not taken up what the view looks at.
  EXPECT_EQ(early.WholeMap(&recorder), K7_ERR_BAD_ARGUMENT);
  early.SetView(view);
  EXPECT_GT(early.WholeMap(&recorder), 0);
  EXPECT_FALSE(K7MapView(nullptr, 1, 1).IsGlobe());
  SoftGrfx flat(100, 100, 0);
  EXPECT_FALSE(mercator.Device2LatLon(50, 50, &flat, 100, 100, lat, lon));
}

// Each with a path of its own, through one view of one set of features.
TEST(MapView, ThreadsMayDrawOneView) {
  K7MapFeatures features;
  const K7LatLon ring[] = {{40, 10}, {60, 10}, {60, 40}, {40, 40}};
  const int size = 4;
  features.Add(K7_MAP_AREA, ring, &size, 1);
  K7StereographicProjection projection;
  K7MapView view(&projection, 400, 300);
  ASSERT_EQ(view.LookAt(50, 25, 500), 0);
  int counts[4] = {};
  std::thread threads[4];
  for (int i = 0; i < 4; ++i)
    threads[i] = std::thread([&, i] {
      K7GrfxK7 sink(1, 1);
      K7MapPath path(view);
      double lat = 0, lon = 0, dx = 0, dy = 0;
      for (int k = 0; k < 50 && view.FromDevice(3 * k, 2 * k, lat, lon); ++k)
        counts[i] += view.ToDevice(lat, lon, dx, dy) + path.Area(&sink, features, 0);
      counts[i] += view.GetExtent().PtIn(50, 25) && features.Contains(0, 50, 25);
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_GT(counts[0], 200);
  for (const int count : counts) EXPECT_EQ(count, counts[0]);
}

// A cone has its point and its seam where its own meridian has them, wherever one looks.
TEST(MapView, AConeIsCutAtItsOwnSeam) {
  const Owned projection(K7Projection::Create(K7_PROJ_LAMBERT, nullptr));  // about W90
  K7MapView view(projection.get(), 400, 300);
  ASSERT_EQ(view.LookAt(50, 60, 800), 0);
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

#include <k7/foundation/error_string.h>
#include <k7/projection.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>

#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#include <sys/resource.h>
#include <unistd.h>
#define K7_CAN_LIMIT_MEMORY
#endif

#include "projection/path_recorder.h"

namespace {

using Ring = std::vector<K7LatLon>;

int AddOne(K7MapFeatures& features, K7MapFeatureKind kind, const Ring& points) {
  const int size = static_cast<int>(points.size());
  return features.Add(kind, points.data(), &size, 1);
}

TEST(MapFeatures, PointsOffTheEarthAreLeftOut) {
  K7MapFeatures features;
  EXPECT_EQ(
      AddOne(features, K7_MAP_LINES, {{10, 20}, {NAN, 20}, {91, 20}, {11, 541}, {11, INFINITY}, {12, 22}}),
      0);
  EXPECT_EQ(features.PointCount(0), 2);
  EXPECT_EQ(features.Point(0, 1).Lat(), 12);
  EXPECT_EQ(AddOne(features, K7_MAP_POINTS, {{10, 20}, {NAN, 20}, {11, 21}, {12, 22}}), 1);
  EXPECT_EQ(features.PointCount(1), 3);
  // Of what is too short nothing is left, but the number is.
  EXPECT_EQ(AddOne(features, K7_MAP_LINES, {{10, 20}}), 2);
  EXPECT_EQ(AddOne(features, K7_MAP_AREA, {{10, 20}, {11, 20}}), 3);
  EXPECT_EQ(features.PointCount(2), 0);
  EXPECT_EQ(features.PointCount(3), 0);
  EXPECT_TRUE(features.Bounds(3).IsEmpty());
  EXPECT_EQ(AddOne(features, K7_MAP_LINES, {{30, 40}, {50, 60}}), 4);
  EXPECT_EQ(features.Point(4, 1).Lat(), 50);
  EXPECT_EQ(features.Point(4, 1).Lon(), 60);
  EXPECT_EQ(features.Count(), 5);
}

TEST(MapFeatures, RingsAreClosedAndRunClockwise) {
  K7MapFeatures features;
  AddOne(features, K7_MAP_AREA, {{0, 0}, {0, 10}, {10, 10}, {10, 0}});  // counter-clockwise and open
  ASSERT_EQ(features.PointCount(0), 5);
  double area = 0;
  for (int i = 0; i < 4; ++i) {
    const K7LatLon a = features.Point(0, i), b = features.Point(0, i + 1);
    area += (b.Lon() - a.Lon()) * (b.Lat() + a.Lat()) / 2;
  }
  EXPECT_EQ(area, 100);
  EXPECT_EQ(features.Point(0, 0).Lat(), features.Point(0, 4).Lat());
  EXPECT_EQ(features.Kind(0), K7_MAP_AREA);
}

TEST(MapFeatures, RowsAreCarriedOnAcross180) {
  K7MapFeatures features;
  AddOne(features, K7_MAP_LINES, {{0, 170}, {1, -175}, {2, 175}});
  EXPECT_EQ(features.Point(0, 1).Lon(), 185);
  EXPECT_EQ(features.Point(0, 2).Lon(), 175);
  AddOne(features, K7_MAP_AREA, {{0, 170}, {10, 170}, {10, -170}, {0, -170}});
  EXPECT_EQ(features.Bounds(1).West(), 170);
  EXPECT_EQ(features.Bounds(1).East(), -170);
  EXPECT_TRUE(features.Contains(1, 5, 180));
  EXPECT_TRUE(features.Contains(1, 5, -175));
  EXPECT_FALSE(features.Contains(1, 5, 0));
  // A ring around the pole does not close when it is carried on: it is meant as it stands.
  AddOne(features, K7_MAP_AREA,
         {{-70, -180}, {-70, -60}, {-70, 60}, {-70, 180}, {-90, 180}, {-90, 0}, {-90, -180}});
  EXPECT_TRUE(features.Contains(2, -80, 10));
  EXPECT_TRUE(features.Contains(2, -80, 179));
  EXPECT_FALSE(features.Contains(2, -60, 10));
  EXPECT_EQ(features.Bounds(2), K7ChartRect(-70, -90, 180, -180));
}

// A satellite's track comes around again and again; each of its turns is seen where it is.
TEST(MapFeatures, ALineMayWindAroundTheWorld) {
  Ring track;
  for (int i = 0; i <= 400; ++i)
    track.emplace_back(60 * std::sin(i * 0.31), std::remainder(17.0 * i, 360));  // 19 turns to the east
  K7MapFeatures features;
  AddOne(features, K7_MAP_LINES, track);
  EXPECT_LT(features.PointCount(0), 401 + 20);
  K7RectangularProjection projection(0);
  K7MapView view(&projection, 400, 300);
  ASSERT_EQ(view.LookAt(10, 170, 1500), 0);
  PathRecorder recorder;
  EXPECT_GT(K7MapPath(view).Outline(&recorder, features, 0), 0);
  int seen = 0, missed = 0;
  for (const K7LatLon& p : track) {
    double x, y;
    if (!view.ToDevice(p.Lat(), p.Lon(), x, y)) continue;
    ++seen;
    missed += !(recorder.Distance(x, y) < 0.5);
  }
  EXPECT_GT(seen, 3);
  EXPECT_EQ(missed, 0);
}

TEST(MapFeatures, HolesAreNoArea) {
  K7MapFeatures features;
  const Ring rings = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {4, 4}, {4, 6}, {6, 6}, {6, 4}, {4, 4}};
  const int sizes[] = {5, 5};
  EXPECT_EQ(features.Add(K7_MAP_AREA, rings.data(), sizes, 2), 0);
  EXPECT_TRUE(features.Contains(0, 2, 2));
  EXPECT_FALSE(features.Contains(0, 5, 5));
  EXPECT_FALSE(features.Contains(0, 12, 5));
}

// An island in two features whose halves end a hundred metres beside the seam, as some sets have it.
TEST(MapFeatures, HalvesThatWereCutBeside180MeetThere) {
  K7MapFeatures features;
  AddOne(features, K7_MAP_AREA, {{-17, 179.8}, {-16.8, 179.9}, {-16.8, 179.9992}, {-17, 179.9992}});
  AddOne(features, K7_MAP_AREA, {{-17, -179.9992}, {-16.8, -179.9992}, {-16.9, -179.9}});
  K7MercatorProjection projection;
  K7MapView view(&projection, 400, 300);
  ASSERT_EQ(view.LookAt(-16.9, 180, 1), 0);
  K7MapPath path(view);
  for (const double lon : {179.9996, 180.0, -179.9997}) {
    int hits = 0;
    double dx = 0, dy = 0;
    ASSERT_TRUE(view.ToDevice(-16.9, lon, dx, dy));
    for (int i = 0; i < 2; ++i) {
      PathRecorder recorder;
      path.Area(&recorder, features, i);
      hits += recorder.Encloses(dx, dy);
    }
    EXPECT_GE(hits, 1) << lon;
  }
  // Neither runs on by more than a pixel.
  for (int i = 0; i < 2; ++i) {
    double dx = 0, dy = 0;
    ASSERT_TRUE(view.ToDevice(-16.9, i == 0 ? -179.9995 : 179.9995, dx, dy));
    PathRecorder recorder;
    path.Area(&recorder, features, i);
    EXPECT_FALSE(recorder.Encloses(dx, dy)) << i;
  }
  for (int i = 0; i < 2; ++i) {
    PathRecorder coast;
    EXPECT_EQ(path.Outline(&coast, features, i), 0);
  }
}

TEST(MapFeatures, WrongArgumentsAddNothing) {
  K7MapFeatures features;
  const K7LatLon points[] = {{0, 0}, {1, 1}};
  const int negative[] = {-1}, two[] = {2};
  EXPECT_EQ(features.Add(K7_MAP_LINES, nullptr, two, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(features.Add(K7_MAP_LINES, points, nullptr, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(features.Add(K7_MAP_LINES, points, two, -1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(features.Add(K7_MAP_LINES, points, negative, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(features.Add(static_cast<K7MapFeatureKind>(3), points, two, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(features.Count(), 0);
  EXPECT_EQ(features.Point(0, 0).Lat(), 0);
  EXPECT_EQ(features.PointCount(7), 0);
  EXPECT_FALSE(features.Contains(-1, 0, 0));
  features.Add(K7_MAP_LINES, points, two, 1);
  AddOne(features, K7_MAP_LINES, {{30, 40}, {50, 60}});
  features.Clear();
  EXPECT_EQ(features.Count(), 0);
  EXPECT_EQ(features.Add(K7_MAP_LINES, points, two, 1), 0);
  EXPECT_EQ(features.PointCount(0), 2);
  EXPECT_EQ(features.Point(0, 1).Lat(), 1);
  EXPECT_EQ(features.Point(0, 1).Lon(), 1);
}

#ifdef K7_CAN_LIMIT_MEMORY
// While it lives the program gets no more than so many bytes.
class MemoryLimit {
 public:
  explicit MemoryLimit(rlim_t more) {
    long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
      EXPECT_EQ(std::fscanf(file, "%ld", &pages), 1);
      std::fclose(file);
    }
    getrlimit(RLIMIT_AS, &m_before);
    const rlim_t now = static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    const rlimit limit = {now + more, m_before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
  }
  ~MemoryLimit() { setrlimit(RLIMIT_AS, &m_before); }

 private:
  rlimit m_before{};
};

// A path then says so, and is as good as new afterwards.
TEST(MapFeatures, WithoutMemoryNothingIsAdded) {
  K7MapFeatures features;
  AddOne(features, K7_MAP_AREA, {{0, 0}, {10, 0}, {10, 10}, {0, 10}});
  Ring ring;
  for (int i = 0; i < 100000; ++i) ring.emplace_back(i % 2 ? 0.3 : -0.3, i * 4e-4);
  ring.emplace_back(-3, 20);
  ASSERT_EQ(AddOne(features, K7_MAP_AREA, ring), 1);
  {
    const MemoryLimit limit(1 << 20);
    const int size = static_cast<int>(ring.size());
    int code = 0, added = 0;
    while (added < 100 && (code = features.Add(K7_MAP_AREA, ring.data(), &size, 1)) >= 0) ++added;
    EXPECT_EQ(code, K7_ERR_MEMORY);
    EXPECT_EQ(features.Count(), 2 + added);
    EXPECT_TRUE(features.Contains(0, 5, 5));
    EXPECT_EQ(AddOne(features, K7_MAP_AREA, {{0, 0}, {10, 0}, {10, 10}}), 2 + added);
  }
  EXPECT_EQ(features.PointCount(features.Count() - 1), 4);
  K7OrthographicProjection globe;
  K7MercatorProjection flat;
  for (K7Projection* projection : {static_cast<K7Projection*>(&globe), static_cast<K7Projection*>(&flat)}) {
    K7MapView view(projection, 4000, 3000);
    ASSERT_EQ(view.LookAt(0, 20, 1000), 0);
    K7MapPath path(view);
    K7GrfxK7 sink(1, 1);
    {
      const MemoryLimit limit(1 << 18);
      EXPECT_EQ(path.Area(&sink, features, 1), K7_ERR_MEMORY);
      EXPECT_GT(path.Area(&sink, features, 0), 3);
    }
    EXPECT_GT(path.Area(&sink, features, 1), 100000);
  }
}
#endif

// A chart's path is not finer than its pixels, and what lies elsewhere is not in it.
TEST(MapPath, HasNoPointsThatCannotBeSeen) {
  Ring circle;
  for (int i = 0; i <= 20000; ++i)
    circle.emplace_back(48 + std::cos(i * 0.00031415926535), -123 - std::sin(i * 0.00031415926535));
  K7MapFeatures features;
  AddOne(features, K7_MAP_AREA, circle);
  AddOne(features, K7_MAP_AREA, {{0, 0}, {1, 0}, {1, 1}});
  K7LambertProjection projection(51, 45, -123, 48);
  K7MapView view(&projection, 400, 300);
  ASSERT_EQ(view.LookAt(48, -123, 100), 0);
  K7MapPath path(view);
  PathRecorder recorder;
  const int count = path.Area(&recorder, features, 0);
  // The circle is 2 pi 90 pixels around.
  EXPECT_LT(count, 3 * 566);
  EXPECT_GT(count, 300);
  for (size_t i = 1; i < recorder.pieces[0].points.size(); ++i) {
    const auto& a = recorder.pieces[0].points[i - 1];
    const auto& b = recorder.pieces[0].points[i];
    EXPECT_LT(std::hypot(a.x - b.x, a.y - b.y), 3);
  }
  EXPECT_EQ(path.Area(&recorder, features, 1), 0);
  EXPECT_EQ(path.Area(&recorder, features, 2), 0);
  EXPECT_EQ(path.Area(nullptr, features, 0), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(path.Line(&recorder, nullptr, 2), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(path.GreatCircle(&recorder, circle.data(), -1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(path.GreatCircle(&recorder, nullptr, 1), K7_ERR_BAD_ARGUMENT);
}

// Where the map bends no edge, only its ends are needed, and what divides it by degrees.
TEST(MapPath, AStraightEdgeIsLeftStraight) {
  K7GnomonicProjection gnomonic;
  K7PerspectiveProjection tilted(1.3);
  tilted.ParamValue(3, -50);
  tilted.SetClipPlanes();
  K7RectangularProjection rectangular(40);
  const K7LatLon edge[] = {{41.1, 19}, {43, 23}};
  for (K7Projection* projection :
       {static_cast<K7Projection*>(&gnomonic), static_cast<K7Projection*>(&rectangular)}) {
    K7MapView view(projection, 401, 301);
    ASSERT_EQ(view.LookAt(42, 21, 150), 0);
    PathRecorder recorder;
    K7MapPath path(view);
    const int count =
        projection == &gnomonic ? path.GreatCircle(&recorder, edge, 2) : path.Line(&recorder, edge, 2);
    EXPECT_GT(count, 1);
    EXPECT_LT(count, 24) << projection->Name();
  }
  // An arc bends less the nearer it is to the eye; its path is no finer than a fifth of a pixel needs.
  K7MapView view(&tilted, 401, 301);
  ASSERT_EQ(view.LookAt(42, 21, 0), 0);
  PathRecorder recorder;
  EXPECT_GT(K7MapPath(view).WholeMap(&recorder), 20);
  EXPECT_LT(recorder.PointCount(), 200);
}

// The hemisphere that an orthographic map shows, drawn and then its other side: neither a hair more nor less.
TEST(MapPath, AnAreaMayEndAlongTheHorizon) {
  K7OrthographicProjection projection;
  for (const double lon : {0.0, 30.0, 90.0, 137.0, 180.0}) {
    K7MapView view(&projection, 200, 200);
    ASSERT_EQ(view.LookAt(0, lon, 0), 0);
    for (const bool shown : {true, false}) {
      const double west = shown ? lon - 90 : lon + 90;
      Ring ring;
      for (int i = 0; i <= 18; ++i) ring.emplace_back(90, west + i * 10);
      for (int i = 0; i <= 18; ++i) ring.emplace_back(90 - i * 10, west + 180);
      for (int i = 0; i <= 18; ++i) ring.emplace_back(-90, west + 180 - i * 10);
      for (int i = 0; i <= 18; ++i) ring.emplace_back(-90 + i * 10, west);
      const int size = static_cast<int>(ring.size());
      PathRecorder recorder;
      K7MapPath(view).Area(&recorder, ring.data(), &size, 1);
      for (const double x : {30.5, 100.5, 170.5})
        EXPECT_EQ(recorder.Encloses(x, 80.5), shown) << lon << " " << x;
    }
  }
}

// Between antipodes any great circle will do, and the one that is drawn passes the pole.
TEST(MapPath, ARouteToTheAntipodeRunsOverThePole) {
  K7OrthographicProjection projection;
  K7MapView view(&projection, 300, 300);
  ASSERT_EQ(view.LookAt(60, 0, 0), 0);
  const K7LatLon route[] = {{30, 20}, {-30, -160}};
  PathRecorder recorder;
  EXPECT_GT(K7MapPath(view).GreatCircle(&recorder, route, 2), 0);
  double dx = 0, dy = 0;
  ASSERT_TRUE(view.ToDevice(90, 0, dx, dy));
  EXPECT_LT(recorder.Distance(dx, dy), 0.5);
  // From pole to pole it is some meridian; points off the earth are none of its points.
  ASSERT_EQ(view.LookAt(0, 0, 0), 0);
  const K7LatLon poles[] = {{90, 0}, {NAN, 3}, {10, 1e300}, {-90, 0}};
  K7MapPath path(view);
  recorder.Clear();
  const int count = path.GreatCircle(&recorder, poles, 4);
  EXPECT_GT(count, 10);
  EXPECT_EQ(path.GreatCircle(&recorder, poles, 4), count);
  EXPECT_LT(recorder.Distance(150, 150), 0.5);
}

}  // namespace

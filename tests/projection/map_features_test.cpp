#include <k7/core.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "projection/path_recorder.h"

namespace {

using Ring = std::vector<K7LatLon>;

int AddOne(K7MapFeatures& features, K7MapFeatureKind kind, const Ring& points) {
  const int size = static_cast<int>(points.size());
  return features.Add(kind, points.data(), &size, 1);
}

void ExpectPlace(const K7LatLon& got, const K7LatLon& expected) {
  EXPECT_EQ(got.Lat(), expected.Lat());
  EXPECT_EQ(got.Lon(), expected.Lon());
}

TEST(MapFeatures, PointsOffTheEarthAreLeftOut) {
  K7MapFeatures features;
  const struct {
    K7MapFeatureKind kind;
    Ring points;
    int left;
  } rows[] = {
      {K7_MAP_LINES, {{10, 20}, {NAN, 20}, {91, 20}, {11, 541}, {11, INFINITY}, {12, 22}}, 2},
      {K7_MAP_POINTS, {{10, 20}, {NAN, 20}, {11, 21}, {12, 22}}, 3},
      // Of what is too short nothing is left, but the number is.
      {K7_MAP_LINES, {{10, 20}}, 0},
      {K7_MAP_AREA, {{10, 20}, {11, 20}}, 0},
      {K7_MAP_LINES, {{30, 40}, {50, 60}}, 2},
  };
  for (const auto& [kind, points, left] : rows) {
    const int number = AddOne(features, kind, points);
    EXPECT_EQ(number, features.Count() - 1);
    EXPECT_EQ(features.Kind(number), kind);
    EXPECT_EQ(features.PointCount(number), left);
    EXPECT_EQ(features.Bounds(number).IsEmpty(), left == 0);
    if (left > 0) ExpectPlace(features.Point(number, left - 1), points.back());
  }
  EXPECT_EQ(features.Count(), 5);
}

TEST(MapFeatures, RingsAreClosedAndRunClockwise) {
  K7MapFeatures features;
  const Ring points = {{0, 0}, {0, 10}, {10, 10}, {10, 0}};  // counter-clockwise and open
  AddOne(features, K7_MAP_AREA, points);
  ASSERT_EQ(features.PointCount(0), 5);
  for (int i = 0; i < 5; ++i) ExpectPlace(features.Point(0, i), points[static_cast<size_t>(4 - i) % 4]);
}

TEST(MapFeatures, RowsAreCarriedOnAcross180) {
  K7MapFeatures features;
  AddOne(features, K7_MAP_LINES, {{0, 170}, {1, -175}, {2, 175}});
  ExpectPlace(features.Point(0, 1), {1, 185});
  ExpectPlace(features.Point(0, 2), {2, 175});
  AddOne(features, K7_MAP_AREA, {{0, 170}, {0, -170}, {10, -170}, {10, 170}});
  EXPECT_EQ(features.Bounds(1), K7ChartRect(10, 0, -170, 170));
  // A ring around the pole does not close when it is carried on: it is meant as it stands.
  AddOne(features, K7_MAP_AREA, {{-70, -180}, {-70, -60}, {-70, 60}, {-70, 180}, {-90, 180}, {-90, -180}});
  EXPECT_EQ(features.Bounds(2), K7ChartRect(-70, -90, 180, -180));
  // With a hole.
  const Ring rings = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {4, 4}, {4, 6}, {6, 6}, {6, 4}, {4, 4}};
  const int sizes[] = {5, 5};
  EXPECT_EQ(features.Add(K7_MAP_AREA, rings.data(), sizes, 2), 3);
  const struct {
    int feature;
    K7LatLon place;
    bool inside;
  } places[] = {{1, {5, 180}, true},   {1, {5, -175}, true},  {1, {5, 0}, false}, {2, {-80, 10}, true},
                {2, {-80, 179}, true}, {2, {-60, 10}, false}, {3, {2, 2}, true},  {3, {5, 5}, false},
                {3, {12, 5}, false},   {3, {0, 5}, true}};
  for (const auto& [feature, place, inside] : places)
    EXPECT_EQ(features.Contains(feature, place.Lat(), place.Lon()), inside)
        << place.Lat() << ' ' << place.Lon();
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
  Looking view(projection, 400, 300, 10, 170, 1500);
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

// An island in two features whose halves end a hundred metres beside the seam, as some sets have it.
TEST(MapFeatures, HalvesThatWereCutBeside180MeetThere) {
  K7MapFeatures features;
  AddOne(features, K7_MAP_AREA, {{-17, 179.8}, {-16.8, 179.9}, {-16.8, 179.9992}, {-17, 179.9992}});
  AddOne(features, K7_MAP_AREA, {{-17, -179.9992}, {-16.8, -179.9992}, {-16.9, -179.9}});
  // Nor is the edge a coast along which a ring around the pole was closed.
  AddOne(features, K7_MAP_AREA,
         {{-70, -180}, {-70, -60}, {-70, 60}, {-70, 180}, {-89.999, 180}, {-89.999, 0}, {-89.999, -180}});
  K7RectangularProjection projection(17);
  Looking view(projection, 400, 300, -16.9, 180, 1);
  // They overlap on the seam, neither runs on by more than a pixel, and their cut is no coast.
  K7MapPath path(view);
  const struct {
    double lon;
    bool east, west;
  } places[] = {{179.9995, true, false},
                {179.9997, true, false},
                {180, true, true},
                {-179.9997, false, true},
                {-179.9995, false, true}};
  for (const auto& [lon, east, west] : places) {
    double dx = 0, dy = 0;
    ASSERT_TRUE(view.ToDevice(-16.9, lon, dx, dy));
    for (int i = 0; i < 2; ++i) {
      PathRecorder recorder;
      path.Area(&recorder, features, i);
      EXPECT_EQ(recorder.Encloses(dx, dy), i == 0 ? east : west) << lon;
      EXPECT_EQ(path.Outline(&recorder, features, i), 0);
    }
  }
  ASSERT_EQ(view.LookAt(-89, 100, 60), 0);
  path.SetView(view);
  PathRecorder recorder;
  EXPECT_EQ(path.Outline(&recorder, features, 2), 0);
}

TEST(MapFeatures, WrongArgumentsAddNothing) {
  K7MapFeatures features;
  const K7LatLon points[] = {{0, 0}, {1, 1}};
  const int negative[] = {-1}, two[] = {2};
  const auto wrong = static_cast<K7MapFeatureKind>(3);
  for (const int code :
       {features.Add(K7_MAP_LINES, nullptr, two, 1), features.Add(K7_MAP_LINES, points, nullptr, 1),
        features.Add(K7_MAP_LINES, points, two, -1), features.Add(K7_MAP_LINES, points, negative, 1),
        features.Add(wrong, points, two, 1)})
    EXPECT_EQ(code, K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(features.Count(), 0);
  ExpectPlace(features.Point(0, 0), {});
  EXPECT_EQ(features.PointCount(7), 0);
  EXPECT_FALSE(features.Contains(-1, 0, 0));
  AddOne(features, K7_MAP_LINES, {{30, 40}, {50, 60}, {70, 80}});
  ExpectPlace(features.Point(0, 3), {});
  features.Clear();
  EXPECT_EQ(features.Add(K7_MAP_LINES, points, two, 1), 0);
  EXPECT_EQ(features.PointCount(0), 2);
  ExpectPlace(features.Point(0, 1), {1, 1});
}

// A chart's path is not finer than its pixels, and what lies elsewhere is not in it.
TEST(MapPath, HasNoPointsThatCannotBeSeen) {
  Ring circle;
  for (int i = 0; i <= 20000; ++i)
    circle.emplace_back(48 + std::cos(i * 0.00031415926535), -123 - std::sin(i * 0.00031415926535));
  K7MapFeatures features;
  AddOne(features, K7_MAP_AREA, circle);
  AddOne(features, K7_MAP_AREA, {{0, 0}, {1, 0}, {1, 1}});
  K7LambertProjection projection(51, 45, -123, 48);
  Looking view(projection, 400, 300, 48, -123, 100);
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
  EXPECT_GT(path.Outline(&recorder, features, 0), 300);
  EXPECT_EQ(path.Area(&recorder, features, 1), 0);
  EXPECT_EQ(path.Area(&recorder, features, 2), 0);
  for (const int code :
       {path.Area(nullptr, features, 0), path.Line(&recorder, nullptr, 2),
        path.GreatCircle(&recorder, circle.data(), -1), path.GreatCircle(&recorder, nullptr, 1)})
    EXPECT_EQ(code, K7_ERR_BAD_ARGUMENT);
}

// Where the map bends no edge, only its ends are needed, and what divides it by degrees. An arc bends less
// the nearer it is to the eye; its path is no finer than a fifth of a pixel needs.
TEST(MapPath, AStraightEdgeIsLeftStraight) {
  K7GnomonicProjection gnomonic;
  K7PerspectiveProjection tilted(1.3);
  tilted.ParamValue(3, -50);
  tilted.SetClipPlanes();
  K7RectangularProjection rectangular(40);
  const K7LatLon edge[] = {{41.1, 19}, {43, 23}};
  const auto countOf = [&](K7Projection& projection, double range, const auto& draw) {
    Looking view(projection, 401, 301, 42, 21, range);
    PathRecorder recorder;
    K7MapPath path(view);
    return draw(path, recorder);
  };
  const int flat =
      countOf(rectangular, 150, [&](K7MapPath& path, PathRecorder& g) { return path.Line(&g, edge, 2); });
  const int route =
      countOf(gnomonic, 150, [&](K7MapPath& path, PathRecorder& g) { return path.GreatCircle(&g, edge, 2); });
  const int limb = countOf(tilted, 0, [&](K7MapPath& path, PathRecorder& g) { return path.WholeMap(&g); });
  for (const auto& [count, least, most] : {std::array{flat, 2, 23}, {route, 2, 23}, {limb, 21, 199}}) {
    EXPECT_GE(count, least);
    EXPECT_LE(count, most);
  }
}

// One of five degrees, which is not divided otherwise: on a wall chart it runs a pixel beside its chord.
TEST(MapPath, ABentEdgeIsBent) {
  K7LambertProjection projection(45, 35, -98, 40);
  Looking view(projection, 8000, 6000, 40, -98, 0);
  const K7LatLon edge[] = {{40, -100}, {40, -95.1}};
  PathRecorder recorder;
  EXPECT_GT(K7MapPath(view).Line(&recorder, edge, 2), 2);
  double dx = 0, dy = 0;
  ASSERT_TRUE(view.ToDevice(40, -97.55, dx, dy));
  EXPECT_LT(recorder.Distance(dx, dy), 0.25);
}

// The hemisphere that an orthographic map shows, drawn and then its other side: neither a hair more nor less.
TEST(MapPath, AnAreaMayEndAlongTheHorizon) {
  K7OrthographicProjection projection;
  for (const double lon : {0.0, 30.0, 90.0, 137.0, 180.0}) {
    Looking view(projection, 200, 200, 0, lon, 0);
    for (const bool shown : {true, false}) {
      const double west = shown ? lon - 90 : lon + 90;
      Ring ring;
      const double corners[][2] = {{90, 0}, {90, 180}, {-90, 180}, {-90, 0}, {90, 0}};
      for (int side = 0; side < 4; ++side)
        for (int i = 0; i <= 18; ++i) {
          const auto& a = corners[side];
          const auto& b = corners[side + 1];
          ring.emplace_back(a[0] + (b[0] - a[0]) * i / 18, west + a[1] + (b[1] - a[1]) * i / 18);
        }
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
  Looking view(projection, 300, 300, 60, 0, 0);
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

// Distances, courses, end points, great circles: against 50-digit results and by their geometry.

#include <gtest/gtest.h>
#include <k7/geodesy.h>

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

// The lines of great_circles.txt of one kind, without their first word.
std::vector<std::vector<double>> GoldenLines(const std::string& kind) {
  std::ifstream in(K7_TEST_DATA "/geodesy/great_circles.txt");
  std::vector<std::vector<double>> lines;
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word != kind) continue;
    lines.emplace_back();
    while (words >> word) lines.back().push_back(std::stod(word));
  }
  return lines;
}

// Positions spread evenly over the globe.
class Positions {
 public:
  K7ECEF Next() {
    K7ECEF p(m_normal(m_bits), m_normal(m_bits), m_normal(m_bits));
    p.Normalize();
    return p;
  }
  K7LatLon NextLatLon() {
    double lat, lon;
    Next().GetLatLon(lat, lon);
    return K7LatLon(lat, lon);
  }
  double Uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(m_bits); }

 private:
  std::mt19937_64 m_bits{20240229};
  std::normal_distribution<> m_normal;
};

}  // namespace

TEST(Navigation, LegsAgreeWithFiftyDigits) {
  const auto legs = GoldenLines("leg");
  ASSERT_EQ(legs.size(), 40u);
  for (const auto& leg : legs) {
    SCOPED_TRACE(testing::PrintToString(leg));
    const K7LatLon from(leg[0], leg[1]), to(leg[2], leg[3]);
    const K7ECEF start(leg[0], leg[1]), end(leg[2], leg[3]);
    const double distance = leg[4], course = leg[5], arrival = leg[6], tolerance = leg[7];
    for (double d : {from.Distance(to), to.Distance(from), start.Distance(end), K7GrtCirc(from, to).Length()})
      EXPECT_NEAR(d, distance, 3e-12);
    for (double c : {from.InitCourse(to), start.InitCourse(end)})
      EXPECT_LE(HeadingDiff(c, course), tolerance);
    for (double c : {from.FinalCourse(to), FinalCourse(start, end)})
      EXPECT_LE(HeadingDiff(c, arrival), tolerance);
    K7LatLon reached;
    reached.EndPoint(from, course, distance);
    EXPECT_LT(reached.Distance(to), 1e-8);  // an arc sine near 90 degrees keeps half of the digits
    EXPECT_LT(K7ECEF(start, course, distance).Distance(end), 1e-11);
  }
}

TEST(Navigation, CrossAndAlongTrackAgreeWithFiftyDigits) {
  auto lines = GoldenLines("off");
  ASSERT_EQ(lines.size(), 20u);
  lines.push_back({0, 0, 0, 10, 0, 0, 0, 0});  // from its begin
  double cross, along;
  for (const auto& line : lines) {
    SCOPED_TRACE(testing::PrintToString(line));
    K7GrtCirc(line[0], line[1], line[2], line[3]).OrthoDist(K7LatLon(line[4], line[5]), cross, along);
    EXPECT_NEAR(cross, line[6], 1e-10);
    EXPECT_NEAR(K7GrtCirc(line[0], line[1], line[2], line[3]).CrossTrack(K7LatLon(line[4], line[5])), line[6],
                1e-10);
    EXPECT_NEAR(along, line[7], 1e-10);
  }
  // From a circle's poles, and from a leg without length, everything is a quarter turn away.
  const double quarter = K7_PI / 2 * K7_EARTH_RADIUS_NM;
  K7GrtCirc(0, 0, 0, 10).OrthoDist(K7ECEF(0, 0, 1), cross, along);
  EXPECT_EQ(cross, -quarter);
  EXPECT_EQ(along, quarter);
  K7GrtCirc(1, 2, 1, 2).OrthoDist(K7ECEF(30, 20), cross, along);
  EXPECT_EQ(cross, quarter);
  EXPECT_EQ(K7GrtCirc(0, 0, 0, 10).CrossTrack(K7ECEF(0, 0, 1)), -quarter);
  EXPECT_EQ(K7GrtCirc(1, 2, 1, 2).CrossTrack(K7ECEF(30, 20)), quarter);
}

// The stated digits, beside the same vectors in wider arithmetic; near the circle and near its poles too.
TEST(Navigation, CrossTrackKeepsItsDigits) {
  using Wide = long double;
  struct Vector {
    Wide x, y, z;
    explicit Vector(const K7ECEF& p) : Vector(p.X(), p.Y(), p.Z()) {}
    Vector(Wide a, Wide b, Wide c) : x(a), y(b), z(c) {
      const Wide length = std::sqrt(x * x + y * y + z * z);
      x /= length, y /= length, z /= length;
    }
  };
  const auto dot = [](const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; };
  Positions positions;
  for (int i = 0; i < 30000; ++i) {
    const K7ECEF from = positions.Next(), to = positions.Next();
    const double sine = std::sin(from.Angle(to));
    const Vector a(from), b(to);
    const Vector normal(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
    K7ECEF at = positions.Next();
    if (i % 3 != 0) {
      const double side = i % 3 == 1 ? positions.Uniform(-1e-3, 1e-3) : positions.Uniform(30, 1e6);
      at =
          K7ECEF(at.X() + side * static_cast<double>(normal.x), at.Y() + side * static_cast<double>(normal.y),
                 at.Z() + side * static_cast<double>(normal.z));
      at.Normalize();
    }
    const Vector p(at);
    const Vector along(p.y * normal.z - p.z * normal.y, p.z * normal.x - p.x * normal.z,
                       p.x * normal.y - p.y * normal.x);
    const Wide cosine = p.x * (normal.y * along.z - normal.z * along.y) +
                        p.y * (normal.z * along.x - normal.x * along.z) +
                        p.z * (normal.x * along.y - normal.y * along.x);
    const Wide exact = -std::atan2(dot(normal, p), cosine) * K7_EARTH_RADIUS_NM;
    ASSERT_NEAR(K7GrtCirc(from, to).CrossTrack(at), static_cast<double>(exact), 5e-12 / sine);
  }
}

TEST(Navigation, CoursesStayInRangeAndIdenticalPositionsHaveNone) {
  // Two names of one position, and neighbours at a ten-millionth of a millimetre and at a hundredth of one.
  const struct {
    K7LatLon from, to;
    double course;
  } near[] = {{{12, 180}, {12, -180}, -639}, {{90, 10}, {90, 77}, -639},      {{-90, -3}, {-90, 120}, -639},
              {{0, 0}, {0, 1e-15}, -639},    {{40, 30}, {40 + 1e-10, 30}, 0}, {{0, 0}, {0, 1e-13}, 90},
              {{0, 0}, {0, -1e-13}, 270},    {{0, 5}, {-1e-10, 5}, 180}};
  for (const auto& [from, to, course] : near) {
    const K7ECEF p(from.Lat(), from.Lon()), q(to.Lat(), to.Lon());
    for (double c : {from.InitCourse(to), p.InitCourse(q)})
      EXPECT_NEAR(c, course, 0.01) << from.Lat() << ' ' << from.Lon();
  }
  EXPECT_EQ(K7LatLon(3, 4).FinalCourse({3, 4}), 261);
  Positions positions;
  for (int i = 0; i < 20000; ++i) {
    const K7LatLon a = positions.NextLatLon(), b = positions.NextLatLon();
    // Along the meridian the east component is rounding noise of either sign.
    for (const K7LatLon& to : {b, K7LatLon(b.Lat(), a.Lon())}) {
      EXPECT_GE(a.InitCourse(to), 0);
      EXPECT_LT(a.InitCourse(to), 360);
    }
    K7LatLon pole;
    pole.EndPoint(K7LatLon(a.Lat(), 10), 0, (90 - a.Lat()) * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM);
    EXPECT_NEAR(pole.Lat(), 90, 3e-6);
    EXPECT_LE(pole.Lat(), 90);
  }
}

TEST(Navigation, LocalFrameTurnsThereAndBack) {
  Positions positions;
  for (int i = 0; i < 1000; ++i) {
    const K7ECEF at = positions.Next(), v = positions.Next();
    K7ECEF local = v;
    at.ECEFToOrtho(local);
    EXPECT_NEAR(local.Z(), at.DotProduct(v), 1e-15);
    EXPECT_LT(
        HeadingDiff(NormalizeHeading(std::atan2(local.X(), local.Y()) * K7_RAD_TO_DEG), at.InitCourse(v)),
        1e-7);
    at.OrthoToECEF(local);
    local.EndPoint(local, 0, 0);
    EXPECT_LT(local.Distance(v), 1e-10);
  }
}

TEST(Navigation, VectorsNormaliseUnlessThereIsNoLength) {
  K7ECEF v(0, 3, 4);
  EXPECT_TRUE(v.Normalize());
  EXPECT_EQ(v, K7ECEF(0, 0.6, 0.8));
  EXPECT_FALSE(v.UnitNormal(v, v));
  EXPECT_EQ(v, K7ECEF());
  EXPECT_FALSE(v.Normalize());
  EXPECT_TRUE(v.UnitNormal(K7ECEF(2, 0, 0), K7ECEF(0, 2, 0)));
  EXPECT_EQ(v, K7ECEF(0, 0, 1));
  v.SetLatLon(0, 0);
  EXPECT_EQ(v, K7ECEF(1, 0, 0));
}

TEST(GreatCircle, SegmentsMeetWhereTheyWereLaid) {
  Positions positions;
  for (int i = 0; i < 5000; ++i) {
    const K7ECEF x = positions.Next();
    const double course = positions.Uniform(0, 360), turn = positions.Uniform(20, 160);
    const double reach = positions.Uniform(1, 2500);
    const K7GrtCirc a(K7ECEF(x, course + 180, reach), K7ECEF(x, course, reach / 2));
    const K7GrtCirc b(K7ECEF(x, course + turn + 180, reach / 3), K7ECEF(x, course + turn, reach));
    K7ECEF at;
    ASSERT_TRUE(a.Intersect(b, at, 0));
    EXPECT_LT(at.Distance(x), 1e-8);
    // Segments that end before the crossing do not meet.
    K7LatLon position(1, 2);
    const K7GrtCirc shorter(a.Begin(), K7ECEF(a.Begin(), a.Begin().InitCourse(a.End()), reach * 0.99));
    EXPECT_FALSE(shorter.Intersect(b, position, 0));
    EXPECT_FALSE(b.Intersect(shorter, position, 0));
    EXPECT_EQ(position.Distance(K7LatLon(1, 2)), 0);
  }
  // Tolerance widens the other segment only, at both of its ends.
  const K7GrtCirc equator(0, -10, 0, 10);
  for (const K7GrtCirc& upwards : {K7GrtCirc(0, 3, 20, 3), K7GrtCirc(20, 3, 0, 3)}) {
    K7LatLon at;
    EXPECT_TRUE(equator.Intersect(upwards, at, 1e-12));
    EXPECT_NEAR(at.Lon(), 3, 1e-12);
    EXPECT_FALSE(upwards.Intersect(equator, at, 1e-12));
  }
}

// Their normals differ by rounding, the more the shorter the segments are.
TEST(GreatCircle, SegmentsOfOneCircleDoNotMeet) {
  Positions positions;
  const auto meet = [](const K7GrtCirc& a, const K7GrtCirc& b) {
    K7ECEF at;
    return a.Intersect(b, at, 0) || b.Intersect(a, at, 1e-12);
  };
  for (int i = 0; i < 20000; ++i) {
    const K7ECEF u = positions.Next();
    const double course = positions.Uniform(0, 360), lon = std::round(positions.Uniform(-180, 180));
    const double scale = std::pow(10, positions.Uniform(-5, 0));
    const auto onCircle = [&] { return K7ECEF(u, course, positions.Uniform(0, 5000) * scale); };
    const auto onMeridian = [&] { return K7ECEF(positions.Uniform(0, 80) * scale, lon); };
    EXPECT_FALSE(meet({onCircle(), onCircle()}, {onCircle(), onCircle()})) << scale;
    EXPECT_FALSE(meet({onMeridian(), onMeridian()}, {onMeridian(), onMeridian()})) << scale;
  }
  // A ten-thousandth of a millimetre over sixty degrees is an angle.
  K7LatLon at;
  ASSERT_TRUE(K7GrtCirc(0, -60, 0, 60).Intersect(K7GrtCirc(-1e-12, -60, 1e-12, 60), at, 0));
  EXPECT_NEAR(at.Lon(), 0, 2);
}

TEST(Headings, WrapAndMeet) {
  EXPECT_EQ(HeadingDiff(350, 10), 20);
  EXPECT_EQ(HeadingDiff(0, 180), 180);
  EXPECT_EQ(HeadingDiff(180.5, 0), 179.5);
  EXPECT_EQ(MidHeading(350, 10), 360);
  EXPECT_EQ(MidHeading(10, 100), 55);
  EXPECT_TRUE(std::isnan(NormalizeHeading(INFINITY)));
  EXPECT_LE(NormalizeHeading(1e300), 360);
  Positions positions;
  std::vector<double> headings = {0, 360, -10, 725, -360, 720, -1e-20, 1e6 * 360, -1e4 * 360};
  for (int i = 0; i < 5000; ++i) headings.push_back(positions.Uniform(-1e5, 1e5));
  for (double h : headings) {
    double stepped = h;
    while (stepped < 0) stepped += 360;
    while (stepped > 360) stepped -= 360;
    EXPECT_EQ(NormalizeHeading(h), stepped) << h;
  }
}

// Pixels and their rounding, beside restatements over small random integers, and the corners that are fixed.
#include <k7/foundation/error_string.h>
#include <k7/geometry/dev_geometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <tuple>
#include <vector>

namespace {

class DevGeometry : public testing::Test {
 protected:
  int Small(int size = 6) { return std::uniform_int_distribution<>(-size, size)(m_random); }
  K7DevPt Point(int size = 6) { return {Small(size), Small(size)}; }
  K7DevRect Rect() {
    const K7DevPt a = Point(), b = Point();
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
  }
  std::mt19937 m_random{5};
};

long HalfAway(double v) { return std::lround(v); }

}  // namespace

TEST_F(DevGeometry, Points) {
  const struct {
    double angle, distance;
    K7DevPt at;
  } ends[] = {{90, 10, {110, 100}},
              {0, 10, {100, 90}},
              {180, 2.5, {100, 103}},
              {270, 2.4, {98, 100}},
              {45, 100, {171, 29}}};
  for (const auto& end : ends) EXPECT_EQ(K7DevPt({100, 100}, end.angle, end.distance), end.at) << end.angle;
  const std::tuple<K7DevPt, double> directions[] = {{{0, -10}, 0},   {{10, 0}, 90}, {{0, 10}, 180},
                                                    {{-10, 0}, 270}, {{0, 0}, 90},  {{-10, -10}, 315}};
  for (const auto& [to, direction] : directions) EXPECT_DOUBLE_EQ(K7DevPt().Direction(to), direction);
  EXPECT_EQ(K7DevPt(1, 2).Distance({4, -2}), 5);
  K7DevPt p;
  for (const double v : {2.5, -2.5, 0.0, 0.49, -0.5, 1e9 + 0.5}) {
    p.Init(v, -v);
    EXPECT_EQ(p, K7DevPt(static_cast<int>(HalfAway(v)), static_cast<int>(HalfAway(-v))));
  }
  p.Init(1e30, NAN);
  EXPECT_EQ(p, K7DevPt(2147483647, 0));
  for (int i = 0; i < 200; i++) {  // turned as far as a bearing grows
    const K7DevPt centre = Point(), from = Point(1000);
    const double angle = Small(360);
    p = from;
    p.Rotate(centre, angle);
    const double a = (centre.Direction(from) + angle) * M_PI / 180, d = centre.Distance(from);
    EXPECT_NEAR(p.x, centre.x + d * std::sin(a), 0.5 + 1e-6);
    EXPECT_NEAR(p.y, centre.y - d * std::cos(a), 0.5 + 1e-6);
  }
}

TEST_F(DevGeometry, Rectangles) {
  const struct {
    K7DevRect a, b, both;
    bool meet;
  } cases[] = {{{0, 0, 10, 10}, {10, 0, 20, 10}, {10, 0, 10, 10}, true},
               {{0, 0, 10, 10}, {11, 0, 20, 10}, {}, false},
               {{-5, -5, 0, 0}, {0, 0, 5, 5}, {}, false},
               {{5, 5, 1, 1}, {0, 0, 9, 9}, {}, false}};
  for (const auto& c : cases) {
    K7DevRect both(1, 2, 3, 4);
    EXPECT_EQ(both.Intersect(c.a, c.b), c.meet);
    EXPECT_EQ(both, c.both);
  }
  for (int i = 0; i < 300; i++) {
    const K7DevRect a = Rect(), b = Rect();
    const K7DevPt p = Point();
    K7DevRect both, bounds, wide = a;
    both.Intersect(a, b);
    bounds.Union(a, b);
    wide.Include(p);
    if (p != K7DevPt()) {  // which null holds
      EXPECT_EQ(both.PointIn(p), a.PointIn(p) && b.PointIn(p));
    }
    EXPECT_EQ(bounds, K7DevRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                                std::max(a.bottom, b.bottom)));
    EXPECT_EQ(wide, K7DevRect(std::min(a.left, p.x), std::min(a.top, p.y), std::max(a.right, p.x),
                              std::max(a.bottom, p.y)));
    K7DevRect moved = a;
    moved.Offset(p.x, p.y);
    EXPECT_EQ(moved, K7DevRect(a.left + p.x, a.top + p.y, a.right + p.x, a.bottom + p.y));
    moved = a;
    moved.Inflate(p.x, p.y);
    EXPECT_EQ(moved.Width(), a.Width() + 2 * p.x);
    EXPECT_EQ(moved.Height(), a.Height() + 2 * p.y);
    moved.Deflate(p.x, p.y);
    EXPECT_EQ(moved, a);
  }
  EXPECT_EQ(K7DevRect(-4, -4, 1, 3).Center(), K7DevPt(-1, 0)) << "truncated toward zero";
  K7DevRect grown;
  grown.Include(5, 6);
  EXPECT_EQ(grown, K7DevRect(0, 0, 5, 6)) << "null is a point like any other";
}

TEST_F(DevGeometry, LinesKnowTheirDistances) {
  double across, along;
  K7DevLine(0, 0, 10, 0).OrthoDist(3, -4, across, along);
  EXPECT_EQ(across, 4);
  EXPECT_EQ(along, 3);
  for (int i = 0; i < 100; i++) {
    const K7DevPt from = Point(50), to = Point(50), p = Point(50);
    if (from == to) continue;
    const K7DevLine line(from, to);
    line.OrthoDist(p, across, along);
    const double turn = (from.Direction(p) - from.Direction(to)) * M_PI / 180, d = from.Distance(p);
    EXPECT_NEAR(along, d * std::cos(turn), 1e-9);
    EXPECT_NEAR(across, -d * std::sin(turn), 1e-9);
  }
  K7DevPt half;
  K7DevLine(0, 0, 3, 3).PointAtFraction(0.5, half);
  EXPECT_EQ(half, K7DevPt(2, 2));
  K7DevLine(0, 0, -3, 3).PointAtFraction(1.5, half);
  EXPECT_EQ(half, K7DevPt(-5, 5));
  EXPECT_EQ(K7DevLine(2, 1, 2, 9).intercept, 0);
  EXPECT_EQ(K7DevLine(1, 1, 3, 5).YValue(0), -1);
}

// Against the exact crossing in fractions: true where it lies on both segments, and false beyond a pixel of
// them.
TEST_F(DevGeometry, LinesMeet) {
  int met = 0;
  for (int i = 0; i < 5000; i++) {
    const K7DevPt a = Point(40), b = Point(40), c = Point(40), d = Point(40);
    const K7DevLine one(a, b), two(c, d);
    const long cross = long{b.x - a.x} * (d.y - c.y) - long{b.y - a.y} * (d.x - c.x);
    K7DevPt at;
    const bool meet = one.Intersect(two, &at);
    if (cross == 0) {
      EXPECT_FALSE(meet) << "equal slopes never meet";
      continue;
    }
    const double s =
        (double(c.x - a.x) * (d.y - c.y) - double(c.y - a.y) * (d.x - c.x)) / static_cast<double>(cross);
    const double t =
        (double(c.x - a.x) * (b.y - a.y) - double(c.y - a.y) * (b.x - a.x)) / static_cast<double>(cross);
    EXPECT_NEAR(at.x, a.x + s * (b.x - a.x), 0.5 + 1e-6);
    EXPECT_NEAR(at.y, a.y + s * (b.y - a.y), 0.5 + 1e-6);
    const double pixel1 = 1 / std::max(1.0, one.length), pixel2 = 1 / std::max(1.0, two.length);
    if (s >= 0 && s <= 1 && t >= 0 && t <= 1) {
      EXPECT_TRUE(meet);
    }
    if (s < -pixel1 || s > 1 + pixel1 || t < -pixel2 || t > 1 + pixel2) {
      EXPECT_FALSE(meet);
    }
    met += meet;
  }
  EXPECT_GT(met, 500);
  EXPECT_FALSE(K7DevLine(0, 0, 10, 10).Intersect(K7DevLine(5, 5, 20, 20)));
  EXPECT_TRUE(K7DevLine(0, 0, 10, 10).Intersect(K7DevLine(10, 10, 20, 0)));
  EXPECT_TRUE(K7DevLine(0, 0, 0, 5).Intersect(K7DevLine(0, 2, 5, 2)));
  // The crossing (0.5, 0.5) belongs to the lower pixel, the point to the upper.
  K7DevPt at;
  EXPECT_TRUE(K7DevLine(0, 0, 1, 1).Intersect(K7DevLine(0, 1, 1, 0), &at));
  EXPECT_EQ(at, K7DevPt(1, 1));
  // So it is of x alone, crossing (0.5, 0), and of y alone, crossing (0, 0.5).
  const K7DevLine steep(0, -1, 1, 1), flat(-1, 0, 1, 1);
  EXPECT_TRUE(K7DevLine(-2, 0, 0, 0).Intersect(steep) && K7DevLine(0, -2, 0, 0).Intersect(flat));
  EXPECT_FALSE(K7DevLine(1, 0, 3, 0).Intersect(steep) || K7DevLine(0, 1, 0, 3).Intersect(flat));
}

TEST_F(DevGeometry, LinesCrossBorders) {
  const K7DevRect rect(0, 0, 10, 8);
  const struct {
    K7DevLine line;
    std::vector<K7DevPt> points;
    int without;
  } cases[] = {{{2, 2, 8, 6}, {}, 0},
               {{-5, -5, -1, 20}, {}, 0},
               {{4, -3, 4, 5}, {{4, 0}}, 1},
               {{4, -3, 4, 20}, {{4, 0}, {4, 8}}, 2},
               {{4, 3, 4, 20}, {{4, 8}}, 1},
               {{10, 3, 10, 20}, {{10, 3}, {10, 8}}, 2},
               {{-3, 4, 5, 4}, {{0, 4}}, 1},
               {{-3, 4, 20, 4}, {{0, 4}, {10, 4}}, 2},
               {{3, 4, 20, 4}, {{10, 4}}, 1},
               {{-3, 8, 20, 8}, {{0, 8}, {10, 8}}, 2},
               {{-2, -2, 20, 20}, {{0, 0}, {8, 8}}, 2},
               {{-2, 2, 2, -2}, {{0, 0}}, 2},
               {{-4, 4, 4, 12}, {{0, 8}}, 1},
               {{12, 3, 5, 10}, {{10, 5}, {7, 8}}, 2},
               {{5, 5, 12, 3}, {{10, 4}}, 1}};
  for (const auto& c : cases) {
    K7DevPt out[3] = {{77, 77}, {77, 77}, {77, 77}};
    const int count = c.line.IntersectRect(rect, out);
    EXPECT_EQ(std::vector<K7DevPt>(out, out + count), c.points) << c.line.x1 << "," << c.line.y1;
    EXPECT_EQ(c.line.IntersectRect(rect), c.without) << c.line.x1 << "," << c.line.y1;
    EXPECT_EQ(out[2].x, 77);
  }
  for (int i = 0; i < 3000; i++) {
    const K7DevRect box(-10, -10, 10, 10);
    const K7DevPt a = Point(30), b = Point(30);
    K7DevPt out[2];
    const int count = K7DevLine(a, b).IntersectRect(box, out);
    const bool in1 = box.PointIn(a), in2 = box.PointIn(b);
    if (in1 != in2) {
      EXPECT_GE(count, 1);
    }
    for (int k = 0; k < count; k++) {
      EXPECT_TRUE(out[k].x == -10 || out[k].x == 10 || out[k].y == -10 || out[k].y == 10);
      EXPECT_TRUE(box.PointIn(out[k]));
      double across, along;
      K7DevLine(a, b).OrthoDist(out[k], across, along);
      if (a != b) {
        EXPECT_LT(std::fabs(across), 0.7072);
      }
    }
  }
}

TEST_F(DevGeometry, PolygonsHoldTheirPoints) {
  for (int i = 0; i < 300; i++) {
    K7DevPolygon ring;
    std::vector<K7DevPt> points;
    for (int k = 0; k < 3 + i % 6; k++) points.push_back(Point());
    ring.Init(points.data(), static_cast<int>(points.size()));
    for (int y = -7; y <= 7; y++) {
      for (int x = -7; x <= 7; x++) {
        // Crossings to the right, in whole numbers; the library counts those to the left.
        bool onBorder = false, isOwned = false;
        int crossings = 0;
        for (size_t k = 0; k < points.size(); k++) {
          const K7DevPt a = points[k], b = points[(k + 1) % points.size()];
          const long side = long{b.x - a.x} * (y - a.y) - long{b.y - a.y} * (x - a.x);
          const bool within = x >= std::min(a.x, b.x) && x <= std::max(a.x, b.x) && y >= std::min(a.y, b.y) &&
                              y <= std::max(a.y, b.y);
          onBorder |= side == 0 && within;
          isOwned |=
              side == 0 && within && (a.y == b.y || y > std::min(a.y, b.y));  // an edge has no upper end
          crossings += (a.y > y) != (b.y > y) && (side > 0) == (b.y > a.y) && side != 0;
        }
        if (isOwned) {
          EXPECT_TRUE(ring.PointIn({x, y})) << x << "," << y;
        } else if (!onBorder) {
          EXPECT_EQ(ring.PointIn({x, y}), crossings % 2 == 1) << x << "," << y;
        }
      }
    }
  }
  K7DevPolygon square;
  const K7DevPt corners[] = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
  square.Init(corners, 2);
  EXPECT_FALSE(square.PointIn({0, 0})) << "two points hold nothing";
  square.Init(corners + 2, 2);
  for (const K7DevPt& on :
       {K7DevPt(0, 0), K7DevPt(4, 4), K7DevPt(2, 0), K7DevPt(4, 2), K7DevPt(0, 3), K7DevPt(1, 4)}) {
    EXPECT_TRUE(square.PointIn(on)) << on.x << "," << on.y;
  }
  EXPECT_EQ(square.AddPoint(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(square.GetPoint(4), nullptr);
  EXPECT_EQ(square.GetPoint(-1), nullptr);
  EXPECT_EQ(K7DevPolygon(&square).Count(), 4);
  EXPECT_EQ(K7DevPolygon(nullptr).Count(), 0);
  for (int i = 0; i < 20; i++) square.AddPoint(*square.GetPoint(0));
  EXPECT_EQ(*square.GetPoint(23), corners[0]);
}

TEST_F(DevGeometry, PolygonsMeet) {
  const K7DevPt corners[] = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
  const K7DevPolygon square(corners, 4), none;
  int count = -1;
  K7Array points(sizeof(K7DevPt), 8);
  EXPECT_EQ(square.Intersect(K7DevLine(-2, -2, 8, 8), &count, &points), 1);
  EXPECT_EQ(count, 2) << "a corner of two edges is one crossing";
  EXPECT_EQ(*static_cast<K7DevPt*>(points.Get(0)), corners[0]);
  EXPECT_EQ(square.Intersect(K7DevLine(-2, -2, 8, 8), &count, &points), 0) << "all stand there already";
  EXPECT_EQ(square.Intersect(K7DevLine(2, -2, 2, 8)), 1);
  EXPECT_EQ(square.Intersect(K7DevLine(1, 1, 3, 2), &count), 0);
  EXPECT_EQ(count, 0);
  const K7DevPt beside[] = {{2, -2}, {2, 2}, {9, 9}};
  EXPECT_TRUE(square.Intersect(K7DevPolygon(beside, 3))) << "first edge with first edge";
  const K7DevPt later[] = {{-5, -9}, {2, -2}, {2, 2}};
  EXPECT_FALSE(square.Intersect(K7DevPolygon(later, 3))) << "the same edges in other pairs";
  EXPECT_FALSE(none.Intersect(square));
  EXPECT_FALSE(square.Intersect(none));
}

TEST_F(DevGeometry, CirclesMeetRectangles) {
  const struct {
    K7DevPt centre;
    double radius;
    bool meet;
  } cases[] = {{{5, 4}, 0.1, true}, {{13, 4}, 3, true},  {{14, 4}, 3, false},     {{5, 12}, 4, true},
               {{5, 13}, 4, false}, {{13, 12}, 5, true}, {{13, 12}, 4.99, false}, {{-3, -4}, 5, true}};
  for (const auto& c : cases) {
    EXPECT_EQ(K7DevCircle(c.centre, c.radius).Intersect({0, 0, 10, 8}), c.meet)
        << c.centre.x << " " << c.radius;
  }
  EXPECT_FALSE(K7DevCircle({11, 4}, 0.5).Intersect({0, 0, 11, 8})) << "half of 11 is 5";
  EXPECT_TRUE(K7DevCircle({50005, 50004}, 50000).Intersect({0, 0, 10, 8})) << "squares wrap at 32 bits";
}

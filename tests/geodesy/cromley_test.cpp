#include <k7/core.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace {

using Line = std::vector<K7ECEF>;

struct Rank {
  int index;
  double distance;
};

// The ranking as it is defined, every point of every span.
void RankAll(const Line& line, int first, int last, std::vector<double>& ranks) {
  if (first + 1 >= last) return;
  Rank best = {-1, -1};
  for (int i = first + 1; i < last; i++) {
    double measure, along;
    if (line[first] == line[last]) {
      measure = line[first].Distance(line[i]);
    } else {
      K7GrtCirc(line[first], line[last]).OrthoDist(line[i], measure, along);
      measure = std::fabs(measure);
    }
    if (measure >= best.distance) best = {i, measure};
  }
  ranks[best.index] = best.distance;
  RankAll(line, first, best.index, ranks);
  RankAll(line, best.index, last, ranks);
}

class Cromley : public testing::Test {
 protected:
  double Uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(m_random); }
  // A line of one of several kinds about a random place.
  Line Make(int count, int kind) {
    Line line;
    const double lat0 = Uniform(-80, 80), lon0 = Uniform(-180, 180), size = std::pow(10, Uniform(-6, 1));
    double lat = lat0, lon = lon0;
    for (int i = 0; i < count; i++) {
      if (kind == 0) lat += Uniform(-size, size), lon += Uniform(-size, size);  // a walk
      if (kind == 1)
        lat = lat0 + size * i * std::cos(i * 0.7) / count, lon = lon0 + size * i * std::sin(i * 0.7) / count;
      if (kind == 2) lat = lat0 + size * (i % 3), lon = lon0 + size * (i % 2);  // places again and again
      if (kind == 3) lat = Uniform(-90, 90), lon = Uniform(-180, 180);          // all over the world
      line.emplace_back(lat, lon);
      if (kind == 4) line.back() = line.front();  // one place
    }
    if (kind == 5 || m_random() % 4 == 0) line.back() = line.front();  // a ring
    return line;
  }
  std::mt19937 m_random{3};
};

std::vector<int> Kept(const K7CromleyNode& tree, const Line& line, double tolerance) {
  K7IntArray out;
  EXPECT_EQ(tree.Traverse(tolerance, line.data(), out), 0);
  std::vector<int> kept;
  for (int i = 0; i < out.Count(); i++) kept.push_back(out[i]);
  return kept;
}

}  // namespace

TEST_F(Cromley, RanksAsDefined) {
  for (int i = 0; i < 600; i++) {
    const Line line = Make(2 + static_cast<int>(m_random() % 150), i % 6);
    const int last = static_cast<int>(line.size()) - 1;
    std::vector<double> ranks(line.size(), -2);
    RankAll(line, 0, last, ranks);
    K7CromleyNode tree;
    ASSERT_EQ(tree.Generate(0, last, line.data()), 0);
    for (const double tolerance : {-1.0, 0.0, 1e-3, 1.0, 60.0, ranks[line.size() / 2]}) {
      std::vector<int> expected;
      for (int k = 1; k < last; k++) {
        if (ranks[k] >= tolerance) expected.push_back(k);
      }
      EXPECT_EQ(Kept(tree, line, tolerance), expected)
          << "line " << i << " of kind " << i % 6 << " at " << tolerance;
    }
  }
}

TEST_F(Cromley, SmallLinesAndBadArguments) {
  const Line line = {K7ECEF(0, 0), K7ECEF(1, 1), K7ECEF(-1, 2), K7ECEF(0, 3)};
  K7CromleyNode tree;
  EXPECT_EQ(tree.Index(), -1);
  EXPECT_EQ(tree.Distance(), 0);
  EXPECT_EQ(tree.Generate(0, 3, line.data()), 0);
  EXPECT_EQ(tree.Index(), 2) << "as far as the point before it, and later";
  EXPECT_EQ(tree.Left()->Index(), 1);
  EXPECT_EQ(tree.Right(), nullptr);
  EXPECT_EQ(tree.Generate(0, 1, line.data()), 0);
  EXPECT_EQ(tree.Index(), -1);
  EXPECT_EQ(tree.Distance(), -1);
  EXPECT_EQ(tree.Left(), nullptr);
  EXPECT_TRUE(Kept(tree, line, -9).empty());
  K7IntArray out;
  EXPECT_EQ(tree.Generate(0, 3, nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(tree.Traverse(0, nullptr, out), K7_ERR_BAD_ARGUMENT);
  // Not-a-number is nowhere, and opposite ends have no great circle of their own.
  const Line odd = {K7ECEF(0, 0), K7ECEF(NAN, NAN), K7ECEF(1, 2), K7ECEF(NAN, 5), K7ECEF(0, 180)};
  EXPECT_EQ(tree.Generate(0, 4, odd.data()), 0);
  EXPECT_EQ(tree.Generate(1, 3, odd.data()), 0);
}

// Shapes whose trees are as deep as they are long, or that would be looked at again and again.
TEST_F(Cromley, MillionsOfPointsCostNeitherStackNorSquares) {
  for (int kind = 0; kind < 4; kind++) {
    const int count = kind < 2 ? 300000 : 5000;  // equal departures everywhere: each is measured
    Line line;
    for (int i = 0; i < count; i++) {
      const double t = static_cast<double>(i) / count;
      if (kind == 0) line.emplace_back(10, 20);
      if (kind == 1) line.emplace_back(t * 30 * std::sin(t * 3000), t * 30 * std::cos(t * 3000));
      if (kind == 2) line.emplace_back(0.5 * (i % 2), t * 90);
      if (kind == 3) line.emplace_back(0, t * 90);
    }
    K7CromleyNode tree;
    ASSERT_EQ(tree.Generate(0, count - 1, line.data()), 0);
    EXPECT_EQ(Kept(tree, line, 0).size(), static_cast<size_t>(count) - 2);
  }
}

TEST_F(Cromley, SmallestCircles) {
  const auto circle = [](const Line& points, K7ECEF& centre) {
    K7Array array(sizeof(K7ECEF), 64);
    for (const K7ECEF& p : points) array += &p;
    double radius = -1;
    EXPECT_EQ(GenMinSpanCircle(array, centre, radius), 0);
    return radius;
  };
  K7ECEF centre(5, 5);
  EXPECT_EQ(circle({}, centre), -1);
  EXPECT_EQ(centre, K7ECEF(5, 5));
  EXPECT_EQ(circle({K7ECEF(7, 8)}, centre), 0);
  EXPECT_EQ(centre, K7ECEF(7, 8));
  EXPECT_NEAR(circle({K7ECEF(10, 170), K7ECEF(20, -170)}, centre),
              K7ECEF(10, 170).Distance(K7ECEF(20, -170)) / 2, 1e-9);
  EXPECT_NEAR(circle({K7ECEF(90, 0), K7ECEF(-90, 0)}, centre), K7_PI / 2 * K7_EARTH_RADIUS_NM, 1e-6);

  // Against the best of the circles on all pairs and triples: within a cap of any size, over the whole world,
  // on a lattice (the corners of a cube and its sides' middles among them, antipodes, places again), on
  // parallels.
  for (int i = 0; i < 600; i++) {
    Line points;
    const K7ECEF around(Uniform(-90, 90), Uniform(-180, 180));
    const double size = std::pow(10, Uniform(-3, 3.7));
    const int kind = i % 4;
    for (int k = 0; k < 3 + i % 17; k++) {
      if (kind == 0) points.emplace_back(around, Uniform(0, 360), Uniform(0, size));
      if (kind == 1) points.emplace_back(std::asin(Uniform(-1, 1)) * K7_RAD_TO_DEG, Uniform(-180, 180));
      if (kind == 2) {
        const auto step = [&] { return static_cast<double>(m_random() % 3) - 1; };
        points.emplace_back(step(), step(), step());
        if (!points.back().Normalize()) points.pop_back();
      }
      if (kind == 3) points.emplace_back(i % 8 < 4 ? 30 - 60.0 * (k % 2) : k == 0 ? -90.0 : 30.0, 20.0 * k);
    }
    if (i % 5 == 0) points.push_back(points[0]);
    double best = 1e9;
    const auto offer = [&](K7ECEF c) {
      if (!c.Normalize()) return;
      for (int side = 0; side < 2; side++, c *= -1) {
        double radius = 0;
        for (const K7ECEF& p : points) radius = std::max(radius, c.Distance(p));
        best = std::min(best, radius);
      }
    };
    for (const K7ECEF& a : points) {
      for (const K7ECEF& b : points) {
        offer(K7ECEF(a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z()));
        for (const K7ECEF& c : points) {
          K7ECEF axis;
          axis.CrossProduct(K7ECEF(b.X() - a.X(), b.Y() - a.Y(), b.Z() - a.Z()),
                            K7ECEF(c.X() - a.X(), c.Y() - a.Y(), c.Z() - a.Z()));
          offer(axis);
        }
      }
    }
    EXPECT_NEAR(circle(points, centre), best, 1e-7 * std::max(1.0, best)) << i << " size " << size;
  }
  // Many, whose largest gap is known: a lattice in degrees with a cap of 20 taken out; a parallel and the far
  // pole.
  Line lattice, ring = {K7ECEF(-90, 0)};
  const K7ECEF gap(10, 40);
  for (int k = 0; k < 64800; k++) {
    lattice.emplace_back(k / 360 - 89.5, k % 360 - 179.5);
    if (lattice.back().Distance(gap) < 1200) lattice.pop_back();
    ring.emplace_back(30, k / 180.0);
  }
  for (int k = 0; k < 12; k++) lattice.emplace_back(gap, 30 * k, 1200);
  EXPECT_NEAR(circle(lattice, centre), K7_PI * K7_EARTH_RADIUS_NM - 1200, 1e-6);
  EXPECT_NEAR(circle(ring, centre), 120 * 60, 0.02);
}

#include <k7/foundation/error_string.h>
#include <k7/geometry.h>
#include <k7/io.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <vector>

namespace {

using Ring = std::vector<K7ShpXY>;
using Rings = std::vector<Ring>;

int Add(K7PolyBifurcator& cut, const Rings& rings) {
  Ring points;
  std::vector<int> sizes;
  for (const Ring& ring : rings) {
    points.insert(points.end(), ring.begin(), ring.end());
    sizes.push_back(static_cast<int>(ring.size()));
  }
  points.emplace_back();
  return cut.Add(points.data(), sizes.data(), static_cast<int>(sizes.size()));
}

// Wide enough for products of coordinates of one size.
__extension__ using Wide = __float128;

Wide Turn(const K7ShpXY& a, const K7ShpXY& b, const K7ShpXY& c) {
  const Wide ax = a.x, ay = a.y;
  return (b.x - ax) * (c.y - ay) - (b.y - ay) * (c.x - ax);
}

double Shoelace(const Ring& ring) {
  Wide sum = 0;
  for (size_t i = 2; i < ring.size(); i++) sum += Turn(ring[0], ring[i - 1], ring[i]);
  return std::fabs(static_cast<double>(sum / 2));
}

// What an odd number of rings surround, between each two latitudes where anything happens by the widths in
// the middle.
double EvenOddArea(const Rings& rings) {
  struct Edge {
    K7ShpXY a, b;
    double At(double y) const { return a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x); }
  };
  std::vector<Edge> edges;
  std::vector<double> ys;
  for (const Ring& ring : rings) {
    for (size_t i = 0; i < ring.size(); i++) {
      Edge edge = {ring[i], ring[(i + 1) % ring.size()]};
      if (edge.a.y > edge.b.y) std::swap(edge.a, edge.b);
      ys.push_back(ring[i].y);
      if (edge.a.y < edge.b.y) edges.push_back(edge);
    }
  }
  for (size_t i = 0; i < edges.size(); i++) {
    for (size_t k = 0; k < i; k++) {
      const double low = std::max(edges[i].a.y, edges[k].a.y), high = std::min(edges[i].b.y, edges[k].b.y);
      const double d0 = edges[i].At(low) - edges[k].At(low), d1 = edges[i].At(high) - edges[k].At(high);
      if (low < high && d0 * d1 < 0) ys.push_back(low + d0 / (d0 - d1) * (high - low));
    }
  }
  std::sort(ys.begin(), ys.end());
  double area = 0;
  for (size_t i = 1; i < ys.size(); i++) {
    std::vector<double> xs;
    const double y = (ys[i - 1] + ys[i]) / 2;
    for (const Edge& edge : edges) {
      if (edge.a.y <= y && y < edge.b.y) xs.push_back(edge.At(y));
    }
    std::sort(xs.begin(), xs.end());
    for (size_t k = 1; k < xs.size(); k += 2) area += (xs[k] - xs[k - 1]) * (ys[i] - ys[i - 1]);
  }
  return area;
}

// Whether an odd number of other rings surround a ring that crosses none: by the middle of its first edge.
bool IsInner(const Ring& ring, const Rings& rings) {
  bool inner = false;
  const double x = (ring[0].x + ring[1].x) / 2, y = (ring[0].y + ring[1].y) / 2;
  for (const Ring& other : rings) {
    for (size_t i = 0; i < other.size() && &other != &ring; i++) {
      const K7ShpXY &a = other[i], &b = other[(i + 1) % other.size()];
      if ((a.y <= y) != (b.y <= y) && x < a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x)) inner = !inner;
    }
  }
  return inner;
}

using EdgeCounts = std::map<std::pair<int, int>, int>;

// The area of all triangles, each of which is counter-clockwise; and their edges, neighbours' taken away.
double Check(const K7PolyBifurcator& cut, EdgeCounts& border) {
  Wide area = 0;
  const K7ShpXY* const v = cut.Vertices();
  for (int i = 0; i < cut.TriangleCount(); i++) {
    const int32_t* const t = cut.Triangles() + 3 * i;
    for (int k = 0; k < 3; k++) {
      if (t[k] < 0 || t[k] >= cut.VertexCount()) return NAN;
      const int from = t[k], to = t[(k + 1) % 3];
      if (const auto back = border.find({to, from}); back != border.end()) {
        if (--back->second == 0) border.erase(back);
      } else {
        EXPECT_EQ(++border[std::pair(from, to)], 1) << "an edge has one triangle on each side";
      }
    }
    const Wide turn = Turn(v[t[0]], v[t[1]], v[t[2]]);
    EXPECT_TRUE(turn > 0) << "triangle " << i;
    area += turn / 2;
  }
  return static_cast<double>(area);
}

double ContourArea(const K7PolyBifurcator& cut) {
  double area = 0;
  for (int i = 0; i < cut.ContourCount(); i++) {
    int count = 0;
    const int32_t* const contour = cut.Contour(i, count);
    Ring ring;
    for (int k = 0; k < count; k++) ring.push_back(cut.Vertices()[contour[k]]);
    area += Shoelace(ring);
    // One lowest and one highest: latitude turns no more than twice.
    int turns = 0;
    const auto rises = [&](size_t k) {
      const K7ShpXY &a = ring[k % ring.size()], &b = ring[(k + 1) % ring.size()];
      return a.y < b.y || (a.y == b.y && a.x < b.x);
    };
    for (size_t k = 0; k < ring.size(); k++) turns += rises(k) != rises(k + 1);
    EXPECT_EQ(turns, 2);
  }
  return area;
}

class PolyBifurcator : public testing::Test {
 protected:
  double Uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(m_random); }
  Ring Star(double x, double y, double least, double most, int count) {
    Ring ring;
    for (int i = 0; i < count; i++) {
      const double angle = i * 2 * M_PI / count, r = Uniform(least, most);
      ring.push_back({x + r * std::cos(angle), y + r * std::sin(angle)});
    }
    return ring;
  }
  std::mt19937 m_random{7};
  K7PolyBifurcator m_cut;
};

}  // namespace

TEST_F(PolyBifurcator, ValidPolygonsKeepTheirAreaAndTheirEdges) {
  for (int i = 0; i < 300; i++) {
    Rings rings = {Star(50, -30, 2, i % 2 ? 2.01 : 4, 3 + i)};
    double area = Shoelace(rings[0]);
    const int holes = i % 5;
    for (int k = 0; k < holes && i > 20; k++) {
      rings.push_back(Star(50 + (k % 2 ? 0.7 : -0.7), -30 + (k / 2 ? 0.7 : -0.7), 0.01, 0.6, 3 + i / 3));
      area -= Shoelace(rings.back());
    }
    m_cut.Clear();
    const int triangles = Add(m_cut, rings);
    int points = -2;
    for (const Ring& ring : rings) points += static_cast<int>(ring.size()) + 2;
    EXPECT_EQ(triangles, points - 2) << "of n points and h holes, n + 2 h - 2";
    EdgeCounts border;
    EXPECT_NEAR(Check(m_cut, border) / area, 1, 1e-12);
    EXPECT_NEAR(ContourArea(m_cut) / area, 1, 1e-12);
    EXPECT_EQ(border.size(), static_cast<size_t>(m_cut.VertexCount())) << "the rings' edges and no others";
  }
}

// Points on a coarse grid touch, repeat, run along one another and cross; fine ones cross only.
TEST_F(PolyBifurcator, AnyRingsCoverWhatIsSurroundedByAnOddNumber) {
  for (int i = 0; i < 1500; i++) {
    const double grid = i % 3 == 0 ? 2 : i % 3 == 1 ? 6 : 1 << 20;
    Rings rings(1 + i % 3);
    for (Ring& ring : rings) {
      for (int k = static_cast<int>(m_random() % (i % 100 ? 14 : 120)); k >= 0; k--)
        ring.push_back({std::floor(Uniform(0, grid + 1)), std::floor(Uniform(0, grid + 1))});
    }
    m_cut.Clear();
    ASSERT_GE(Add(m_cut, rings), 0) << i;
    EdgeCounts border;
    const double expected = EvenOddArea(rings);
    EXPECT_NEAR(Check(m_cut, border), expected, 1e-9 * grid * grid) << i;
    EXPECT_NEAR(ContourArea(m_cut), expected, 1e-9 * grid * grid) << i;
    const K7ShpXY* const v = m_cut.Vertices();
    for (const auto& [edge, count] : border) {
      const K7ShpXY &a = v[edge.first], &b = v[edge.second];
      for (int k = 0; k < m_cut.VertexCount(); k++) {
        const bool between = (v[k].x - a.x) * (v[k].x - b.x) + (v[k].y - a.y) * (v[k].y - b.y) < 0;
        EXPECT_FALSE(between && Turn(a, b, v[k]) == 0) << "a vertex within an edge, polygon " << i;
      }
    }
  }
}

TEST_F(PolyBifurcator, LinesThroughOnePointAndNearlyParallelOnes) {
  for (int i = 0; i < 40; i++) {
    Ring star, needles;
    for (int k = 0; k < 61; k++) {
      const double angle = k * 30 * 2 * M_PI / 61, off = i % 2 ? 1e-15 * Uniform(0, 9) : 0;
      star.push_back({100 + off + 3 * std::cos(angle), off + 3 * std::sin(angle)});
      star.push_back({100 - 2 * std::cos(angle), -2 * std::sin(angle)});
      needles.push_back({k % 2 ? 1 + Uniform(0, 1e-13) : Uniform(-1e-13, 0), Uniform(0, 1e-14)});
    }
    for (const Ring& ring : {star, needles}) {
      m_cut.Clear();
      ASSERT_GE(Add(m_cut, {ring}), 0);
      EdgeCounts border;
      EXPECT_NEAR(Check(m_cut, border), EvenOddArea({ring}), 1e-9 * Shoelace(star));
    }
  }
}

TEST_F(PolyBifurcator, PolygonsFollowOneAnotherInOneBuffer) {
  const Ring square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}, hole = {{1, 1}, {1, 3}, {3, 3}, {3, 1}};
  EXPECT_EQ(Add(m_cut, {square, hole}), 8);
  EXPECT_EQ(Add(m_cut, {square, square}), 0) << "twice is not at all";
  EXPECT_EQ(Add(m_cut, {{{0, 0}, {5, 5}, {2, 2}}, {{1, 1}}, {}}), 0) << "no area";
  const std::vector<K7LatLon> triangle = {{10, 20}, {10, 21}, {11, 20}};
  const int sizes[] = {3, -1};
  EXPECT_EQ(m_cut.Add(triangle.data(), sizes, 1), 1);
  EXPECT_EQ(m_cut.TriangleCount(), 9);
  EXPECT_EQ(m_cut.VertexCount(), 11);
  EXPECT_EQ(m_cut.Vertices()[8].x, 20);
  EXPECT_EQ(m_cut.Vertices()[8].y, 10);

  EXPECT_EQ(m_cut.Add(triangle.data(), sizes, 2), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_cut.Add(triangle.data(), nullptr, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_cut.Add(triangle.data(), sizes, -1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_cut.Add(static_cast<const K7LatLon*>(nullptr), sizes, 1), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_cut.Add(static_cast<const K7LatLon*>(nullptr), nullptr, 0), 0);
  const int absurd[] = {1 << 28, 1 << 28, 3};
  EXPECT_EQ(m_cut.Add(triangle.data(), absurd, 3), K7_ERR_OUT_OF_RANGE);
  for (const double bad : {double{NAN}, std::numeric_limits<double>::infinity(), -1e121}) {
    EXPECT_EQ(Add(m_cut, {square, {{0, 0}, {1, bad}, {1, 1}}}), K7_ERR_INVALID_DATA);
    EXPECT_EQ(Add(m_cut, {square, {{bad, 0}, {1, 1}, {1, 1}}}), K7_ERR_INVALID_DATA);
  }
  EXPECT_EQ(m_cut.TriangleCount(), 9) << "nothing added";
  int count = 1;
  EXPECT_EQ(m_cut.Contour(m_cut.ContourCount(), count), nullptr);
  EXPECT_EQ(count, 0);
}

// Shapes in which much is beside everything: many points take no noticeable time.
TEST_F(PolyBifurcator, CombsSpiralsAndRunsOnOneLine) {
  constexpr int COUNT = 40000;
  for (int kind = 0; kind < 5; kind++) {
    Ring ring;
    double expected = 0;
    for (int i = 0; i < COUNT; i++) {
      const double t = static_cast<double>(i) / COUNT, angle = t * 1000,
                   end = (COUNT - 1 - i) * 1000.0 / COUNT;
      if (kind == 0) ring.push_back({t * 10 + (i % 2 ? 9 : 0), i % 2 ? 7.0 : 0.0});  // slanting teeth
      if (kind == 1) ring.push_back({i % 2 ? 7.0 + t : 0.0, t * 10});
      if (kind == 2 && i % 2 == 0) ring.push_back({(1 + t) * std::cos(angle), (1 + t) * std::sin(angle)});
      if (kind == 2 && i % 2 != 0)
        ring.insert(ring.begin(), {(1.001 + t) * std::cos(angle), (1.001 + t) * std::sin(angle)});
      if (kind == 3) ring.push_back({t, i < COUNT / 2 ? 0.0 : end});
      if (kind == 4) ring.push_back({std::floor(Uniform(0, 1000)), 5});  // to and fro
    }
    if (kind == 0) ring.insert(ring.end(), {{30, 8}, {-1, 8}, {-1, -1}});
    if (kind == 1) ring.insert(ring.end(), {{-1, 11}, {-1, -1}});
    if (kind == 3) ring.push_back({0, -1});
    if (kind < 4) expected = Shoelace(ring);
    m_cut.Clear();
    ASSERT_GE(Add(m_cut, {ring}), 0);
    EdgeCounts border;
    EXPECT_NEAR(Check(m_cut, border), expected, 1e-12 * expected) << kind;
  }
}

// Some of its holes lie outside the ring that they belong to.
TEST_F(PolyBifurcator, LandKeepsItsArea) {
  K7ShpFile file;
  K7IOK7 io;
  ASSERT_EQ(file.Read(K7_SAMPLE_DATA "/ne_50m_land.shp", &io), 0);
  for (int i = 0; i < file.StoredCount(); i++) {
    const K7ShpObj& shape = *file.GetRecord(i)->Obj();
    Rings rings;
    double area = 0;
    const K7ShpXY* points = shape.Points();
    for (int part = 0; part < shape.GetPolyCount(); points += shape.GetPolySize(part++)) {
      rings.emplace_back(points, points + shape.GetPolySize(part));
    }
    for (const Ring& ring : rings) area += IsInner(ring, rings) ? -Shoelace(ring) : Shoelace(ring);
    m_cut.Clear();
    ASSERT_GT(Add(m_cut, rings), 0);
    EdgeCounts border;
    const double cut = Check(m_cut, border);
    EXPECT_NEAR(cut / area, 1, 1e-12) << i;
  }
}

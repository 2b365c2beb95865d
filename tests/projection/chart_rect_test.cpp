#include <k7/core.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <random>

namespace {

// Is `lon` on the way east from west to east? By the circle, without a case for 180.
bool OnArc(double lon, double east, double west) {
  const auto turn = [](double d) { return std::fmod(d + 720.0, 360.0); };
  return turn(lon - west) <= turn(east - west);
}

bool Holds(const K7ChartRect& r, double lat, double lon) {
  return lat <= r.North() && lat >= r.South() && OnArc(lon, r.East(), r.West());
}

// Edges on tens, not on 180 itself, which is two longitudes to a rectangle.
K7ChartRect RandomRect(std::mt19937& random) {
  std::uniform_int_distribution<int> lat(-9, 9), lon(-17, 17);
  const double n = 10 * lat(random), s = 10 * lat(random);
  return K7ChartRect(std::max(n, s), std::min(n, s), 10 * lon(random), 10 * lon(random));
}

void EachPoint(const std::function<void(double, double)>& visit) {
  for (int lat = -90; lat <= 90; lat += 5)
    for (int lon = -175; lon <= 180; lon += 5) visit(lat, lon);
}

double Width(const K7ChartRect& r) { return r.East() - r.West() + (r.East() < r.West() ? 360 : 0); }

TEST(ChartRect, OverlapAndIntersectionAgreeWithTheirPoints) {
  std::mt19937 random(11);
  for (int i = 0; i < 1500; ++i) {
    const K7ChartRect a = RandomRect(random), b = RandomRect(random);
    const bool aCrosses = a.East() < a.West(), bCrosses = b.East() < b.West();
    // Two across 180 may meet again on the other side of the earth: a second interval, which is not kept.
    if (aCrosses && bCrosses && (a.West() <= b.East() || b.West() <= a.East())) continue;
    const K7ChartRect& normal = aCrosses ? b : a;
    const K7ChartRect& crossing = aCrosses ? a : b;
    K7ChartRect common = a;
    const bool found = common.Intersect(common, b);
    bool overlap = false, sought = false;
    EachPoint([&](double lat, double lon) {
      const bool inA = Holds(a, lat, lon);
      EXPECT_EQ(a.PtIn(lat, lon), inA);
      const bool both = inA && Holds(b, lat, lon);
      overlap |= both;
      // With one across 180, the common part is sought where the other's eastern edge lies.
      bool side = true;
      if (aCrosses != bCrosses) side = normal.East() < 0 ? lon <= crossing.East() : lon >= crossing.West();
      sought |= both && side;
      EXPECT_EQ(found && common.PtIn(lat, lon), both && side) << lat << ' ' << lon;
    });
    EXPECT_EQ(a.AreaIn(b), overlap);
    EXPECT_EQ(found, sought);
  }
}

TEST(ChartRect, GrowsByTheShorterWay) {
  std::mt19937 random(12);
  std::uniform_int_distribution<int> latitude(-9, 9), longitude(-17, 17);
  for (int i = 0; i < 1500; ++i) {
    const K7ChartRect before = RandomRect(random);
    const double lat = 10 * latitude(random), lon = 10 * longitude(random);
    K7ChartRect after = before;
    after.Include(lat, lon);
    EXPECT_TRUE(Holds(after, lat, lon));
    const double toEast = std::fabs(std::remainder(lon - before.East(), 360.0));
    const double toWest = std::fabs(std::remainder(lon - before.West(), 360.0));
    const bool inside = OnArc(lon, before.East(), before.West());
    EXPECT_EQ(Width(after) - Width(before), inside ? 0 : std::min(toEast, toWest));
    EachPoint([&](double la, double lo) { EXPECT_TRUE(!Holds(before, la, lo) || after.PtIn(la, lo)); });
    EXPECT_TRUE(before < after);
    EXPECT_EQ(after < before, after == before);
  }
}

TEST(ChartRect, BoundingUnionHoldsBothAndNoMoreThanItMust) {
  std::mt19937 random(13);
  const K7ChartRect world(90, -90, 180, -180), eastern(20, 10, 180, 170), western(20, 10, -170, -180);
  const K7ChartRect seamEast(0, 0, 180, 180), seamWest(0, 0, -180, -180), inverse(5, -5, -180, 180);
  const K7ChartRect edges[] = {{}, world, eastern, western, seamEast, seamWest, inverse};
  const auto any = [&] {
    const size_t i = random() % 20;
    return i < std::size(edges) ? edges[i] : RandomRect(random);
  };
  for (int i = 0; i < 600; ++i) {
    const K7ChartRect a = any(), b = any();
    K7ChartRect both = a, swapped = b;
    both.BoundingUnion(both, b);
    swapped.BoundingUnion(swapped, a);
    EXPECT_EQ(both, swapped);
    const auto holdsBoth = [&](const K7ChartRect& r) {
      for (double lon = -180; lon <= 180; lon += 5)
        for (const K7ChartRect* part : {&a, &b})
          if (!part->IsEmpty() && part->PtIn(part->North(), lon) && !r.PtIn(part->North(), lon)) return false;
      return true;
    };
    EXPECT_TRUE(holdsBoth(both)) << i;
    EXPECT_EQ(both.North(), std::max(a.North(), b.North()));
    EXPECT_EQ(both.South(), std::min(a.South(), b.South()));
    if (a.IsEmpty() || b.IsEmpty()) {
      EXPECT_EQ(both, a.IsEmpty() ? b : a);
      continue;
    }
    double narrowest = 360;
    for (const double east : {a.East(), b.East(), 180.0})
      for (const double west : {a.West(), b.West(), -180.0})
        if (const K7ChartRect r(90, -90, east, west); holdsBoth(r)) narrowest = std::min(narrowest, Width(r));
    EXPECT_EQ(Width(both), narrowest) << i;
  }
}

TEST(ChartRect, CentreLiesHalfWayBetweenTheEdges) {
  std::mt19937 random(14);
  for (int i = 0; i < 300; ++i) {
    const K7ChartRect r = RandomRect(random);
    SCOPED_TRACE(testing::Message() << r.East() << ' ' << r.West());
    double lat, lon;
    r.Center(lat, lon);
    EXPECT_EQ(r.North() - lat, lat - r.South());
    EXPECT_LE(std::fabs(lon), 180);
    EXPECT_EQ(std::remainder(r.East() - lon, 360), -std::remainder(r.West() - lon, 360));
    EXPECT_TRUE(OnArc(lon, r.East(), r.West()));
  }
}

TEST(ChartRect, SpecialRectangles) {
  const K7ChartRect world(90, -90, 180, -180), pacific(10, 0, -170, 170), alps(48, 45, 12, 6);
  K7ChartRect r;
  EXPECT_TRUE(r.Intersect(world, pacific));
  EXPECT_EQ(r, pacific);
  EXPECT_TRUE(r.Intersect(alps, world));
  EXPECT_EQ(r, alps);
  EXPECT_FALSE(r.Intersect(alps, pacific));  // only the latitudes are settled by then
  EXPECT_EQ(r, K7ChartRect(10, 45, 12, 6));
  EXPECT_FALSE(r.Intersect(alps, K7ChartRect(48, 45, 30, 20)));
  EXPECT_EQ(r, K7ChartRect());
  EXPECT_TRUE(world.IsEntireWorld());
  EXPECT_FALSE(K7ChartRect(90, -90, 180, -179.999).IsEntireWorld());

  double lat, lon;
  pacific.Center(lat, lon);
  EXPECT_EQ(lon, -180);
  const struct {
    K7ChartRect before;
    double dLat, dLon;
    K7ChartRect after;
  } expansions[] = {{{10, -80, 170, -175}, 20, 10.5, {30, -90, 180, -180}},
                    {{10, -80, -179, 179}, 1, -400, {11, -81, -180, 180}},
                    {pacific, 1, 15, {11, -1, -155, 155}},
                    {alps, 50, 1, {90, -5, 13, 5}}};
  for (auto [rect, dLat, dLon, after] : expansions) {
    rect.Expand(dLat, dLon);
    EXPECT_EQ(rect, after);
  }
  r = pacific;
  r.Union(alps, r);
  EXPECT_TRUE(r.PtIn(10, -170) && r.PtIn(0, 170) && r.PtIn(48, 12));
  (r = alps) |= pacific;
  EXPECT_TRUE(r.PtIn(10, -170) && r.PtIn(0, 170) && r.PtIn(48, 12));

  EXPECT_FALSE(alps.PtIn(NAN, 8) || pacific.PtIn(5, NAN) || pacific.AreaIn(NAN, NAN, 175, 172));
  r.Empty();
  for (double lonOrNan : {std::nan(""), 8.0, std::nan("")}) r.Include(46, lonOrNan);
  r.Include(NAN, 9);
  EXPECT_EQ(r, K7ChartRect(46, 46, 8, 8));
}

TEST(ChartRect, ReadsFourFloats) {
  const double fields[] = {48.5, 45.25, 12, 6};
  const auto* const first = reinterpret_cast<const unsigned char*>(fields);
  MemIO io;
  io.Put("whole", Bytes(first, first + 32));
  io.Put("cut", Bytes(first, first + 20));
  K7ChartRect r(1, 2, 3, 4);
  EXPECT_EQ(r.Read(std::unique_ptr<K7File>(io.CreateFileX("whole", "rb")).get()), 8);
  EXPECT_EQ(r, K7ChartRect(48.5, 45.25, 12, 6));
  r.Init(1, 2, 3, 4);
  EXPECT_LT(r.Read(std::unique_ptr<K7File>(io.CreateFileX("cut", "rb")).get()), 8);
  EXPECT_EQ(r, K7ChartRect(48.5, 45.25, 3, 4));
  EXPECT_EQ(r.Read(nullptr), K7_ERR_BAD_ARGUMENT);
}

}  // namespace

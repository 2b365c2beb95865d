// Segments and polygons of whole pixels beside Boost.Geometry's with the same coordinates.

#include <benchmark/benchmark.h>
#include <k7/geometry/dev_geometry.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/ring.hpp>
#include <boost/geometry/geometries/segment.hpp>

#include <cmath>
#include <random>
#include <vector>

namespace {

namespace bg = boost::geometry;
using BoostPoint = bg::model::d2::point_xy<int>;
using BoostSegment = bg::model::segment<BoostPoint>;
using BoostRing = bg::model::ring<BoostPoint, true, false>;

// A window of 2000 by 2000 pixels.
std::vector<K7DevPt> Points(int count) {
  std::mt19937 random(6);
  std::uniform_int_distribution<> pixel(0, 1999);
  std::vector<K7DevPt> points(static_cast<size_t>(count));
  for (K7DevPt& p : points) p = {pixel(random), pixel(random)};
  return points;
}
BoostPoint ToBoost(const K7DevPt& p) { return {p.x, p.y}; }

// A coast: around the middle at 300 to 900 pixels.
std::vector<K7DevPt> Coast(int count) {
  std::mt19937 random(7);
  std::uniform_real_distribution<> radius(300, 900);
  std::vector<K7DevPt> coast;
  for (int i = 0; i < count; i++) coast.emplace_back(K7DevPt(1000, 1000), 360.0 * i / count, radius(random));
  return coast;
}

// Each segment with the next; the figure is pairs a second. About every fourth pair meets.
template <class Segment, class Make, class Meet>
void OverPairs(benchmark::State& state, Make make, Meet meet) {
  const std::vector<K7DevPt> points = Points(8192);
  std::vector<Segment> segments;
  for (size_t i = 1; i < points.size(); i += 2) segments.push_back(make(points[i - 1], points[i]));
  int met = 0;
  for (auto _ : state) {
    met = 0;
    for (size_t i = 1; i < segments.size(); i++) met += meet(segments[i - 1], segments[i]);
    benchmark::DoNotOptimize(met);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(segments.size() - 1));
  state.counters["met"] = met;
}

K7DevLine MakeK7(const K7DevPt& a, const K7DevPt& b) { return {a, b}; }
BoostSegment MakeBoost(const K7DevPt& a, const K7DevPt& b) { return {ToBoost(a), ToBoost(b)}; }

void SegmentsMeetK7(benchmark::State& state) {
  OverPairs<K7DevLine>(state, MakeK7, [](const K7DevLine& a, const K7DevLine& b) { return a.Intersect(b); });
}
void SegmentsMeetBoost(benchmark::State& state) {
  OverPairs<BoostSegment>(state, MakeBoost,
                          [](const BoostSegment& a, const BoostSegment& b) { return bg::intersects(a, b); });
}
void CrossingPointsK7(benchmark::State& state) {
  OverPairs<K7DevLine>(state, MakeK7, [](const K7DevLine& a, const K7DevLine& b) {
    K7DevPt at;
    const bool met = a.Intersect(b, &at);
    benchmark::DoNotOptimize(at);
    return met;
  });
}
void CrossingPointsBoost(benchmark::State& state) {
  std::vector<BoostPoint> at;
  OverPairs<BoostSegment>(state, MakeBoost, [&](const BoostSegment& a, const BoostSegment& b) {
    at.clear();
    bg::intersection(a, b, at);
    benchmark::DoNotOptimize(at.data());
    return !at.empty();
  });
}
// The segment is made for the question, as a drawn line's are.
void MakeAndMeetK7(benchmark::State& state) {
  using Ends = std::pair<K7DevPt, K7DevPt>;
  OverPairs<Ends>(
      state, [](const K7DevPt& a, const K7DevPt& b) { return Ends(a, b); },
      [](const Ends& a, const Ends& b) {
        return K7DevLine(a.first, a.second).Intersect(K7DevLine(b.first, b.second));
      });
}
void BorderCrossingsK7(benchmark::State& state) {
  const K7DevRect rect(500, 500, 1500, 1500);
  OverPairs<K7DevLine>(state, MakeK7, [&](const K7DevLine&, const K7DevLine& line) {
    K7DevPt at[2];
    const int count = line.IntersectRect(rect, at);
    benchmark::DoNotOptimize(at);
    return count;
  });
}

template <class Ring, class Holds>
void OverPoints(benchmark::State& state, const Ring& ring, Holds holds) {
  const std::vector<K7DevPt> points = Points(4096);
  int held = 0;
  for (auto _ : state) {
    held = 0;
    for (const K7DevPt& p : points) held += holds(ring, p);
    benchmark::DoNotOptimize(held);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(points.size()));
  state.counters["held"] = held;
}
void PointInK7(benchmark::State& state) {
  const std::vector<K7DevPt> coast = Coast(static_cast<int>(state.range(0)));
  OverPoints(state, K7DevPolygon(coast.data(), static_cast<int>(coast.size())),
             [](const K7DevPolygon& ring, const K7DevPt& p) { return ring.PointIn(p); });
}
void PointInBoost(benchmark::State& state) {
  BoostRing ring;
  for (const K7DevPt& p : Coast(static_cast<int>(state.range(0)))) ring.push_back(ToBoost(p));
  OverPoints(state, ring, [](const BoostRing& r, const K7DevPt& p) { return bg::covered_by(ToBoost(p), r); });
}

BENCHMARK(SegmentsMeetK7);
BENCHMARK(SegmentsMeetBoost);
BENCHMARK(CrossingPointsK7);
BENCHMARK(CrossingPointsBoost);
BENCHMARK(MakeAndMeetK7);
BENCHMARK(BorderCrossingsK7);
BENCHMARK(PointInK7)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(PointInBoost)->Arg(10)->Arg(100)->Arg(1000);

}  // namespace

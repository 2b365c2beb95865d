// Routes over the airways of the world: what reading them, a search, and both together with opening the
// database and telling the route take. K7_WORLD_NAV names a database of real data, which is measured then
// between airports; without it there is a made-up network of the same size. The peer of the search is the
// plain loop: Dijkstra's with a priority queue of the standard library over the same arrays.

#include <benchmark/benchmark.h>
#include <k7/geodesy.h>
#include <k7/navdata.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <queue>
#include <random>
#include <string>

#include "route/airway_graph.h"
#include "route/route.h"
#include "route/route_search.h"
#include "store/nav_store.h"
#include "store/nav_writer.h"

namespace {

constexpr int COLUMNS = 200, ROWS = 150;

struct Trip {
  std::string from, to;
};

std::string IdentAt(int row, int column) {
  return "R" + std::to_string(row % ROWS) + "C" + std::to_string(column % COLUMNS);
}

K7LatLon PlaceAt(int row, int column) {
  std::mt19937 random(static_cast<unsigned>(row * COLUMNS + column % COLUMNS));
  std::uniform_real_distribution<> off(-0.3, 0.3);
  const double lon = -180 + 360.0 * (column % COLUMNS + off(random)) / COLUMNS;
  return {-55 + 125.0 * (row + off(random)) / ROWS, lon < -180 ? lon + 360 : lon};
}

// Airways along rows, along columns, and slanting ones on every second row.
void AddSegment(NavWriter& writer, const std::string& airway, int row, int column, int down, int right) {
  K7AirwaySeg seg;
  seg.key = K7NavKey(0, column % 2 ? K7NAV_LOW_AIRWAY : K7NAV_HIGH_AIRWAY);
  airway.copy(seg.ident, 6);
  const K7LatLon from = PlaceAt(row, column), to = PlaceAt(row + down, column + right);
  seg.fromLat = K7NavData::DecDeg2FixPt(from.Lat());
  seg.fromLon = K7NavData::DecDeg2FixPt(from.Lon());
  seg.toLat = K7NavData::DecDeg2FixPt(to.Lat());
  seg.toLon = K7NavData::DecDeg2FixPt(to.Lon());
  IdentAt(row, column).copy(seg.fromIdent, 8);
  IdentAt(row + down, column + right).copy(seg.toIdent, 8);
  seg.mea = K7Alt(5000);
  seg.maa = K7Alt(46000, K7Alt::FLIGHT_LEVEL);
  writer.Add(seg);
}

std::string WriteWorld() {
  const std::string path = std::filesystem::temp_directory_path() / "k7_route_bench.db";
  std::string problem;
  NavWriter writer;
  if (!writer.Open(path, problem)) std::fprintf(stderr, "%s\n", problem.c_str());
  for (int row = 0; row + 1 < ROWS; row++) {
    for (int column = 0; column < COLUMNS; column++) {
      AddSegment(writer, "H" + std::to_string(row), row, column, 0, 1);
      AddSegment(writer, "V" + std::to_string(column), row, column, 1, 0);
      if (row % 2 == 0) AddSegment(writer, "S" + std::to_string(row), row, column, 1, 1);
      K7Waypoint fix;
      fix.key = K7NavKey(0, K7NAV_ENROUTE_FIX);
      const K7LatLon at = PlaceAt(row, column);
      fix.lat = K7NavData::DecDeg2FixPt(at.Lat());
      fix.lon = K7NavData::DecDeg2FixPt(at.Lon());
      IdentAt(row, column).copy(fix.ident, 8);
      writer.Add(fix);
    }
  }
  if (!writer.Finish(problem)) std::fprintf(stderr, "%s\n", problem.c_str());
  return path;
}

bool IsReal() { return std::getenv("K7_WORLD_NAV") != nullptr; }

const std::string& World() {
  static const std::string path = IsReal() ? std::getenv("K7_WORLD_NAV") : WriteWorld();
  return path;
}

const std::vector<Trip>& Trips() {
  static const std::vector<Trip> real = {
      {"EGLL", "OMDB"}, {"PANC", "RJAA"}, {"EGLL", "YSSY"}, {"KSEA", "CYVR"}};
  static const std::vector<Trip> madeUp = {
      {"R120C100", "R90C131"}, {"R130C15", "R100C178"}, {"R120C100", "R20C184"}, {"R117C30", "R119C31"}};
  return IsReal() ? real : madeUp;
}

const Trip& TripOf(benchmark::State& state) {
  const Trip& trip = Trips()[static_cast<size_t>(state.range(0))];
  state.SetLabel(trip.from + " " + trip.to);
  return trip;
}

const AirwayGraph& World(NavStore& store) {
  static AirwayGraph graph;
  store.Open(World().c_str());
  if (graph.NodeCount() == 0 && !graph.Read(store)) std::fprintf(stderr, "%s: unreadable\n", World().c_str());
  return graph;
}

void ReadAirways(benchmark::State& state) {
  World();
  for (auto _ : state) {
    NavStore store;
    AirwayGraph graph;
    if (store.Open(World().c_str()) != 0 || !graph.Read(store)) state.SkipWithError("unreadable");
    state.counters["places"] = graph.NodeCount();
  }
}

// Opening, reading, finding and telling: all that a program does that was just started.
void RouteFromTheStart(benchmark::State& state) {
  const Trip& trip = TripOf(state);
  World();
  for (auto _ : state) {
    NavStore store;
    AirwayGraph graph;
    Route route;
    if (store.Open(World().c_str()) != 0 || !graph.Read(store)) state.SkipWithError("unreadable");
    const std::string why = FindRoute(store, graph, {trip.from, trip.to}, route);
    if (!why.empty()) state.SkipWithError(why.c_str());
    state.counters["NM"] = route.distance;
  }
}

// What a search is given: the airways, and the ends of a trip as its route has them.
std::pair<const AirwayGraph&, SearchRequest> SearchOf(benchmark::State& state) {
  const Trip& trip = TripOf(state);
  NavStore store;
  const AirwayGraph& graph = World(store);
  Route route;
  FindRoute(store, graph, {trip.from, trip.to}, route);
  if (route.fixes.empty()) return {graph, {}};
  return {graph, {route.fixes.front().place, route.fixes.back().place, RouteRequest().directNM, {}}};
}

void SearchAlone(benchmark::State& state) {
  const auto& [graph, request] = SearchOf(state);
  for (auto _ : state)
    state.counters["nodes"] = static_cast<double>(SearchRoute(graph, request).nodes.size());
}

void SearchPlainDijkstra(benchmark::State& state) {
  const auto& [graph, request] = SearchOf(state);
  using Entry = std::pair<double, uint32_t>;
  for (auto _ : state) {
    std::vector<double> cost(graph.NodeCount(), INFINITY);
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
    double best = INFINITY;
    for (uint32_t i = 0; i < graph.NodeCount(); i++) {
      if (const double away = request.from.Distance(graph.Place(i)); away <= request.directNM)
        open.emplace(cost[i] = away, i);
    }
    while (!open.empty() && open.top().first < best) {
      const auto [so, at] = open.top();
      open.pop();
      if (so > cost[at]) continue;
      const K7LatLon here = graph.Place(at);
      if (const double left = here.Distance(request.to); left <= request.directNM)
        best = std::min(best, so + left);
      for (const AirwayGraph::Arc& arc : graph.ArcsFrom(at)) {
        const double there = so + here.Distance(graph.Place(arc.to));
        if (there < cost[arc.to]) open.emplace(cost[arc.to] = there, arc.to);
      }
    }
    state.counters["NM"] = best;
  }
}

BENCHMARK(ReadAirways)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchAlone)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchPlainDijkstra)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(RouteFromTheStart)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

}  // namespace

// Cheapest paths beside Boost's A*, over the same graphs with the same costs and estimates.

#include <benchmark/benchmark.h>
#include <k7/geometry/path_node.h>

#include <boost/graph/astar_search.hpp>
#include <boost/graph/compressed_sparse_row_graph.hpp>

#include <cmath>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

struct Place {
  double x, y;
};
double Apart(const Place& a, const Place& b) {
  return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

struct Web {
  std::vector<Place> places;
  std::vector<std::pair<int, int>> arcs;  // by their first place
  std::vector<double> costs;
};

// Neighbours by sides and corners, each arc up to twice as long as it looks.
Web Grid(int size) {
  Web web;
  std::mt19937 random(2);
  std::uniform_real_distribution<> rough(1, 2);
  for (int i = 0; i < size * size; i++) web.places.push_back({i % size * 1.0, i / size * 1.0});
  for (int i = 0; i < size * size; i++) {
    for (int dy = -1; dy <= 1; dy++) {
      for (int dx = -1; dx <= 1; dx++) {
        const int x = i % size + dx, y = i / size + dy;
        if ((!dx && !dy) || x < 0 || y < 0 || x >= size || y >= size) continue;
        web.arcs.emplace_back(i, y * size + x);
        web.costs.push_back(Apart(web.places[i], web.places[y * size + x]) * rough(random));
      }
    }
  }
  return web;
}

Web Scattered(int count) {
  Web web;
  std::mt19937 random(3);
  std::uniform_real_distribution<> unit(0, 1), rough(1, 1.3);
  for (int i = 0; i < count; i++) web.places.push_back({unit(random), unit(random)});
  const double reach = std::sqrt(8 / (3.14 * count));
  for (int i = 0; i < count; i++) {
    for (int k = 0; k < count; k++) {
      const double apart = Apart(web.places[i], web.places[k]);
      if (i == k || apart > reach) continue;
      web.arcs.emplace_back(i, k);
      web.costs.push_back(apart * rough(random));
    }
  }
  return web;
}

const Web& WebOf(bool grid) {
  static const Web webs[] = {Scattered(6000), Grid(300)};
  return webs[grid];
}

std::vector<std::pair<int, int>> Trips(const Web& web) {
  std::mt19937 random(5);
  std::vector<std::pair<int, int>> trips;
  for (int i = 0; i < 10; i++) {
    trips.emplace_back(random() % web.places.size(), random() % web.places.size());
  }
  return trips;
}

struct Node : K7PathNode {
  double ArcCost(const K7PathNode& other) const override {
    for (int tries = AdjCnt(); tries > 0; tries--) {
      const int at = next;
      next = next + 1 < AdjCnt() ? next + 1 : 0;
      if (Adjacent(at) == &other) return costs[at];
    }
    return UNREACHED;
  }
  double Heuristic() const override { return Apart(place, *goal); }
  double HeapRank() const override { return ActualCost(); }
  bool Stop() override { return &place == goal; }
  Place place{};
  const double* costs = nullptr;
  mutable int next = 0;
  static const Place* goal;
};

const Place* Node::goal = nullptr;

void SearchK7(benchmark::State& state) {
  const Web& web = WebOf(state.range(0));
  std::vector<Node> nodes(web.places.size());
  for (size_t i = 0; i < nodes.size(); i++) nodes[i].place = web.places[i];
  for (size_t i = 0; i < web.arcs.size(); i++) {
    Node& from = nodes[web.arcs[i].first];
    if (from.AdjCnt() == 0) from.costs = &web.costs[i];
    from.AddAdj(&nodes[web.arcs[i].second]);
  }
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const auto& [from, to] : Trips(web)) {
      for (Node& node : nodes) {
        node.Reset();
      }
      Node::goal = &nodes[to].place;
      const K7PathNode* const reached = nodes[from].ShortestPath();
      sum += reached ? reached->PathCost() : 0;
    }
  }
  state.counters["cost"] = sum;
}

struct Found {};

void SearchBoost(benchmark::State& state) {
  const Web& web = WebOf(state.range(0));
  struct Arc {
    double cost;
  };
  using Graph = boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, Arc>;
  std::vector<Arc> arcs;
  for (const double cost : web.costs) arcs.push_back({cost});
  const Graph graph(boost::edges_are_sorted, web.arcs.begin(), web.arcs.end(), arcs.begin(),
                    web.places.size());
  struct Estimate : boost::astar_heuristic<Graph, double> {
    double operator()(size_t at) const { return Apart(web->places[at], web->places[goal]); }
    const Web* web = nullptr;
    size_t goal = 0;
  };
  struct Visitor : boost::default_astar_visitor {
    void examine_vertex(size_t at, const Graph&) const {
      if (at == goal) throw Found();
    }
    size_t goal = 0;
  };
  std::vector<double> costs(web.places.size());
  std::vector<size_t> parents(web.places.size());
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const auto& [from, to] : Trips(web)) {
      Estimate estimate;
      estimate.web = &web;
      Visitor visitor;
      estimate.goal = visitor.goal = static_cast<size_t>(to);
      try {
        boost::astar_search(graph, static_cast<size_t>(from), estimate,
                            boost::predecessor_map(parents.data())
                                .distance_map(costs.data())
                                .weight_map(boost::get(&Arc::cost, graph))
                                .distance_combine(std::plus<double>())
                                .distance_compare(std::less<double>())
                                .visitor(visitor));
      } catch (const Found&) {
        sum += costs[static_cast<size_t>(to)];
      }
    }
  }
  state.counters["cost"] = sum;
}

BENCHMARK(SearchK7)->ArgName("grid")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchBoost)->ArgName("grid")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

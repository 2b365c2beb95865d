#include "store/import_chain.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <tuple>

namespace {

// An edge that is left at one of its nodes: by its course there, then by where it leads, the west first.
struct Exit {
  double course;
  double lon, lat;
  int edge;
  bool operator<(const Exit& other) const {
    return std::tie(course, lon, lat, edge) < std::tie(other.course, other.lon, other.lat, other.edge);
  }
};
// Sorted around the node, so that one of thousands at a place is found without a look at the others.
using Exits = std::set<Exit>;

Exits::const_iterator FirstFrom(const Exits& exits, double course) {
  return exits.lower_bound({course, -std::numeric_limits<double>::infinity(), 0, 0});
}

// The one whose course is nearest to `course`.
const Exit& Straightest(const Exits& exits, double course) {
  auto right = FirstFrom(exits, course);
  if (right == exits.end()) right = exits.begin();
  const auto last = std::prev(right == exits.begin() ? exits.end() : right);
  const auto left = FirstFrom(exits, last->course);
  const auto order = [course](const Exit& exit) {
    return std::tuple(std::fabs(std::remainder(exit.course - course, 360)), exit.lon, exit.lat);
  };
  return order(*left) < order(*right) ? *left : *right;
}

class Net {
 public:
  Net(const std::vector<K7LatLon>& nodes, const std::vector<ChainEdge>& edges)
      : m_nodes(nodes), m_edges(edges) {
    for (int i = 0; i < static_cast<int>(edges.size()); ++i)
      for (const int node : {Edge(i).from, Edge(i).to}) m_exits[node].insert(ExitAt(node, i));
  }

  std::vector<Chain> Cut() {
    std::vector<int> starts;
    for (const auto& [node, exits] : m_exits) starts.push_back(node);
    std::sort(starts.begin(), starts.end(), [this](int a, int b) {
      return std::tuple(At(a).Lon(), At(a).Lat()) < std::tuple(At(b).Lon(), At(b).Lat());
    });
    std::vector<Chain> chains;
    for (const bool oddOnly : {true, false})
      for (const int node : starts)
        while (oddOnly ? m_exits[node].size() % 2 != 0 : !m_exits[node].empty()) chains.push_back(Walk(node));
    return chains;
  }

 private:
  const K7LatLon& At(int node) const { return m_nodes[static_cast<size_t>(node)]; }
  const ChainEdge& Edge(int edge) const { return m_edges[static_cast<size_t>(edge)]; }
  Exit ExitAt(int node, int edge) const {
    const K7LatLon& end = At(Edge(edge).from == node ? Edge(edge).to : Edge(edge).from);
    return {std::max(At(node).InitCourse(end), 0.0), end.Lon(), end.Lat(), edge};
  }

  Chain Walk(int node) {
    static constexpr double WEST = 270;
    Chain chain;
    for (double course = WEST; !m_exits[node].empty();) {
      const int edge = Straightest(m_exits[node], course).edge;
      const auto [from, to] = Edge(edge);
      m_exits[from].erase(ExitAt(from, edge));
      m_exits[to].erase(ExitAt(to, edge));
      chain.push_back({edge, from != node});
      const int end = from == node ? to : from;
      course = std::max(At(node).FinalCourse(At(end)), 0.0);
      node = end;
    }
    return chain;
  }

  const std::vector<K7LatLon>& m_nodes;
  const std::vector<ChainEdge>& m_edges;
  std::map<int, Exits> m_exits;  // that are not used yet
};

}  // namespace

std::vector<Chain> ChainEdges(const std::vector<K7LatLon>& nodes, const std::vector<ChainEdge>& edges) {
  return Net(nodes, edges).Cut();
}

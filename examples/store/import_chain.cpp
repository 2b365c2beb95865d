#include "store/import_chain.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

class Net {
 public:
  Net(const std::vector<K7LatLon>& nodes, const std::vector<ChainEdge>& edges)
      : m_nodes(nodes), m_edges(edges), m_used(edges.size(), false) {
    for (int i = 0; i < static_cast<int>(edges.size()); ++i) {
      const ChainEdge& edge = edges[static_cast<size_t>(i)];
      m_at[edge.from].push_back(i);
      m_at[edge.to].push_back(i);
    }
    for (const auto& [node, list] : m_at) m_starts.push_back(node);
    std::sort(m_starts.begin(), m_starts.end(), [this](int a, int b) { return IsBefore(a, b); });
  }

  std::vector<Chain> Cut() {
    std::vector<Chain> chains;
    for (const bool oddOnly : {true, false})
      for (const int node : m_starts)
        while (const int left = Unused(node))
          if (oddOnly && left % 2 == 0)
            break;
          else
            chains.push_back(Walk(node));
    return chains;
  }

 private:
  const K7LatLon& At(int node) const { return m_nodes[static_cast<size_t>(node)]; }
  bool IsBefore(int a, int b) const {
    if (At(a).Lon() != At(b).Lon()) return At(a).Lon() < At(b).Lon();
    return At(a).Lat() < At(b).Lat();
  }
  int Unused(int node) const {
    const std::vector<int>& list = m_at.at(node);
    return static_cast<int>(
        std::count_if(list.begin(), list.end(), [this](int i) { return !m_used[static_cast<size_t>(i)]; }));
  }
  ChainStep StepFrom(int node, int edge) const {
    return {edge, m_edges[static_cast<size_t>(edge)].from != node};
  }
  int EndOf(const ChainStep& step) const {
    const ChainEdge& edge = m_edges[static_cast<size_t>(step.edge)];
    return step.reversed ? edge.from : edge.to;
  }

  // Degrees by which the way into `node` turns into a step; without a way in, steps to the west come first.
  double Turn(const K7LatLon* before, int node, const ChainStep& step) const {
    const double course = At(node).InitCourse(At(EndOf(step)));
    if (!before) return std::fabs(std::remainder(course - 270, 360));
    return std::fabs(std::remainder(course - before->FinalCourse(At(node)), 360));
  }

  bool Next(const K7LatLon* before, int node, ChainStep& best) const {
    bool found = false;
    double least = 0;
    for (const int i : m_at.at(node)) {
      if (m_used[static_cast<size_t>(i)]) continue;
      const ChainStep step = StepFrom(node, i);
      const double turn = Turn(before, node, step);
      if (found && (turn > least || (turn == least && !IsBefore(EndOf(step), EndOf(best))))) continue;
      best = step;
      least = turn;
      found = true;
    }
    return found;
  }

  Chain Walk(int node) {
    Chain chain;
    const K7LatLon* before = nullptr;
    for (ChainStep step{}; Next(before, node, step);) {
      m_used[static_cast<size_t>(step.edge)] = true;
      chain.push_back(step);
      before = &At(node);
      node = EndOf(step);
    }
    return chain;
  }

  const std::vector<K7LatLon>& m_nodes;
  const std::vector<ChainEdge>& m_edges;
  std::vector<bool> m_used;
  std::map<int, std::vector<int>> m_at;
  std::vector<int> m_starts;
};

}  // namespace

std::vector<Chain> ChainEdges(const std::vector<K7LatLon>& nodes, const std::vector<ChainEdge>& edges) {
  return Net(nodes, edges).Cut();
}

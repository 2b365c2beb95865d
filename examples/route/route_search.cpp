#include "route/route_search.h"

#include <k7/geodesy/ecef.h>
#include <k7/geometry/path_node.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <utility>

#include "route/airway_graph.h"

namespace {

constexpr double SAME_PLACE_NM = 1e-3;  // a direct leg of no length needs no leave

// NM. Lengths that vanish beside those of the way so far would make a circle free, and the search endless.
constexpr double LEAST_COST = 1e-6;

class Search;

// A place that the search has come to. Its neighbours are made when it is expanded: of the world's places a
// search sees few.
class RouteNode : public K7PathNode {
 public:
  RouteNode(Search& search, uint32_t number, const K7LatLon& place)
      : m_search(search), m_number(number), m_place(place.Lat(), place.Lon()) {}

  uint32_t Number() const { return m_number; }
  double Distance(const RouteNode& other) const { return m_place.Distance(other.m_place); }

  bool InitStartNode() override;
  bool Stop() override;
  void Expand() override;
  double ArcCost(const K7PathNode& other) const override {
    return std::max(Distance(static_cast<const RouteNode&>(other)), LEAST_COST);
  }
  double Heuristic() const override;
  double HeapRank() const override { return ActualCost(); }
  bool Show() override;

 private:
  Search& m_search;
  uint32_t m_number;
  K7ECEF m_place;
  bool m_isExpanded = false;
};

class Search {
 public:
  Search(const AirwayGraph& graph, const SearchRequest& request)
      : m_graph(graph),
        m_request(request),
        m_known(graph.NodeCount(), nullptr),
        m_start(*this, graph.NodeCount(), request.from),
        m_end(*this, graph.NodeCount(), request.to) {}

  SearchResult Run();

 private:
  friend RouteNode;

  bool IsFlown(const AirwayGraph::Arc& arc) const {
    return !m_request.feet || arc.band.Holds(*m_request.feet);
  }
  bool IsDirect(double distance) const { return distance <= std::max(m_request.directNM, SAME_PLACE_NM); }
  RouteNode& NodeOf(uint32_t number);
  void Link(RouteNode& from, RouteNode& to) { m_isFull |= from.AddAdj(&to) != 0; }
  void LeaveStart();
  void Expand(RouteNode& node);
  void NearestToStart(SearchResult& result) const;
  void NearestToEnd(SearchResult& result) const;

  const AirwayGraph& m_graph;
  const SearchRequest& m_request;
  std::vector<RouteNode*> m_known;  // by their number
  std::deque<RouteNode> m_nodes;
  RouteNode m_start, m_end;
  bool m_isFull = false;  // out of memory
};

bool RouteNode::InitStartNode() {
  m_search.LeaveStart();
  return !m_search.m_isFull;
}
bool RouteNode::Stop() { return this == &m_search.m_end; }
void RouteNode::Expand() {
  if (!std::exchange(m_isExpanded, true)) m_search.Expand(*this);
}
double RouteNode::Heuristic() const { return Distance(m_search.m_end); }
bool RouteNode::Show() { return !m_search.m_isFull; }

RouteNode& Search::NodeOf(uint32_t number) {
  RouteNode*& node = m_known[number];
  if (!node) node = &m_nodes.emplace_back(*this, number, m_graph.Place(number));
  return *node;
}

// Latitudes sort most places out before a distance is asked for.
void Search::LeaveStart() {
  if (IsDirect(m_start.Heuristic())) Link(m_start, m_end);
  const double reach = (std::max(m_request.directNM, SAME_PLACE_NM) + 1) / 60;
  const double low = m_request.from.Lat() - reach, high = m_request.from.Lat() + reach;
  for (uint32_t i = 0; i < m_graph.NodeCount(); ++i) {
    const double lat = m_graph.At(i).lat * (1.0 / (1 << 23));
    if (lat < low || lat > high || !IsDirect(m_request.from.Distance(m_graph.Place(i)))) continue;
    Link(m_start, NodeOf(i));
  }
}

// Several airways may follow one stretch, which is one neighbour.
void Search::Expand(RouteNode& node) {
  for (const AirwayGraph::Arc& arc : m_graph.ArcsFrom(node.Number())) {
    if (!IsFlown(arc)) continue;
    RouteNode& other = NodeOf(arc.to);
    K7PathNode** const known = node.Adjacent();
    if (std::find(known, known + node.AdjCnt(), &other) == known + node.AdjCnt()) Link(node, other);
    if (m_isFull) return;
  }
  if (IsDirect(node.HeurCost())) Link(node, m_end);
}

void Search::NearestToStart(SearchResult& result) const {
  for (uint32_t i = 0; i < m_graph.NodeCount(); ++i) {
    const auto arcs = m_graph.ArcsFrom(i);
    const double distance = m_request.from.Distance(m_graph.Place(i));
    if (distance >= result.nearestNM ||
        std::none_of(arcs.begin(), arcs.end(), [&](auto& arc) { return IsFlown(arc); }))
      continue;
    result.nearest = i;
    result.nearestNM = distance;
  }
}

void Search::NearestToEnd(SearchResult& result) const {
  for (const RouteNode& node : m_nodes) {
    if (node.PathCost() >= K7PathNode::UNREACHED || node.HeurCost() >= result.nearestNM) continue;
    result.nearest = node.Number();
    result.nearestNM = node.HeurCost();
  }
}

SearchResult Search::Run() {
  SearchResult result;
  result.nearest = m_graph.NodeCount();
  result.nearestNM = INFINITY;
  const K7PathNode* const reached = m_start.ShortestPath();
  if (m_isFull) {
    result.what = SearchResult::NO_MEMORY;
  } else if (reached) {
    result.what = SearchResult::FOUND;
    for (const K7PathNode* node = reached->Parent(); node && node != &m_start; node = node->Parent())
      result.nodes.push_back(static_cast<const RouteNode*>(node)->Number());
    std::reverse(result.nodes.begin(), result.nodes.end());
  } else {
    const bool isAway =
        std::any_of(m_nodes.begin(), m_nodes.end(), [](const RouteNode& node) { return node.AdjCnt() > 0; });
    result.what = isAway ? SearchResult::NO_WAY_THERE : SearchResult::NO_WAY_ON;
    isAway ? NearestToEnd(result) : NearestToStart(result);
  }
  return result;
}

}  // namespace

SearchResult SearchRoute(const AirwayGraph& graph, const SearchRequest& request) {
  return Search(graph, request).Run();
}

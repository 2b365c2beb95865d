// Chains of airway segments, which carry no order of their own.
#pragma once

#include <k7/geodesy/latlon.h>

#include <vector>

/// A segment between two nodes, by their numbers.
struct ChainEdge {
  int from;
  int to;
};
struct ChainStep {
  int edge;
  bool reversed;  ///< passed from its `to` to its `from`
};
using Chain = std::vector<ChainStep>;

/// Cuts a net into chains, so that each edge is in one of them. A chain begins where an odd number of edges
/// meets, the westernmost such node first, and goes on until no edge is left; where several are, along the
/// one that turns least, at its beginning the most westerly. A ring begins at its westernmost node. The nodes
/// decide, not the order of the edges. `nodes` may hold more than the edges use. n log n in the edges,
/// however many meet at a node.
std::vector<Chain> ChainEdges(const std::vector<K7LatLon>& nodes, const std::vector<ChainEdge>& edges);

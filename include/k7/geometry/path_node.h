// K7PathNode: node of a graph that is searched for a cheapest path.
#pragma once

#include <k7/export.h>
#include <k7/foundation/heap.h>

#include <cstdint>

/// Base class of the nodes of a graph: derive from it, override cost, estimate and goal, link nodes with
/// `AddAdj`, and ask the start for its `ShortestPath`. The goal reached leads back to the start by `Parent`.
///
/// The search is best-first by cost so far plus estimate: A* (Hart, Nilsson, Raphael, "A Formal Basis for the
/// Heuristic Determination of Minimum Cost Paths", 1968) with an estimate that is never too high, Dijkstra's
/// with none. Costs are not negative, and no way around in a circle is free: ways of equal cost are followed
/// again. A search writes to the nodes it meets: one search at a time over a
/// graph, and before another one the host resets them with `Reset`.
///
/// **Colocation** is for searches in which one place may be reached in ways that do not compare by cost alone
/// (cheaper but later, at another altitude): each way is a node of its own, that the host makes in `Expand`.
/// Nodes of one place answer the same `ColocHead`, the node that heads the place's list; those that the
/// search has accepted hang on it by `Colocated`. A new node is rejected when one of the list is `BetterThan`
/// it, and drives out of the heap and the list those that it is better than.
class K7_API K7PathNode : public K7HeapObj {
 public:
  /// The cost of a node that was never reached; any cost from it on means that.
  static constexpr double UNREACHED = 1e30;

  K7PathNode() = default;
  explicit K7PathNode(K7PathNode* parent) : m_parent(parent) {}
  /// A new node with the same parent: neighbours, costs and place are not copied.
  K7PathNode(const K7PathNode& other) : K7HeapObj(other), m_parent(other.m_parent) {}
  K7PathNode& operator=(const K7PathNode&) = delete;
  virtual ~K7PathNode();

  /// The order of the search: true when this node's cost and estimate come to less than the other's. A class
  /// with another order overrides `HeapRank` too.
  virtual bool operator<(const K7PathNode& other) const;
  /// Called on the start before the search; false ends it without a path.
  virtual bool InitStartNode();
  /// True for a goal; here for a node without neighbours.
  virtual bool Stop();
  /// Called on each node that comes out of the open set, before its neighbours are looked at: the place to
  /// make them.
  virtual void Expand();
  /// Cost of the way to a neighbour; here 1.
  virtual double ArcCost(const K7PathNode& other) const;
  /// Estimate of the cost to the goal; here 0.
  virtual double Heuristic() const;
  /// Called after each expansion; false breaks the search off.
  virtual bool Show();
  /// In colocation: true when this way makes the other one to the same place pointless. Here false.
  virtual bool BetterThan(const K7PathNode& other) const;
  /// Head of the list of this node's place; null, as here, without colocation. A start with a head selects
  /// it.
  virtual K7PathNode* ColocHead() const;
  /// Called on a neighbour that colocation rejects, or drives out: the host may delete it, unless other nodes
  /// lead to it.
  virtual void DiscardNode();

  /// Appends a neighbour, which stays the host's. 0, or K7_ERR_MEMORY: it is then counted without being
  /// there, and `Adjacent` must not be used any more.
  int AddAdj(K7PathNode* node);
  /// The goal reached, or null when there is none, when the start has no neighbours, and when `Show` broke
  /// the search off or memory ran out.
  K7PathNode* ShortestPath();
  /// Forgets the last search: unreached, without parent and place list. Neighbours stay.
  void Reset();

  K7PathNode* Parent() const { return m_parent; }
  /// The neighbours; not checked.
  K7PathNode** Adjacent() const { return m_adjacent; }
  K7PathNode* Adjacent(int i) const { return m_adjacent[i]; }
  int AdjCnt() const { return m_adjCnt; }
  /// Cost so far, the estimate, and both together.
  double PathCost() const { return m_pathCost; }
  double HeurCost() const { return m_heurCost; }
  double ActualCost() const { return m_pathCost + m_heurCost; }
  /// The next node of the place's list.
  K7PathNode* Colocated() const { return m_colocated; }
  void Colocated(K7PathNode* node) { m_colocated = node; }
  /// The node of this place's list whose cost and estimate come to the least; this one without a list.
  K7PathNode* Nearest();

  bool Precedes(const K7HeapObj& other) const final;
  /// Cost and estimate.
  double HeapRank() const override;

 private:
  void Reach(K7PathNode& neighbour, K7Heap& open);
  void ReachColocated(K7PathNode& neighbour, K7Heap& open);
  bool CheckColocated(K7Heap& open);

  K7PathNode* m_parent = nullptr;
  K7PathNode** m_adjacent = nullptr;
  int32_t m_adjCnt = 0;
  double m_pathCost = UNREACHED;
  double m_heurCost = 0.0;
  K7PathNode* m_colocated = nullptr;
};

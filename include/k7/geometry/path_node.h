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
/// graph, and before another one the host resets them, and the heads of places, with `Reset`.
///
/// **Order.** The next node is the one that `operator<` puts first. A class that leaves it as it is, by cost
/// and estimate, should say so, which saves almost a third of the time:
///
///     double HeapRank() const override { return ActualCost(); }
///
/// **Colocation** is for searches in which the ways to one place do not compare by cost alone: one is
/// cheaper, another earlier or at another altitude. A node is then not a place but one way to it, made when
/// the node before it is expanded, so that one node only leads to it. A place is a plain K7PathNode that
/// takes no part in the search: the head of the list of the ways to it that the search has accepted, linked
/// by `Colocated`. A start that has a `ColocHead` selects this mode.
///
/// Each new way is checked against the list of its place, once its `PathCost` is known, but neither its
/// estimate nor its parent (`CheckColocated`). It is rejected when one of the list is `BetterThan` it, or its
/// cost is UNREACHED or more: `DiscardNode` tells it so. Else it joins the list, and those that it is
/// `BetterThan` leave it. Of these, one that still waits to be expanded leaves the search as well and gets
/// `DiscardNode`; one that was expanded stays, since ways lead on from it. The neighbours of the start are
/// neither checked nor listed. Whoever is on the list of a place when the search has ended is a way that no
/// other makes pointless; `Nearest`, asked of the head, is the best of them.
///
/// The cheapest way on a tank that holds FULL:
///
///     struct Place {
///       std::vector<Leg> legs;  // from here: to which place, at what cost, with how much fuel
///       K7PathNode head;
///       std::vector<std::unique_ptr<K7PathNode>> ways;  // to here
///     };
///     struct Way : K7PathNode {
///       Way(Place& p, double c, double f) : place(p), legCost(c), fuel(f) {}
///       void Expand() override {
///         for (const Leg& leg : place.legs) {
///           if (fuel + leg.fuel > FULL) continue;
///           auto& ways = leg.to->ways;
///           ways.push_back(std::make_unique<Way>(*leg.to, leg.cost, fuel + leg.fuel));
///           AddAdj(ways.back().get());
///         }
///       }
///       bool InitStartNode() override { return Expand(), true; }  // else nobody expands a start
///       double ArcCost(const K7PathNode& to) const override { return static_cast<const Way&>(to).legCost; }
///       bool Stop() override { return &place == goal; }
///       K7PathNode* ColocHead() const override { return &place.head; }
///       bool BetterThan(const K7PathNode& other) const override {
///         return PathCost() <= other.PathCost() && fuel <= static_cast<const Way&>(other).fuel;
///       }
///       double HeapRank() const override { return ActualCost(); }
///       Place& place;
///       double legCost, fuel;  // of the last leg; of all
///     };
///     Way start(from, 0, 0);
///     for (K7PathNode* at = start.ShortestPath(); at; at = at->Parent()) Show(static_cast<Way*>(at)->place);
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

  /// The order of the search: true when this node's cost and estimate come to less than the other's.
  virtual bool operator<(const K7PathNode& other) const;
  /// Called on the start before the search, and before its neighbours are looked at; false ends it without a
  /// path.
  virtual bool InitStartNode();
  /// True for a goal; here for a node without neighbours.
  virtual bool Stop();
  /// Called on each node that comes out of the open set, before its neighbours are looked at: the place to
  /// make them.
  virtual void Expand();
  /// Cost of the way to a neighbour; here 1. An expansion asks for the neighbours in their order, each once.
  virtual double ArcCost(const K7PathNode& other) const;
  /// Estimate of the cost to the goal; here 0.
  virtual double Heuristic() const;
  /// Called after each expansion; false breaks the search off.
  virtual bool Show();
  /// In colocation: true when this way makes the other one to the same place pointless, equal ones included.
  /// Here false: all ways are accepted.
  virtual bool BetterThan(const K7PathNode& other) const;
  /// In colocation: the head of the list of this node's place, the same for all ways to it. Null, as here:
  /// the start selects no colocation, another node is not checked.
  virtual K7PathNode* ColocHead() const;
  /// Called on a way that colocation rejects or drives out, when the search is done with it: the host may
  /// delete it. The node before it still has it among its neighbours.
  virtual void DiscardNode();

  /// Appends a neighbour, which stays the host's. 0, or K7_ERR_MEMORY: it is then counted without being
  /// there, and `Adjacent` must not be used any more.
  int AddAdj(K7PathNode* node);
  /// The goal reached, or null when there is none, when the start has no neighbours, and when `Show` broke
  /// the search off or memory ran out.
  K7PathNode* ShortestPath();
  /// Forgets the last search: unreached, without parent and place list. Neighbours stay.
  void Reset() {
    m_parent = nullptr;
    m_pathCost = UNREACHED;
    m_heurCost = 0.0;
    m_colocated = nullptr;
  }

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
  /// Of this node and the list of its place, the one whose cost and estimate come to the least. Of a plain
  /// head, which answers no head itself: of the list that hangs on it.
  K7PathNode* Nearest();

  bool Precedes(const K7HeapObj& other) const final;

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

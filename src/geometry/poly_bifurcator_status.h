// The edges that a parallel meets, from west to east.
#pragma once

#include "foundation/buffer.h"

#include <cstdint>

namespace k7poly {

/// A node holds one edge and what is known of the space to the east of it.
struct StatusNode {
  int edge;
  int left, right, parent;  // of the tree
  int prev, next;           // in the row
  uint32_t priority;
  bool isInside;
  int piece;    // of the space, when it is inside
  int pending;  // the eastern one of two pieces that met at the last vertex, or NONE
};

/// A row of nodes that is also a search tree, balanced by chance (a treap: Aragon and Seidel, "Randomized
/// search trees", 1989) with chances that are the same each time.
class Status {
 public:
  void Clear();

  StatusNode& operator[](int node) { return m_nodes[node]; }
  int Root() const { return m_root; }
  /// Puts a new node behind another, or in front of all with NONE. NONE without memory.
  int InsertAfter(int node, int edge);
  void Remove(int node);

 private:
  int Take();
  void Attach(int node, int parent, bool asLeft);
  void RotateUp(int node);
  void Link(int parent, int was, int now);

  Buffer<StatusNode> m_nodes;
  int m_root = -1;
  int m_first = -1;
  int m_free = -1;  // nodes to use again, by `next`
  uint32_t m_random = 1;
};

}  // namespace k7poly

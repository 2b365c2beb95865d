#include "geometry/poly_bifurcator_status.h"

#include "geometry/poly_bifurcator_graph.h"

namespace k7poly {

void Status::Clear() {
  m_nodes.Clear();
  m_root = m_first = m_free = NONE;
}

int Status::Take() {
  if (m_free != NONE) {
    const int node = m_free;
    m_free = m_nodes[node].next;
    return node;
  }
  return m_nodes.Extend(1) ? m_nodes.Count() - 1 : NONE;
}

int Status::InsertAfter(int node, int edge) {
  const int made = Take();
  if (made == NONE) return NONE;
  const int next = node == NONE ? m_first : m_nodes[node].next;
  m_random = m_random * 1664525u + 1013904223u;
  m_nodes[made] = {edge, NONE, NONE, NONE, node, next, m_random, false, NONE, NONE};
  (node == NONE ? m_first : m_nodes[node].next) = made;
  if (next != NONE) m_nodes[next].prev = made;
  // Of two neighbours in the row one has no child on the side of the other.
  if (node != NONE && m_nodes[node].right == NONE) {
    Attach(made, node, false);
  } else {
    Attach(made, next, true);
  }
  return made;
}

void Status::Attach(int node, int parent, bool asLeft) {
  m_nodes[node].parent = parent;
  if (parent == NONE) {
    m_root = node;
    return;
  }
  (asLeft ? m_nodes[parent].left : m_nodes[parent].right) = node;
  while (m_nodes[node].parent != NONE && m_nodes[m_nodes[node].parent].priority < m_nodes[node].priority)
    RotateUp(node);
}

void Status::Link(int parent, int was, int now) {
  if (parent == NONE) {
    m_root = now;
  } else {
    (m_nodes[parent].left == was ? m_nodes[parent].left : m_nodes[parent].right) = now;
  }
  if (now != NONE) m_nodes[now].parent = parent;
}

void Status::RotateUp(int node) {
  StatusNode& n = m_nodes[node];
  const int parent = n.parent;
  StatusNode& p = m_nodes[parent];
  Link(p.parent, parent, node);
  int& inner = p.left == node ? n.right : n.left;
  (p.left == node ? p.left : p.right) = inner;
  if (inner != NONE) m_nodes[inner].parent = parent;
  inner = parent;
  p.parent = node;
}

void Status::Remove(int node) {
  StatusNode& n = m_nodes[node];
  while (n.left != NONE && n.right != NONE)
    RotateUp(m_nodes[n.left].priority < m_nodes[n.right].priority ? n.right : n.left);
  Link(n.parent, node, n.left != NONE ? n.left : n.right);
  (n.prev == NONE ? m_first : m_nodes[n.prev].next) = n.next;
  if (n.next != NONE) m_nodes[n.next].prev = n.prev;
  n.next = m_free;
  m_free = node;
}

}  // namespace k7poly

#include <k7/foundation/error_string.h>
#include <k7/geometry/path_node.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

constexpr int GROW_BY = 4;

// A search waits for memory more than for anything else.
inline void ReadAhead([[maybe_unused]] const void* at) {
#if defined(__GNUC__)
  __builtin_prefetch(at);
#endif
}

}  // namespace

K7PathNode::~K7PathNode() { delete[] m_adjacent; }

bool K7PathNode::operator<(const K7PathNode& other) const { return other.ActualCost() > ActualCost(); }
bool K7PathNode::InitStartNode() { return true; }
bool K7PathNode::Stop() { return m_adjCnt == 0; }
void K7PathNode::Expand() {}
double K7PathNode::ArcCost(const K7PathNode&) const { return 1.0; }
double K7PathNode::Heuristic() const { return 0.0; }
bool K7PathNode::Show() { return true; }
bool K7PathNode::BetterThan(const K7PathNode&) const { return false; }
K7PathNode* K7PathNode::ColocHead() const { return nullptr; }
void K7PathNode::DiscardNode() {}

bool K7PathNode::Precedes(const K7HeapObj& other) const {
  return *this < static_cast<const K7PathNode&>(other);
}

int K7PathNode::AddAdj(K7PathNode* node) {
  // Counted also when the array could not be made: callers compare their own count with this one.
  const int32_t count = m_adjCnt++;
  if (count % GROW_BY == 0) {
    K7PathNode** const grown = new (std::nothrow) K7PathNode*[static_cast<size_t>(count + GROW_BY)];
    if (!grown) return K7_ERR_MEMORY;
    if (m_adjacent) std::copy_n(m_adjacent, count, grown);
    delete[] m_adjacent;
    m_adjacent = grown;
  }
  m_adjacent[count] = node;
  return 0;
}

// A way of equal cost replaces the one before and opens the node again: routes of equal cost prefer the later
// find.
inline void K7PathNode::Reach(K7PathNode& neighbour, K7Heap& open) {
  const double cost = ArcCost(neighbour) + m_pathCost;
  if (!(cost <= neighbour.m_pathCost)) return;
  if (neighbour.m_pathCost >= UNREACHED) neighbour.m_heurCost = neighbour.Heuristic();
  neighbour.m_pathCost = cost;
  neighbour.m_parent = this;
  open.Insert(&neighbour);
}

K7PathNode* K7PathNode::ShortestPath() {
  m_parent = nullptr;
  m_pathCost = m_heurCost = 0.0;
  if (!InitStartNode()) return nullptr;
  K7Heap open(K7_HEAP_MIN, 4);
  for (int i = 0; i < m_adjCnt; i++) {
    K7PathNode& first = *Adjacent(i);
    first.m_parent = this;
    first.m_pathCost = ArcCost(first);
    first.m_heurCost = first.Heuristic();
    open.Insert(&first);
  }
  const bool isColocated = ColocHead() != nullptr;
  while (K7HeapObj* const top = open.PopTop()) {
    K7PathNode& node = *static_cast<K7PathNode*>(top);
    if (node.Stop()) return &node;
    node.Expand();
    if (const K7HeapObj* const next = open.Top()) {
      ReadAhead(static_cast<const K7PathNode*>(next)->m_adjacent);
    }
    for (int i = 0; i < node.m_adjCnt; i++) {
      if (isColocated) {
        node.ReachColocated(*node.Adjacent(i), open);
      } else {
        node.Reach(*node.Adjacent(i), open);
      }
    }
    if (!open.IsValid() || !node.Show()) return nullptr;
  }
  return nullptr;
}

void K7PathNode::ReachColocated(K7PathNode& neighbour, K7Heap& open) {
  open.Delete(&neighbour);
  neighbour.m_pathCost = ArcCost(neighbour) + m_pathCost;
  if (!(neighbour.m_pathCost < UNREACHED) || !neighbour.CheckColocated(open)) {
    neighbour.DiscardNode();
    return;
  }
  neighbour.m_heurCost = neighbour.Heuristic();
  neighbour.m_parent = this;
  open.Insert(&neighbour);
}

// Against the nodes of its place that were accepted before. Only an accepted node changes the list.
bool K7PathNode::CheckColocated(K7Heap& open) {
  K7PathNode* const head = ColocHead();
  if (!head) return true;
  for (K7PathNode* other = head->m_colocated; other; other = other->m_colocated) {
    if (other != this && other->BetterThan(*this)) return false;
  }
  for (K7PathNode* before = head; before->m_colocated;) {
    K7PathNode* const other = before->m_colocated;
    if (other != this && !BetterThan(*other)) {
      before = other;
      continue;
    }
    before->m_colocated = other->m_colocated;
    other->m_colocated = nullptr;
    // One that was expanded already stays: its ways lead on.
    if (other != this && open.Delete(other)) other->DiscardNode();
  }
  if (this != head) {
    m_colocated = head->m_colocated;
    head->m_colocated = this;
  }
  return true;
}

K7PathNode* K7PathNode::Nearest() {
  K7PathNode* nearest = this;
  const K7PathNode* const head = ColocHead();
  for (K7PathNode* node = (head ? head : this)->m_colocated; node; node = node->m_colocated) {
    if (node->ActualCost() < nearest->ActualCost()) nearest = node;
  }
  return nearest;
}

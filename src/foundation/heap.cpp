#include <k7/foundation/heap.h>

#include <k7/foundation/error_string.h>

#include "foundation/alloc.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>

double K7HeapObj::HeapRank() const { return std::numeric_limits<double>::quiet_NaN(); }

K7Heap::K7Heap(K7HeapType type, int d) : m_branching(d), m_type(type) {
  if (d > 0 && std::has_single_bit(static_cast<unsigned>(d))) {
    m_shift = std::countr_zero(static_cast<unsigned>(d));
  }
  if (d < 1) {
    m_status = K7_ERR_BAD_ARGUMENT;
  } else if (!Grow()) {
    m_status = K7_ERR_MEMORY;
  }
}

K7Heap::~K7Heap() { std::free(m_slots); }

int K7Heap::Insert(K7HeapObj* obj) {
  if (m_status) return m_status;
  if (!obj) return m_status = K7_ERR_BAD_ARGUMENT;
  Delete(obj);
  if (m_count == m_capacity && !Grow()) return m_status = K7_ERR_MEMORY;
  const double rank = obj->HeapRank();
  m_isRanked = (m_isRanked || m_count == 0) && !std::isnan(rank);
  SiftUp(m_count++, {obj, m_type == K7_HEAP_MIN ? rank : -rank});
  return 0;
}

K7HeapObj* K7Heap::PopTop() {
  if (m_count == 0) return nullptr;
  K7HeapObj* const top = m_slots[0].obj;
  Delete(top);
  return top;
}

bool K7Heap::Delete(K7HeapObj* obj) {
  if (!obj || obj->m_position < 0 || obj->m_position >= m_count || m_slots[obj->m_position].obj != obj)
    return false;
  const int slot = obj->m_position;
  obj->m_position = -1;
  --m_count;
  if (slot == m_count) return true;
  const Slot moved = m_slots[m_count];
  SiftDown(SiftUp(slot, moved), moved);
  return true;
}

// Members lie anywhere in memory, and to compare two of them is to wait for both: ranks stand in the slots.
// One that is not a number, that is a member without a rank, is neither less nor as great.
inline bool K7Heap::Rises(const Slot& member, const Slot& above) const {
  if (member.rank < above.rank) return true;
  if (member.rank >= above.rank) return false;
  return m_type == K7_HEAP_MIN ? member.obj->Precedes(*above.obj) : above.obj->Precedes(*member.obj);
}

// The child that rises above its siblings, the first of equals; -1 for a slot without children.
inline int K7Heap::ChildToFollow(int slot) const {
  const int64_t first = static_cast<int64_t>(slot) * m_branching + 1;
  if (first >= m_count) return -1;
  int best = static_cast<int>(first);
  const int64_t end = std::min<int64_t>(first + m_branching, m_count);
  if (!m_isRanked || m_branching == 2) {
    for (int child = best + 1; child < end; ++child)
      if (Rises(m_slots[child], m_slots[best])) best = child;
    return best;
  }
  // Selections, not jumps: which of several children is the least no processor foresees. Of two it guesses
  // well enough, and is ahead with the next level.
  double least = m_slots[best].rank;
  for (int child = best + 1; child < end; ++child) {
    const double rank = m_slots[child].rank;
    best = rank < least ? child : best;
    least = rank < least ? rank : least;
  }
  return best;
}

inline void K7Heap::Put(int slot, const Slot& member) {
  m_slots[slot] = member;
  member.obj->m_position = slot;
}

// Puts `member` into the free `slot` or above it; where it came to lie.
int K7Heap::SiftUp(int slot, Slot member) {
  while (slot > 0) {
    // ceil(slot / d) - 1
    const int parent = m_shift < 0 ? (slot - 1) / m_branching : (slot - 1) >> m_shift;
    if (!Rises(member, m_slots[parent])) break;
    Put(slot, m_slots[parent]);
    slot = parent;
  }
  Put(slot, member);
  return slot;
}

// Puts `member` into the free `slot` or below it.
void K7Heap::SiftDown(int slot, Slot member) {
  for (int child; (child = ChildToFollow(slot)) >= 0 && Rises(m_slots[child], member);) {
    Put(slot, m_slots[child]);
    slot = child;
  }
  Put(slot, member);
}

bool K7Heap::Grow() {
  static const int BLOCK = 1024;
  if (m_capacity > INT32_MAX - BLOCK) return false;
  void* const slots = ReallocArray(m_slots, m_capacity + BLOCK, sizeof(Slot));
  if (!slots) return false;
  m_slots = static_cast<Slot*>(slots);
  m_capacity += BLOCK;
  return true;
}

#include <k7/foundation/heap.h>

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cstdlib>

K7Heap::K7Heap(K7HeapType type, int d) : m_branching(d), m_type(type) {
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
  Put(m_count, obj);
  SiftUp(m_count++);
  return 0;
}

K7HeapObj* K7Heap::PopTop() {
  if (m_count == 0) return nullptr;
  K7HeapObj* const top = m_slots[0];
  Delete(top);
  return top;
}

bool K7Heap::Delete(K7HeapObj* obj) {
  if (!obj || obj->m_position < 0 || obj->m_position >= m_count || m_slots[obj->m_position] != obj)
    return false;
  const int slot = obj->m_position;
  obj->m_position = -1;
  --m_count;
  if (slot == m_count) return true;
  K7HeapObj* const moved = m_slots[m_count];
  Put(slot, moved);
  SiftUp(slot);
  SiftDown(moved->m_position);
  return true;
}

bool K7Heap::Rises(const K7HeapObj& member, const K7HeapObj& above) const {
  return m_type == K7_HEAP_MIN ? member.Precedes(above) : above.Precedes(member);
}

// ceil(slot / d) - 1: none (-1) for the top.
int K7Heap::Parent(int slot) const { return slot > 0 ? (slot - 1) / m_branching : -1; }

// The child that rises above its siblings, the first of equals; -1 for a slot without children.
int K7Heap::ChildToFollow(int slot) const {
  const int64_t first = static_cast<int64_t>(slot) * m_branching + 1;
  if (first >= m_count) return -1;
  int best = static_cast<int>(first);
  const int64_t end = std::min<int64_t>(first + m_branching, m_count);
  for (int child = best + 1; child < end; ++child)
    if (Rises(*m_slots[child], *m_slots[best])) best = child;
  return best;
}

void K7Heap::Put(int slot, K7HeapObj* obj) {
  m_slots[slot] = obj;
  obj->m_position = slot;
}

void K7Heap::SiftUp(int slot) {
  K7HeapObj* const member = m_slots[slot];
  for (int parent = Parent(slot); parent >= 0 && Rises(*member, *m_slots[parent]); parent = Parent(slot)) {
    Put(slot, m_slots[parent]);
    slot = parent;
  }
  Put(slot, member);
}

void K7Heap::SiftDown(int slot) {
  K7HeapObj* const member = m_slots[slot];
  for (int child = ChildToFollow(slot); child >= 0 && Rises(*m_slots[child], *member);
       child = ChildToFollow(slot)) {
    Put(slot, m_slots[child]);
    slot = child;
  }
  Put(slot, member);
}

bool K7Heap::Grow() {
  static const int BLOCK = 1024;
  if (m_capacity > INT32_MAX - BLOCK) return false;
  const size_t capacity = static_cast<size_t>(m_capacity) + BLOCK;
  if (capacity > SIZE_MAX / sizeof(K7HeapObj*)) return false;
  void* const slots = std::realloc(m_slots, capacity * sizeof(K7HeapObj*));
  if (!slots) return false;
  m_slots = static_cast<K7HeapObj**>(slots);
  m_capacity += BLOCK;
  return true;
}

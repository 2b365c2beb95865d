#include <k7/foundation/cache.h>

#include <k7/foundation/error_string.h>

#include <algorithm>

namespace {

int SizeOf(const K7CacheObj& obj) { return std::max(obj.CacheSize(), 0); }

}  // namespace

bool K7CacheObj::CanFree() const { return true; }

K7Cache::K7Cache(int maxSize) : m_maxSize(maxSize), m_objects(8) {}

void K7Cache::Init(int maxSize) {
  m_maxSize = maxSize;
  m_curSize = 0;
  m_objects.Clear();
}

int K7Cache::Insert(K7CacheObj* obj) {
  if (!obj) return 0;
  const int size = SizeOf(*obj);
  const bool cached = m_objects.ValidIdx(obj->m_position) && At(obj->m_position) == obj;
  const int err = cached ? Remove(obj->m_position) : EvictFor(size);
  if (size > static_cast<int64_t>(m_maxSize) - m_curSize) return err;
  if (const int appendErr = m_objects += obj) return appendErr;
  obj->m_position = m_objects.Count() - 1;
  m_curSize += size;
  return err;
}

int K7Cache::Remove(int position) {
  if (!m_objects.ValidIdx(position)) return K7_ERR_BAD_ARGUMENT;
  K7CacheObj* const obj = At(position);
  if (!obj) return K7_ERR_MEMORY;
  m_curSize = std::max(m_curSize - SizeOf(*obj), 0);
  obj->m_position = -1;
  for (int i = position + 1; i < m_objects.Count(); ++i)
    if (At(i)) --At(i)->m_position;
  m_objects.K7Array::Remove(position, 1);
  return 0;
}

int K7Cache::Purge() { return EvictFor(0); }

// Walks from the oldest object on until `size` more fits the budget.
int K7Cache::EvictFor(int size) {
  for (int i = 0; i < m_objects.Count() && size > static_cast<int64_t>(m_maxSize) - m_curSize;) {
    K7CacheObj* const obj = At(i);
    if (!obj) return K7_ERR_MEMORY;
    if (!obj->CanFree()) {
      ++i;
      continue;
    }
    if (const int err = Remove(i)) return err;
    obj->FreeContents();
  }
  return 0;
}

int K7Cache::FreeAll() {
  int err = 0;
  for (int i = 0; i < m_objects.Count(); ++i) {
    K7CacheObj* const obj = At(i);
    if (!obj) {
      err = K7_ERR_INVALID_DATA;
      continue;
    }
    obj->m_position = -1;
    obj->FreeContents();
  }
  m_objects.Clear();
  m_curSize = 0;
  return err;
}

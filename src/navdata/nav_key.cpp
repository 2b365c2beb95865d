#include <k7/navdata/nav_key.h>

int K7NavKey::Comp(const void* a, const void* b) {
  const K7NavKey& x = *static_cast<const K7NavKey*>(a);
  const K7NavKey& y = *static_cast<const K7NavKey*>(b);
  if (x == y) return 0;
  const uint32_t difference = x.m_navType != y.m_navType ? x.m_navType - y.m_navType : x.m_idx - y.m_idx;
  return static_cast<int32_t>(difference) > 0 ? 1 : -1;
}

K7NavKeyArray::K7NavKeyArray(int growBy) : K7Array(sizeof(K7NavKey), growBy, K7NavKey::Comp) {}

#include <k7/navdata/nav_rec.h>

#include <cstdlib>

int K7NavRec::Comp(const void* a, const void* b) {
  const K7NavKey& x = static_cast<const K7NavRec*>(a)->key;
  const K7NavKey& y = static_cast<const K7NavRec*>(b)->key;
  return static_cast<int>(x.NavType() != y.NavType() ? x.NavType() - y.NavType() : x.Idx() - y.Idx());
}

void* K7NavRec::operator new(size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void K7NavRec::operator delete(void* record) noexcept { std::free(record); }

// A leak shows without a sanitizer, too.
#pragma once

#include <malloc.h>

/// Whether `work` holds more memory when it was done twice: what it leaves once may be the allocator's store.
template <class Work>
bool Leaks(Work work) {
  work();
  const size_t before = mallinfo2().uordblks;
  work();
  return mallinfo2().uordblks != before;
}

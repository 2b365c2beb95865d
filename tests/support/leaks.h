// A leak shows without a sanitizer, too.
#pragma once

#include <malloc.h>

/// Whether `work` holds more memory each time it is done; the allocator's own store is filled once.
template <class Work>
bool Leaks(Work work) {
  work();
  const size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 50; ++i) work();
  return mallinfo2().uordblks != before;
}

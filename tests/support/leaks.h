// A leak shows without a sanitizer, too.
#pragma once

#include <malloc.h>

/// Whether `work` holds more memory each time it is done. What the allocator keeps at hand varies by less
/// than the smallest block a round.
template <class Work>
bool Leaks(Work work) {
  constexpr int ROUNDS = 400;
  constexpr size_t SMALLEST_BLOCK = 16;
  for (int i = 0; i < 8; ++i) work();
  const size_t before = mallinfo2().uordblks;
  for (int i = 0; i < ROUNDS; ++i) work();
  const size_t after = mallinfo2().uordblks;
  return after > before && after - before >= ROUNDS * SMALLEST_BLOCK;
}

// A leak shows without a sanitizer, too.
#pragma once

#include <malloc.h>
#include <cstddef>

/// Bytes that the process has allocated and not freed.
inline size_t HeldBytes() {
#ifdef _WIN32
  size_t held = 0;
  _HEAPINFO block{};
  while (_heapwalk(&block) == _HEAPOK) held += block._useflag == _USEDENTRY ? block._size : 0;
  return held;
#else
  return mallinfo2().uordblks;
#endif
}

/// Whether `work` holds more memory each time it is done. What the allocator keeps at hand varies by less
/// than the smallest block a round.
template <class Work>
bool Leaks(Work work) {
  constexpr int ROUNDS = 400;
  constexpr size_t SMALLEST_BLOCK = 16;
  for (int i = 0; i < 8; ++i) work();
  const size_t before = HeldBytes();
  for (int i = 0; i < ROUNDS; ++i) work();
  const size_t after = HeldBytes();
  return after > before && after - before >= ROUNDS * SMALLEST_BLOCK;
}

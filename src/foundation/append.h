// Appending to arrays that may become long.
#pragma once

#include <k7/foundation/array.h>

#include <bit>

/// Appends `n` elements. Short arrays grow by their blocks, long ones double, so that a million elements are
/// not copied block by block. 0 or K7_ERR_MEMORY.
inline int Append(K7Array& array, const void* elems, int n = 1) {
  static constexpr unsigned LONG = 256, LONGEST = 1U << 30;
  const unsigned count = static_cast<unsigned>(array.Count()), need = count + static_cast<unsigned>(n);
  if (need > LONG && need < LONGEST && std::bit_ceil(count) < need)
    if (const int err = array.GrowTo(static_cast<int>(std::bit_ceil(need)), false)) return err;
  return array.Insert(elems, -1, n);
}
inline int AppendPtr(K7PtrArray& array, void* p) { return Append(array, &p); }
inline int AppendInt(K7IntArray& array, int value) { return Append(array, &value); }

// Memory for counts that come from files and from hosts. In a size_t of 32 bits their products wrap, and an
// array beyond the address space makes `new` throw for all its std::nothrow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

/// Whether `count` elements of `size` bytes can lie in one block.
inline bool FitsBlock(int64_t count, size_t size) {
  return count >= 0 && count <= PTRDIFF_MAX / static_cast<ptrdiff_t>(size);
}

/// `new T[count]`; null without memory.
template <class T>
T* NewArray(int64_t count) {
  return FitsBlock(count, sizeof(T)) ? new (std::nothrow) T[static_cast<size_t>(count)] : nullptr;
}

/// `realloc` for `count` elements of `size` bytes; null without memory, and `block` is as it was.
inline void* ReallocArray(void* block, int64_t count, size_t size) {
  return FitsBlock(count, size) ? std::realloc(block, static_cast<size_t>(count) * size) : nullptr;
}

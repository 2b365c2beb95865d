// Memory that grows, never shrinks and is used again: of the stages of a path, of cutting features into
// tiles.
#pragma once

#include "foundation/alloc.h"

#include <cstddef>
#include <cstdlib>
#include <type_traits>

/// A growing row of plain values. Without memory what is added is dropped and `Failed` tells so until the
/// next `Clear` or `Truncate`: a stage checks once, at its end.
template <class T>
class Buffer {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  Buffer() = default;
  ~Buffer() { std::free(m_data); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  void Clear() { Truncate(0); }
  void Truncate(int count) {
    m_count = count;
    m_failed = false;
  }
  /// By value: it may be one of the row itself.
  void Add(T value) {
    if (m_count < m_capacity || Grow(1)) m_data[m_count++] = value;
  }
  /// Room for `count` more values, which are then part of the buffer; null without memory.
  T* Extend(int count) {
    if (count > m_capacity - m_count && !Grow(count)) return nullptr;
    T* const first = m_data + m_count;
    m_count += count;
    return first;
  }

  bool Failed() const { return m_failed; }
  int Count() const { return m_count; }
  T* Data() { return m_data; }
  const T* Data() const { return m_data; }
  T& operator[](int i) { return m_data[i]; }
  const T& operator[](int i) const { return m_data[i]; }
  T& Last() { return m_data[m_count - 1]; }

 private:
  bool Grow(int more) {
    static constexpr int LEAST = 64, MOST = 1 << 30;
    if (more > MOST / 2 - m_count / 2) m_failed = true;
    if (m_failed) return false;
    int capacity = m_capacity < LEAST ? LEAST : m_capacity;
    while (capacity - m_count < more) capacity *= 2;
    void* const grown = ReallocArray(m_data, capacity, sizeof(T));
    if (!grown) {
      m_failed = true;
      return false;
    }
    m_data = static_cast<T*>(grown);
    m_capacity = capacity;
    return true;
  }

  T* m_data = nullptr;
  int m_count = 0;
  int m_capacity = 0;
  bool m_failed = false;
};

// What targets over numbers take from their input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

inline void Require(bool condition) {
  if (!condition) std::abort();
}

class Input {
 public:
  Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

  bool IsEmpty() const { return m_size == 0; }
  template <class T>
  T Take() {
    T value{};
    const size_t n = sizeof value < m_size ? sizeof value : m_size;
    if (n > 0) std::memcpy(&value, m_data, n);
    m_data += n;
    m_size -= n;
    return value;
  }
  int Below(int limit) { return Take<uint8_t>() % limit; }
  // A part of +-`size`, often in whole 256ths of it and at its ends; else any bits at all.
  double Number(double size) {
    switch (Below(4)) {
      case 0:
        return size * Take<int8_t>() / 128;
      case 1:
        return size * Take<int16_t>() / 32767;
      case 2:
        return size * Take<int32_t>() / 2147483647.0;
      default:
        return Take<double>();
    }
  }

 private:
  const uint8_t* m_data;
  size_t m_size;
};

// Headers of tiles and regions as they stand in files.
#pragma once

#include <k7/projection/chart_rect.h>

#include <cstddef>
#include <cstring>

namespace k7ter {

/// Lays values one behind the other, without gaps.
class Composer {
 public:
  explicit Composer(char* out) : m_next(out) {}

  template <class T>
  void Add(const T& value) {
    std::memcpy(m_next, &value, sizeof value);
    m_next += sizeof value;
  }
  void Add(const K7ChartRect& bounds) {
    for (const double limit : {bounds.North(), bounds.South(), bounds.East(), bounds.West()}) Add(limit);
  }

 private:
  char* m_next;
};

}  // namespace k7ter

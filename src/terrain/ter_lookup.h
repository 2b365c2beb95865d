// What tiles, regions and levels share: finding cells, and headers as they stand in files.
#pragma once

#include <k7/projection/chart_rect.h>

#include "terrain/ter_grid.h"

#include <climits>
#include <cstddef>
#include <cstring>

namespace k7ter {

/// Stands for an elevation that can be known only when a grid is read.
inline constexpr int NOT_READ = INT_MIN;

/// Truncates `x` towards zero. False, with `index` unchanged, unless that lies within [0, count).
inline bool Index(double x, int count, int& index) {
  if (count < 1 || !(x > -1.0) || !(x < count)) return false;
  index = static_cast<int>(x);
  return true;
}

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

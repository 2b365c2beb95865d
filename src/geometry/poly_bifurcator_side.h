// On which side of a line a point lies, without rounding.
#pragma once

#include <k7/geometry/shp_obj.h>

#include <cmath>

namespace k7poly {

/// Coordinates whose products neither overflow nor lose digits at the small end.
inline constexpr double MOST = 1e120;
inline constexpr double LEAST = 1e-120;

/// As `Side`; the number is good to its last digits.
double ExactSide(const K7ShpXY& a, const K7ShpXY& b, const K7ShpXY& c);

/// Twice the area of the triangle a b c, positive for `c` to the left of the line from `a` to `b`. The sign,
/// and 0, are exact.
inline double Side(const K7ShpXY& a, const K7ShpXY& b, const K7ShpXY& c) {
  // Shewchuk's bound for the rounding of this expression: (3 + 16 e) e with e = 2^-53.
  constexpr double BOUND = 3.3306690738754716e-16;
  const double left = (a.x - c.x) * (b.y - c.y);
  const double right = (a.y - c.y) * (b.x - c.x);
  const double area = left - right;
  return std::fabs(area) >= BOUND * (std::fabs(left) + std::fabs(right)) ? area : ExactSide(a, b, c);
}

/// Whether the sweep comes to `a` before `b`: from south to north, along a parallel from west to east.
inline bool Before(const K7ShpXY& a, const K7ShpXY& b) { return a.y < b.y || (a.y == b.y && a.x < b.x); }
inline bool Same(const K7ShpXY& a, const K7ShpXY& b) { return a.x == b.x && a.y == b.y; }

}  // namespace k7poly

// Where the plane of latitude and longitude ends: at 180 degrees and at the poles.
#pragma once

#include <cmath>

/// Data sets were cut along 180 degrees and closed along a pole with points up to this far beside them.
inline constexpr double SEAM_WIDTH = 1e-3;
inline constexpr double POLE_WIDTH = 2e-3;
/// Longitudes that differ by less than this are one.
inline constexpr double SAME_PLACE = 1e-6;

inline bool OnSeam(double lon) { return std::fabs(std::fabs(lon) - 180) < SEAM_WIDTH; }
inline bool OnPole(double lat) { return std::fabs(lat) > 90 - POLE_WIDTH; }

/// The longitude, carried on across 180 to within half a turn of the one before. An edge of exactly 180 is
/// one already, and stays as it runs: ties go to even, which is no turn.
inline double CarriedOn(double before, double lon) {
  const double step = before - lon;
  return std::fabs(step) > 180 ? lon + 360 * std::nearbyint(step / 360) : lon;
}

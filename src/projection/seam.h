// Where the plane of latitude and longitude ends: at 180 degrees and at the poles.
#pragma once

#include <cmath>

/// Data sets were cut along 180 degrees and closed along a pole with points up to this far beside them.
inline constexpr double SEAM_WIDTH = 1e-3;
inline constexpr double POLE_WIDTH = 2e-3;
/// Longitudes that differ by less than this are one.
inline constexpr double SAME_PLACE = 1e-6;

/// As far as rows are carried on from 180 to 180.
inline constexpr double FARTHEST_LON = 540;

/// A little beyond the poles and one turn beyond the map is still read as a position.
inline bool OnEarth(double lat, double lon) {
  return std::fabs(lat) <= 90.0001 && std::fabs(lon) <= FARTHEST_LON;
}
inline bool OnSeam(double lon) { return std::fabs(std::fabs(lon) - 180) < SEAM_WIDTH; }
inline bool OnPole(double lat) { return std::fabs(lat) > 90 - POLE_WIDTH; }

/// The longitude, carried on across 180 to within half a turn of the one before. An edge of exactly 180 is
/// one already, and stays as it runs: ties go to even, which is no turn.
inline double CarriedOn(double before, double lon) {
  const double step = before - lon;
  return std::fabs(step) > 180 ? lon + 360 * std::nearbyint(step / 360) : lon;
}

/// Carries a row of points on; `lonOf(i)` is the longitude of one.
template <class LonOf>
void CarryOn(int count, LonOf lonOf) {
  for (int i = 1; i < count; ++i) lonOf(i) = CarriedOn(lonOf(i - 1), lonOf(i));
}

/// Answers whether a closed row is a ring when it is carried on. One that does not close then runs around a
/// pole. One of which nothing but a line would be left is a band around the world, and one that winds on and
/// on is no ring.
template <class LonOf>
bool CarriesOnToRing(int count, LonOf lonOf) {
  if (count == 0) return false;
  double lon = lonOf(0), west = lon, east = lon;
  for (int i = 1; i < count; ++i) {
    lon = CarriedOn(lon, lonOf(i));
    west = std::fmin(west, lon);
    east = std::fmax(east, lon);
  }
  return std::fabs(lon - lonOf(0)) < SAME_PLACE && east - west > SAME_PLACE && east - west < FARTHEST_LON;
}

// The runways of an airport from end to end: a store has each end as a record of its own.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/nav_data.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

inline constexpr double FEET_PER_NM = 1852 / 0.3048;

struct RunwayEnd {
  std::string ident;  ///< "16L"; empty where the store has no such end
  K7LatLon at;
  double magneticCourse = NAN;  ///< of who lands there; not a number where the store has no such end
  int displaced = 0;            ///< feet from the end to its threshold
  std::optional<int> elev{};    ///< of the threshold, feet
};

struct RunwayStrip {
  std::array<RunwayEnd, 2> ends;
  double course;      ///< true, from the first end to the second
  int length, width;  ///< feet
  bool isClosed = false;

  bool IsHelipad() const { return ends[0].ident.starts_with('H'); }
};

/// Those of known length. An end that the store does not have, or has much farther away than the runway is
/// long, lies where the first one's course leads; a helipad lies about its place.
std::vector<RunwayStrip> RunwaysOf(K7NavData& data, const K7NavKey& airport);

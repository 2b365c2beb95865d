// A route cut into strips, each of which a chart of one scale shows whole.
#pragma once

#include "route/route.h"

#include <vector>

/// What a chart of the strips' scale holds, nautical miles.
struct StripFrame {
  double width, height;
  bool trackUp = false;  ///< turned so that the way runs up the chart; else north is up
};

struct RouteStrip {
  K7LatLon center;
  double turn = 0;          ///< the true course that points up, degrees
  double from = 0, to = 0;  ///< the stretch of the route, nautical miles from its start
};

/// More are not made of any route.
inline constexpr size_t MOST_STRIPS = 99;

/// Strips from the start to the end, about equally long where the route is straight, each with the last tenth
/// of the one before or a little less. North up a stretch lies in the middle four fifths of its chart, track
/// up in the middle third from side to side. Empty for a route without length, and where it takes too many.
std::vector<RouteStrip> CutStrips(const Route& route, const StripFrame& frame);

/// Where a corner of a strip's chart lies: (-1, -1) is the lower left one, (1, 1) the upper right one.
K7LatLon CornerOf(const RouteStrip& strip, const StripFrame& frame, int right, int up);

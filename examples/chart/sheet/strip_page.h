// One strip of a route on a page: its chart, and above it what it is and where it lies.
#pragma once

#include "layers/chart.h"
#include "sheet/route_strips.h"
#include "sheet/trip_pages.h"

/// How large a denominator's ground a page shows.
StripFrame FrameOnPaper(const Paper& paper, double scale, bool trackUp);

struct StripPages {
  const Route& route;
  const std::vector<RouteStrip>& strips;
  StripFrame frame;
  double scale;          ///< denominator
  ChartRequest request;  ///< projection and its parameters
};
/// Draws strip number `index`. Empty, or what went wrong.
std::string DrawStrip(TripPages& pages, const StripPages& strips, size_t index, Chart& chart);

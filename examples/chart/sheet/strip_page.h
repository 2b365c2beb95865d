// One strip of a route on a page: its chart, and above it what it is and where it lies.
#pragma once

#include "layers/chart.h"
#include "sheet/route_strips.h"
#include "sheet/trip_pages.h"

/// What a page shows at a scale of that denominator.
StripFrame FrameOnPaper(const Paper& paper, double scale, bool trackUp);

/// The denominator of the largest of some usual scales, from 1 : 500,000 on, that takes a dozen strips at
/// most.
double UsualScale(const Route& route, const Paper& paper, bool trackUp);

struct StripPages {
  const Route& route;
  const std::vector<RouteStrip>& strips;
  StripFrame frame;
  double scale;          ///< denominator
  ChartRequest request;  ///< projection and its parameters
};
/// Draws strip number `index`. Empty, or what went wrong.
std::string DrawStrip(TripPages& pages, const StripPages& strips, size_t index, Chart& chart);

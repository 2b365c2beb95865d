// The chart that a route fills.
#pragma once

#include "layers/chart.h"

#include "route/route.h"

/// Sets centre and range so that the whole route, bends of its great circles included, lies within a window
/// of `width` by `height` pixels with room around it for lettering. Leaves them where the projection has no
/// such chart, and the range of one whose eye is placed by its parameters.
void FrameRoute(const Route& route, int width, int height, ChartRequest& request);

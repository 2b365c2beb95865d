// The scale in a chart's margin: a bar of nautical miles and the representative fraction.
#pragma once

#include <cairo.h>

/// Draws it with its right end at `right` and the bar's foot at `y`, at most `room` pixels long. True at the
/// chart's centre, at 96 pixels an inch.
void DrawScaleBar(cairo_t* cairo, double nmPerPixel, double right, double y, double size, double room);

// A trip sheet: pages to print and fly by. The legs as a table, the ground under them from the side, and
// strips of chart along the way.
#pragma once

#include "sheet/strip_page.h"
#include "sheet/trip.h"

/// Draws all pages onto a surface of the paper's size that has several. Empty, or what went wrong.
std::string DrawTripSheet(cairo_t* cairo, const Paper& paper, const Theme& theme, const Trip& trip,
                          const StripPages& strips, Chart& chart);

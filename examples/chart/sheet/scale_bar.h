// The scale of a chart at the foot of its sheet.
#pragma once

#include "ink/label_plan.h"

#include <k7/projection/map_view.h>

/// Draws a bar of a round length, right-aligned at `right`, and the representative fraction under it. Where a
/// mile to the north and one to the east differ by more than 2 % at the centre, there is a bar for each;
/// where they do only further out, the margin says by how much. What has no room at `top` beside what is
/// placed already goes below.
void DrawScaleBar(cairo_t* cairo, const Theme& theme, const K7MapView& view, double right, double top,
                  double size, LabelPlan& plan);

/// The same for what is measured along the ground: a bar of feet, and one of metres under it.
void DrawGroundScale(cairo_t* cairo, const Theme& theme, const K7MapView& view, double right, double top,
                     double size, LabelPlan& plan);

/// "2,400,000": the denominator of the scale, to two digits.
std::string Denominator(double scale);
/// Of a scale of so many nautical miles a pixel.
double ScaleDenominator(double nmPerPixel);
/// "lines made for 1 : 50,000,000", of data of that scale; empty where the chart does not enlarge them.
std::string DataScaleText(double dataScale, double nmPerPixel);
/// By how much a mile to the north and a mile to the east differ within the window, at most: 0.02 for 2 %.
double DirectionDifference(const K7MapView& view);

// One chart on a sheet: its frame, the labels around it and the margin.
#pragma once

#include "layers/chart.h"

#include <cairo.h>

#include <functional>

/// Where a chart stands on the sheet, in pixels, and how large its lettering is.
struct ChartBox {
  double x, y, width, height;
  double textSize;
};

/// The chart's window within its box: whole pixels, so that the frame is sharp.
struct ChartWindow {
  int x, y, width, height;
};
ChartWindow WindowOf(const ChartBox& box);
/// How much wider than on an ordinary sheet lines are.
double LineScale(const ChartBox& box);

/// Where the labels of a chart that is shown stand, in pixels of its window. What has no room for its own is
/// neither drawn nor picked from then on.
LabelPlan PlanLabels(cairo_t* cairo, const ChartBox& box, Chart& chart);
/// Fills the margin below a window; `top` is the baseline of its first line.
using ChartMargin = std::function<void(const ChartWindow& window, double top, LabelPlan& plan)>;
/// Shows and draws a chart with frame and margin: without one of the caller's, what the projection, its
/// scale and the symbols are. Empty, or what went wrong.
std::string DrawChart(cairo_t* cairo, const ChartBox& box, const ChartRequest& request, const Theme& theme,
                      Chart& chart, const ChartMargin& margin = nullptr);
/// The kinds of symbols that there is room for, in the lines of the margin, behind what is placed.
void DrawLegend(cairo_t* cairo, const ChartWindow& window, double size, const Chart& chart, double top,
                LabelPlan& plan);

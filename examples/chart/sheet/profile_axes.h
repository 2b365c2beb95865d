// Where a profile stands in its picture, and the scales around it.
#pragma once

#include "ink/label_plan.h"
#include "ink/theme.h"
#include "sheet/profile.h"

#include <cairo.h>

/// What the picture shows: the altitudes at its bottom and top, feet, and its plot within the panel.
struct ProfileFrame {
  PixelBox plot;
  double bottom, top;
  double length;  ///< nautical miles

  double X(double nm) const { return plot.left + (plot.right - plot.left) * nm / length; }
  double Y(double feet) const {
    return plot.bottom - (plot.bottom - plot.top) * (feet - bottom) / (top - bottom);
  }
};
ProfileFrame FrameOf(const PixelBox& box, double textSize, const Profile& profile);

/// Feet on both sides of the plot, with lines across it, and miles below.
void DrawAxes(cairo_t* cairo, const ProfileFrame& frame, double textSize, const Theme& theme,
              LabelPlan& plan);

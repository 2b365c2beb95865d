// The picture of a profile: the ground under a way, seen from the side.
#pragma once

#include "ink/label_plan.h"
#include "ink/theme.h"
#include "sheet/profile.h"

#include <cairo.h>

/// Of a panel that has a page of its own.
double ProfileTextSize(double width, double height);
/// Draws a profile into a rectangle of any page: ground and water in the theme's colours, altitudes in feet
/// on both sides, miles below, fixes above, the highest ground, stretches without elevations hatched, and the
/// planned altitude where there is one. `textSize`: of its lettering, pixels. Nothing is drawn of a way
/// without length, or where there is no room for a plot beside its lettering.
void DrawProfile(cairo_t* cairo, const PixelBox& box, double textSize, const Profile& profile,
                 const Theme& theme);

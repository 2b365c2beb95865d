// Lines and colours of a theme on a Cairo context.
#pragma once

#include "ink/theme.h"

#include <cairo.h>

void SetColor(cairo_t* cairo, const Color& color);
/// Strokes the current path with an entry's line and drops it. `scale` widens lines on larger sheets.
void Stroke(cairo_t* cairo, const ThemeEntry& entry, double scale);

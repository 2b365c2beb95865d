// All nine projections on one sheet.
#pragma once

#include "layers/chart.h"

#include <cairo.h>

inline constexpr int GALLERY_CHARTS = 9;

/// Draws each projection about the same centre, each with its own idea of the whole world unless a range is
/// given. Empty, or what went wrong.
std::string DrawGallery(cairo_t* cairo, const ChartRequest& common, int sheetWidth, int sheetHeight,
                        const Theme& theme, Chart& chart);

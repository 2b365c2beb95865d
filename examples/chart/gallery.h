// All nine projections on one sheet.
#pragma once

#include "options.h"

/// Draws each projection about the same centre, each with its own idea of the whole world unless a range is
/// given. Empty, or what went wrong.
std::string DrawGallery(cairo_t* cairo, const Options& options, const std::vector<const ShapeLayer*>& layers,
                        Progress& progress);

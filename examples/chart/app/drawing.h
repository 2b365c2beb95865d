// From options to a picture: what the verbs that draw have in common.
#pragma once

#include "app/layer_options.h"
#include "app/progress_line.h"
#include "app/sheet_options.h"
#include "layers/shape_layer.h"

#include <cairo.h>

#include <functional>

using LayerList = std::vector<const ShapeLayer*>;

/// Loads the layers of a chart of that scale, has `draw` fill the sheet in `charts` charts, and writes it.
/// Empty, or what went wrong.
std::string DrawSheet(const LayerOptions& layers, DataScale scale, const SheetOptions& sheet, int charts,
                      const std::function<std::string(cairo_t*, const LayerList&, Progress&)>& draw);

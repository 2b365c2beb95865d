// Lettering that belongs to a symbol.
#pragma once

#include "layers/layer.h"

#include <vector>

/// Places lines of text, one under the other, beside a symbol: right of it, left, above, below or aslant,
/// where all of them are free within the window. Their own places count for nothing. The first line is left
/// out where the symbol is named so already. Says whether there was room.
bool OfferBeside(const LayerContext& context, const PixelBox& symbol, const std::vector<Label>& lines,
                 LabelPlan& plan);

/// The box about a place, `radius` pixels to each side.
inline PixelBox BoxAbout(double x, double y, double radius) {
  return {x - radius, y - radius, x + radius, y + radius};
}

// Relief as one picture of a view, which ends softly where its data end.
#pragma once

#include <k7/projection/map_view.h>
#include <k7/terrain/ter_params.h>
#include <k7/terrain/ter_tile_ex.h>

/// Draws a tile's relief. Along the limits of its data, but not of the map, it fades over so many pixels: a
/// straight edge across mountains would be taken for a coast. Answers whether there is more than what fades:
/// of a few pixels on a map of the world nothing is seen.
bool DrawFadingRelief(const K7TerTileEX& tile, const K7MapView& view, const K7TerParams& params, double fade,
                      K7Grfx& g);

// The posts of the terrain that a view shows, in one grid.
#pragma once

#include "layers/terrain_files.h"

#include <k7/projection/map_view.h>
#include <k7/terrain/ter_tile_ex.h>

/// Takes the coarsest data that have a post for every so many pixels, else the finest, and smooths posts that
/// the view shows far apart: seen from near, their squares and creases would show. `leastPasses`: how often
/// they are smoothed in any case. Null where there are none, and without memory.
std::unique_ptr<K7TerTileEX> PostsFor(const TerrainFiles& files, const K7MapView& view, double pixels,
                                      int leastPasses);

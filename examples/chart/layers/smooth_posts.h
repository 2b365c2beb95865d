// Terrain shown larger than its posts, without their steps.
#pragma once

#include <k7/terrain/ter_tile_ex.h>

/// Smooths the grid of a merged tile over some posts, and then what that took away once more, which is added
/// (J. W. Tukey, "Exploratory Data Analysis", 1977: twicing): corners and creases go, summits stay. False
/// without memory, and the grid is then as it was or smoothed once.
bool SmoothTwice(K7TerTileEX& tile, int passes);

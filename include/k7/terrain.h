// Terrain: elevations of the world from region files.
#pragma once

#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>

// Terrain: elevations of the world from region files.
#pragma once

#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>
#include <k7/terrain/terrain.h>

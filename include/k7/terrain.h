// Terrain: elevations of the world from region files, and their pictures and meshes.
#pragma once

#include <k7/terrain/ter_color_map.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_mesh.h>
#include <k7/terrain/ter_params.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_relief.h>
#include <k7/terrain/ter_ring.h>
#include <k7/terrain/ter_tile.h>
#include <k7/terrain/ter_tile_ex.h>
#include <k7/terrain/terrain.h>

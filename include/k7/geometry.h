// Geometry: shapes of whole pixels, cheapest paths, shapefile sets, features in tiles, triangles.
#pragma once

#include <k7/geometry/dev_geometry.h>
#include <k7/geometry/path_node.h>
#include <k7/geometry/poly_bifurcator.h>
#include <k7/geometry/shape.h>
#include <k7/geometry/shape_attrib.h>
#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>
#include <k7/geometry/shape_tile.h>
#include <k7/geometry/shp_dbf.h>
#include <k7/geometry/shp_file.h>
#include <k7/geometry/shp_layer.h>
#include <k7/geometry/shp_obj.h>
#include <k7/geometry/tile_feature.h>
#include <k7/geometry/tile_join.h>
#include <k7/geometry/tiling.h>

// Geometry: shapes of whole pixels, cheapest paths, shapefile sets.
#pragma once

#include <k7/geometry/dev_geometry.h>
#include <k7/geometry/path_node.h>
#include <k7/geometry/shp_dbf.h>
#include <k7/geometry/shp_file.h>
#include <k7/geometry/shp_obj.h>

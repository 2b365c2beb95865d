// Geometry: shapefile sets.
#pragma once

#include <k7/geometry/shp_dbf.h>
#include <k7/geometry/shp_file.h>
#include <k7/geometry/shp_obj.h>

// The whole of k7core. A host that wants less includes the umbrella of a family, or one unit's header.
#pragma once

#include <k7/foundation.h>
#include <k7/geodesy.h>
#include <k7/geometry.h>
#include <k7/io.h>
#include <k7/navdata.h>
#include <k7/projection.h>
#include <k7/raster.h>
#include <k7/terrain.h>

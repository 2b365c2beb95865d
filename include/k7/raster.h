// Raster images: colours, bitmaps and their files, a cache of them.
#pragma once

#include <k7/raster/bitmap.h>
#include <k7/raster/color.h>
#include <k7/raster/raster_cache.h>

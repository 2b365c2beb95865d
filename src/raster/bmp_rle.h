// Run-length encoded pixels of BMP files.
#pragma once

#include <k7/raster/bitmap.h>

#include "io/read.h"

namespace k7raster {

/// Fills an image of 4 or 8 bits from the bottom up; pixels that no run covers stay 0. 0, or
/// K7_ERR_INVALID_DATA when the runs end before their end mark and before the last row does.
int DecodeRuns(k7read::Cursor& in, K7Bitmap& bitmap);

}  // namespace k7raster

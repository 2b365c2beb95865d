// What the readers of image files share.
#pragma once

#include <k7/raster/bitmap.h>

#include "io/read.h"

namespace k7raster {

/// Makes `bitmap` of a file's bytes, which it may change. Answers 0 or a code.
using Decoder = int (*)(k7read::Block& file, int option, K7Bitmap& bitmap);

/// Takes in the file and decodes it; the bitmap is empty unless that is 0.
int Load(const char* path, Decoder decode, int option, K7Bitmap& bitmap);

/// Opens a file. Answers 0, or a code and null.
int Open(const char* path, const char* mode, K7File*& file);

}  // namespace k7raster

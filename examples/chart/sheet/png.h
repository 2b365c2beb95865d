// A picture as a PNG file: RGB of 8 bits, at 96 pixels an inch.
#pragma once

#include "ink/progress.h"

#include <cairo.h>

#include <vector>

/// Appends the file's bytes. `image` is of CAIRO_FORMAT_RGB24. False without memory.
bool EncodePng(cairo_surface_t* image, std::vector<unsigned char>& bytes, Progress& progress);

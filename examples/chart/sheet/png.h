// A picture as a PNG file of 8 bits a colour, at 96 pixels an inch.
#pragma once

#include "ink/progress.h"

#include <cairo.h>

#include <vector>

/// Whom the file is for: those that are kept are smaller, what somebody waits for is written sooner.
enum class PngUse { Kept, Shown };

/// Appends the file's bytes: RGB of an image of CAIRO_FORMAT_RGB24, with alpha of one of CAIRO_FORMAT_ARGB32.
/// False without memory.
bool EncodePng(cairo_surface_t* image, std::vector<unsigned char>& bytes, Progress& progress,
               PngUse use = PngUse::Kept);

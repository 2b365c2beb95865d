// Memory for libpng, which tells a lack of it and damaged data apart only here.
#pragma once

#include <png.h>

#include <cstdlib>

namespace k7raster {

struct PngMemory {
  bool ranOut = false;
};

inline png_voidp PngAllocate(png_structp png, png_alloc_size_t size) {
  void* const block = std::malloc(size);
  if (!block) static_cast<PngMemory*>(png_get_mem_ptr(png))->ranOut = true;
  return block;
}

inline void PngFree(png_structp, png_voidp block) { std::free(block); }

}  // namespace k7raster

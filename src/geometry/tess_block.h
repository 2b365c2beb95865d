// The triangles of an area with 16-bit indices.
#pragma once

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shp_obj.h>

#include <cstddef>

class K7PolyBifurcator;

/// One piece of memory: this, the vertices, the groups, the indices.
struct alignas(K7ShpXY) TessBlock {
  int32_t vertexCount = 0;
  int32_t indexCount = 0;
  int32_t groupCount = 0;

  K7ShpXY* Vertices() { return reinterpret_cast<K7ShpXY*>(this + 1); }
  const K7ShpXY* Vertices() const { return const_cast<TessBlock*>(this)->Vertices(); }
  K7STessGroup* Groups() { return reinterpret_cast<K7STessGroup*>(Vertices() + vertexCount); }
  const K7STessGroup* Groups() const { return const_cast<TessBlock*>(this)->Groups(); }
  uint16_t* Indices() { return reinterpret_cast<uint16_t*>(Groups() + groupCount); }
  const uint16_t* Indices() const { return const_cast<TessBlock*>(this)->Indices(); }
  size_t Size() const;
};
/// Of all that has been cut; null without memory. To be released with `free`.
TessBlock* MakeTessBlock(const K7PolyBifurcator& cut);

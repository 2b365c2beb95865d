#include "geometry/tess_block.h"

#include "foundation/alloc.h"
#include "foundation/buffer.h"

#include <k7/geometry/poly_bifurcator.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

constexpr int MOST_VERTICES = 1 << 16;

// Triangles in the order of their cutting, group after group.
struct Grouping {
  explicit Grouping(const K7PolyBifurcator& cut)
      : from(cut.Vertices()), places(NewArray<Place>(cut.VertexCount())) {
    if (!places) return;
    const int32_t* corner = cut.Triangles();
    for (int t = 0; t < cut.TriangleCount() && !Failed(); ++t, corner += 3) AddTriangle(corner);
  }

  void AddTriangle(const int32_t* corners) {
    if (groups.Count() == 0 || groups.Last().vertexCount > MOST_VERTICES - 3)
      groups.Add({vertices.Count(), 0, indices.Count(), 0});
    if (Failed()) return;
    for (int k = 0; k < 3; ++k) indices.Add(IndexOf(corners[k]));
    groups.Last().indexCount += 3;
  }

  uint16_t IndexOf(int32_t vertex) {
    Place& place = places[static_cast<size_t>(vertex)];
    if (place.group != groups.Count()) {
      place = {groups.Count(), groups.Last().vertexCount++};
      vertices.Add(from[vertex]);
    }
    return static_cast<uint16_t>(place.index);
  }

  bool Failed() const { return !places || vertices.Failed() || groups.Failed() || indices.Failed(); }

  struct Place {
    int32_t group = 0;  // the last that has it, from 1
    int32_t index = 0;
  };
  const K7ShpXY* from;
  std::unique_ptr<Place[]> places;  // of the vertices, by their numbers in the cut
  Buffer<K7ShpXY> vertices;
  Buffer<K7STessGroup> groups;
  Buffer<uint16_t> indices;
};

size_t SizeFor(const TessBlock& head) {
  return sizeof(TessBlock) + static_cast<size_t>(head.vertexCount) * sizeof(K7ShpXY) +
         static_cast<size_t>(head.groupCount) * sizeof(K7STessGroup) +
         static_cast<size_t>(head.indexCount) * sizeof(uint16_t);
}

}  // namespace

size_t TessBlock::Size() const { return SizeFor(*this); }

TessBlock* MakeTessBlock(const K7PolyBifurcator& cut) {
  Grouping grouping(cut);
  TessBlock head;
  head.vertexCount = grouping.vertices.Count();
  head.indexCount = grouping.indices.Count();
  head.groupCount = grouping.groups.Count();
  void* const memory = grouping.Failed() ? nullptr : std::malloc(SizeFor(head));
  if (!memory) return nullptr;
  TessBlock* const block = new (memory) TessBlock(head);
  std::copy_n(grouping.vertices.Data(), head.vertexCount, block->Vertices());
  std::copy_n(grouping.groups.Data(), head.groupCount, block->Groups());
  std::copy_n(grouping.indices.Data(), head.indexCount, block->Indices());
  return block;
}

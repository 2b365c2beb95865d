// K7TerMesh: a terrain tile as triangles.
#pragma once

#include <k7/export.h>
#include <k7/terrain/ter_tile.h>

#include <cstdint>

/// Says what the numbers of a vertex are.
enum K7TerMeshKind : int {
  /// Earth radii from the earth's centre, the axes of K7ECEF: the world of the globe projections. The
  /// surface of the sea is the unit sphere, metres are divided by K7_EARTH_RADIUS_M.
  K7_TER_MESH_GLOBE = 0,
  /// x degrees of longitude, which run on across 180; y degrees of latitude; z metres.
  K7_TER_MESH_DEGREES = 1,
};

/// A place, less the mesh's origin, and the ground's unit normal there. Normals of K7_TER_MESH_DEGREES are
/// (east, north, up).
struct K7TerVertex {
  float x, y, z;
  float nx, ny, nz;
};

/// A K7TerMesh is a tile as triangles, ready for a vertex and an index buffer. Every post with data is a
/// vertex; every square of four is two triangles along the diagonal that rises less, so that ridges and
/// valleys stay whole; where one post of four has no data, one triangle is left, where more, a hole. It
/// reaches from the first to the last posts, which stand half a spacing within the tile; that of a
/// K7TerTileEX that was merged goes on to the first posts of its northern and eastern neighbours, where their
/// meshes begin. One thread creates; what was made any number may read.
///
/// Vertices are single numbers relative to `Origin`, the tile's middle, so that they keep their digits:
/// camera less origin, computed in double, is what a shader needs.
class K7_API K7TerMesh {
 public:
  K7TerMesh() = default;
  K7TerMesh(const K7TerMesh&) = delete;
  K7TerMesh& operator=(const K7TerMesh&) = delete;
  ~K7TerMesh();

  /// Makes the mesh of a tile, whose grid is read when it is absent; heights are multiplied by
  /// `exaggeration`, within 0 and 1000. Answers 0 (a mesh may be empty); K7_ERR_BAD_ARGUMENT for an
  /// exaggeration outside its range; K7_ERR_NOT_FOUND for a tile whose grid cannot be had,
  /// K7_ERR_INVALID_DATA for bounds that are no area of the globe, K7_ERR_OUT_OF_RANGE for more than 2^24
  /// posts, or K7_ERR_MEMORY; failed, it is empty.
  int Create(const K7TerTile& tile, K7TerMeshKind kind, double exaggeration);
  void Clear();

  int VertexCount() const { return m_vertexCount; }
  /// Null while there is nothing.
  const K7TerVertex* Vertices() const { return m_vertices; }
  int TriangleCount() const { return m_triangleCount; }
  /// Three indexes of vertices a triangle, counter-clockwise seen from above.
  const int32_t* Triangles() const { return m_triangles; }
  /// Three numbers in the units of the mesh.
  const double* Origin() const { return m_origin; }

 private:
  K7TerVertex* m_vertices = nullptr;
  int32_t* m_triangles = nullptr;
  int32_t m_vertexCount = 0;
  int32_t m_triangleCount = 0;
  double m_origin[3] = {0, 0, 0};
};

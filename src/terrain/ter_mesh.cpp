#include <k7/terrain/ter_mesh.h>

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/geodesy/ecef.h>
#include <k7/projection/projection.h>

#include "foundation/alloc.h"
#include "terrain/slopes.h"
#include "terrain/tile_posts.h"

#include <cmath>
#include <memory>
#include <utility>

namespace {

// One row of posts as vertices: their indexes, -1 without data.
struct Maker {
  const PostGrid& grid;
  const Slope* slopes;
  bool globe;
  double exaggeration;

  K7ECEF Place(double lat, double lon, double metres) const {
    if (!globe) return {lon, lat, metres * exaggeration};
    K7ECEF place(lat, lon);
    place *= 1 + metres * exaggeration / K7_EARTH_RADIUS_M;
    return place;
  }

  K7TerVertex Vertex(int r, int c, const K7ECEF& origin) const {
    const Slope& slope = slopes[static_cast<ptrdiff_t>(r) * grid.cols + c];
    const double lat = grid.Lat(r), lon = grid.Lon(c);
    const K7ECEF place = Place(lat, lon, slope.elevation);
    K7ECEF normal(-slope.east * exaggeration, -slope.north * exaggeration, 1);
    normal.Normalize();
    if (globe) normal = Turned(normal, lat * K7_DEG_TO_RAD, lon * K7_DEG_TO_RAD);
    return {static_cast<float>(place.X() - origin.X()),
            static_cast<float>(place.Y() - origin.Y()),
            static_cast<float>(place.Z() - origin.Z()),
            static_cast<float>(normal.X()),
            static_cast<float>(normal.Y()),
            static_cast<float>(normal.Z())};
  }

  // From east, north and up to the earth's frame, at the poles too, where the longitude says what is east.
  static K7ECEF Turned(const K7ECEF& n, double lat, double lon) {
    const double sinLat = std::sin(lat), cosLat = std::cos(lat), sinLon = std::sin(lon),
                 cosLon = std::cos(lon);
    const double out = cosLat * n.Z() - sinLat * n.Y();
    return {cosLon * out - sinLon * n.X(), sinLon * out + cosLon * n.X(), sinLat * n.Z() + cosLat * n.Y()};
  }

  // The triangles of the square north-east of a post, up to two, from the indexes of its corners.
  int Square(int r, int c, const int32_t* south, const int32_t* north, int32_t* out) const {
    const int32_t sw = south[0], se = south[1], nw = north[0], ne = north[1];
    const int missing = (sw < 0) + (se < 0) + (nw < 0) + (ne < 0);
    if (missing > 1) return 0;
    if (missing == 1) {
      // Counter-clockwise around the square, whoever is left out.
      for (const int32_t i : {sw, se, ne, nw}) {
        if (i >= 0) *out++ = i;
      }
      return 1;
    }
    const Slope* const at = slopes + static_cast<ptrdiff_t>(r) * grid.cols + c;
    const float risingNE = std::abs(at[grid.cols + 1].elevation - at[0].elevation);
    const float risingNW = std::abs(at[grid.cols].elevation - at[1].elevation);
    const bool alongNE = risingNE <= risingNW;
    const int32_t first[] = {sw, se, alongNE ? ne : nw, alongNE ? sw : se, ne, nw};
    for (const int32_t i : first) *out++ = i;
    return 2;
  }
};

}  // namespace

K7TerMesh::~K7TerMesh() { Clear(); }

void K7TerMesh::Clear() {
  delete[] m_vertices;
  delete[] m_triangles;
  m_vertices = nullptr;
  m_triangles = nullptr;
  m_vertexCount = m_triangleCount = 0;
}

int K7TerMesh::Create(const K7TerTile& tile, K7TerMeshKind kind, double exaggeration) {
  Clear();
  if (!(exaggeration >= 0 && exaggeration <= 1000)) return K7_ERR_BAD_ARGUMENT;
  const TilePosts posts(tile);
  if (posts.Error()) return posts.Error();
  const PostGrid& grid = posts.Grid();
  const PostGrid& own = posts.Tile();
  const std::unique_ptr<Slope[]> slopes = FindSlopes(grid);
  const int64_t rows = own.rows, cols = own.cols;
  std::unique_ptr<K7TerVertex[]> vertices(NewArray<K7TerVertex>((rows + 1) * (cols + 1)));
  std::unique_ptr<int32_t[]> triangles(NewArray<int32_t>(6 * rows * cols));
  const std::unique_ptr<int32_t[]> indexes(NewArray<int32_t>(2 * (cols + 1)));
  if (!slopes || !vertices || !triangles || !indexes) return K7_ERR_MEMORY;

  const Maker maker{grid, slopes.get(), kind == K7_TER_MESH_GLOBE, exaggeration};
  const K7ECEF origin = maker.Place((own.north + own.south) / 2, own.west + own.width / 2, 0);
  int32_t* south = indexes.get();
  int32_t* north = south + cols + 1;
  // One row and column of the rim, when they are known, reach the first ones of the neighbours.
  for (int r = 0; r <= own.rows; ++r) {
    for (int c = 0; c <= own.cols; ++c) {
      north[c] = grid.posts[r + RIM][c + RIM] == K7_NO_ELEV ? -1 : m_vertexCount++;
      if (north[c] >= 0) vertices[static_cast<size_t>(north[c])] = maker.Vertex(r + RIM, c + RIM, origin);
    }
    for (int c = 0; r > 0 && c < own.cols; ++c)
      m_triangleCount += maker.Square(r - 1 + RIM, c + RIM, south + c, north + c,
                                      triangles.get() + 3 * ptrdiff_t{m_triangleCount});
    std::swap(south, north);
  }
  m_vertices = vertices.release();
  m_triangles = triangles.release();
  m_origin[0] = origin.X();
  m_origin[1] = origin.Y();
  m_origin[2] = origin.Z();
  return 0;
}

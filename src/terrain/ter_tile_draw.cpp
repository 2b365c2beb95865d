// What a tile draws: its grid smoothed, shaded, as triangles.

#include <k7/foundation/error_string.h>
#include <k7/terrain/ter_mesh.h>
#include <k7/terrain/ter_relief.h>
#include <k7/terrain/ter_tile.h>

#include "terrain/post_grid.h"
#include "terrain/ter_grid.h"
#include "terrain/tile_posts.h"

#include <algorithm>
#include <new>

// A grid that lookups may find stays as it is: the smooth one takes its place.
int K7TerTile::SmoothMesh() {
  const K7TerGrid* const former = m_grid.load();
  if (!former) return K7_ERR_NOT_INITIALIZED;
  K7TerGrid* const grid = k7ter::NewGrid(m_bounds, former->rows, former->columns);
  if (!grid) return K7_ERR_MEMORY;
  std::copy_n(former->Posts(), int64_t{grid->rows} * grid->columns, grid->Posts());
  if (SmoothPosts(grid->rows, grid->columns, grid->Rows())) {
    Publish(grid);
    return 0;
  }
  k7ter::Release(grid);
  return K7_ERR_MEMORY;
}

int K7TerTile::Generate(const K7TerParams* params) { return GenShadedRelief(params); }

int K7TerTile::GenShadedRelief(const K7TerParams* params) {
  return GenShadedRelief(params, std::max(ColCount(), 1), std::max(RowCount(), 1));
}

int K7TerTile::GenShadedRelief(const K7TerParams* params, int width, int height) {
  if (!params || width < 1 || height < 1 || int64_t{width} * height > MAX_DRAWN_POSTS)
    return K7_ERR_BAD_ARGUMENT;
  K7TerRelief relief;
  if (const int code = relief.Init(*this, *params)) return code;
  auto* const image = new (std::nothrow) uint32_t[static_cast<size_t>(width) * static_cast<size_t>(height)];
  if (!image) return K7_ERR_MEMORY;
  relief.Image(image, width, height);
  ClearSRTImage();
  m_image = image;
  m_imageWidth = width;
  m_imageHeight = height;
  return 0;
}

void K7TerTile::ClearSRTImage() {
  delete[] m_image;
  m_image = nullptr;
  m_imageWidth = m_imageHeight = 0;
}

int K7TerTile::CreateMesh(K7TerMesh& mesh, K7TerMeshKind kind, double exaggeration) const {
  return mesh.Create(*this, kind, exaggeration);
}

int K7TerTile::Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const {
  K7TerRelief relief;
  const int code = relief.Init(*this, params);
  return code ? code : relief.Render(g, view);
}

#include "terrain/tile_posts.h"

#include <k7/foundation/error_string.h>
#include <k7/terrain/ter_tile_ex.h>

#include <algorithm>

bool BoundsOf(const K7ChartRect& bounds, PostGrid& grid) {
  grid.north = bounds.North();
  grid.south = bounds.South();
  grid.west = bounds.West();
  grid.width = bounds.East() - bounds.West() + (bounds.East() < bounds.West() ? 360 : 0);
  return grid.IsOnGlobe();
}

bool GridOf(const K7TerTile& tile, PostGrid& grid) {
  grid.rows = tile.RowCount();
  grid.cols = tile.ColCount();
  return BoundsOf(tile.GetChartRect(), grid) && grid.rows > 0 && grid.cols > 0;
}

int TilePosts::Take(const K7TerTile& tile) {
  const K7TerMeshHold hold(tile);
  if (!hold.Rows()) return K7_ERR_NOT_FOUND;
  if (!GridOf(tile, m_tile)) return K7_ERR_INVALID_DATA;
  if (int64_t{m_tile.rows} * m_tile.cols > MAX_DRAWN_POSTS) return K7_ERR_OUT_OF_RANGE;
  m_grid = m_tile.Grown(RIM);
  if (!m_block.Make(m_grid.rows, m_grid.cols)) return K7_ERR_MEMORY;
  const auto* const drawn = dynamic_cast<const K7TerTileEX*>(&tile);
  if (drawn) drawn->CopyBoundary(m_block.Rows()[0]);
  for (int r = 0; r < m_tile.rows; ++r)
    std::copy_n(hold.Rows()[r], m_tile.cols, m_block.Rows()[r + RIM] + RIM);
  m_grid.posts = m_block.Rows();
  return 0;
}

#include "terrain/tile_posts.h"

#include <k7/foundation/error_string.h>

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

int TilePosts::Find(const K7TerTile& tile) {
  m_grid.posts = m_hold.Rows();
  if (!m_grid.posts) return K7_ERR_NOT_FOUND;
  if (!GridOf(tile, m_grid)) return K7_ERR_INVALID_DATA;
  return int64_t{m_grid.rows} * m_grid.cols > MAX_DRAWN_POSTS ? K7_ERR_OUT_OF_RANGE : 0;
}

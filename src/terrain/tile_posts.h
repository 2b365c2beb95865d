// A terrain tile as a grid of posts, held in memory while it is looked at.
#pragma once

#include <k7/terrain/ter_tile.h>

#include "terrain/slopes.h"

/// More posts no grid, picture or mesh of a drawn tile has.
inline constexpr int64_t MAX_DRAWN_POSTS = int64_t{1} << 24;

/// Bounds as a grid without posts; false when they are no area of the globe.
bool BoundsOf(const K7ChartRect& bounds, PostGrid& grid);

/// A tile's bounds, rows and columns, without posts; false when there are none or the bounds are no area.
bool GridOf(const K7TerTile& tile, PostGrid& grid);

/// The posts around the grid, which a K7TerTileEX may know.
PostBorder BorderOf(const K7TerTile& tile);

/// Holds a tile's grid while it lives.
class TilePosts {
 public:
  explicit TilePosts(const K7TerTile& tile) : m_hold(tile) { m_error = Find(tile); }
  /// 0, K7_ERR_NOT_FOUND without a grid, K7_ERR_INVALID_DATA for bounds that are no area of the globe,
  /// K7_ERR_OUT_OF_RANGE for too many posts.
  int Error() const { return m_error; }
  const PostGrid& Grid() const { return m_grid; }

 private:
  int Find(const K7TerTile& tile);

  K7TerMeshHold m_hold;
  PostGrid m_grid{};
  int m_error;
};

// A terrain tile as a grid of posts, with what is known of the posts around it.
#pragma once

#include <k7/terrain/ter_tile.h>

#include "terrain/post_grid.h"
#include "terrain/posts_block.h"

/// More posts no grid, picture or mesh of a drawn tile has.
inline constexpr int64_t MAX_DRAWN_POSTS = int64_t{1} << 24;

/// The posts known beyond each edge: two for slopes that agree with the neighbours', one more so that they do
/// after smoothing.
inline constexpr int RIM = 3;

/// Bounds as a grid without posts; false when they are no area of the globe.
bool BoundsOf(const K7ChartRect& bounds, PostGrid& grid);

/// A tile's bounds, rows and columns, without posts; false when there are none or the bounds are no area.
bool GridOf(const K7TerTile& tile, PostGrid& grid);

/// Takes a copy of a tile's grid, with a rim, which has data when a K7TerTileEX knows them.
class TilePosts {
 public:
  explicit TilePosts(const K7TerTile& tile) : m_error(Take(tile)) {}
  /// 0, K7_ERR_NOT_FOUND without a grid, K7_ERR_INVALID_DATA for bounds that are no area of the globe,
  /// K7_ERR_OUT_OF_RANGE for too many posts, K7_ERR_MEMORY.
  int Error() const { return m_error; }
  /// The tile alone, without posts.
  const PostGrid& Tile() const { return m_tile; }
  /// The tile and its rim.
  const PostGrid& Grid() const { return m_grid; }
  int16_t** Rows() const { return m_block.Rows(); }

 private:
  int Take(const K7TerTile& tile);

  PostGrid m_tile{};
  PostGrid m_grid{};
  PostsBlock m_block;
  int m_error;
};

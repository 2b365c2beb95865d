// Which tiles a file of them has, and who draws which.
#pragma once

#include "web/tile_grid.h"

#include <cstdint>
#include <string>
#include <vector>

/// Degrees; across 180 where east is not the larger.
struct TileArea {
  double west, south, east, north;
};

/// A part of the blocks: every `count`th, so that each part has of every zoom its share.
struct TileShard {
  int index = 1, count = 1;
};

/// The tiles of an area at several zooms, coarse ones first, in the blocks that they are drawn in.
class TileWork {
 public:
  static constexpr int64_t MOST_TILES = 100'000'000;

  /// Empty, or why such a file is not made.
  std::string Plan(const TileArea& area, int minZoom, int maxZoom);

  /// What there is to see of the area: the projection ends before the poles.
  const TileArea& Area() const { return m_area; }
  int MinZoom() const { return m_minZoom; }
  int MaxZoom() const { return m_minZoom + static_cast<int>(m_levels.size()) - 1; }
  int64_t Tiles() const { return m_tiles; }
  int64_t Blocks() const { return m_blocks; }
  TileBlock Block(int64_t index) const;
  bool Has(const TileId& tile) const;
  /// Those of a block that the work has, row by row; never none.
  std::vector<TileId> TilesOf(const TileBlock& block) const;

  /// Calls `visit` with every block of a part.
  template <class Visit>
  void VisitBlocks(const TileShard& shard, Visit visit) const {
    for (int64_t i = shard.index - 1; i < m_blocks; i += shard.count) visit(Block(i));
  }

 private:
  // The tiles of one zoom; blocks by the columns and rows that they begin with.
  struct Level {
    int z, x, width, top, height;
    int64_t firstBlock = 0;
    std::vector<int> columns{}, rows{};
  };
  static Level LevelOf(const TileArea& area, int z);
  static void FindBlocks(Level& level);

  TileArea m_area{};
  int m_minZoom = 0;
  std::vector<Level> m_levels;
  int64_t m_tiles = 0, m_blocks = 0;
};

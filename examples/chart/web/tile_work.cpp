#include "web/tile_work.h"

#include <algorithm>
#include <cmath>

namespace {

// A place that is not on an edge of tiles by rounding alone.
double Snapped(double place) {
  const double nearest = std::round(place);
  return std::abs(place - nearest) < 1e-6 ? nearest : place;
}

}  // namespace

TileWork::Level TileWork::LevelOf(const TileArea& area, int z) {
  const int tiles = 1 << z;
  const double degrees = area.east > area.west ? area.east - area.west : area.east - area.west + 360;
  const double west = ColumnOfLon(z, area.west);
  const double first = std::floor(Snapped(west));
  const double end = std::ceil(Snapped(west + degrees / 360 * tiles));
  const int width = static_cast<int>(std::min<double>(tiles, std::max(1.0, end - first)));
  const int x = width == tiles ? 0 : static_cast<int>(first) % tiles;
  const int top = std::clamp(static_cast<int>(std::floor(Snapped(RowOfLat(z, area.north)))), 0, tiles - 1);
  const int bottom =
      std::clamp(static_cast<int>(std::ceil(Snapped(RowOfLat(z, area.south)))), top + 1, tiles);
  return {z, x, width, top, bottom - top};
}

void TileWork::FindBlocks(Level& level) {
  for (int left = 0; left < level.width;) {
    const int x = (level.x + left) % (1 << level.z);
    const TileBlock block = BlockOf({level.z, x, level.top});
    level.columns.push_back(block.x);
    // To the end of the block, or round the world.
    left += block.x + block.columns - x;
  }
  // The first may be met once more on the other side.
  if (level.columns.size() > 1 && level.columns.front() == level.columns.back()) level.columns.pop_back();
  for (int y = level.top; y < level.top + level.height;) {
    const TileBlock block = BlockOf({level.z, level.x, y});
    level.rows.push_back(block.y);
    y = block.y + block.rows;
  }
}

std::string TileWork::Plan(const TileArea& area, int minZoom, int maxZoom) {
  *this = TileWork();
  m_area = area;
  m_area.south = std::max(area.south, LatOfRow(0, 1));
  m_area.north = std::min(area.north, LatOfRow(0, 0));
  if (!(m_area.south < m_area.north)) return "tiles end at 85.05 degrees of latitude";
  m_minZoom = minZoom;
  for (int z = minZoom; z <= maxZoom; ++z) {
    m_levels.push_back(LevelOf(m_area, z));
    m_tiles += int64_t{m_levels.back().width} * m_levels.back().height;
  }
  if (m_tiles > MOST_TILES)
    return "these bounds have " + std::to_string(m_tiles) + " tiles at these zooms, of which " +
           std::to_string(MOST_TILES) + " is the most";
  for (Level& level : m_levels) {
    FindBlocks(level);
    level.firstBlock = m_blocks;
    m_blocks += static_cast<int64_t>(level.columns.size()) * static_cast<int64_t>(level.rows.size());
  }
  return {};
}

TileBlock TileWork::Block(int64_t index) const {
  const auto above = std::upper_bound(m_levels.begin(), m_levels.end(), index,
                                      [](int64_t i, const Level& level) { return i < level.firstBlock; });
  const Level& level = *(above - 1);
  const auto within = static_cast<size_t>(index - level.firstBlock);
  return BlockOf(
      {level.z, level.columns[within % level.columns.size()], level.rows[within / level.columns.size()]});
}

bool TileWork::Has(const TileId& tile) const {
  if (!IsTile(tile) || tile.z < m_minZoom || tile.z > MaxZoom()) return false;
  const Level& level = m_levels[static_cast<size_t>(tile.z - m_minZoom)];
  const int right = (tile.x - level.x + (1 << tile.z)) % (1 << tile.z);
  return right < level.width && tile.y >= level.top && tile.y < level.top + level.height;
}

std::vector<TileId> TileWork::TilesOf(const TileBlock& block) const {
  std::vector<TileId> tiles;
  for (int y = block.y; y < block.y + block.rows; ++y)
    for (int x = block.x; x < block.x + block.columns; ++x)
      if (const TileId tile{block.z, x, y}; Has(tile)) tiles.push_back(tile);
  return tiles;
}

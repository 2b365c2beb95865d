// The way of a lookup from a level to a post, all inline: what a lookup waits for is the post's memory, and a
// processor begins with the next lookups meanwhile when this one is short enough to see them.
//
// The numbers are those that files are made for: each quotient is truncated as it stands here.
#pragma once

#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>
#include <k7/terrain/terrain.h>

#include "terrain/ter_grid.h"

#include <climits>

namespace k7ter {

inline constexpr int CELL_DEGREES = 30;

/// Stands for an elevation that can be known only when a grid is read.
inline constexpr int NOT_READ = INT_MIN;

/// Truncates `x` towards zero. False, with `index` unchanged, unless that lies within [0, count); `count` is
/// a whole number above 0.
inline bool Index(double x, double count, int& index) {
  if (!(x > -1.0 && x < count)) return false;
  index = static_cast<int>(x);
  return true;
}

// Negative values round otherwise than positive ones; elevations shown before stay what they were.
// NOLINTNEXTLINE(bugprone-incorrect-roundings)
inline int Feet(int metres) { return static_cast<int>(metres * 3.2808399 + 0.5); }

/// The level for so many arc-seconds between posts.
inline int LevelIndex(double resolution) {
  if (resolution < 1) return 6;
  if (resolution < 3) return 5;
  if (resolution < 10) return 4;
  if (resolution < 30) return 3;
  if (resolution < 100) return 2;
  return resolution < 300 ? 1 : 0;
}

}  // namespace k7ter

// In metres.
inline int K7TerGrid::PostAt(double lat, double lon) const {
  if (lon < west && lon + 360 < east) lon += 360;
  const double fy = (lat - south) / height, fx = (lon - west) / width;
  int row = 0, column = 0;
  // The north and the east edge belong to the last cell.
  if (!k7ter::Index(rowCount * fy, rowCount, row)) {
    if (fy != 1.0) return K7_NO_ELEV;
    row = rows - 1;
  }
  if (!k7ter::Index(columnCount * fx, columnCount, column)) {
    if (fx != 1.0) return K7_NO_ELEV;
    column = columns - 1;
  }
  return Posts()[int64_t{row} * columns + column];
}

// Within a section of the caller. NOT_READ when there is no grid.
inline int K7TerTile::TryElev(double lat, double lon, bool inFeet) const {
  const K7TerGrid* const grid = m_grid.load();
  if (!grid) return k7ter::NOT_READ;
  if (!m_isUsed.load(std::memory_order_relaxed)) m_isUsed.store(true, std::memory_order_relaxed);
  const int elev = grid->PostAt(lat, lon);
  return elev == K7_NO_ELEV || !inFeet ? elev : k7ter::Feet(elev);
}

inline bool K7TerRegion::Crosses180() const { return !(m_bounds.East() >= m_bounds.West()); }

inline bool K7TerRegion::InBounds(double lat, double lon) const {
  if (!(m_bounds.South() <= lat && lat <= m_bounds.North())) return false;
  if (!Crosses180()) return m_bounds.West() <= lon && lon <= m_bounds.East();
  return !(lon > m_bounds.East() && lon < m_bounds.West());
}

// The cell of a position within the bounds; false outside the matrix. East of 180 columns go on.
inline bool K7TerRegion::FindCell(double lat, double lon, int& row, int& column) const {
  if (!m_tiles || m_rows < 1 || m_columns < 1) return false;
  if (Crosses180() && lon < m_bounds.West()) lon += 360;
  return k7ter::Index((lat - m_bounds.South()) / m_tileHeight, m_rows, row) &&
         k7ter::Index((lon - m_bounds.West()) / m_tileWidth, m_columns, column);
}

// Within a section of the caller. NOT_READ, and the tile, when there is no grid.
inline int K7TerRegion::TryElev(double lat, double lon, K7TerTile*& unread) const {
  // Charts of old took 0 for sea outside the bounds, and look no further than this region for it.
  if (!InBounds(lat, lon)) return 0;
  int row = 0, column = 0;
  K7TerTile* const tile = FindCell(lat, lon, row, column) ? m_tiles[row][column] : nullptr;
  if (!tile) return K7_NO_ELEV;
  const int elev = tile->TryElev(lat, lon, true);
  if (elev == k7ter::NOT_READ) unread = tile;
  return elev;
}

inline K7TerRegion* K7TerLevel::FindRegion(double lat, double lon) const {
  int band = 0, column = 0;
  if (!k7ter::Index((lat + 90) / k7ter::CELL_DEGREES, BANDS, band)) return nullptr;
  if (!k7ter::Index((lon + 180) / k7ter::CELL_DEGREES, COLUMNS, column)) return nullptr;
  return m_regions[band * COLUMNS + column];
}

// Within a section of the caller. NOT_READ, and the tile, when there is no grid.
inline int K7TerLevel::TryElev(double lat, double lon, K7TerTile*& unread) const {
  const K7TerRegion* const region = FindRegion(lat, lon);
  return region ? region->TryElev(lat, lon, unread) : K7_NO_ELEV;
}

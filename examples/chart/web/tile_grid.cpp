#include "web/tile_grid.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>
#include <numbers>

bool IsTile(const TileId& tile) {
  if (tile.z < 0 || tile.z > MOST_ZOOM || tile.x < 0 || tile.y < 0) return false;
  return tile.x < 1 << tile.z && tile.y < 1 << tile.z;
}

TileBlock BlockOf(const TileId& tile) {
  const int rows = std::min(BLOCK_TILES, 1 << tile.z);
  // At most half way round the world: a map of all of it ends at its edges, and cuts what stands there.
  const int columns = std::clamp((1 << tile.z) / 2, 1, BLOCK_TILES);
  return {tile.z, tile.x / columns * columns, tile.y / rows * rows, columns, rows};
}

// J. P. Snyder, Map Projections - A Working Manual, 1987, equations 7-2 and 7-4.
double LatOfRow(int z, double row) {
  const double north = std::numbers::pi * (1 - std::ldexp(row, 1 - z));
  return std::atan(std::sinh(north)) * K7_RAD_TO_DEG;
}

double LonOfColumn(int z, double column) { return std::ldexp(column * 360, -z) - 180; }

double RowOfLat(int z, double lat) {
  return std::ldexp(0.5 - std::asinh(std::tan(lat * K7_DEG_TO_RAD)) / (2 * std::numbers::pi), z);
}

double ColumnOfLon(int z, double lon) { return std::ldexp((lon + 180) / 360, z); }

void TileBounds(const TileId& tile, double& west, double& south, double& east, double& north) {
  west = LonOfColumn(tile.z, tile.x);
  east = LonOfColumn(tile.z, tile.x + 1);
  north = LatOfRow(tile.z, tile.y);
  south = LatOfRow(tile.z, tile.y + 1);
}

double LevelNMPerPixel(int z) {
  const double world = 2 * std::numbers::pi * K7_EARTH_RADIUS_NM;
  return std::ldexp(world * std::numbers::sqrt2 / 2 / TILE_PIXELS, -z);
}

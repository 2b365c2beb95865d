// The squares into which web maps cut the world: Mercator on the sphere, from 180 degrees west to 180 east
// and as far north and south, 2 to the power of the zoom level tiles each way (the grid of EPSG:3857).
#pragma once

struct TileId {
  int z, x, y;  ///< y counts from the north
};
inline constexpr int TILE_PIXELS = 256, MOST_ZOOM = 20;

/// Whether the grid has it.
bool IsTile(const TileId& tile);

/// Tiles that are drawn at once; `x` and `y` are of its northwest one.
struct TileBlock {
  int z, x, y, columns, rows;
};
inline constexpr int BLOCK_TILES = 4;  ///< each way, where the level has so many

/// The block that a tile of the grid is drawn with: the same for all tiles of it. One of them has the world's
/// whole width only at level 0.
TileBlock BlockOf(const TileId& tile);

/// Degrees of a place of the grid, counted in tiles from the northwest corner of the world. Exact for whole
/// and broken numbers; one column beyond the world's edge goes on behind 180 degrees.
double LatOfRow(int z, double row);
double LonOfColumn(int z, double column);
/// The other way round. Poles are infinitely far.
double RowOfLat(int z, double lat);
double ColumnOfLon(int z, double lon);
void TileBounds(const TileId& tile, double& west, double& south, double& east, double& north);

/// The scale by which all tiles of a level choose what they show, nautical miles a tile's pixel: neighbours
/// are to agree, although Mercator's own scale changes from row to row. That of 45 degrees.
double LevelNMPerPixel(int z);

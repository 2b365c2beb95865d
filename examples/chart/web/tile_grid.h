// The tiles of web maps: the world's square in Mercator, halved again at every zoom.
#pragma once

struct TileId {
  int z, x, y;  ///< y counts from the north
};

inline constexpr int TILE_PIXELS = 256, MOST_ZOOM = 20;

bool IsTile(const TileId& tile);

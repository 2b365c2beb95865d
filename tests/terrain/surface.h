// Tiles whose elevations are a formula.
#pragma once

#include <k7/terrain/ter_tile_ex.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

/// Metres a degree of a great circle: 60 NM of the sphere, 3437.74677 NM in radius.
inline constexpr double METRES_A_DEGREE = 3437.74677 * 1852 * 3.14159265358979 / 180;

/// A tile with posts in the middle of its cells; `elevation` gives metres for a latitude and a longitude that
/// runs on past 180.
template <class Tile = K7TerTile, class Elevation>
std::unique_ptr<Tile> MakeTile(const K7ChartRect& bounds, int rows, int cols, Elevation elevation) {
  auto tile = std::make_unique<Tile>();
  if constexpr (std::is_same_v<Tile, K7TerTileEX>)
    EXPECT_EQ(0, tile->Init(bounds, rows, cols));
  else
    tile = std::make_unique<Tile>(bounds, rows, cols);
  EXPECT_EQ(0, tile->AllocMesh());
  const double width = bounds.East() - bounds.West() + (bounds.East() < bounds.West() ? 360 : 0);
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < cols; ++c) {
      const double lat = bounds.South() + (bounds.North() - bounds.South()) * (r + 0.5) / rows;
      const double lon = bounds.West() + width * (c + 0.5) / cols;
      tile->GetMesh()[r][c] = static_cast<int16_t>(std::lround(elevation(lat, lon)));
    }
  }
  return tile;
}

// The grid of a tile manager: rows of one height, columns of a width of their row.
#pragma once

#include <k7/geometry/shape_tile.h>

#include <algorithm>
#include <cmath>

/// Points so close south or west of a border, in degrees, belong to the tile beyond it, so that one that lies
/// there by rounding lies in it: a tile's bounds begin so much before its borders.
inline constexpr double BORDER_WIDTH = 0.00000001;

struct K7TileGrid {
  struct Row {
    int cols = 0;
    double width = 0;
    K7ShapeTile** tiles = nullptr;  // made with the first tile of the row
  };

  double west = -180, east = 180;  // more than a turn only while features are cut at 180
  double height = 0;
  int rows = 0;
  Row* row = nullptr;

  K7TileGrid() = default;
  K7TileGrid(const K7TileGrid&) = delete;
  K7TileGrid& operator=(const K7TileGrid&) = delete;
  ~K7TileGrid();

  /// 0 or K7_ERR_MEMORY. A column width of 0 follows the latitude.
  int Build(double rowHeight, double colWidth);

  /// The row of a latitude, the column of a longitude; -1 off the grid.
  int RowOf(double lat) const;
  int ColOf(double lon, int r) const;
  /// The lines where features are cut: the southern of a row, the western of a column; the edge of the grid
  /// from the count on.
  double RowBorder(int r) const { return r <= 0 ? -90 : r >= rows ? 90 : r * height - 90; }
  double ColBorder(int c, int r) const {
    return c <= 0 ? west : c >= row[r].cols ? east : c * row[r].width + west;
  }
  double ClampLon(double lon) const { return lon < west ? west : lon > east ? east : lon; }
  /// Poles that a data set misses by rounding are poles.
  static double ClampLat(double lat) {
    return std::fabs(lat) < 90 + BORDER_WIDTH ? std::clamp(lat, -90.0, 90.0) : lat;
  }
};

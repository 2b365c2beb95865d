#include "geometry/tile_grid.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

namespace {

// Whole degrees, so that columns of all rows meet every so often, as square on the ground as that allows.
int DegreesOf(int r, double height) {
  static constexpr double WIDEST = 30;
  const double c = std::cos(((r + 0.5) * height - 90) * K7_DEG_TO_RAD);
  int n = c == 0 ? 0 : static_cast<int>(std::min(std::fabs(height / c), 360.0));
  n = std::max(n, 1);
  while (360 % n != 0) --n;
  return static_cast<int>(std::min<double>(n, WIDEST));
}

}  // namespace

K7TileGrid::~K7TileGrid() {
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; row[r].tiles && c < row[r].cols; ++c) delete row[r].tiles[c];
    std::free(row[r].tiles);
  }
  delete[] row;
}

int K7TileGrid::Build(double rowHeight, double colWidth) {
  const double count = std::trunc(180 / rowHeight);
  if (count > INT32_MAX || (colWidth != 0 && 360 / colWidth > INT32_MAX)) return K7_ERR_MEMORY;
  row = new (std::nothrow) Row[static_cast<size_t>(count)];
  if (!row) return K7_ERR_MEMORY;
  rows = static_cast<int>(count);
  height = rowHeight;
  for (int r = 0; r < rows; ++r) {
    row[r].width = colWidth != 0 ? colWidth : DegreesOf(r, rowHeight);
    row[r].cols = static_cast<int>(360 / row[r].width);
  }
  return 0;
}

int K7TileGrid::RowOf(double lat) const {
  if (!(height > 0) || !(lat >= -90 && lat <= 90)) return -1;
  return std::clamp(static_cast<int>((lat + 90 + BORDER_WIDTH) / height), 0, rows - 1);
}

int K7TileGrid::ColOf(double lon, int r) const {
  if (r < 0 || r >= rows || row[r].cols == 0 || !(row[r].width > 0) || !(lon >= west && lon <= east))
    return -1;
  return std::clamp(static_cast<int>((lon - west + BORDER_WIDTH) / row[r].width), 0, row[r].cols - 1);
}

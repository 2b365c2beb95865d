// Heights between the posts of a grid.
#pragma once

#include <k7/terrain/ter_tile_ex.h>

/// Runs through the posts without a crease: cubic between them (R. Keys, "Cubic convolution interpolation for
/// digital image processing", IEEE Transactions on Acoustics, Speech, and Signal Processing 29, 1981), even
/// beside places without data.
class PostHeights {
 public:
  /// The tile, which has a grid, stays the caller's.
  explicit PostHeights(const K7TerTileEX& tile);

  /// In metres; not a number beyond the posts, and beside one without data.
  double At(double lat, double lon) const;

 private:
  const int16_t* const* m_rows;
  int m_rowCount, m_columnCount;
  double m_south, m_west, m_rowsPerDegree, m_columnsPerDegree;
};

#include "layers/post_heights.h"

#include <algorithm>
#include <cmath>

namespace {

double Cubic(const double (&p)[4], double t) {
  return p[1] + t / 2 *
                    (p[2] - p[0] +
                     t * (2 * p[0] - 5 * p[1] + 4 * p[2] - p[3] + t * (3 * (p[1] - p[2]) + p[3] - p[0])));
}

}  // namespace

PostHeights::PostHeights(const K7TerTileEX& tile)
    : m_rows(tile.GetMesh()),
      m_rowCount(tile.RowCount()),
      m_columnCount(tile.ColCount()),
      m_south(tile.GetChartRect().South()),
      m_west(tile.GetChartRect().West()) {
  const K7ChartRect& bounds = tile.GetChartRect();
  const double width = bounds.East() - bounds.West();
  m_rowsPerDegree = m_rowCount / (bounds.North() - bounds.South());
  m_columnsPerDegree = m_columnCount / (width > 0 ? width : width + 360);
}

double PostHeights::At(double lat, double lon) const {
  const double east = lon - m_west;
  // Posts stand in the middle of their cells.
  const double y = (lat - m_south) * m_rowsPerDegree - 0.5;
  const double x = (east < 0 ? east + 360 : east) * m_columnsPerDegree - 0.5;
  if (!(x >= 0 && y >= 0 && x <= m_columnCount - 1 && y <= m_rowCount - 1)) return NAN;
  const int row = static_cast<int>(y), column = static_cast<int>(x);
  double across[4];
  bool isWhole = true;
  double posts[4][4];
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      const int r = std::clamp(row - 1 + i, 0, m_rowCount - 1);
      const int c = std::clamp(column - 1 + j, 0, m_columnCount - 1);
      posts[i][j] = m_rows[r][c];
      if (m_rows[r][c] != K7_NO_ELEV) continue;
      if ((i == 1 || i == 2) && (j == 1 || j == 2)) return NAN;
      isWhole = false;
    }
  const double u = x - column, v = y - row;
  if (!isWhole) {
    const double south = posts[1][1] + u * (posts[1][2] - posts[1][1]);
    return south + v * (posts[2][1] + u * (posts[2][2] - posts[2][1]) - south);
  }
  for (int i = 0; i < 4; ++i) across[i] = Cubic(posts[i], u);
  return Cubic(across, v);
}

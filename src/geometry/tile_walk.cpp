#include "geometry/tile_walk.h"

#include <k7/foundation/error_string.h>

#include <algorithm>

namespace {

double Within(double value, double a, double b) { return std::clamp(value, std::min(a, b), std::max(a, b)); }

K7TileSide Opposite(K7TileSide side) { return static_cast<K7TileSide>((side + 2) % 4); }

}  // namespace

int TileWalk::Line(int first, int count) { return count > 0 ? Run(first, count, false) : 0; }

int TileWalk::Ring(int first, int count) {
  const int last = first + count - 1;
  if (count > 1 && m_feature.Lat(first) == m_feature.Lat(last) && m_feature.Lon(first) == m_feature.Lon(last))
    --count;
  if (count <= 0) return 0;
  const int before = m_pieces.Count();
  if (const int err = Run(first, count, true)) return err;
  if (m_pieces.Count() - before < 2) return 0;
  // The last piece came back to where the first began: they are one.
  const CutPiece last_ = m_pieces.Last();
  m_pieces.Truncate(m_pieces.Count() - 1);
  CutPiece& start = m_pieces[before];
  start.tailStart = last_.start;
  start.tailEnd = last_.end;
  start.entry = last_.entry;
  start.entrySide = last_.entrySide;
  return 0;
}

int TileWalk::Run(int first, int count, bool closed) {
  int row, col;
  m_lat = m_grid.ClampLat(m_feature.Lat(first));
  m_lon = m_grid.ClampLon(m_feature.Lon(first));
  if (!Find(m_lat, m_lon, row, col)) return K7_ERR_BAD_ARGUMENT;
  m_piece = {};
  Enter(row, col, first);
  m_piece.end = first;
  for (int i = 1; i < count + closed; ++i) {
    const int at = first + (i < count ? i : 0);
    const double lat = m_grid.ClampLat(m_feature.Lat(at)), lon = m_grid.ClampLon(m_feature.Lon(at));
    if (!InCell(lat, lon)) {
      if (!Find(lat, lon, row, col)) return K7_ERR_BAD_ARGUMENT;
      if (const int err = Follow(lat, lon, row, col, first + i)) return err;
    }
    if (i < count) m_piece.end = at;
    m_lat = lat;
    m_lon = lon;
  }
  m_pieces.Add(m_piece);
  return m_pieces.Failed() ? K7_ERR_MEMORY : 0;
}

bool TileWalk::Find(double lat, double lon, int& row, int& col) const {
  row = m_grid.RowOf(lat);
  col = m_grid.ColOf(lon, row);
  return row >= 0 && col >= 0;
}

void TileWalk::Enter(int row, int col, int next) {
  static constexpr double MARGIN = 2 * BORDER_WIDTH;
  m_piece.row = row;
  m_piece.col = col;
  m_piece.start = next;
  m_piece.end = next - 1;
  m_south = m_grid.RowBorder(row);
  m_north = m_grid.RowBorder(row + 1) - MARGIN;
  m_west = m_grid.ColBorder(col, row);
  m_east = m_grid.ColBorder(col + 1, row) - MARGIN;
}

// Points lie up to the border's width beyond the border of their tile: crossings keep within the edge then.
int TileWalk::Follow(double lat, double lon, int row, int col, int next) {
  while (m_piece.row != row) {
    const int up = row > m_piece.row, nextRow = m_piece.row + (up ? 1 : -1);
    const double border = m_grid.RowBorder(m_piece.row + up);
    double x = Within(m_lon + (lon - m_lon) * (border - m_lat) / (lat - m_lat), m_lon, lon);
    // One that lies at a corner by rounding only lies there exactly.
    const int toCol = m_grid.ColOf(x, m_piece.row);
    x = std::max(x, m_grid.ColBorder(toCol, m_piece.row));
    const int nextCol = m_grid.ColOf(x, nextRow);
    x = std::max(x, m_grid.ColBorder(nextCol, nextRow));
    if (const int err = FollowColumns(lat, lon, toCol, next)) return err;
    if (const int err = Cross(border, x, up ? K7_SIDE_NORTH : K7_SIDE_SOUTH, nextRow, nextCol, next))
      return err;
  }
  return FollowColumns(lat, lon, col, next);
}

int TileWalk::FollowColumns(double lat, double lon, int col, int next) {
  while (m_piece.col != col) {
    const int row = m_piece.row, right = col > m_piece.col;
    const double border = m_grid.ColBorder(m_piece.col + right, row);
    double y = lon != m_lon ? m_lat + (lat - m_lat) * (border - m_lon) / (lon - m_lon) : m_lat;
    y = Within(Within(y, m_lat, lat), m_grid.RowBorder(row), m_grid.RowBorder(row + 1));
    const K7TileSide side = right ? K7_SIDE_EAST : K7_SIDE_WEST;
    if (const int err = Cross(y, border, side, row, m_piece.col + (right ? 1 : -1), next)) return err;
  }
  return 0;
}

int TileWalk::Cross(double lat, double lon, K7TileSide side, int row, int col, int next) {
  const int created = m_points.AddPoint(lat, lon);
  if (created < 0) return created;
  m_piece.exit = created;
  m_piece.exitSide = side;
  m_pieces.Add(m_piece);
  if (m_pieces.Failed() || m_pieces.Count() > MOST_CROSSINGS) return K7_ERR_MEMORY;
  m_piece = {};
  m_piece.entry = created;
  m_piece.entrySide = Opposite(side);
  Enter(row, col, next);
  return 0;
}

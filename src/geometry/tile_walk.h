// Following a line or a ring over a grid: its runs of points tile by tile, and where it crosses the borders.
#pragma once

#include "foundation/buffer.h"
#include "geometry/tile_grid.h"

/// What a line or ring leaves in a tile between two crossings.
struct CutPiece {
  int row, col;
  int start, end;  // points of the feature; the end comes before the start when there are none
  // The run that comes before it: of a ring's first piece its last one. Likewise empty.
  int tailStart = 0, tailEnd = -1;
  int entry = -1, exit = -1;  // numbers of created points
  K7TileSide entrySide = K7_SIDE_NORTH, exitSide = K7_SIDE_NORTH;
};

class TileWalk {
 public:
  /// Features that cross more borders than anything real are refused: an edge of a few bytes may cross every
  /// row and column.
  static constexpr int MOST_CROSSINGS = 1 << 21;

  TileWalk(const K7TileGrid& grid, const K7TileFeature& feature, K7PolyPtMngr& points,
           Buffer<CutPiece>& pieces)
      : m_grid(grid), m_feature(feature), m_points(points), m_pieces(pieces) {}

  /// Appends the pieces of `count` points from `first` on, in their order. 0, K7_ERR_BAD_ARGUMENT for
  /// coordinates off the earth, K7_ERR_MEMORY.
  int Line(int first, int count);
  /// The same of a ring, which is closed from the last to the first point. A first point that stands again at
  /// the end is left out.
  int Ring(int first, int count);

 private:
  int Run(int first, int count, bool closed);
  bool Find(double lat, double lon, int& row, int& col) const;
  void Enter(int row, int col, int next);
  bool InCell(double lat, double lon) const {
    return lat > m_south && lat < m_north && lon > m_west && lon < m_east;
  }
  int Follow(double lat, double lon, int row, int col, int next);
  int FollowColumns(double lat, double lon, int col, int next);
  int Cross(double lat, double lon, K7TileSide side, int row, int col, int next);

  const K7TileGrid& m_grid;
  const K7TileFeature& m_feature;
  K7PolyPtMngr& m_points;
  Buffer<CutPiece>& m_pieces;
  CutPiece m_piece{};
  double m_lat = 0, m_lon = 0;                              // the point before
  double m_south = 0, m_north = 0, m_west = 0, m_east = 0;  // surely within the cell
};

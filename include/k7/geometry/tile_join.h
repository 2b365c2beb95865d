// K7TileJoin: pieces of a feature from several tiles as one feature again.
#pragma once

#include <k7/export.h>
#include <k7/geometry/shape_tile.h>
#include <k7/projection/map_features.h>

/// Puts the pieces of one feature together that the tiles of a chart hold. Where two tiles meet nothing is
/// left of their border, so that neither a seam nor an outline shows there; towards tiles whose pieces are
/// not added, areas are closed along the border.
///
///     K7TileJoin join;
///     for (...) join.Add(*piece, tolerance);  // of all tiles that the chart shows
///     join.AddTo(shown, K7_MAP_AREA);         // for K7MapPath
///
/// Tiles may have tolerances of their own: points of borders always stay. One object, one thread.
class K7_API K7TileJoin {
 public:
  K7TileJoin();
  ~K7TileJoin();
  K7TileJoin(const K7TileJoin&) = delete;
  K7TileJoin& operator=(const K7TileJoin&) = delete;

  /// Takes the points of a piece that `K7TileString::Select` gives at a tolerance in NM. Of a ring that lies
  /// within its tile and is too small for the tolerance three points stay: islands become dots. 0 or
  /// K7_ERR_MEMORY.
  int Add(const K7TileString& piece, double tolerance);
  /// Adds the area or the lines that the pieces make up, and forgets these. Answers as `K7MapFeatures::Add`.
  int AddTo(K7MapFeatures& features, K7MapFeatureKind kind);
  /// Forgets all pieces.
  void Clear();

 private:
  struct State;
  State* m_state;
};

// What a tile manager needs while it cuts a feature; used again for the next.
#pragma once

#include <k7/geodesy/ecef.h>

#include "geometry/tile_walk.h"

/// Where a polygon's ring crosses the southern border of a row, into or out of the tile of a column.
struct RowCrossing {
  int row, col;
};

struct K7TileScratch {
  Buffer<CutPiece> pieces;
  Buffer<RowCrossing> crossings;
  K7PtrArray border{128};    // the border points of one polygon in one tile
  Buffer<void*> sorted;      // of them those at one place
  K7IntArray indexes{4096};  // of the ring that is being closed
  K7IntArray kept{4096};     // of a piece that is being simplified
  Buffer<K7ECEF> vectors;
};

/// The points of what a walk left, as numbers. 0 or K7_ERR_MEMORY.
int FillPiece(K7TileString& piece, const CutPiece& cut);

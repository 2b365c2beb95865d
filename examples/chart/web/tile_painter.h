// Tiles of web maps, drawn a block at a time so that blocks agree where they meet.
#pragma once

#include "web/map_painter.h"
#include "web/tile_grid.h"

struct TileLook {
  std::string theme{};  // empty: the usual one
  int ratio = 1;        // 2: tiles of 512 pixels for screens of fine pixels, "@2x"
};

class TilePainter {
 public:
  /// The painter stays the caller's and must outlive this.
  explicit TilePainter(MapPainter& painter) : m_painter(painter) {}

  /// PNG files of a block's tiles, row by row from its northwest. Empty, or what went wrong.
  std::string Paint(const TileBlock& block, const TileLook& look, std::vector<std::string>& pngs);

 private:
  MapPainter& m_painter;
};

/// What shows a block in a window with its overhang on all sides. Empty, or why there is none.
std::string BlockRequest(const TileBlock& block, const TileLook& look, MapRequest& request);

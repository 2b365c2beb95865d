// Draws a file of tiles with several threads.
#pragma once

#include "web/tile_file.h"
#include "web/tile_painter.h"
#include "web/tile_work.h"

#include <functional>

struct TileJob {
  const MapData& data;
  const TileWork& work;
  TileShard shard{};
  TileLook look{};
  int threads = 1;
  /// How many tiles are there, and how many there will be; how many of them were there at first.
  std::function<void(int64_t there, int64_t all, int64_t before)> progress{};
};

/// Draws the blocks that the file does not have. Empty, or what went wrong; what was drawn until then may
/// stay in the file.
std::string DrawTiles(const TileJob& job, TileWriter& file);

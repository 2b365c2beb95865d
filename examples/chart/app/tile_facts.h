// What a file of tiles says of itself, and how those of one chart are known from others'.
#pragma once

#include "app/layer_options.h"
#include "web/tile_file.h"
#include "web/tile_painter.h"
#include "web/tile_work.h"

struct TileOptions {
  LayerOptions layers;
  TileLook look{.theme = "day"};
  std::string name, attribution;  // empty: what the data say
};

/// The rows of its table "metadata". Those that begin with "k7chart_" say what it was drawn from and how.
TileFacts TileFactsOf(const TileOptions& options, const TileWork& work);

inline constexpr const char* AREA_FACT = "k7chart_area";
inline constexpr const char* SHARD_FACT = "k7chart_shard";
std::string ShardText(const TileShard& shard);
/// "2/8". False for anything else.
bool ReadShard(const std::string& text, TileShard& shard);

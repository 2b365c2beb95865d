// How tiles are called in addresses: "{theme}/{z}/{x}/{y}.png", "{y}@2x.png" for screens of fine pixels.
#pragma once

#include "web/tile_grid.h"

#include <optional>
#include <string>
#include <string_view>

struct TilePath {
  std::string theme;
  TileId id{};
  int ratio = 1;
};

/// Nothing for what is no tile. Each tile has one path alone.
std::optional<TilePath> ReadTilePath(std::string_view path);

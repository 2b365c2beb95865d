// Tiles as web maps ask for them: "/tiles/{theme}/{z}/{x}/{y}.png", "{y}@2x.png" for fine screens, and
// "/tiles/{theme}.json", which says so.
#pragma once

#include "web/http.h"
#include "web/map_data.h"
#include "web/tile_cache.h"

#include <optional>
#include <string_view>

/// What a path of a tile says.
struct TilePath {
  std::string theme;
  int z = 0, x = 0, y = 0;
  int ratio = 1;
};

/// Behind "/tiles/". Nothing for what is no tile; numbers are within the grid.
std::optional<TilePath> ReadTilePath(std::string_view path);

/// What can be said of a path below "/tiles/" without drawing: a tile that is kept, or that there is none.
std::optional<HttpAnswer> TileAtOnce(const HttpRequest& request, const MapData& data, TileCache* tiles);
/// The same for all tiles that are drawn together; empty for what is no tile.
std::string TileWork(const HttpRequest& request);
HttpAnswer AnswerTile(const HttpRequest& request, Desk& desk);

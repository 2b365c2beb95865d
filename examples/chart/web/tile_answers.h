// Tiles as web maps ask for them: "/tiles/{theme}/{z}/{x}/{y}.png", and "/tiles/{theme}.json", which says so
// (TileJSON 3.0.0).
#pragma once

#include "web/http.h"
#include "web/map_data.h"
#include "web/tile_cache.h"

#include <optional>

/// What can be said of a path below "/tiles/" without drawing: a tile that is kept, or that there is none.
std::optional<HttpAnswer> TileAtOnce(const HttpRequest& request, const MapData& data, TileCache* tiles);
/// The same for all tiles that are drawn together; empty for what is no tile.
std::string TileWork(const HttpRequest& request);
HttpAnswer AnswerTile(const HttpRequest& request, Desk& desk);

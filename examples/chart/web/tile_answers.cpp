#include "web/tile_answers.h"

#include "web/desk.h"
#include "web/json.h"
#include "web/tile_path.h"

#include <cmath>
#include <numbers>

namespace {

constexpr std::string_view FOLDER = "/tiles/";

std::string_view BelowFolder(const HttpRequest& request) {
  return std::string_view(request.path).substr(std::min(FOLDER.size(), request.path.size()));
}

std::optional<std::string> ThemeOfJson(const HttpRequest& request) {
  static constexpr std::string_view SUFFIX = ".json";
  const std::string_view name = BelowFolder(request);
  if (!name.ends_with(SUFFIX) || name.find('/') != std::string_view::npos) return std::nullopt;
  return std::string(name.substr(0, name.size() - SUFFIX.size()));
}

std::string KeyOf(const TilePath& tile) {
  return tile.theme + "/" + std::to_string(tile.id.z) + "/" + std::to_string(tile.id.x) + "/" +
         std::to_string(tile.id.y) + "@" + std::to_string(tile.ratio);
}

HttpAnswer TileAnswer(const std::string& file) { return {.type = "image/png", .body = file}; }

HttpAnswer TileJson(const std::string& theme, const HttpRequest& request) {
  JsonWriter json;
  json.Begin('{').Key("tilejson").Text("3.0.0").Key("name").Text(theme).Key("scheme").Text("xyz");
  json.Key("tiles").Begin('[').Text(request.origin + "/tiles/" + theme + "/{z}/{x}/{y}.png").End(']');
  json.Key("minzoom").Integer(0).Key("maxzoom").Integer(MOST_ZOOM);
  // As far as a square map of the world reaches.
  json.Key("bounds").Begin('[').Number(-180, 0).Number(-85.05112878, 8).Number(180, 0).Number(85.05112878, 8);
  json.End(']').End('}');
  return {.type = "application/json", .body = json.Take()};
}

// One tile at a time, drawn as a map of its own.
std::string DrawTile(const TilePath& tile, Desk& desk, std::string& file) {
  const double tiles = std::ldexp(1, tile.id.z);
  const double north = std::numbers::pi * (1 - 2 * (tile.id.y + 0.5) / tiles);
  MapRequest map;
  map.chart.type = K7_PROJ_MERCATOR;
  map.chart.center =
      K7LatLon(std::atan(std::sinh(north)) * 180 / std::numbers::pi, (tile.id.x + 0.5) / tiles * 360 - 180);
  map.chart.rangeNM = std::min(10800.0, 10800 / tiles / std::cosh(north));
  map.width = map.height = TILE_PIXELS * tile.ratio;
  map.scale = tile.ratio;
  map.theme = tile.theme;
  std::vector<unsigned char> png;
  std::string problem = desk.Painter().DrawPng(map, png);
  file.assign(png.begin(), png.end());
  return problem;
}

}  // namespace

std::optional<HttpAnswer> TileAtOnce(const HttpRequest& request, const MapData& data, TileCache* tiles) {
  const std::optional<std::string> described = ThemeOfJson(request);
  const std::optional<TilePath> tile = ReadTilePath(BelowFolder(request));
  if (!tile && !described) return Refuse(404, "a tile is /tiles/THEME/Z/X/Y.png or Y@2x.png, Z up to 20");
  const std::string& theme = tile ? tile->theme : *described;
  if (theme.empty() || !data.FindTheme(theme)) return Refuse(404, "there is no such theme");
  if (described) return TileJson(theme, request);
  const std::shared_ptr<const std::string> kept = tiles ? tiles->Find(KeyOf(*tile)) : nullptr;
  return kept ? std::optional(TileAnswer(*kept)) : std::nullopt;
}

std::string TileWork(const HttpRequest& request) {
  const std::optional<TilePath> tile = ReadTilePath(BelowFolder(request));
  return tile ? KeyOf(*tile) : std::string();
}

HttpAnswer AnswerTile(const HttpRequest& request, Desk& desk) {
  if (std::optional<HttpAnswer> known = TileAtOnce(request, desk.Data(), desk.Tiles())) return *known;
  const TilePath tile = *ReadTilePath(BelowFolder(request));
  auto file = std::make_shared<std::string>();
  if (const std::string problem = DrawTile(tile, desk, *file); !problem.empty()) return Refuse(500, problem);
  if (desk.Tiles()) desk.Tiles()->Add(KeyOf(tile), file);
  return TileAnswer(*file);
}

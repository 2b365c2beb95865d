#include "web/tile_answers.h"

#include "web/desk.h"
#include "web/json.h"

#include <charconv>
#include <cmath>
#include <numbers>

namespace {

constexpr std::string_view FOLDER = "/tiles/";
constexpr int MOST_ZOOM = 20;

bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

// The step in front of the next slash.
std::string_view TakeStep(std::string_view& path) {
  const std::string_view step = path.substr(0, path.find('/'));
  path.remove_prefix(std::min(step.size() + 1, path.size()));
  return step;
}

// As "{z}" becomes it: digits alone, without zeros in front, so that each tile has one address.
bool ReadIndex(std::string_view text, int& value) {
  const bool isPlain =
      !text.empty() && text[0] >= '0' && text[0] <= '9' && (text[0] != '0' || text.size() == 1);
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), value);
  return isPlain && failed == std::errc() && end == text.data() + text.size();
}

std::string_view BelowFolder(const HttpRequest& request) {
  return std::string_view(request.path).substr(std::min(FOLDER.size(), request.path.size()));
}

std::optional<std::string> ThemeOfJson(const HttpRequest& request) {
  std::string_view name = BelowFolder(request);
  if (!TakeSuffix(name, ".json") || name.find('/') != std::string_view::npos) return std::nullopt;
  return std::string(name);
}

std::string KeyOf(const TilePath& tile) {
  return tile.theme + "/" + std::to_string(tile.z) + "/" + std::to_string(tile.x) + "/" +
         std::to_string(tile.y) + "@" + std::to_string(tile.ratio);
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
  const double tiles = std::ldexp(1, tile.z);
  const double north = std::numbers::pi * (1 - 2 * (tile.y + 0.5) / tiles);
  MapRequest map;
  map.chart.type = K7_PROJ_MERCATOR;
  map.chart.center =
      K7LatLon(std::atan(std::sinh(north)) * 180 / std::numbers::pi, (tile.x + 0.5) / tiles * 360 - 180);
  map.chart.rangeNM = std::min(10800.0, 10800 / tiles / std::cosh(north));
  map.width = map.height = 256 * tile.ratio;
  map.scale = tile.ratio;
  map.theme = tile.theme;
  std::vector<unsigned char> png;
  std::string problem = desk.Painter().DrawPng(map, png);
  file.assign(png.begin(), png.end());
  return problem;
}

}  // namespace

std::optional<TilePath> ReadTilePath(std::string_view path) {
  TilePath tile;
  if (!TakeSuffix(path, ".png")) return std::nullopt;
  if (TakeSuffix(path, "@2x")) tile.ratio = 2;
  tile.theme = TakeStep(path);
  const std::string_view z = TakeStep(path), x = TakeStep(path);
  if (!ReadIndex(z, tile.z) || !ReadIndex(x, tile.x) || !ReadIndex(path, tile.y)) return std::nullopt;
  const bool isThere = tile.z <= MOST_ZOOM && tile.x < 1 << tile.z && tile.y < 1 << tile.z;
  return isThere ? std::optional(tile) : std::nullopt;
}

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

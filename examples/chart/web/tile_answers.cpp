#include "web/tile_answers.h"

#include "web/desk.h"
#include "web/home.h"
#include "web/json.h"
#include "web/tile_painter.h"
#include "web/tile_path.h"
#include "web/xml_text.h"

#include <algorithm>
#include <cmath>

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

// The level at which a screen shows the home's surroundings and not much more.
int LevelOf(const Home& home) {
  static const double HALF_SCREEN = 400;  // pixels
  const double level = std::log2(LevelNMPerPixel(0) * HALF_SCREEN / home.rangeNM);
  return static_cast<int>(std::clamp(std::round(level), 0.0, 1.0 * MOST_ZOOM));
}

HttpAnswer TileJson(const std::string& theme, const HttpRequest& request, Desk& desk) {
  std::string problem;
  NavStore* const store = desk.Store(problem);
  if (!problem.empty()) return Refuse(500, problem);
  const Home home = HomeOf(store);
  JsonWriter json;
  json.Begin('{').Key("tilejson").Text("3.0.0").Key("name").Text(theme).Key("scheme").Text("xyz");
  json.Key("tiles").Begin('[').Text(request.origin + "/tiles/" + theme + "/{z}/{x}/{y}.png").End(']');
  json.Key("minzoom").Integer(0).Key("maxzoom").Integer(MOST_ZOOM);
  // As far as a square map of the world reaches.
  json.Key("bounds").Begin('[').Number(-180, 0).Number(-85.05112878, 8).Number(180, 0).Number(85.05112878, 8);
  json.End(']').Key("center").Begin('[').Number(home.lon, 4).Number(home.lat, 4).Integer(LevelOf(home));
  // Which clients write into their pages as HTML.
  json.End(']').Key("attribution").Text(XmlText(AttributionOf(store))).End('}');
  return {.type = "application/json", .body = json.Take()};
}

// Draws a tile with all of its block and keeps them. Empty, or what went wrong.
std::string DrawTile(const TilePath& tile, Desk& desk, HttpAnswer& answer) {
  const TileBlock block = BlockOf(tile.id);
  std::vector<std::string> files;
  std::string problem = TilePainter(desk.Painter()).Paint(block, {tile.theme, tile.ratio}, files);
  if (!problem.empty()) return problem;
  TilePath drawn = tile;
  for (size_t i = 0; i < files.size(); ++i) {
    const int at = static_cast<int>(i);
    drawn.id = {block.z, block.x + at % block.columns, block.y + at / block.columns};
    if (drawn.id.x == tile.id.x && drawn.id.y == tile.id.y) answer = TileAnswer(files[i]);
    if (desk.Tiles()) desk.Tiles()->Add(KeyOf(drawn), std::make_shared<std::string>(std::move(files[i])));
  }
  return {};
}

}  // namespace

std::optional<HttpAnswer> TileAtOnce(const HttpRequest& request, const MapData& data, TileCache* tiles) {
  const std::optional<std::string> described = ThemeOfJson(request);
  const std::optional<TilePath> tile = ReadTilePath(BelowFolder(request));
  if (!tile && !described) return Refuse(404, "a tile is /tiles/THEME/Z/X/Y.png or Y@2x.png, Z up to 20");
  const std::string& theme = tile ? tile->theme : *described;
  if (theme.empty() || !data.FindTheme(theme)) return Refuse(404, "there is no such theme");
  if (described) return std::nullopt;
  const std::shared_ptr<const std::string> kept = tiles ? tiles->Find(KeyOf(*tile)) : nullptr;
  return kept ? std::optional(TileAnswer(*kept)) : std::nullopt;
}

std::string TileWork(const HttpRequest& request) {
  const std::optional<TilePath> tile = ReadTilePath(BelowFolder(request));
  if (!tile) return {};
  const TileBlock block = BlockOf(tile->id);
  return KeyOf({tile->theme, {block.z, block.x, block.y}, tile->ratio});
}

HttpAnswer AnswerTile(const HttpRequest& request, Desk& desk) {
  if (std::optional<HttpAnswer> known = TileAtOnce(request, desk.Data(), desk.Tiles())) return *known;
  if (const std::optional<std::string> theme = ThemeOfJson(request)) return TileJson(*theme, request, desk);
  HttpAnswer answer;
  const std::string problem = DrawTile(*ReadTilePath(BelowFolder(request)), desk, answer);
  return problem.empty() ? answer : Refuse(500, problem);
}

#include "app/tile_facts.h"

#include "app/chart_options.h"
#include "app/nav_source.h"
#include "app/trip_sources.h"
#include "web/content_key.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

// So that it reads back equal.
std::string Exactly(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string AreaText(const TileArea& area) {
  return Exactly(area.west) + "," + Exactly(area.south) + "," + Exactly(area.east) + "," +
         Exactly(area.north);
}

std::string Joined(const char* what, const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? std::string("; ") + what + " " : ", ") + name;
  return text;
}

std::string LookText(const TileOptions& options) {
  const LayerOptions& layers = options.layers;
  std::string text = options.look.theme;
  if (options.look.ratio != 1) text += "; ratio " + std::to_string(options.look.ratio);
  return text + Joined("layers", layers.names) + Joined("show", layers.shown) +
         Joined("hide", layers.hidden) + Joined("order", layers.order);
}

uint64_t AddFile(const std::string& path, uint64_t key) {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> bytes(1 << 20);
  while (file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())), file.gcount() > 0)
    key = ContentKey({bytes.data(), static_cast<size_t>(file.gcount())}, key);
  return key;
}

// Large: the names and sizes of what is in it must do.
uint64_t AddFolder(const std::string& path, uint64_t key) {
  std::vector<std::string> files;
  std::error_code failed;
  for (fs::directory_iterator at(path, failed), end; !failed && at != end; at.increment(failed))
    if (at->is_regular_file(failed))
      files.push_back(at->path().filename().string() + " " + std::to_string(at->file_size(failed)) + "\n");
  std::sort(files.begin(), files.end());
  for (const std::string& file : files) key = ContentKey(file, key);
  return key;
}

// Copies of the data on other machines are the same data, wherever they are.
std::string DataText(const TileOptions& options) {
  const LayerOptions& layers = options.layers;
  uint64_t key = AddFile(ThemeFile(options.look.theme), ContentKey({}));
  Theme theme;
  if (ReadTheme(options.look.theme, theme).empty())
    for (int kind = 0; kind < SYMBOL_KINDS; ++kind)
      if (const std::string& image = theme.Symbols().PathOf(static_cast<SymbolKind>(kind)); !image.empty())
        key = AddFile(image, key);
  for (const std::string& file : {layers.nav, layers.magnetic, layers.underlay})
    if (!file.empty()) key = AddFile(file, key);
  for (const std::string& folder : {layers.folder, TerrainFolder(layers)})
    if (!folder.empty()) key = AddFolder(folder, key);
  if (const auto& bounds = layers.underlayBounds)
    key = ContentKey(AreaText({bounds->west, bounds->south, bounds->east, bounds->north}), key);
  char text[17] = {};
  std::to_chars(text, text + 16, key, 16);
  return text;
}

std::string SourceText(const TileOptions& options) {
  NavStore store;
  if (!options.attribution.empty() || !WhyNoStore(options.layers.nav, store).empty())
    return options.attribution;
  return SourcesOf(store).front();
}

}  // namespace

std::string ShardText(const TileShard& shard) {
  return std::to_string(shard.index) + "/" + std::to_string(shard.count);
}

bool ReadShard(const std::string& text, TileShard& shard) {
  static constexpr int MOST_SHARDS = 100000;
  const char* const end = text.data() + text.size();
  const auto [slash, indexError] = std::from_chars(text.data(), end, shard.index);
  if (indexError != std::errc() || slash == end || *slash != '/') return false;
  const auto [stop, countError] = std::from_chars(slash + 1, end, shard.count);
  return countError == std::errc() && stop == end && shard.index >= 1 && shard.index <= shard.count &&
         shard.count <= MOST_SHARDS;
}

TileFacts TileFactsOf(const TileOptions& options, const TileWork& work) {
  const TileArea& area = work.Area();
  const bool isAcross180 = area.east <= area.west;
  const double width = area.east - area.west + (isAcross180 ? 360 : 0);
  const double middle = area.west + width / 2;
  // Bounds that wrap around are read as empty ones.
  const TileArea bounds = isAcross180 ? TileArea{-180, area.south, 180, area.north} : area;
  // The first that differs is what somebody is told who goes on with other options.
  return {{AREA_FACT, AreaText(area)},
          {"minzoom", std::to_string(work.MinZoom())},
          {"maxzoom", std::to_string(work.MaxZoom())},
          {"k7chart_look", LookText(options)},
          {"k7chart_data", DataText(options)},
          {"name", options.name.empty() ? "Chart, " + options.look.theme : options.name},
          {"format", "png"},
          {"bounds", AreaText(bounds)},
          {"center", Exactly(middle > 180 ? middle - 360 : middle) + "," +
                         Exactly((area.south + area.north) / 2) + "," + std::to_string(work.MaxZoom())},
          {"type", "baselayer"},
          {"version", "1"},
          {"description", "Aeronautical chart drawn by k7chart. Not for navigation."},
          {"attribution", SourceText(options)}};
}

#include "app/layer_options.h"

#include <k7/foundation/string.h>
#include "app/bounds_text.h"
#include "app_common/shared_data.h"
#include "layers/terrain_files.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace {

bool IsShapefile(const std::string& name) {
  return K7String::IComp(std::filesystem::path(name).extension().string().c_str(), ".shp") == 0;
}

std::string WhatIsThere(const std::string& folder) {
  const std::string layers = LayersIn(folder);
  return "the folder " + Quoted(folder) + " has " + (layers.empty() ? "no layers" : layers);
}

std::string AddLayer(const char* text, LayerOptions& options) {
  options.names.emplace_back(text);
  return {};
}

std::string ShowLayer(const char* text, LayerOptions& options) {
  options.shown.emplace_back(text);
  return {};
}

std::string HideLayer(const char* text, LayerOptions& options) {
  options.hidden.emplace_back(text);
  return {};
}

std::string SetOrder(const char* text, LayerOptions& options) {
  for (std::string_view left = text;; left.remove_prefix(left.find(',') + 1)) {
    std::string_view name = left.substr(0, left.find(','));
    while (name.starts_with(' ')) name.remove_prefix(1);
    while (name.ends_with(' ')) name.remove_suffix(1);
    options.order.emplace_back(name);
    if (left.find(',') == std::string_view::npos) return {};
  }
}

std::string SetData(const char* text, LayerOptions& options) {
  options.folder = text;
  return {};
}

std::string SetNav(const char* text, LayerOptions& options) {
  options.nav = text;
  return {};
}

std::string SetMagnetic(const char* text, LayerOptions& options) {
  options.magnetic = text;
  return {};
}

std::string SetTerrain(const char* text, LayerOptions& options) {
  options.terrain = text;
  return {};
}

std::string SetUnderlay(const char* text, LayerOptions& options) {
  options.underlay = text;
  return {};
}

std::string SetUnderlayBounds(const char* text, LayerOptions& options) {
  UnderlayBounds bounds;
  if (std::string problem = ReadBounds(text, bounds.west, bounds.south, bounds.east, bounds.north);
      !problem.empty())
    return problem;
  options.underlayBounds = bounds;
  return {};
}

std::string DataFiles(const LayerOptions&) {
  std::string files;
  for (const LayerRow& layer : Layers()) {
    if (!layer.set) continue;
    files += files.empty() ? " " : ", ";
    files += SetName(layer, DATA_SCALES[0]) + ".shp";
  }
  return files + ", the same with ne_50m_ and ne_10m_, and to each its .dbf and .shx; all are optional";
}

constexpr OptionRow<LayerOptions> LAYER_OPTIONS[] = {
    {"--layer", "LAYER",
     "one that 'k7chart layers' lists as present, or a shapefile set FILE.shp; may be repeated; without it "
     "all "
     "are drawn that there are data for",
     AddLayer, true},
    {"--show", "LAYER", "shows a layer that the theme hides, or one more than --layer names; may be repeated",
     ShowLayer, true},
    {"--contours", nullptr, "shows the terrain's contour lines, as --show contours",
     [](const char*, LayerOptions& options) { return ShowLayer("contours", options); }},
    {"--hide", "LAYER", "leaves out a layer; may be repeated", HideLayer, true},
    {"--order", "LAYERS",
     "layers in the order in which they are to lie, from the ground up, as \"airports,airways\": they change "
     "places among themselves, the others stay",
     SetOrder},
};

constexpr OptionRow<LayerOptions> DATA_OPTIONS[] = {
    {"--data", "FOLDER",
     "where the layers are read from (default $K7CHART_DATA, or else the sample data that k7chart comes "
     "with):",
     SetData, false, DataFiles},
    {"--nav", "FILE.db",
     "navigation data, made by 'k7nav import': airports, navaids, fixes, airways and airspaces (default: the "
     "sample of the Salish Sea)",
     SetNav},
    {"--magnetic", "FILE.COF",
     "coefficients of the World Magnetic Model, for magnetic courses and isogonic lines (default: those that "
     "k7chart comes with)",
     SetMagnetic},
    {"--terrain", "FOLDER",
     "region files, made by 'k7terrain build', for shaded relief in tints of height and for maximum "
     "elevation "
     "figures (default: the folder terrain of the data folder, or else that of the sample); none leaves both "
     "out",
     SetTerrain},
    {"--underlay", "IMAGE",
     "a picture of the whole world to draw under the map instead of its land and water: PNG, BMP, GIF or "
     "PCX, its "
     "rows of equal latitude from the north pole down, its columns of equal longitude from 180 west; what is "
     "transparent in it shows the map",
     SetUnderlay},
    {"--underlay-bounds", "BOX",
     "what the picture shows where it is not the whole world: WEST,SOUTH,EAST,NORTH in degrees, as "
     "-125.5,47,-121,50; across 180 degrees its west is the larger",
     SetUnderlayBounds},
};

// Empty, or what is wrong.
std::string Find(const std::string& name, const std::string& folder, const DataScale& scale,
                 LayerRequest& request) {
  if (const LayerRow* const row = FindLayer(name.c_str())) {
    if (!row->set) {
      request = {row->item, {}};
      return {};
    }
    request = {row->item, FindAnySet(folder, *row, scale)};
    return request.path.empty() ? "no data for the layer " + Quoted(name) + ": " + WhatIsThere(folder)
                                : std::string();
  }
  const LayerRow* const kind = LayerOfFile(name);
  request = {kind ? kind->item : ThemeItem::Other, name};
  if (IsShapefile(name)) return {};
  return "unknown layer " + Quoted(name) + ": " + WhatIsThere(folder) + "; a file of your own ends in .shp";
}

// Whether a layer is drawn that nobody asked for by name. What was named, and is not there, is said when it
// is opened.
bool HasSource(const LayerRow& row, const LayerOptions& options) {
  switch (row.source) {
    case LayerSource::Terrain:
      // Relief would cover a picture.
      if (row.item == ThemeItem::Terrain && !options.underlay.empty() && options.terrain.empty())
        return false;
      return !TerrainFolder(options).empty();
    case LayerSource::Navigation:
      return !options.nav.empty();
    default:
      return true;
  }
}

// Adds a layer that was asked for by name. Empty, or what is wrong.
std::string AddNamed(const std::string& name, const std::string& folder, const DataScale& scale,
                     std::vector<LayerRequest>& layers) {
  LayerRequest request;
  if (std::string problem = Find(name, folder, scale, request); !problem.empty()) return problem;
  const bool twice = std::any_of(layers.begin(), layers.end(), [&](const LayerRequest& other) {
    return other.path == request.path && other.item == request.item;
  });
  if (!twice) layers.push_back(std::move(request));
  return {};
}

// What a chart has without being asked: '--show' takes back what a theme hides.
bool NeedsNoData(const std::string& name) {
  for (const char* const other : {"sea", "graticule", "underlay", "route"})
    if (K7String::IComp(name.c_str(), other) == 0) return true;
  return false;
}

// A picture lies under the relief; without that it covers all land and water.
void AddUnderlay(const LayerOptions& options, std::vector<LayerRequest>& layers) {
  if (options.underlay.empty()) return;
  const auto isTerrain = [](const LayerRequest& layer) { return layer.item == ThemeItem::Terrain; };
  const bool hasTerrain = std::any_of(layers.begin(), layers.end(), isTerrain);
  const ThemeItem covered = hasTerrain ? ThemeItem::Land : ThemeItem::LakeLines;
  const auto above = std::find_if(layers.begin(), layers.end(),
                                  [&](const LayerRequest& layer) { return layer.item > covered; });
  layers.insert(above, {ThemeItem::Underlay, options.underlay});
}

}  // namespace

LayerOptions::LayerOptions() {
  const char* const given = std::getenv("K7CHART_DATA");
  folder = given && *given ? given : SharedData("sample");
  nav = SampleNav();
  magnetic = SharedData("sample") + "/magnetic/WMM.COF";
}

std::string TerrainFolder(const LayerOptions& options) {
  if (options.terrain == "none") return {};
  if (!options.terrain.empty()) return options.terrain;
  for (const std::string& folder : {options.folder, SharedData("sample")})
    if (HasTerrain(folder + "/terrain")) return folder + "/terrain";
  return {};
}

void AddLayerOptions(OptionTable& table, LayerOptions& options) { table.Add(LAYER_OPTIONS, options); }

void AddDataOptions(OptionTable& table, LayerOptions& options) { table.Add(DATA_OPTIONS, options); }

std::string FindLayers(const LayerOptions& options, const DataScale& scale,
                       std::vector<LayerRequest>& layers) {
  if (options.underlayBounds && options.underlay.empty()) return "--underlay-bounds needs --underlay";
  if (options.names.empty()) {
    if (LayersIn(options.folder).empty()) return "no map data in the folder " + Quoted(options.folder);
    for (const LayerRow& row : Layers()) {
      std::string path = FindAnySet(options.folder, row, scale);
      if (row.set ? !path.empty() : HasSource(row, options)) layers.push_back({row.item, std::move(path)});
    }
  }
  for (const std::string& name : options.names)
    if (std::string problem = AddNamed(name, options.folder, scale, layers); !problem.empty()) return problem;
  for (const std::string& name : options.shown) {
    if (NeedsNoData(name)) continue;
    if (std::string problem = AddNamed(name, options.folder, scale, layers); !problem.empty()) return problem;
  }
  // As the table has them, whatever order they were asked for in: land would cover the lakes.
  std::stable_sort(layers.begin(), layers.end(),
                   [](const LayerRequest& a, const LayerRequest& b) { return a.item < b.item; });
  AddUnderlay(options, layers);
  return {};
}

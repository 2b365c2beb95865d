#include "app/layer_options.h"

#include <k7/foundation/string.h>
#include "app_common/shared_data.h"
#include "layers/terrain_files.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

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
      return !TerrainFolder(options).empty();
    case LayerSource::Navigation:
      return !options.nav.empty();
    default:
      return true;
  }
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
  for (const std::string& name : options.names) {
    LayerRequest request;
    if (std::string problem = Find(name, options.folder, scale, request); !problem.empty()) return problem;
    const bool twice = std::any_of(layers.begin(), layers.end(), [&](const LayerRequest& other) {
      return other.path == request.path && other.item == request.item;
    });
    if (!twice) layers.push_back(std::move(request));
  }
  // As the table has them, whatever order they were asked for in: land would cover the lakes.
  std::stable_sort(layers.begin(), layers.end(),
                   [](const LayerRequest& a, const LayerRequest& b) { return a.item < b.item; });
  if (!options.names.empty()) return {};
  if (LayersIn(options.folder).empty()) return "no map data in the folder " + Quoted(options.folder);
  for (const LayerRow& row : Layers()) {
    std::string path = FindAnySet(options.folder, row, scale);
    if (row.set ? !path.empty() : HasSource(row, options)) layers.push_back({row.item, std::move(path)});
  }
  return {};
}

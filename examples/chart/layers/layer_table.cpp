#include "layers/layer_table.h"

#include <k7/foundation/string.h>
#include <k7/io/file.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

namespace {

// As the sets of Natural Earth are called.
constexpr LayerRow LAYERS[] = {
    {"land", "land", ThemeItem::Land},
    {"terrain", nullptr, ThemeItem::Terrain, LayerSource::Terrain},
    {"contours", nullptr, ThemeItem::Contours, LayerSource::Terrain},
    {"lakes", "lakes", ThemeItem::Lakes},
    {"rivers", "rivers_lake_centerlines", ThemeItem::Rivers},
    {"borders", "admin_0_boundary_lines_land", ThemeItem::Borders},
    {"elevations", nullptr, ThemeItem::Elevations, LayerSource::Terrain},
    {"isogonics", nullptr, ThemeItem::Isogonics, LayerSource::Magnetism},
    {"airspaces", nullptr, ThemeItem::Airspaces, LayerSource::Navigation},
    {"airways", nullptr, ThemeItem::Airways, LayerSource::Navigation},
    {"fixes", nullptr, ThemeItem::Fixes, LayerSource::Navigation},
    {"navaids", nullptr, ThemeItem::Navaids, LayerSource::Navigation},
    {"airports", nullptr, ThemeItem::Airports, LayerSource::Navigation},
};

}  // namespace

std::span<const LayerRow> Layers() { return LAYERS; }

const LayerRow* FindLayer(const char* name) {
  for (const LayerRow& layer : LAYERS)
    if (K7String::IComp(name, layer.name) == 0) return &layer;
  return nullptr;
}

LayerSource SourceOf(ThemeItem item) {
  for (const LayerRow& layer : LAYERS)
    if (layer.item == item) return layer.source;
  return LayerSource::Sets;
}

const char* LayerNameOf(ThemeItem item) {
  for (const LayerRow& layer : LAYERS)
    if (layer.item == item) return layer.name;
  return nullptr;
}

const LayerRow* LayerOfFile(const std::string& path) {
  std::string name = std::filesystem::path(path).stem().string();
  int millions = 0, prefix = 0;
  if (std::sscanf(name.c_str(), "ne_%dm_%n", &millions, &prefix) == 1)
    name.erase(0, static_cast<size_t>(prefix));
  for (const LayerRow& layer : LAYERS)
    if (layer.set &&
        (K7String::IComp(name.c_str(), layer.set) == 0 || K7String::IComp(name.c_str(), layer.name) == 0))
      return &layer;
  return nullptr;
}

const DataScale& ScaleFor(double rangeNM) {
  for (const DataScale& scale : DATA_SCALES)
    if (rangeNM == 0 || rangeNM > scale.fromNM) return scale;
  return DATA_SCALES[std::size(DATA_SCALES) - 1];
}

std::string ScaleName(const DataScale& scale) { return "1:" + std::to_string(scale.millions) + "m"; }

std::string SetName(const LayerRow& layer, const DataScale& scale) {
  return "ne_" + std::to_string(scale.millions) + "m_" + layer.set;
}

std::string FindSet(const std::string& folder, const LayerRow& layer, const DataScale& scale) {
  if (!layer.set) return {};
  std::string path = folder + "/" + SetName(layer, scale) + ".shp";
  return K7File::FilePathExists(path.c_str()) ? path : std::string();
}

std::string FindAnySet(const std::string& folder, const LayerRow& layer, const DataScale& wanted) {
  std::string coarser;
  for (const DataScale& scale : DATA_SCALES) {
    std::string path = FindSet(folder, layer, scale);
    if (path.empty()) continue;
    if (scale.millions <= wanted.millions) return path;
    coarser = std::move(path);
  }
  return coarser;
}

std::string LayersIn(const std::string& folder) {
  std::string names;
  for (const LayerRow& layer : LAYERS) {
    if (FindAnySet(folder, layer, DATA_SCALES[0]).empty()) continue;
    names += names.empty() ? "" : ", ";
    names += layer.name;
  }
  return names;
}

#include "layers/layer_table.h"

#include <k7/foundation/string.h>
#include <k7/io/file.h>

namespace {

// As the sets of Natural Earth are called.
constexpr LayerRow LAYERS[] = {
    {"land", "land", LayerKind::Land},
    {"lakes", "lakes", LayerKind::Lakes},
    {"rivers", "rivers_lake_centerlines", LayerKind::Rivers},
    {"borders", "admin_0_boundary_lines_land", LayerKind::Borders},
};

}  // namespace

std::span<const LayerRow> Layers() { return LAYERS; }

const LayerRow* FindLayer(const char* name) {
  for (const LayerRow& layer : LAYERS)
    if (K7String::IComp(name, layer.name) == 0) return &layer;
  return nullptr;
}

const char* ScaleName(DataScale scale) { return scale == DataScale::Coarse ? "1:110m" : "1:50m"; }

std::string SetName(const LayerRow& layer, DataScale scale) {
  return (scale == DataScale::Coarse ? "ne_110m_" : "ne_50m_") + std::string(layer.set);
}

std::string FindSet(const std::string& folder, const LayerRow& layer, DataScale scale) {
  std::string path = folder + "/" + SetName(layer, scale) + ".shp";
  return K7File::FilePathExists(path.c_str()) ? path : std::string();
}

std::string FindAnySet(const std::string& folder, const LayerRow& layer, DataScale wanted) {
  std::string path = FindSet(folder, layer, wanted);
  if (!path.empty()) return path;
  return FindSet(folder, layer, wanted == DataScale::Coarse ? DataScale::Fine : DataScale::Coarse);
}

std::string LayersIn(const std::string& folder) {
  std::string names;
  for (const LayerRow& layer : LAYERS) {
    if (FindAnySet(folder, layer, DataScale::Coarse).empty()) continue;
    names += names.empty() ? "" : ", ";
    names += layer.name;
  }
  return names;
}

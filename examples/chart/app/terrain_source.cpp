#include "app/terrain_source.h"

#include "layers/contour_layer.h"
#include "layers/elevation_layer.h"
#include "layers/terrain_layer.h"

namespace {

std::string Load(const std::string& folder, Progress& progress, TerrainFiles& files) {
  if (folder.empty())
    return "no terrain: '--terrain FOLDER' names region files that 'k7terrain build' has made";
  return files.Load(folder, progress);
}

}  // namespace

std::string WhyNoTerrain(const std::string& folder) {
  NoProgress progress;
  TerrainFiles files;
  return Load(folder, progress, files);
}

std::unique_ptr<Layer> TerrainSource::Make(ThemeItem item, const std::string& folder, K7NavData* obstacles,
                                           const GraticuleLayer* graticule, Progress& progress,
                                           std::string& problem) {
  if (item == ThemeItem::Elevations && !graticule) {
    problem = "the layer 'elevations' has its figures in the cells of the graticule: not with --no-graticule";
    return nullptr;
  }
  if (!m_files) problem = Load(folder, progress, m_files.emplace());
  if (!problem.empty()) return nullptr;
  if (item == ThemeItem::Elevations) return std::make_unique<ElevationLayer>(*m_files, obstacles, *graticule);
  if (item == ThemeItem::Contours) return std::make_unique<ContourLayer>(*m_files);
  return std::make_unique<TerrainLayer>(*m_files);
}

#include "app/terrain_source.h"

#include "layers/contour_layer.h"
#include "layers/elevation_layer.h"
#include "layers/terrain_layer.h"

std::unique_ptr<Layer> TerrainSource::Make(ThemeItem item, const std::string& folder, K7NavData* obstacles,
                                           const GraticuleLayer* graticule, Progress& progress,
                                           std::string& problem) {
  if (item == ThemeItem::Elevations && !graticule) {
    problem = "the layer 'elevations' has its figures in the cells of the graticule: not with --no-graticule";
    return nullptr;
  }
  if (!m_files) problem = m_files.emplace().Load(folder, progress);
  if (!problem.empty()) return nullptr;
  if (item == ThemeItem::Elevations) return std::make_unique<ElevationLayer>(*m_files, obstacles, *graticule);
  if (item == ThemeItem::Contours) return std::make_unique<ContourLayer>(*m_files);
  return std::make_unique<TerrainLayer>(*m_files);
}

#include "app/chart_data.h"

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/nav_source.h"

std::string ChartData::Open(const LayerOptions& options) {
  m_options = options;
  for (const char* const name : SHIPPED_THEMES) {
    m_themes.push_back({name, {}});
    if (std::string problem = ReadTheme(name, m_themes.back().theme); !problem.empty()) return problem;
  }
  if (std::string problem = WhyNoMagneticModel(options.magnetic); !problem.empty()) return problem;
  if (const std::string folder = TerrainFolder(options); !folder.empty()) {
    if (std::string problem = m_terrain.Open(folder); !problem.empty()) return problem;
    m_hasTerrain = true;
  }
  std::string problem;
  OpenLayers(DATA_SCALES[0], problem);
  return problem;
}

std::unique_ptr<LayerSet> ChartData::OpenLayers(const DataScale& scale, std::string& problem) const {
  NoProgress progress;
  auto layers = std::make_unique<LayerStack>();
  problem = layers->Load(m_options, scale, true, progress);
  return problem.empty() ? std::move(layers) : nullptr;
}

std::unique_ptr<NavStore> ChartData::OpenStore(std::string& problem) const {
  if (m_options.nav.empty()) return nullptr;
  auto store = std::make_unique<NavStore>();
  problem = WhyNoStore(m_options.nav, *store);
  return problem.empty() ? std::move(store) : nullptr;
}

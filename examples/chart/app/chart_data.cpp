#include "app/chart_data.h"

#include "app/arrange_layers.h"
#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/nav_source.h"

std::string ChartData::ReadThemes(const std::string& first) {
  std::vector<std::string> names(std::begin(SHIPPED_THEMES), std::end(SHIPPED_THEMES));
  if (!first.empty()) {
    std::erase_if(names,
                  [&](const std::string& name) { return K7String::IComp(name.c_str(), first.c_str()) == 0; });
    names.insert(names.begin(), first);
  }
  for (const std::string& name : names) {
    m_themes.push_back({name, {}});
    if (std::string problem = ReadTheme(name, m_themes.back().theme); !problem.empty()) return problem;
  }
  return {};
}

std::string ChartData::Open(const LayerOptions& options, const std::string& theme) {
  m_options = options;
  if (std::string problem = ReadThemes(theme); !problem.empty()) return problem;
  if (std::string problem = WhyNoMagneticModel(options.magnetic); !problem.empty()) return problem;
  if (const std::string folder = TerrainFolder(options); !folder.empty()) {
    if (std::string problem = m_terrain.Open(folder); !problem.empty()) return problem;
    m_hasTerrain = true;
  }
  std::string problem;
  const std::unique_ptr<LayerSet> layers = OpenLayers(DATA_SCALES[0], problem);
  if (!layers) return problem;
  for (NamedTheme& known : m_themes) {
    LayerList list(layers->Layers(), known.theme);
    if (problem = ArrangeLayers(options, list); !problem.empty()) return problem;
    list.KeepIn(known.theme);
  }
  return {};
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

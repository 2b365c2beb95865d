// What maps are drawn from, as the command line names it.
#pragma once

#include "app/layer_options.h"
#include "sheet/elevations.h"
#include "web/map_data.h"

class ChartData : public MapData {
 public:
  /// Looks at all that the maps will be drawn from and reads the themes. Empty, or what is wrong.
  std::string Open(const LayerOptions& options);

  std::unique_ptr<LayerSet> OpenLayers(const DataScale& scale, std::string& problem) const override;
  std::unique_ptr<NavStore> OpenStore(std::string& problem) const override;
  Elevations* Terrain() const override { return m_hasTerrain ? &m_terrain : nullptr; }
  const std::vector<NamedTheme>& Themes() const override { return m_themes; }

 private:
  LayerOptions m_options;
  std::vector<NamedTheme> m_themes;
  mutable Elevations m_terrain;
  bool m_hasTerrain = false;
};

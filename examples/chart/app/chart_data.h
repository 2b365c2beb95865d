// What maps are drawn from, as the command line names it.
#pragma once

#include "app/layer_options.h"
#include "sheet/elevations.h"
#include "web/map_data.h"

class ChartData : public MapData {
 public:
  /// Looks at all that the maps will be drawn from and reads the themes, which have layers on and ordered as
  /// the options want them. The first is `theme`, a name or a file, where there is one. Empty, or what is
  /// wrong.
  std::string Open(const LayerOptions& options, const std::string& theme = {});

  std::unique_ptr<LayerSet> OpenLayers(const DataScale& scale, std::string& problem) const override;
  std::unique_ptr<NavStore> OpenStore(std::string& problem) const override;
  Elevations* Terrain() const override { return m_hasTerrain ? &m_terrain : nullptr; }
  const std::vector<NamedTheme>& Themes() const override { return m_themes; }

 private:
  std::string ReadThemes(const std::string& first);

  LayerOptions m_options;
  std::vector<NamedTheme> m_themes;
  mutable Elevations m_terrain;
  bool m_hasTerrain = false;
};

// From options to a picture: what the verbs that draw have in common.
#pragma once

#include "app/chart_options.h"
#include "app/layer_options.h"
#include "app/nav_source.h"
#include "app/sheet_options.h"
#include "app/terrain_source.h"

#include "sheet/chart_sheet.h"
#include "web/map_data.h"

#include <cairo.h>

#include <functional>
#include <memory>

/// The layers of a chart with their data, from the ground up.
class LayerStack : public LayerSet {
 public:
  /// Reads the sets for a chart of that scale, and opens what the other layers draw from. Empty, or what went
  /// wrong.
  std::string Load(const LayerOptions& options, const DataScale& scale, bool graticule, Progress& progress);
  std::vector<Layer*> Layers() const override;

 private:
  std::unique_ptr<Layer> Make(const LayerRequest& request, const LayerOptions& options, Progress& progress,
                              std::string& problem);
  void LayGraticule();

  NavSource m_nav;
  TerrainSource m_terrain;
  const GraticuleLayer* m_graticule = nullptr;  // among the layers; null for a chart without one
  std::vector<std::unique_ptr<Layer>> m_layers;
};

/// A chart that takes the whole sheet.
ChartBox WholeSheet(const SheetOptions& sheet);

/// Loads the layers of a chart of that scale, has `draw` fill the sheet in `charts` charts, and writes it.
/// `top`, where there is one, lies over them. Empty, or what went wrong.
std::string DrawSheet(const LayerOptions& options, const DataScale& scale, const SheetOptions& sheet,
                      const LookOptions& look, int charts,
                      const std::function<std::string(cairo_t*, Chart&)>& draw, Layer* top = nullptr);

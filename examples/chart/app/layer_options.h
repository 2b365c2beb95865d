// Which layers a chart has and where their data are.
#pragma once

#include "app_common/option_table.h"
#include "layers/layer_table.h"
#include "layers/underlay_layer.h"

#include <optional>
#include <string>
#include <vector>

struct LayerOptions {
  LayerOptions();

  std::string folder;
  std::string nav;       // database of navigation data; empty: none
  std::string magnetic;  // coefficients of the magnetic model
  std::string terrain;   // folder of region files, "none", or empty: where TerrainFolder looks
  std::string underlay;  // image file; empty: none
  std::optional<UnderlayBounds> underlayBounds;
  std::vector<std::string> names;  // as they were asked for; none: all that the folder has
  std::vector<std::string> shown, hidden;
  std::vector<std::string> order;  // from the ground up
};

/// The folder of region files that a chart has: the one given, or else "terrain" in the data folder, or in
/// the sample data. Empty for none.
std::string TerrainFolder(const LayerOptions& options);

/// A layer with its data: its set, or nothing where it takes them from another source.
struct LayerRequest {
  ThemeItem item;
  std::string path;
};

/// --layer, --show, --contours, --hide, --order
void AddLayerOptions(OptionTable& table, LayerOptions& options);
/// --data, --nav, --magnetic, --terrain, --underlay, --underlay-bounds
void AddDataOptions(OptionTable& table, LayerOptions& options);

/// The layers of a chart of that scale, each once, from the ground up. Empty, or what is wrong.
std::string FindLayers(const LayerOptions& options, const DataScale& scale,
                       std::vector<LayerRequest>& layers);

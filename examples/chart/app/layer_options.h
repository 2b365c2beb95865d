// Which layers a chart has and where their data are.
#pragma once

#include "app_common/option_table.h"
#include "layers/layer_table.h"

#include <string>
#include <vector>

struct LayerOptions {
  LayerOptions();

  std::string folder;
  std::vector<std::string> names;  // as they were asked for; none: all that the folder has
};

/// A layer with its data.
struct LayerRequest {
  ThemeItem item;
  std::string path;
};

/// --layer
void AddLayerOptions(OptionTable& table, LayerOptions& options);
/// --data
void AddDataOptions(OptionTable& table, LayerOptions& options);

/// The sets that a chart of that scale is drawn from, each once, from the ground up. Empty, or what is wrong.
std::string FindLayers(const LayerOptions& options, const DataScale& scale,
                       std::vector<LayerRequest>& layers);

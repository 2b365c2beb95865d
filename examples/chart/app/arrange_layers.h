// What the command line wants of a chart's layers.
#pragma once

#include "app/layer_options.h"
#include "layers/layer_list.h"

/// Shows, hides and orders the layers of a chart as it was asked for. Empty, or what is wrong.
std::string ArrangeLayers(const LayerOptions& options, LayerList& layers);

// The command line of k7chart.
#pragma once

#include "sheet/world_chart.h"

#include <string>
#include <vector>

struct LayerRequest {
  LayerKind kind;
  std::string path;
};

struct Options {
  ChartRequest chart;
  bool gallery = false;
  bool help = false;
  int width = 1600;
  int height = 1000;
  std::string output = "chart.png";
  std::string data;
  std::vector<LayerRequest> layers;
};

/// Reads the arguments. Empty, or what is wrong, in one line.
std::string ParseOptions(int argc, const char* const* argv, Options& options);

const char* HelpText();

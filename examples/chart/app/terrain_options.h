// Where the terrain is for verbs that draw none.
#pragma once

#include "app_common/option_table.h"

#include <string>

struct TerrainOptions {
  TerrainOptions();

  std::string folder;
  double resolution = 0;  // arc-seconds between posts; 0: the finest
};

/// --terrain, --resolution
void AddTerrainOptions(OptionTable& table, TerrainOptions& options);

/// The folder of the terrain that k7chart comes with.
std::string SampleTerrain();

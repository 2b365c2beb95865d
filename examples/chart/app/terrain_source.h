// Where the layers of terrain come from: a folder of region files, read when the first of them is wanted.
#pragma once

#include "layers/graticule_layer.h"
#include "layers/terrain_files.h"

#include <k7/navdata/nav_data.h>

#include <memory>
#include <optional>

/// Must outlive the layers.
class TerrainSource {
 public:
  /// Null with `problem` in words when the folder cannot be read, or for figures without a graticule. Without
  /// obstacles figures are those of the terrain.
  std::unique_ptr<Layer> Make(ThemeItem item, const std::string& folder, K7NavData* obstacles,
                              const GraticuleLayer* graticule, Progress& progress, std::string& problem);

 private:
  std::optional<TerrainFiles> m_files;
};

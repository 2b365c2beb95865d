// The region files of a folder, which layers of terrain share.
#pragma once

#include "ink/progress.h"

#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>

#include <memory>
#include <string>
#include <vector>

/// Whether a folder has region files at all.
bool HasTerrain(const std::string& folder);
/// Empty, or why the folder cannot serve.
std::string WhyNoTerrain(const std::string& folder);

class TerrainFiles {
 public:
  /// Reads the headers of all region files. Empty, or what went wrong.
  std::string Load(const std::string& folder, Progress& progress);

  /// Posts per degree of what is there, the finest first.
  std::vector<int> Resolutions() const;
  /// The tiles of that resolution that share a point with an area.
  std::vector<K7TerTile*> TilesIn(int resolution, const K7ChartRect& area) const;

 private:
  struct Region {
    int resolution;
    std::unique_ptr<K7TerRegion> region;
  };
  std::vector<Region> m_regions;
};

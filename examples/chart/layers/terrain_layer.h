// Shaded relief in tints of height and depth, from region files.
#pragma once

#include "layers/layer.h"

#include <k7/terrain/ter_params.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile_ex.h>

#include <memory>

class TerrainLayer : public Layer {
 public:
  explicit TerrainLayer(std::string folder) : m_folder(std::move(folder)) {}

  /// Reads the headers of all region files. Empty, or what went wrong.
  std::string Load(Progress& progress);

  std::string Name() const override { return "terrain"; }
  ThemeItem Item() const override { return ThemeItem::Terrain; }
  void Prepare(const LayerContext& context) override;
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;

 private:
  struct Region {
    int resolution;  // posts per degree
    std::unique_ptr<K7TerRegion> region;
  };

  int ResolutionFor(const K7MapView& view) const;
  void AddTiles(const K7TerRegion& region, const K7ChartRect& extent);

  std::string m_folder;
  std::vector<Region> m_regions;
  K7TerParams m_params;
  std::unique_ptr<K7TerTileEX> m_shown;  // what the view shows, in one grid
};

// Shaded relief in tints of height and depth, from region files.
#pragma once

#include "layers/layer.h"
#include "layers/terrain_files.h"

#include <k7/terrain/ter_params.h>
#include <k7/terrain/ter_tile_ex.h>

#include <memory>

class TerrainLayer : public Layer {
 public:
  /// The files stay the caller's.
  explicit TerrainLayer(const TerrainFiles& files) : m_files(files) {}

  std::string Name() const override { return "terrain"; }
  ThemeItem Item() const override { return ThemeItem::Terrain; }
  void Prepare(const LayerContext& context) override;
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  /// The tints of the heights that the view shows, as a bar, once they are drawn.
  void AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const override;

 private:
  const TerrainFiles& m_files;
  K7TerParams m_params;
  std::unique_ptr<K7TerTileEX> m_shown;  // what the view shows, in one grid
  bool m_isSeen = false;                 // more of it was drawn than what fades
};

// Maximum elevation figures: in each cell of the graticule the height that clears all in it, thousands of
// feet large and hundreds small, as on printed sectional charts.
#pragma once

#include "layers/cell_heights.h"

class ElevationLayer : public Layer {
 public:
  /// The graticule must be in the chart, below this layer. All stay the caller's; the store may be null.
  ElevationLayer(const TerrainFiles& files, K7NavData* store, const GraticuleLayer& graticule)
      : m_heights(files, store), m_graticule(graticule) {}

  std::string Name() const override { return "elevations"; }
  ThemeItem Item() const override { return ThemeItem::Elevations; }
  void Prepare(const LayerContext&) override { m_isDrawn = false; }
  /// In the middle of its cell, or as near to it as symbols leave room.
  void OfferFirst(const LayerContext& context, double size, LabelPlan& plan) override;
  void AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const override;

 private:
  CellHeights m_heights;
  const GraticuleLayer& m_graticule;
  bool m_isDrawn = false;
};

/// "12⁶" for 12,600 ft.
std::string FigureText(int feet);

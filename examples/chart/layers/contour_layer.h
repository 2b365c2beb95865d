// Contour lines of the terrain, in feet.
#pragma once

#include "layers/device_line.h"
#include "layers/layer.h"
#include "layers/terrain_files.h"

/// Feet between lines on a chart of that scale, in nautical miles an ordinary pixel, whose heights span so
/// many feet.
int ContourStep(double nmPerPixel, double span);

/// Lines above the sea's level, smooth between posts; every fifth is heavier and has its height written in
/// it, or each has where there is no such. They are found when they are first wanted: hidden they cost
/// nothing.
class ContourLayer : public Layer {
 public:
  struct Contour {
    int feet;
    bool isIndex;  ///< a heavier one
    DeviceLine line;
  };

  /// The files stay the caller's.
  explicit ContourLayer(const TerrainFiles& files) : m_files(files) {}

  std::string Name() const override { return "contours"; }
  ThemeItem Item() const override { return ThemeItem::Contours; }
  void Prepare(const LayerContext&) override { m_isFound = false; }
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void OfferDetails(const LayerContext& context, double size, LabelPlan& plan) override;
  void AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;

  const std::vector<Contour>& Lines(const LayerContext& context);

 private:
  void Find(const LayerContext& context);

  const TerrainFiles& m_files;
  std::vector<Contour> m_lines;
  int m_step = 0;
  bool m_isFound = false;
};

// The runways of an airport diagram: their lettering, and where nothing better shows them, their areas.
#pragma once

#include "layers/layer.h"
#include "layers/runway_strips.h"

class RunwayLayer : public Layer {
 public:
  /// What is drawn beside the lettering; water is an outline.
  enum class Areas { None, Paved, Water };
  RunwayLayer(std::vector<RunwayStrip> runways, Areas areas)
      : m_runways(std::move(runways)), m_areas(areas) {}

  std::string Name() const override { return "runways"; }
  ThemeItem Item() const override { return ThemeItem::Runways; }
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;

 private:
  std::vector<RunwayStrip> m_runways;
  Areas m_areas;
};

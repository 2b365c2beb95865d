// Fixes: named points of routes and procedures.
#pragma once

#include "layers/nav_places.h"

class FixLayer : public Layer {
 public:
  /// The store stays the caller's; null draws nothing.
  explicit FixLayer(K7NavData* data) : m_data(data) {}

  std::string Name() const override { return "fixes"; }
  ThemeItem Item() const override { return ThemeItem::Fixes; }
  void Prepare(const LayerContext& context) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<std::string>& found) override;

 private:
  struct Fix : NavPlace {
    int segments = 0;  // of airways that end there
  };

  void Collect(const LayerContext& context);

  K7NavData* m_data;
  std::vector<Fix> m_fixes;
};

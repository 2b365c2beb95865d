// Fixes: named points of routes and procedures.
#pragma once

#include "layers/place_layer.h"

struct FixPlace : NavPlace {
  int segments = 0;  ///< of airways that end there
};

class FixLayer : public PlaceLayer<FixPlace> {
 public:
  using PlaceLayer::PlaceLayer;
  std::string Name() const override { return "fixes"; }
  ThemeItem Item() const override { return ThemeItem::Fixes; }

 private:
  void Collect(const LayerContext& context) override;
  SymbolKind SymbolKindOf(const FixPlace& fix) const override { return KindOfFix(fix.segments > 0); }
  void DrawSymbol(const FixPlace& fix, SymbolPen& pen) const override;
  bool OfferLabel(const LayerContext& context, const FixPlace& fix, double size,
                  LabelPlan& plan) const override;
  std::string KindOf(const FixPlace& fix) const override;
  std::string LegendText(const FixPlace& fix) const override;
};

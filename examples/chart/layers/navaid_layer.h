// Navaids with their compass roses and name boxes.
#pragma once

#include "layers/place_layer.h"

struct NavaidPlace : NavPlace {
  NavaidSymbol symbol = NavaidSymbol::VOR;
  std::string freq;  ///< with its unit; empty when unknown
  double declination =
      0;  ///< of the radials, degrees east; not a number when there are none or it is unknown
  bool hasRose = false;
  RoseShape rose;
};

class NavaidLayer : public PlaceLayer<NavaidPlace> {
 public:
  using PlaceLayer::PlaceLayer;
  std::string Name() const override { return "navaids"; }
  ThemeItem Item() const override { return ThemeItem::Navaids; }
  /// Roses have a theme entry of their own, which also says at which scales they show.
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void OfferDetails(const LayerContext& context, double size, LabelPlan& plan) override;

 private:
  void Collect(const LayerContext& context) override;
  SymbolKind SymbolKindOf(const NavaidPlace& navaid) const override { return KindOfSymbol(navaid.symbol); }
  void DrawSymbol(const NavaidPlace& navaid, SymbolPen& pen) const override;
  bool OfferLabel(const LayerContext& context, const NavaidPlace& navaid, double size,
                  LabelPlan& plan) const override;
  std::string KindOf(const NavaidPlace& navaid) const override;
  std::string Details(const NavaidPlace& navaid) const override;
  void FindRoses(const LayerContext& context);
  void OfferFigures(const LayerContext& context, const NavaidPlace& navaid, double size,
                    LabelPlan& plan) const;
};

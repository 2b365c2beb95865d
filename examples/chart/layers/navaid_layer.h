// Navaids with their compass roses and name boxes.
#pragma once

#include "layers/nav_places.h"
#include "layers/nav_symbols.h"

class NavaidLayer : public Layer {
 public:
  /// The store stays the caller's; null draws nothing.
  explicit NavaidLayer(K7NavData* data) : m_data(data) {}

  std::string Name() const override { return "navaids"; }
  ThemeItem Item() const override { return ThemeItem::Navaids; }
  void Prepare(const LayerContext& context) override;
  /// Roses have a theme entry of their own, which also says at which scales they show.
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void OfferDetails(const LayerContext& context, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<std::string>& found) override;

 private:
  struct Navaid : NavPlace {
    NavaidSymbol symbol = NavaidSymbol::VOR;
    std::string freq;  // with its unit; empty when unknown
    double declination =
        0;  // of the radials, degrees east; not a number when there are none or it is unknown
    bool hasRose = false;
    RoseShape rose;
  };

  void Collect(const LayerContext& context);
  void FindRoses(const LayerContext& context);
  void OfferFigures(const LayerContext& context, const Navaid& navaid, double size, LabelPlan& plan) const;

  K7NavData* m_data;
  std::vector<Navaid> m_navaids;
};

// Airports, with their runways where there is room for them.
#pragma once

#include "layers/place_layer.h"

struct AirportPlace : NavPlace {
  AirportSymbol symbol = AirportSymbol::Other;
  int elev = 0;                     ///< feet
  int longestRunway = 0;            ///< feet
  double direction = 0;             ///< of the longest runway on the device; not a number without one
  std::vector<RunwayLine> runways;  ///< on charts that have room for them
};

class AirportLayer : public PlaceLayer<AirportPlace> {
 public:
  using PlaceLayer::PlaceLayer;
  std::string Name() const override { return "airports"; }
  ThemeItem Item() const override { return ThemeItem::Airports; }

 private:
  void Collect(const LayerContext& context) override;
  PixelBox BoxOf(const LayerContext& context, const AirportPlace& airport) const override;
  ThemeItem LookOf(const AirportPlace& airport) const override {
    return airport.symbol == AirportSymbol::Towered ? ThemeItem::ToweredAirports : Item();
  }
  SymbolKind SymbolKindOf(const AirportPlace& airport) const override { return KindOfSymbol(airport.symbol); }
  void DrawSymbol(const AirportPlace& airport, SymbolPen& pen) const override;
  void Draw(const AirportPlace& airport, SymbolPen& pen) const override;
  bool OfferLabel(const LayerContext& context, const AirportPlace& airport, double size,
                  LabelPlan& plan) const override;
  std::string KindOf(const AirportPlace& airport) const override;
  std::string LegendText(const AirportPlace& airport) const override;
  std::string Details(const AirportPlace& airport) const override;
  void FindRunways(const LayerContext& context, AirportPlace& airport) const;
};

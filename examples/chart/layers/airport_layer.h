// Airports, with their runways where there is room for them.
#pragma once

#include "layers/nav_places.h"
#include "layers/nav_symbols.h"

class AirportLayer : public Layer {
 public:
  /// The store stays the caller's; null draws nothing.
  explicit AirportLayer(K7NavData* data) : m_data(data) {}

  std::string Name() const override { return "airports"; }
  ThemeItem Item() const override { return ThemeItem::Airports; }
  void Prepare(const LayerContext& context) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<std::string>& found) override;

 private:
  struct Airport : NavPlace {
    AirportSymbol symbol = AirportSymbol::Other;
    int elev = 0;                     // feet
    int longestRunway = 0;            // feet
    double direction = 0;             // of the longest runway on the device; not a number without one
    std::vector<RunwayLine> runways;  // on charts that have room for them
  };

  void Collect(const LayerContext& context);
  void FindRunways(const LayerContext& context, Airport& airport) const;
  static double Radius(const Airport& airport);
  static PixelBox BoxOf(const LayerContext& context, const Airport& airport);

  K7NavData* m_data;
  std::vector<Airport> m_airports;
};

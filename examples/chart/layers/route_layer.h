// A route: its line over everything else, its fixes, and what a flight log says of each leg beside it.
#pragma once

#include "layers/device_line.h"
#include "layers/layer.h"

#include "route/route.h"

class RouteLayer : public Layer {
 public:
  /// The route stays the caller's.
  explicit RouteLayer(const Route& route) : m_route(route) {}

  std::string Name() const override { return "route"; }
  ThemeItem Item() const override { return ThemeItem::Route; }
  void Prepare(const LayerContext& context) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  /// Of the fixes, and of the line itself: no layer writes on it.
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  /// Ends first, then the fixes where the airway changes, legs, and the other fixes.
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;
  std::vector<DeviceLine> Corridor() const override;

 private:
  struct Fix {
    double dx = 0, dy = 0;
    double radius = 0;  // of its symbol, pixels
    bool isSeen = false;
    bool isTurn = false;  // an end, or a change of airway
  };
  /// Pieces of a leg: one that crosses a map's seam has several.
  struct Line {
    size_t leg;
    DeviceLine line;  // between the symbols of its fixes
  };
  class Writer;

  void PlaceFixes(const LayerContext& context);
  void PlaceLine(const LayerContext& context, size_t leg, K7MapPath& path);

  const Route& m_route;
  std::vector<Fix> m_fixes;
  std::vector<Line> m_lines;
};

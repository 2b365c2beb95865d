// What airports, navaids and fixes have in common: symbols with something written beside them.
#pragma once

#include "layers/nav_places.h"
#include "layers/nav_symbols.h"
#include "layers/place_label.h"
#include "layers/symbol_size.h"

/// A symbol that says nothing without its label is left out where the label finds no room: when the labels
/// have been offered, `DrawLines` and `Pick` know which. Labels of important places come first. Of what
/// pieces of a picture share, all draw the symbol, and that which has its place writes the label.
template <class Place>
class PlaceLayer : public Layer {
 public:
  /// The store stays the caller's; null draws nothing.
  explicit PlaceLayer(K7NavData* data) : m_data(data) {}

  void Prepare(const LayerContext& context) override {
    m_places.clear();
    if (m_data && context.theme[Item()].ShowsAt(context.view.NMPerPixel())) Collect(context);
  }

  /// The important lie above others.
  void DrawLines(const LayerContext& context, K7MapPath&, K7Grfx& g) override {
    for (auto place = m_places.rbegin(); place != m_places.rend(); ++place) {
      if (!place->isShown) continue;
      SymbolPen pen(g, context.theme[LookOf(*place)], context.scale, context.theme.Symbols());
      Draw(*place, pen);
    }
  }

  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override {
    for (const Place& place : m_places) plan.Keep(BoxOf(context, place));
  }

  void OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) override {
    const PixelBox part = context.Part();
    for (Place& place : m_places) {
      const bool isOurs = !context.IsPiece() || part.Holds(BoxAbout(place.dx, place.dy, 0));
      const bool isNamed = isOurs && OfferLabel(context, place, size, plan);
      place.isShown = isNamed || place.onEdge;
    }
  }

  void Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
            std::vector<Picked>& found) override {
    static const double REACH = 2;
    for (const Place& place : m_places) {
      if (!place.isShown || !BoxOf(context, place).Meets(BoxAbout(dx, dy, REACH * context.scale))) continue;
      found.push_back(
          PickedRecords(IdentAndName(place) + " " + KindOf(place) + Details(place), *m_data, {place.key}));
      found.back().point = {place.ident, {place.lat, place.lon}};
    }
  }

  void AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const override {
    for (const Place& place : m_places) {
      const std::string text = LegendText(place);
      const auto isThis = [&](const LegendEntry& entry) { return entry.text == text; };
      if (!place.isShown || std::any_of(legend.begin(), legend.end(), isThis)) continue;
      static const double LARGEST = 16;  // picture that a line of the margin has room for
      const auto draw = [this, place, entry = context.theme[LookOf(place)], scale = context.scale,
                         images = context.theme.Symbols()](K7Grfx& g, double x, double y) {
        Place sample = place;
        sample.dx = x;
        sample.dy = y;
        SymbolPen pen(g, entry, scale, images, LARGEST);
        DrawSymbol(sample, pen);
      };
      legend.push_back({text, draw});
    }
  }

 protected:
  /// What a symbol covers: its picture, or else so many ordinary pixels about its place.
  PixelBox SymbolBox(const LayerContext& context, const Place& place, double radius) const {
    const SymbolImage* const image = context.theme.Symbols().Of(SymbolKindOf(place));
    return image ? image->SeenAt(place.dx, place.dy, context.scale)
                 : BoxAbout(place.dx, place.dy, radius * context.scale);
  }
  /// Fills `m_places`, the important first.
  virtual void Collect(const LayerContext& context) = 0;
  /// What the symbol takes up.
  virtual PixelBox BoxOf(const LayerContext& context, const Place& place) const {
    return SymbolBox(context, place, SymbolRadius(place.key.NavType()));
  }
  /// What draws its symbol.
  virtual ThemeItem LookOf(const Place&) const { return Item(); }
  virtual SymbolKind SymbolKindOf(const Place& place) const = 0;
  virtual void DrawSymbol(const Place& place, SymbolPen& pen) const = 0;
  /// As it lies on the ground, where that is not its symbol.
  virtual void Draw(const Place& place, SymbolPen& pen) const { DrawSymbol(place, pen); }
  /// Says whether the place is to be shown.
  virtual bool OfferLabel(const LayerContext& context, const Place& place, double size,
                          LabelPlan& plan) const = 0;
  /// "heliport"
  virtual std::string KindOf(const Place& place) const = 0;
  /// The kind as its symbol tells it from others.
  virtual std::string LegendText(const Place& place) const { return KindOf(place); }
  /// ", 433 ft"
  virtual std::string Details(const Place&) const { return {}; }

  K7NavData* m_data;
  std::vector<Place> m_places;
};

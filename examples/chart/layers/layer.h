// What a chart is made of: the interface behind which each kind of layer stands.
#pragma once

#include "ink/label_plan.h"
#include "ink/progress.h"
#include "ink/theme.h"
#include "layers/device_line.h"
#include "layers/picked.h"

#include <k7/projection/map_path.h>
#include <k7/projection/map_view.h>

#include <functional>
#include <string>
#include <vector>

/// What a layer is drawn by.
struct LayerContext {
  const K7MapView& view;
  const Theme& theme;
  double scale;  // of widths and symbols: 1 on a sheet of ordinary size
  Progress& progress;
  double overhang = 0;  // pixels of the window on each side that belong to the pieces of a picture around it

  /// Whether it is a piece of a larger picture, which cuts what others show too.
  bool IsPiece() const { return overhang > 0; }
  /// The part of the window in which lettering stands.
  PixelBox Part() const { return {overhang, overhang, view.Width() - overhang, view.Height() - overhang}; }
};

/// Lettering that belongs to what a legend shows, `x` pixels from the place that it is drawn about.
struct LegendMark {
  std::string text;
  double x;
  Lettering lettering;
};

/// What a symbol stands for.
struct LegendEntry {
  std::string text;
  std::function<void(K7Grfx& g, double dx, double dy)> draw;  ///< about a place; valid as long as the view is
  double room = 0;  ///< pixels to the right that it takes beyond those of a symbol
  std::vector<LegendMark> marks{};
};

/// A layer draws with the library's graphics context only. A chart asks all its layers first for the places
/// that their symbols take and for their labels, of which the uppermost layer has the first choice; then for
/// their areas and for their lines, each time in their order. Without labels all is drawn.
class Layer {
 public:
  virtual ~Layer() = default;
  virtual std::string Name() const = 0;
  /// What the layer has in the theme, which also says at which scales it shows.
  virtual ThemeItem Item() const = 0;
  /// Called when a view is new, before anything else.
  virtual void Prepare(const LayerContext&) {}
  virtual void DrawAreas(const LayerContext&, K7MapPath&, K7Grfx&) {}
  virtual void DrawLines(const LayerContext&, K7MapPath&, K7Grfx&) {}
  /// Keeps the places of symbols clear of any layer's labels.
  virtual void KeepSymbols(const LayerContext&, LabelPlan&) {}
  /// Lettering that is not to give way to any label: offered when all symbols have their places, before any
  /// layer's labels.
  virtual void OfferFirst(const LayerContext&, double /*size*/, LabelPlan&) {}
  /// `size` of ordinary lettering, in pixels.
  virtual void OfferLabels(const LayerContext&, K7MapPath&, double /*size*/, LabelPlan&) {}
  /// What is the first to go where there is no room: offered when all layers have their labels.
  virtual void OfferDetails(const LayerContext&, double /*size*/, LabelPlan&) {}
  /// Adds each kind of symbol that is drawn and not there yet.
  virtual void AddToLegend(const LayerContext&, std::vector<LegendEntry>&) const {}
  /// Adds each thing that is drawn under a device point.
  virtual void Pick(const LayerContext&, K7MapPath&, double /*dx*/, double /*dy*/,
                    std::vector<Picked>& /*found*/) {}
  /// The lines beside which a chart stays bright when what is off a route is dimmed.
  virtual std::vector<DeviceLine> Corridor() const { return {}; }
  /// The denominator of the scale at which the layer's data were made, 110000000 for 1:110,000,000; 0 when it
  /// is not known or means nothing.
  virtual double DataScale() const { return 0; }

 protected:
  Layer() = default;
  Layer(const Layer&) = delete;
  Layer& operator=(const Layer&) = delete;
};

/// Sets a context's ink to a theme entry's.
void UseFill(K7Grfx& g, const ThemeEntry& entry);
void UseLine(K7Grfx& g, const ThemeEntry& entry, double scale);

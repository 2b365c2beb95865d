// Maps without frame and margin, as browsers and geographic programs ask for them.
#pragma once

#include "layers/chart.h"
#include "web/map_data.h"

#include <cairo.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct MapRequest {
  ChartRequest chart;
  int width = 0, height = 0;  // pixels
  double scale = 1;           // of lines, symbols and lettering: 2 for a screen of fine pixels
  std::string theme{};        // empty: the usual one
  std::vector<std::string> shown{}, hidden{};  // layers by their names, beside what the theme has on
  std::vector<std::string> only{};             // these and no others, from the ground up; empty: any
  std::optional<Color> paper{};  // beside the map, and under layers that do not cover it; none: the theme's
  const DataScale* data = nullptr;  // null: that which suits the chart
  Layer* top = nullptr;             // over all others, as a route; the caller's
  unsigned char offRouteAlpha = 255;
};

struct MapImageFree {
  void operator()(cairo_surface_t* image) const { cairo_surface_destroy(image); }
};
/// Pixels: of CAIRO_FORMAT_RGB24 unless it is said.
using MapImage = std::unique_ptr<cairo_surface_t, MapImageFree>;

/// The charts of one thread: layers are read when they are first wanted and kept.
class MapPainter {
 public:
  /// The data stay the caller's and must outlive the painter.
  explicit MapPainter(const MapData& data) : m_data(data) {}

  /// Looks at what is asked for and finds places for its labels. Empty, or why there is no such map.
  std::string Show(const MapRequest& request);
  /// What `Show` last showed, until it is called again.
  Chart& Shown() { return *m_chart; }
  /// Draws it with the upper left corner at the context's origin. Empty, or what went wrong.
  std::string Draw(cairo_t* cairo);
  /// Shows it and draws it on an image of its own. Empty, or what went wrong.
  std::string DrawImage(const MapRequest& request, MapImage& image);
  /// Shows and draws it, and appends it as a PNG file. Empty, or what went wrong.
  std::string DrawPng(const MapRequest& request, std::vector<unsigned char>& png);

  /// The layers of charts of that scale. Null when they cannot be read, with `problem` in words.
  LayerSet* Open(const DataScale& scale, std::string& problem);

 private:
  const MapData& m_data;
  std::array<std::unique_ptr<LayerSet>, std::size(DATA_SCALES)> m_layers;
  NoProgress m_progress;
  std::unique_ptr<Chart> m_chart;
  std::optional<LabelPlan> m_labels;
  Theme m_theme;
  double m_scale = 1;
};

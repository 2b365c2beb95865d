// What lies off a route, dimmed so that the route stands out.
#pragma once

#include "ink/theme.h"
#include "layers/device_line.h"

#include <k7/projection/map_view.h>

/// A veil of the paper's colour over all but a corridor along lines of a view, with a soft edge.
class RouteVeil {
 public:
  /// `opacity` of the veil, from 0 to 1; `scale` of ordinary pixels.
  RouteVeil(std::vector<DeviceLine> lines, const K7MapView& view, double opacity, double scale);

  /// What it hides of a place, from 0 in the corridor to the veil's opacity off it.
  double OpacityAt(double dx, double dy) const;
  void Draw(const Color& paper, K7Grfx& g) const;

 private:
  std::vector<DeviceLine> m_lines;
  int m_width, m_height;
  double m_opacity;
  double m_reach, m_edge;  // pixels from a line to where the veil begins, and from there to where it is whole
};

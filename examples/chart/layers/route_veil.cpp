#include "layers/route_veil.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

// To either side: what a pilot may come to need, and never less than is seen of what is on the route.
constexpr double CORRIDOR_NM = 5;
constexpr double LEAST = 34, MOST = 120, EDGE = 20;  // ordinary pixels

// Soft as it is, the veil needs no pixel of its own for each of the chart's.
constexpr int CELL = 4;

}  // namespace

RouteVeil::RouteVeil(std::vector<DeviceLine> lines, const K7MapView& view, double opacity, double scale)
    : m_lines(std::move(lines)),
      m_width(view.Width()),
      m_height(view.Height()),
      m_opacity(opacity),
      m_reach(std::clamp(CORRIDOR_NM / view.NMPerPixel(), LEAST * scale, MOST * scale)),
      m_edge(EDGE * scale) {}

double RouteVeil::OpacityAt(double dx, double dy) const {
  double away = INFINITY;
  for (const DeviceLine& line : m_lines) away = std::min(away, line.Distance({dx, dy}));
  const double share = std::clamp((away - m_reach) / m_edge, 0.0, 1.0);
  return m_opacity * share * share * (3 - 2 * share);
}

void RouteVeil::Draw(const Color& paper, K7Grfx& g) const {
  const int columns = (m_width + CELL - 1) / CELL + 2, rows = (m_height + CELL - 1) / CELL + 2;
  std::vector<uint32_t> picture;
  picture.reserve(static_cast<size_t>(columns) * static_cast<size_t>(rows));
  const uint32_t color = static_cast<uint32_t>(paper.red << 16 | paper.green << 8 | paper.blue);
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      const double opacity = OpacityAt((column - 0.5) * CELL, (row - 0.5) * CELL);
      picture.push_back(static_cast<uint32_t>(std::lround(opacity * 255)) << 24 | color);
    }
  // A cell more on every side: where a picture ends it fades.
  g.Image(picture.data(), columns, rows, -CELL, -CELL, (columns - 1) * CELL, (rows - 1) * CELL);
}

#include "layers/graticule_layer.h"

#include <k7/geodesy/latlon.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr double SECOND = 1 / 3600.0, MINUTE = 1 / 60.0;

// Degrees between lines, and between the ticks that divide them. Each step but the largest is at most twice
// the one before, so that one of them leaves 4 to 8 lines over any span.
constexpr GraticuleStep STEPS[] = {
    {SECOND, 0},
    {2 * SECOND, SECOND},
    {3 * SECOND, SECOND},
    {5 * SECOND, SECOND},
    {10 * SECOND, SECOND},
    {15 * SECOND, 5 * SECOND},
    {20 * SECOND, 5 * SECOND},
    {30 * SECOND, 5 * SECOND},
    {MINUTE, 10 * SECOND},
    {2 * MINUTE, MINUTE / 2},
    {3 * MINUTE, MINUTE},
    {5 * MINUTE, MINUTE},
    {10 * MINUTE, MINUTE},
    {15 * MINUTE, 5 * MINUTE},
    {20 * MINUTE, 5 * MINUTE},
    {30 * MINUTE, 5 * MINUTE},
    {1, 10 * MINUTE},
    {2, 0},
    {3, 0},
    {5, 0},
    {10, 0},
    {15, 0},
    {20, 0},
    {30, 0},
    {45, 0},
    {60, 0},
};
constexpr double WANTED_LINES = 6;
// About a pole the meridians meet: so many degrees apart they stay legible.
constexpr double POLAR_STEP = 30;

constexpr double TOLERANCE = 1e-9;
constexpr double PIECE_SPAN = 1000;  // pixels that have as many lines as a chart
// A flat map ends a hair before 180 degrees from its middle: a line there is its edge.
constexpr double EDGE = 1e-6;

// How many degrees a straight walk through the picture passes, forth and back: through its middle, or where
// that is mostly off the map, as above a horizon, beside it.
double Variation(const K7MapView& view, bool across, bool lats) {
  static const int STEPS_ACROSS = 32;
  static const double POLE_LEAP = 90;  // straight over a pole no meridians are passed
  double found = 0;
  int most = 0;
  for (const double beside : {0.5, 0.75, 0.25, 0.95, 0.05}) {
    double sum = 0, last = NAN;
    int onMap = 0;
    for (int i = 0; i <= STEPS_ACROSS; ++i) {
      const double along = static_cast<double>(i) / STEPS_ACROSS;
      double lat, lon;
      if (!view.FromDevice(view.Width() * (across ? along : beside),
                           view.Height() * (across ? beside : along), lat, lon))
        continue;
      ++onMap;
      const double value = lats ? lat : lon;
      const double passed = std::fabs(std::remainder(value - last, 360));
      if (passed < POLE_LEAP) sum += passed;
      last = value;
    }
    if (onMap <= most) continue;
    most = onMap;
    found = sum;
    if (2 * onMap > STEPS_ACROSS) break;
  }
  return found;
}

}  // namespace

bool IsMultiple(double value, double step) { return std::fabs(std::remainder(value, step)) < TOLERANCE; }

GraticuleStep StepFor(LineKind kind, double span) {
  GraticuleStep best = STEPS[0];
  for (const GraticuleStep& step : STEPS) {
    // Parallels of 45 or 60 degrees are no help to anybody.
    if (kind == LineKind::Parallel && step.lines > 30) break;
    const double off = std::fabs(std::log(span / step.lines / WANTED_LINES));
    if (off < std::fabs(std::log(span / best.lines / WANTED_LINES))) best = step;
  }
  return best;
}

void GraticuleLayer::Prepare(const LayerContext& context) {
  const K7MapView& view = context.view;
  view.GetExtent(m_north, m_south, m_east, m_west);
  m_converge = !view.Projection()->IsCylindrical();
  m_seesPole = m_north >= 90 - TOLERANCE || m_south <= -90 + TOLERANCE;
  // Down for parallels, across for meridians, but a turned or banked view may have it the other way.
  const double lats = std::max(Variation(view, false, true), Variation(view, true, true));
  const double lons = std::max(Variation(view, true, false), Variation(view, false, false));
  m_latStep = StepFor(LineKind::Parallel, std::min(lats, 2 * (m_north - m_south)));
  m_lonStep = StepFor(LineKind::Meridian, std::min(lons, m_east - m_west));
  // Pieces of a picture have lines by its scale, not by what each of them shows.
  if (context.IsPiece()) {
    const double degrees = context.view.NMPerPixel() * context.scale * PIECE_SPAN / 60;
    m_latStep = StepFor(LineKind::Parallel, degrees);
    m_lonStep = StepFor(LineKind::Meridian, degrees);
  }
  // A straight walk past a pole says little about meridians.
  const bool polar = m_seesPole && std::fabs(view.CenterLat()) > 60;
  if (polar && m_converge) m_lonStep = {POLAR_STEP, 0};
  m_lines.clear();
  m_features.Clear();
  AddFamily(m_features, m_lines, LineKind::Parallel, m_latStep.lines);
  AddFamily(m_features, m_lines, LineKind::Meridian, m_lonStep.lines);
}

void GraticuleLayer::AddFamily(K7MapFeatures& features, std::vector<Line>& lines, LineKind kind,
                               double step) const {
  const bool parallels = kind == LineKind::Parallel;
  const double low = parallels ? m_south : m_west - EDGE;
  // Around a cone or a globe the first meridian is the last.
  const double high = parallels    ? m_north
                      : m_converge ? std::min(m_east + EDGE, m_west + 360 - 2 * EDGE)
                                   : m_east + EDGE;
  static const int MOST = 2000;
  const double first = std::ceil(low / step - TOLERANCE);
  for (int i = 0; i < MOST && (first + i) * step <= high + TOLERANCE; ++i) {
    const double degrees = (first + i) * step;
    if (parallels && std::fabs(degrees) > 90 - TOLERANCE) continue;
    AddLine(features, lines, kind, degrees);
  }
}

void GraticuleLayer::AddLine(K7MapFeatures& features, std::vector<Line>& lines, LineKind kind,
                             double degrees) const {
  std::vector<K7LatLon> points;
  if (kind == LineKind::Parallel) {
    // In pieces, so that none is taken for an edge across 180.
    static const int PIECES = 4;
    for (int i = 0; i <= PIECES; ++i) points.emplace_back(degrees, m_west + (m_east - m_west) * i / PIECES);
  } else {
    // Where meridians meet, only four run into the poles, so that these stay legible.
    const double cap = !m_converge || IsMultiple(degrees, 90) ? 90 : 90 - std::min(m_latStep.lines, 10.0);
    const double south = std::max(m_south, -cap), north = std::min(m_north, cap);
    if (south >= north) return;
    const double lon = std::clamp(degrees, m_west, m_east);
    points = {{south, lon}, {north, lon}};
  }
  const int count = static_cast<int>(points.size());
  if (features.Add(K7_MAP_LINES, points.data(), &count, 1) >= 0) lines.push_back({kind, degrees});
}

std::vector<GraticuleCell> GraticuleLayer::Cells() const {
  static const double MOST = 1000;
  const double height = m_latStep.lines, width = m_lonStep.lines;
  const double south = std::floor(m_south / height + TOLERANCE),
               west = std::floor(m_west / width + TOLERANCE);
  const double rows = std::ceil(m_north / height - TOLERANCE) - south;
  const double columns = std::min(std::ceil(m_east / width - TOLERANCE) - west, std::ceil(360 / width));
  std::vector<GraticuleCell> cells;
  if (!(rows * columns <= MOST)) return cells;
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      cells.push_back({(south + row) * height, (west + column) * width, height, width});
  return cells;
}

void GraticuleLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  UseLine(g, context.theme[ThemeItem::Graticule], context.scale);
  for (int i = 0; i < m_features.Count(); ++i)
    if (path.Outline(&g, m_features, i) > 0) g.Stroke();
}

#include "layers/elevation_layer.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LETTERS = 1.9;  // times ordinary lettering

Lettering FigureLettering(double size) {
  return {.size = size, .align = Align::Centre, .bold = true, .halo = true, .item = ThemeItem::Elevations};
}

// From its middle to the north and east, in shares of the cell, the nearest to the middle first.
struct Offset {
  double north, east;
};

std::vector<Offset> Offsets() {
  static const int EACH_WAY = 3;
  static const double STEP = 0.11;
  std::vector<Offset> offsets;
  for (int north = -EACH_WAY; north <= EACH_WAY; ++north)
    for (int east = -EACH_WAY; east <= EACH_WAY; ++east) offsets.push_back({north * STEP, east * STEP});
  std::stable_sort(offsets.begin(), offsets.end(), [](const Offset& a, const Offset& b) {
    return std::hypot(a.north, a.east) < std::hypot(b.north, b.east);
  });
  return offsets;
}

// A figure that reaches over a line could be any neighbour's.
bool IsInCell(const K7MapView& view, const GraticuleCell& cell, const PixelBox& box) {
  for (const double x : {box.left, box.right})
    for (const double y : {box.top, box.bottom}) {
      double lat, lon;
      if (!view.FromDevice(x, y, lat, lon)) return false;
      const double east = lon - cell.west - 360 * std::floor((lon - cell.west) / 360);
      if (!(lat > cell.south && lat < cell.south + cell.height && east > 0 && east < cell.width))
        return false;
    }
  return true;
}

// Where there is room for a label in a cell; false for nowhere.
bool PlaceIn(const GraticuleCell& cell, const LayerContext& context, const LabelPlan& plan, Label& label) {
  static const std::vector<Offset> OFFSETS = Offsets();
  static const double MIDDLE = 0.36;  // of the letter size above the baseline
  const K7MapView& view = context.view;
  const PixelBox window = context.Part();
  // A cell's figure is written once: by the piece that has its middle.
  double x, y;
  view.ToDevice(cell.south + cell.height / 2, std::remainder(cell.west + cell.width / 2, 360), x, y);
  if (context.IsPiece() && !window.Holds({x, y, x, y})) return false;
  for (const Offset& offset : OFFSETS) {
    const double lat = cell.south + (0.5 + offset.north) * cell.height;
    const double lon = std::remainder(cell.west + (0.5 + offset.east) * cell.width, 360);
    if (!view.ToDevice(lat, lon, label.x, label.y)) continue;
    label.y += MIDDLE * label.lettering.size;
    const PixelBox box = plan.BoxOf(label);
    if (window.Holds(box) && plan.IsFree(box) && IsInCell(view, cell, box)) return true;
  }
  return false;
}

}  // namespace

std::string FigureText(int feet) {
  static const char* const RAISED[] = {"\u2070", "\u00B9", "\u00B2", "\u00B3", "\u2074",
                                       "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
  return std::to_string(feet / 1000) + RAISED[feet / 100 % 10];
}

void ElevationLayer::OfferFirst(const LayerContext& context, double size, LabelPlan& plan) {
  for (const GraticuleCell& cell : m_graticule.Cells()) {
    // A cell without room for any figure, as towards a horizon, is not looked into.
    Label label = {"88\u2078", 0, 0, FigureLettering(size * LETTERS)};
    if (!PlaceIn(cell, context, plan, label)) continue;
    // Water, or ground that ends within the cell, if only by the outermost half post: about the edge of the
    // data cells stay without a figure, and at small scales these may be all.
    const std::optional<int> feet = m_heights.Figure(cell);
    if (!feet) continue;
    label.text = FigureText(*feet);
    m_isDrawn = plan.Offer(label) || m_isDrawn;
  }
}

void ElevationLayer::AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const {
  if (!m_isDrawn) return;
  static const double SIZE = 13, ROOM = 8;  // pixels
  legend.push_back({m_heights.KnowsObstacles() ? "maximum elevation, 12,600 ft"
                                               : "to clear the ground, 12,600 ft; no obstacles",
                    [](K7Grfx&, double, double) {},
                    ROOM * context.scale,
                    {{FigureText(12600), ROOM / 2 * context.scale, FigureLettering(SIZE * context.scale)}}});
}

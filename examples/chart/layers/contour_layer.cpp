#include "layers/contour_layer.h"

#include "layers/contour.h"
#include "layers/post_heights.h"
#include "layers/view_posts.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double FEET_PER_METRE = 1 / 0.3048;
constexpr int INDEX = 5;  // every so many lines one is heavier

// Pixels.
constexpr double CELL = 4;
constexpr double PICK_REACH = 4;
constexpr double SHORTEST = 14;  // less is the data's noise, or a blot
constexpr double HEAVIER = 1.9;  // times the width

// Far from a tilted eye lines would run together: nothing is drawn where a pixel spans so many times what it
// does nearby.
constexpr double FARTHEST_SCALE = 3;

// In letter sizes.
constexpr double LETTERS = 0.62;     // of the ordinary size
constexpr double LABELS_APART = 44;  // along a line
constexpr double MIDDLE = 0.36;      // from a figure's middle down to its baseline
constexpr double MOST_BEND = 0.3;    // of a line under a figure

std::string FeetText(int feet) {
  K7String text;
  text.Format("%d", feet);
  return std::string(text);
}

bool IsTooFar(const K7MapView& view, double lat, double lon) {
  double north, east;
  return !view.Scale(lat, lon, north, east) || std::max(north, east) > FARTHEST_SCALE * view.NMPerPixel();
}

DeviceField FeetOf(const PostHeights& heights, const K7MapView& view) {
  return [&heights, &view, tilted = view.IsTilted()](double dx, double dy) -> double {
    double lat, lon;
    if (!view.FromDevice(dx, dy, lat, lon)) return NAN;
    // On a round height a line would run from sample to sample.
    static const double OFF_ROUND = 0.01;
    const double feet = heights.At(lat, lon) * FEET_PER_METRE + OFF_ROUND;
    return std::isfinite(feet) && tilted && IsTooFar(view, lat, lon) ? NAN : feet;
  };
}

// A line in stretches, so that each can have a figure.
std::vector<DeviceLine> Stretches(const DeviceLine& line, double length) {
  std::vector<DeviceLine> stretches(1);
  double along = 0;
  for (size_t i = 0; i < line.points.size(); ++i) {
    const DevicePoint& p = line.points[i];
    if (i > 0) along += std::hypot(p.x - line.points[i - 1].x, p.y - line.points[i - 1].y);
    stretches.back().points.push_back(p);
    if (along < length) continue;
    stretches.push_back({{p}});
    along = 0;
  }
  return stretches;
}

void OfferFigure(const DeviceLine& line, const std::string& text, double letters, const PixelBox& window,
                 LabelPlan& plan) {
  Label label = {
      text, 0, 0, {.size = letters, .align = Align::Centre, .halo = true, .item = ThemeItem::Contours}};
  const double length = line.Length(), half = plan.Width(text, label.lettering) / 2;
  for (double off = 0; off + half <= length / 2; off += letters)
    for (const double along : {length / 2 - off, length / 2 + off}) {
      if (!line.IsStraight(along - half, along + half, MOST_BEND * letters)) continue;
      const DeviceLine::Spot spot = line.TextSpotAt(along);
      const DevicePoint at = Beside(spot, 0, MIDDLE * letters);
      label.x = at.x;
      label.y = at.y;
      label.turn = spot.turn;
      if (plan.OfferWithin(window, label)) return;
    }
}

}  // namespace

int ContourStep(double nmPerPixel, double span) {
  static const double MOST_LINES = 80;
  static const struct {
    double upTo;
    int feet;
  } STEPS[] = {{0.015, 100}, {0.035, 200}, {0.08, 500}, {0.22, 1000}};
  for (const auto& step : STEPS)
    if (nmPerPixel <= step.upTo && span <= MOST_LINES * step.feet) return step.feet;
  return 2000;
}

const std::vector<ContourLayer::Contour>& ContourLayer::Lines(const LayerContext& context) {
  if (!m_isFound) Find(context);
  m_isFound = true;
  return m_lines;
}

void ContourLayer::Find(const LayerContext& context) {
  m_lines.clear();
  const K7MapView& view = context.view;
  const double cell = CELL * std::clamp(context.scale, 0.6, 3.0);
  const std::unique_ptr<K7TerTileEX> posts = PostsFor(m_files, view, cell, 1);
  if (!posts) return;
  const PostHeights heights(*posts);
  const Contours contours(FeetOf(heights, view), view.Width(), view.Height(), cell);
  // Posts reach beyond the window, in which there need be none.
  if (!(contours.Least() <= contours.Most())) return;
  const double lowest = std::max(contours.Least(), 0.0);
  m_step = ContourStep(view.NMPerPixel() * context.scale, contours.Most() - lowest);
  for (int feet = m_step * (1 + static_cast<int>(lowest / m_step)); feet <= contours.Most(); feet += m_step)
    for (DeviceLine& line : contours.At(feet, INFINITY))
      if (line.Length() >= SHORTEST * context.scale)
        m_lines.push_back({feet, feet % (INDEX * m_step) == 0, std::move(line)});
}

// With the areas: they belong to the ground, under rivers and borders.
void ContourLayer::DrawAreas(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  for (const bool isIndex : {false, true}) {
    ThemeEntry look = context.theme[Item()];
    if (isIndex) look.width *= HEAVIER;
    UseLine(g, look, context.scale);
    for (const Contour& contour : Lines(context)) {
      if (contour.isIndex != isIndex) continue;
      contour.line.AddTo(g);
      g.Stroke();
    }
  }
}

void ContourLayer::OfferDetails(const LayerContext& context, double size, LabelPlan& plan) {
  const PixelBox window = context.Part();
  const std::vector<Contour>& lines = Lines(context);
  // In low country none may be an index.
  const bool hasIndex =
      std::any_of(lines.begin(), lines.end(), [](const Contour& contour) { return contour.isIndex; });
  for (const Contour& contour : lines) {
    if (hasIndex && !contour.isIndex) continue;
    for (const DeviceLine& stretch : Stretches(contour.line, LABELS_APART * size))
      OfferFigure(stretch, FeetText(contour.feet), size * LETTERS, window, plan);
  }
}

void ContourLayer::AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const {
  if (m_lines.empty() || !m_isFound) return;
  static const double HALF = 8;
  legend.push_back({"contours every " + FeetText(m_step) + " ft",
                    [entry = context.theme[Item()], scale = context.scale](K7Grfx& g, double x, double y) {
                      UseLine(g, entry, scale);
                      g.MoveTo(x - HALF * scale, y);
                      g.LineTo(x + HALF * scale, y);
                      g.Stroke();
                    }});
}

void ContourLayer::Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
                        std::vector<Picked>& found) {
  for (const Contour& contour : Lines(context))
    if (contour.line.Distance({dx, dy}) <= PICK_REACH * context.scale)
      found.push_back({"contour: " + FeetText(contour.feet) + " ft"});
}

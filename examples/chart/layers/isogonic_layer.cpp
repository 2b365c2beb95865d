#include "layers/isogonic_layer.h"

#include "layers/contour.h"

#include <k7/geodesy/magvar.h>

#include <algorithm>
#include <cmath>

namespace {

// Samples stand so far apart, in pixels and where those are small, in miles: the field is smooth, and asking
// for it is what the layer costs.
constexpr double LEAST_CELL = 12, MOST_CELL = 48, CELL_NM = 6;
constexpr double TOLERANCE = 0.02;   // degrees
constexpr double LEAP = 90;          // degrees, where the angle comes around
constexpr double PICK_REACH = 4;     // pixels
constexpr double LABELS_APART = 40;  // letter sizes along a line

}  // namespace

// Beside a pole, magnetic or not, all variations there are meet within a few pixels.
int IsogonicStep(double nmPerPixel, double span) {
  static const double MOST_LINES = 40;
  static const struct {
    double upTo;
    int degrees;
  } STEPS[] = {{0.9, 1}, {3, 2}, {10, 5}, {25, 10}};
  for (const auto& step : STEPS)
    if (nmPerPixel <= step.upTo && span <= MOST_LINES * step.degrees) return step.degrees;
  return 20;
}

std::string VariationText(double degrees) {
  K7String text;
  text.Format("%.0f\xB0%s", std::fabs(degrees), degrees > 0 ? " E" : degrees < 0 ? " W" : "");
  return Utf8(text);
}

void IsogonicLayer::Prepare(const LayerContext& context) {
  m_lines.clear();
  const K7MapView& view = context.view;
  const Tarsvald::MagVar* const model = K7MagVar::GetMagVar();
  if (!model || !context.theme[Item()].ShowsAt(view.NMPerPixel())) return;
  const double cell =
      view.IsTilted() ? LEAST_CELL : std::clamp(CELL_NM / view.NMPerPixel(), LEAST_CELL, MOST_CELL);
  const Contours contours(
      [&](double dx, double dy) {
        double lat, lon;
        return view.FromDevice(dx, dy, lat, lon) ? model->Position(lat, lon, 0, 0, NAN) : NAN;
      },
      view.Width(), view.Height(), cell, LEAP);
  const int step = IsogonicStep(view.NMPerPixel(), contours.Most() - contours.Least());
  for (double value = std::ceil(contours.Least() / step) * step; value <= contours.Most(); value += step)
    for (DeviceLine& line : contours.At(value, TOLERANCE)) m_lines.push_back({value, std::move(line)});
}

void IsogonicLayer::DrawLines(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  UseLine(g, context.theme[Item()], context.scale);
  for (const Isogonic& isogonic : m_lines) {
    isogonic.line.AddTo(g);
    g.Stroke();
  }
}

void IsogonicLayer::OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) {
  const PixelBox window = context.Part();
  const double letters = size * 0.85;
  for (const Isogonic& isogonic : m_lines) {
    Label label = {VariationText(isogonic.variation),
                   0,
                   0,
                   {.size = letters, .align = Align::Centre, .halo = true, .item = Item()}};
    const double length = isogonic.line.Length(), half = plan.Width(label.text, label.lettering) / 2;
    double next = half;
    for (double along = half; along + half <= length; along += size) {
      if (along < next || !isogonic.line.IsStraight(along - half, along + half, letters * 0.15)) continue;
      const DeviceLine::Spot spot = isogonic.line.TextSpotAt(along);
      const DevicePoint at = Beside(spot, 0, -letters * 0.3);
      label.x = at.x;
      label.y = at.y;
      label.turn = spot.turn;
      if (plan.OfferWithin(window, label)) next = along + LABELS_APART * size;
    }
  }
}

void IsogonicLayer::Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
                         std::vector<Picked>& found) {
  for (const Isogonic& isogonic : m_lines)
    if (isogonic.line.Distance({dx, dy}) <= PICK_REACH * context.scale)
      found.push_back({"isogonic: magnetic variation " + VariationText(isogonic.variation)});
}

#include "layers/runway_layer.h"

#include "layers/aerodrome_marks.h"
#include "layers/pick_grfx.h"
#include "layers/place_label.h"

#include <k7/foundation/string.h>

#include <numbers>

namespace {

// A share of the length and the side on which the measures stand beside a runway, the best first.
constexpr struct {
  double share;
  int side;
} MEASURE_PLACES[] = {{0.5, 1}, {0.5, -1}, {0.35, 1}, {0.35, -1}, {0.65, 1}, {0.65, -1}, {0.2, 1}, {0.8, -1}};
constexpr double CROSS_ARM = 7, THINNEST = 2;  // pixels of an ordinary sheet

// A runway on the device.
struct Drawn {
  double x[2], y[2];
  double right, down;  // the direction from the first end to the second
  double length, halfWidth;

  // Radians clockwise from up, of who lands at an end.
  double Turn(int end) const { return end == 0 ? std::atan2(right, -down) : std::atan2(-right, down); }
  TurnedBox Box() const {
    const double mx = (x[0] + x[1]) / 2, my = (y[0] + y[1]) / 2;
    return {{mx - halfWidth, my - length / 2, mx + halfWidth, my + length / 2}, mx, my, Turn(0)};
  }
};

bool Place(const LayerContext& context, const RunwayStrip& strip, Drawn& drawn) {
  for (size_t i = 0; i < 2; ++i) {
    drawn.x[i] = drawn.y[i] = NAN;
    context.view.ToDevice(strip.ends[i].at.Lat(), strip.ends[i].at.Lon(), drawn.x[i], drawn.y[i]);
  }
  const double dx = drawn.x[1] - drawn.x[0], dy = drawn.y[1] - drawn.y[0];
  drawn.length = std::hypot(dx, dy);
  if (!(drawn.length > 0)) return false;
  drawn.right = dx / drawn.length;
  drawn.down = dy / drawn.length;
  const double feetPerPixel = context.view.NMPerPixel() * FEET_PER_NM;
  drawn.halfWidth = std::max(strip.width / feetPerPixel, THINNEST * context.scale) / 2;
  return true;
}

// The part of a runway from one share of its length to another.
void AddPart(K7Grfx& g, const Drawn& r, double from, double to) {
  const double acrossX = -r.down * r.halfWidth, acrossY = r.right * r.halfWidth;
  const auto at = [&](double share, double side, auto add) {
    add(r.x[0] + r.right * r.length * share + acrossX * side,
        r.y[0] + r.down * r.length * share + acrossY * side);
  };
  const auto line = [&](double x, double y) { g.LineTo(x, y); };
  at(from, -1, [&](double x, double y) { g.MoveTo(x, y); });
  at(to, -1, line);
  at(to, 1, line);
  at(from, 1, line);
  g.ClosePath();
}

std::string Feet(int feet) {
  std::string text = std::to_string(feet);
  for (size_t at = text.size(); at > 3; text.insert(at, 1, ',')) at -= 3;
  return text;
}

std::string Measures(const RunwayStrip& strip) {
  return Feet(strip.length) + (strip.width > 0 ? " x " + Feet(strip.width) : std::string()) + " ft";
}

std::string NamesOf(const RunwayStrip& strip) {
  const std::string& second = strip.ends[1].ident;
  return strip.ends[0].ident + (second.empty() ? "" : "/" + second);
}

// Painted as on the runway: upright for who lands there, and outside its end, farther out where a taxiway's
// signs stand. False where there is no room at all.
bool OfferName(const LayerContext& context, const Drawn& r, int number, Label& name, LabelPlan& plan) {
  static const double FROM = 1.06, STEP = 0.5, TO = 5;  // letter sizes
  const PixelBox window = context.Part();
  const double size = name.lettering.size, sign = number == 0 ? -1 : 1;
  name.turn = r.Turn(number);
  for (double away = FROM; away < TO; away += STEP) {
    name.x = r.x[number] + sign * r.right * away * size;
    name.y = r.y[number] + sign * r.down * away * size;
    if (plan.OfferWithin(window, name)) return true;
  }
  return false;
}

// What belongs to an end stands beside its name, upright.
void OfferEnd(const LayerContext& context, const Drawn& r, int number, const RunwayEnd& end, double size,
              LabelPlan& plan) {
  Label name = {end.ident, 0, 0, {.size = size, .align = Align::Centre, .bold = true, .halo = true}};
  if (end.ident.empty() || !OfferName(context, r, number, name, plan)) return;
  const Lettering small = {.size = size * 0.68, .halo = true};
  std::vector<Label> lines;
  if (std::isfinite(end.magneticCourse))
    lines.push_back({std::string(K7FmtString("%05.1f", end.magneticCourse)) + "\u00B0", 0, 0, small});
  if (end.elev) lines.push_back({"ELEV " + std::to_string(*end.elev), 0, 0, small});
  if (end.displaced > 0) lines.push_back({"displaced " + Feet(end.displaced) + " ft", 0, 0, small});
  for (; !lines.empty(); lines.pop_back())
    if (OfferBeside(context, plan.PlaceOf(name).Bounds(), lines, plan)) return;
}

void OfferMeasures(const LayerContext& context, const Drawn& r, const RunwayStrip& strip, double size,
                   LabelPlan& plan) {
  static const double GAP = 0.25, CAPITALS = 0.76;
  const double letters = size * 0.72;
  // Read from below or from the right.
  const bool flips = r.right < 0 || (r.right == 0 && r.down > 0);
  const double right = flips ? -r.right : r.right, down = flips ? -r.down : r.down;
  const PixelBox window = context.Part();
  for (const auto& [share, side] : MEASURE_PLACES) {
    // From the middle of the runway to the baseline, above it or below.
    const double off = side > 0 ? r.halfWidth + GAP * letters : -(r.halfWidth + (GAP + CAPITALS) * letters);
    const Label label = {Measures(strip),
                         r.x[0] + r.right * r.length * share + down * off,
                         r.y[0] + r.down * r.length * share - right * off,
                         {.size = letters, .align = Align::Centre, .halo = true},
                         std::atan2(down, right)};
    if (plan.OfferWithin(window, label)) return;
  }
}

}  // namespace

void RunwayLayer::DrawAreas(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  if (m_areas != Areas::Paved) return;
  Drawn drawn;
  for (const RunwayStrip& strip : m_runways) {
    if (!Place(context, strip, drawn)) continue;
    UseFill(g, context.theme[Item()]);
    AddPart(g, drawn, 0, 1);
    g.Fill();
    UseFill(g, context.theme[ThemeItem::Taxiways]);
    for (size_t i = 0; i < 2; ++i) {
      const double share = std::min(strip.ends[i].displaced * 1.0 / strip.length, 1.0);
      if (share <= 0) continue;
      AddPart(g, drawn, i == 0 ? 0 : 1 - share, i == 0 ? share : 1);
      g.Fill();
    }
  }
}

void RunwayLayer::DrawLines(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  Drawn drawn;
  for (const RunwayStrip& strip : m_runways) {
    if (!Place(context, strip, drawn)) continue;
    UseLine(g, context.theme[Item()], context.scale);
    if (m_areas != Areas::None) {
      AddPart(g, drawn, 0, 1);
      g.Stroke();
    }
    if (!strip.isClosed) continue;
    UseLine(g, context.theme[ThemeItem::Hotspots], context.scale);
    for (const double share : {0.1, 0.5, 0.9})
      AddCross(g, drawn.x[0] + drawn.right * drawn.length * share,
               drawn.y[0] + drawn.down * drawn.length * share, CROSS_ARM * context.scale);
    g.Stroke();
  }
}

void RunwayLayer::KeepSymbols(const LayerContext& context, LabelPlan& plan) {
  Drawn drawn;
  for (const RunwayStrip& strip : m_runways)
    if (Place(context, strip, drawn)) plan.Keep(drawn.Box());
}

void RunwayLayer::OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) {
  Drawn drawn;
  for (const RunwayStrip& strip : m_runways)
    for (size_t i = 0; i < 2 && !strip.IsHelipad() && Place(context, strip, drawn); ++i)
      OfferEnd(context, drawn, static_cast<int>(i), strip.ends[i], size, plan);
  for (const RunwayStrip& strip : m_runways) {
    if (!Place(context, strip, drawn)) continue;
    const Label name = {strip.ends[0].ident, 0, 0, {.size = size * 0.85, .bold = true, .halo = true}};
    if (strip.IsHelipad())
      OfferBeside(context, drawn.Box().Bounds(), {name}, plan);
    else
      OfferMeasures(context, drawn, strip, size, plan);
  }
}

void RunwayLayer::AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const {
  if (m_areas == Areas::None || m_runways.empty()) return;
  const auto draw = [entry = context.theme[Item()], scale = context.scale, areas = m_areas](
                        K7Grfx& g, double x, double y) {
    for (const bool fills : {true, false}) {
      AddBox(g, x, y, 7 * scale, 2.5 * scale);
      if (!fills) {
        UseLine(g, entry, scale);
        g.Stroke();
      } else if (areas == Areas::Paved) {
        UseFill(g, entry);
        g.Fill();
      }
    }
  };
  legend.push_back({m_areas == Areas::Paved ? "runway" : "water runway", draw});
}

void RunwayLayer::Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
                       std::vector<Picked>& found) {
  Drawn drawn;
  for (const RunwayStrip& strip : m_runways) {
    if (m_areas == Areas::None || !Place(context, strip, drawn)) continue;
    PickGrfx picker(dx, dy);
    picker.Clear();
    AddPart(picker, drawn, 0, 1);
    if (picker.Covers()) found.push_back({"Runway " + NamesOf(strip) + ", " + Measures(strip)});
  }
}

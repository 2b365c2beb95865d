#include "layers/route_layer.h"

#include "layers/place_label.h"
#include "layers/symbol_size.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// Pixels of an ordinary sheet.
constexpr double RING_ROOM = 2.5;       // between a symbol and the ring around it
constexpr double DOT = 2.6;             // where symbols are not shown, or stand too near each other
constexpr double CASING = 1.6;          // beside the line
constexpr double SHORTEST_RINGED = 34;  // of a leg between rings
constexpr double ARROW = 8;
constexpr double SHORTEST_ARROWED = 44;
constexpr double KEPT_STEP = 24;  // of the line that labels stay off
constexpr double PICK_REACH = 4;

// In letter sizes.
constexpr double LETTERS = 0.8;
constexpr double TURN_LETTERS = 0.92;
constexpr double MIDDLE = 0.28;       // from a text's middle down to its baseline
constexpr double BESIDE = 0.95;       // from the line to the middle of what is written beside it
constexpr double BEND = 0.3;          // of a line under a text
constexpr double STRETCH_BEND = 0.7;  // of several legs

double Apart(double x1, double y1, double x2, double y2) { return std::hypot(x2 - x1, y2 - y1); }

ThemeItem ItemOf(K7NavType type) {
  if (type == K7NAV_AIRPORT) return ThemeItem::Airports;
  return type <= K7NAV_ENROUTE_NDB ? ThemeItem::Navaids : ThemeItem::Fixes;
}

void AddCircle(K7Grfx& g, double x, double y, double radius) {
  static const int CORNERS = 28;
  for (int i = 0; i < CORNERS; ++i) {
    const double turn = 2 * std::numbers::pi * i / CORNERS;
    const double cx = x + radius * std::cos(turn), cy = y + radius * std::sin(turn);
    i == 0 ? g.MoveTo(cx, cy) : g.LineTo(cx, cy);
  }
  g.ClosePath();
}

void AddArrow(const DeviceLine& line, double size, std::vector<double>& triangles) {
  const DeviceLine::Spot spot = line.SpotAt(line.Length() * 0.5);
  for (const auto& [along, across] : {std::pair{0.6, 0.0}, {-0.5, 0.5}, {-0.5, -0.5}}) {
    const DevicePoint p = Beside(spot, along * size, across * size);
    triangles.insert(triangles.end(), {p.x, p.y});
  }
}

std::string Miles(double nm) {
  K7String text;
  text.Format(nm < 10 ? "%.1f NM" : "%.0f NM", nm);
  return std::string(text);
}

// "337°", "337°T"
std::string Degrees(const RouteLeg& leg) {
  std::string text = CourseText(leg);
  return text.empty() ? text : text.insert(3, "\xC2\xB0");
}

}  // namespace

void RouteLayer::Prepare(const LayerContext& context) {
  m_lines.clear();
  PlaceFixes(context);
  K7MapPath path(context.view);
  for (size_t i = 0; i < m_route.legs.size(); ++i) PlaceLine(context, i, path);
}

// A ring shows the symbol of its fix; where fixes follow each other closely a dot must do.
void RouteLayer::PlaceFixes(const LayerContext& context) {
  const size_t count = m_route.fixes.size();
  m_fixes.assign(count, {});
  for (size_t i = 0; i < count; ++i) {
    const K7LatLon& place = m_route.fixes[i].place;
    Fix& fix = m_fixes[i];
    fix.isSeen = context.view.ToDevice(place.Lat(), place.Lon(), fix.dx, fix.dy);
    fix.isTurn = i == 0 || i + 1 == count || m_route.legs[i - 1].airway != m_route.legs[i].airway;
  }
  for (size_t i = 0; i < count; ++i) {
    double apart = INFINITY;
    if (i > 0) apart = Apart(m_fixes[i - 1].dx, m_fixes[i - 1].dy, m_fixes[i].dx, m_fixes[i].dy);
    if (i + 1 < count)
      apart = std::min(apart, Apart(m_fixes[i + 1].dx, m_fixes[i + 1].dy, m_fixes[i].dx, m_fixes[i].dy));
    const K7NavType type = m_route.fixes[i].key.NavType();
    const bool ringed = i == 0 || i + 1 == count ||
                        (apart >= SHORTEST_RINGED * context.scale &&
                         context.theme[ItemOf(type)].ShowsAt(context.view.NMPerPixel()));
    m_fixes[i].radius = (ringed ? SymbolRadius(type) + RING_ROOM : DOT) * context.scale;
  }
}

void RouteLayer::PlaceLine(const LayerContext& context, size_t leg, K7MapPath& path) {
  LineSink sink;
  const K7LatLon ends[] = {m_route.fixes[leg].place, m_route.fixes[leg + 1].place};
  if (path.GreatCircle(&sink, ends, 2) <= 0) return;
  const Fix &from = m_fixes[leg], &to = m_fixes[leg + 1];
  const auto room = [&](const DevicePoint& p, const Fix& fix) {
    return Apart(p.x, p.y, fix.dx, fix.dy) < context.scale && fix.radius > DOT * context.scale ? fix.radius
                                                                                               : 0;
  };
  for (DeviceLine& line : sink.lines) {
    if (line.points.size() < 2) continue;
    line = line.Trimmed(room(line.points.front(), from), room(line.points.back(), to));
    if (line.points.size() >= 2) m_lines.push_back({leg, std::move(line)});
  }
}

void RouteLayer::DrawLines(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  const ThemeEntry& entry = context.theme[Item()];
  ThemeEntry casing = entry, dashed = entry;
  casing.line = entry.fill;
  casing.width += 2 * CASING;
  dashed.dash = {9, 5};
  UseLine(g, casing, context.scale);
  for (const Line& line : m_lines) {
    line.line.AddTo(g);
    g.Stroke();
  }
  std::vector<double> arrows;
  for (const Line& line : m_lines) {
    UseLine(g, m_route.legs[line.leg].airway.empty() ? dashed : entry, context.scale);
    line.line.AddTo(g);
    g.Stroke();
    if (line.line.Length() >= SHORTEST_ARROWED * context.scale)
      AddArrow(line.line, ARROW * context.scale, arrows);
  }
  ThemeEntry solid = entry;
  solid.fill = entry.line;
  UseFill(g, solid);
  if (!arrows.empty()) g.Triangles(arrows.data(), static_cast<int>(arrows.size() / 6));
  ThemeEntry ring = entry;
  ring.width *= 0.6;
  UseLine(g, ring, context.scale);
  for (const Fix& fix : m_fixes) {
    if (!fix.isSeen) continue;
    AddCircle(g, fix.dx, fix.dy, fix.radius);
    fix.radius > DOT* context.scale ? g.Stroke() : g.Fill();
  }
}

void RouteLayer::KeepSymbols(const LayerContext& context, LabelPlan& plan) {
  for (const Fix& fix : m_fixes)
    if (fix.isSeen) plan.Keep(BoxAbout(fix.dx, fix.dy, fix.radius));
  const double half = context.theme[Item()].width / 2 * context.scale;
  const PixelBox window = context.Part();
  for (const Line& line : m_lines) {
    const double length = line.line.Length();
    const int steps = std::max(1, static_cast<int>(std::ceil(length / (KEPT_STEP * context.scale))));
    for (int i = 0; i < steps; ++i) {
      const DeviceLine::Spot spot = line.line.SpotAt(length * (i + 0.5) / steps);
      // Beyond the window, where the margin has its lettering, nothing is drawn.
      if (!window.Meets({spot.at.x, spot.at.y, spot.at.x, spot.at.y})) continue;
      const double reach = length / steps / 2;
      plan.Keep({{spot.at.x - reach, spot.at.y - half, spot.at.x + reach, spot.at.y + half},
                 spot.at.x,
                 spot.at.y,
                 spot.turn});
    }
  }
}

class RouteLayer::Writer {
 public:
  Writer(const RouteLayer& layer, const LayerContext& context, double size, LabelPlan& plan)
      : m_layer(layer),
        m_context(context),
        m_plan(plan),
        m_window{context.Part()},
        m_letters(size),
        m_isNamed(layer.m_route.legs.size()) {
    for (const Line& line : layer.m_lines) m_order.push_back(&line);
    std::stable_sort(m_order.begin(), m_order.end(),
                     [](const Line* a, const Line* b) { return a->line.Length() > b->line.Length(); });
  }

  void Fixes(bool turns) {
    const double size = m_letters * (turns ? TURN_LETTERS : LETTERS);
    for (size_t i = 0; i < m_layer.m_fixes.size(); ++i) {
      const Fix& fix = m_layer.m_fixes[i];
      const std::string& ident = m_layer.m_route.fixes[i].ident;
      if (!fix.isSeen || fix.isTurn != turns) continue;
      const Lettering letters = {.size = size, .bold = turns, .halo = true, .item = ThemeItem::Route};
      if (OfferBeside(m_context, BoxAbout(fix.dx, fix.dy, fix.radius), {{ident, 0, 0, letters}}, m_plan))
        m_plan.SetNamed(ident, fix.dx, fix.dy);
    }
  }

  // The longest have the best room, and name the airway for the short ones beside them.
  void Legs() {
    for (const Line* const line : m_order) {
      const RouteLeg& leg = m_layer.m_route.legs[line->leg];
      const std::string figures = Degrees(leg) + " " + Miles(leg.distance);
      if (!leg.airway.empty() && Along(line->line, leg.airway + "  " + figures, BEND))
        m_isNamed[line->leg] = true;
      else
        Along(line->line, figures, BEND) || Along(line->line, figures.substr(0, figures.size() - 3), BEND);
    }
  }

  // Where the legs are too short for it, an airway is named once, with the length that is flown on it.
  void Stretches() {
    const std::vector<RouteLeg>& legs = m_layer.m_route.legs;
    for (size_t from = 0, to = 0; from < legs.size(); from = to) {
      double distance = 0;
      bool isNamed = legs[from].airway.empty();
      for (to = from; to < legs.size() && legs[to].airway == legs[from].airway; ++to) {
        distance += legs[to].distance;
        isNamed = isNamed || m_isNamed[to];
      }
      if (isNamed) continue;
      const DeviceLine whole = Joined(from, to);
      if (whole.points.size() < 2) continue;
      const std::string& airway = legs[from].airway;
      Along(whole, airway + "  " + Miles(distance), STRETCH_BEND) || Along(whole, airway, STRETCH_BEND);
    }
  }

  // Where airways show they have theirs beside them, but not under the route.
  void Altitudes() {
    if (!m_context.theme[ThemeItem::Airways].ShowsAt(m_context.view.NMPerPixel())) return;
    for (const Line* const line : m_order)
      Along(line->line, AltitudeText(m_layer.m_route.legs[line->leg].minimum), BEND);
  }

 private:
  // The lines of legs, up to where a map's seam parts them.
  DeviceLine Joined(size_t from, size_t to) const {
    DeviceLine whole;
    for (const Line& line : m_layer.m_lines) {
      if (line.leg < from || line.leg >= to) continue;
      const DevicePoint& next = line.line.points.front();
      if (!whole.points.empty() && Apart(whole.points.back().x, whole.points.back().y, next.x, next.y) >
                                       SHORTEST_RINGED * m_context.scale)
        break;
      whole.points.insert(whole.points.end(), line.line.points.begin(), line.line.points.end());
    }
    return whole;
  }

  bool Along(const DeviceLine& line, const std::string& text, double bend) {
    if (text.empty()) return false;
    const Lettering letters = {
        .size = m_letters * LETTERS, .align = Align::Centre, .halo = true, .item = ThemeItem::Route};
    Label label = {text, 0, 0, letters};
    const double half = m_plan.Width(text, label.lettering) / 2;
    for (const double share : {0.5, 0.35, 0.65, 0.2, 0.8})
      for (const double side : {-1.0, 1.0}) {
        const double along = line.Length() * share;
        if (!line.IsStraight(along - half, along + half, bend * m_letters)) continue;
        const DeviceLine::Spot spot = line.TextSpotAt(along);
        const DevicePoint at = Beside(spot, 0, (side * (BESIDE + bend / 2) + MIDDLE) * label.lettering.size);
        label.x = at.x;
        label.y = at.y;
        label.turn = spot.turn;
        if (m_plan.OfferWithin(m_window, label)) return true;
      }
    return false;
  }

  const RouteLayer& m_layer;
  const LayerContext& m_context;
  LabelPlan& m_plan;
  PixelBox m_window;
  double m_letters;
  std::vector<const Line*> m_order;  // the longest first
  std::vector<bool> m_isNamed;       // the airway, beside each leg
};

void RouteLayer::OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) {
  Writer writer(*this, context, size, plan);
  writer.Fixes(true);
  writer.Legs();
  writer.Stretches();
  writer.Altitudes();
  writer.Fixes(false);
}

void RouteLayer::Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
                      std::vector<Picked>& found) {
  for (const Line& line : m_lines) {
    if (line.line.Distance({dx, dy}) > PICK_REACH * context.scale) continue;
    const RouteLeg& leg = m_route.legs[line.leg];
    found.push_back({"route " + m_route.fixes[line.leg].ident + " - " + m_route.fixes[line.leg + 1].ident +
                     (leg.airway.empty() ? ", direct, " : ", " + leg.airway + ", ") + Degrees(leg) + ", " +
                     Miles(leg.distance)});
  }
}

std::vector<DeviceLine> RouteLayer::Corridor() const {
  std::vector<DeviceLine> lines;
  for (const Line& line : m_lines) lines.push_back(line.line);
  return lines;
}

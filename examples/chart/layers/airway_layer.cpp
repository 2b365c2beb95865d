#include "layers/airway_layer.h"

#include "layers/nav_places.h"
#include "layers/symbol_size.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace {

constexpr double PICK_REACH = 4;   // pixels
constexpr double SYMBOL_ROOM = 2;  // pixels between a symbol and a line
// Pixels between lines, on average: below the first only the upper airways are shown, below the second only
// their names are written.
constexpr double CROWDED = 14, TEEMING = 10;
constexpr double PIECE_UPPER_FROM_NM = 0.6;  // a pixel
constexpr double FAR = 6;                    // times the scale where a tilted view's ground is nearest
constexpr double FAINTEST = 0.6;             // of a crowded line's ink
constexpr double ARROW = 5;                  // pixels

// In letter sizes.
constexpr double LETTERS = 0.72;     // of the ordinary size
constexpr double MIDDLE = 0.28;      // from a text's middle down to its baseline
constexpr double ABOVE = 0.95;       // from the line to the middle of what is written beside it
constexpr double BEND = 0.25;        // of a line under a text
constexpr double NAMES_APART = 14;   // the same airway is named again
constexpr double TEEMING_APART = 7;  // any two names, where lines teem

// Where a fix is drawn the line ends before its symbol.
double RoomAt(const LayerContext& context, const K7NavKey& fix) {
  const K7NavType type = fix.NavType();
  const bool navaid = type <= K7NAV_ENROUTE_NDB;
  const ThemeItem item = navaid ? ThemeItem::Navaids : ThemeItem::Fixes;
  if (!context.theme[item].ShowsAt(context.view.NMPerPixel())) return 0;
  return (SymbolRadius(type) + SYMBOL_ROOM) * context.scale;
}

bool Near(const DevicePoint& p, double x, double y) { return std::hypot(p.x - x, p.y - y) < 1; }

void AddArrow(const DeviceLine& line, bool forward, double scale, std::vector<double>& triangles) {
  DeviceLine::Spot spot = line.SpotAt(line.Length() * (forward ? 0.7 : 0.3));
  const double size = (forward ? ARROW : -ARROW) * scale;
  for (const auto& [along, across] : {std::pair{1.0, 0.0}, {-0.6, 0.6}, {-0.6, -0.6}}) {
    const DevicePoint p = Beside(spot, along * size, across * size);
    triangles.insert(triangles.end(), {p.x, p.y});
  }
}

}  // namespace

void AirwayLayer::Prepare(const LayerContext& context) {
  m_shown.clear();
  if (!context.theme[Item()].ShowsAt(context.view.NMPerPixel())) return;
  K7MapPath path(context.view);
  for (const AirwayLeg& leg : AirwayLegs(*m_data, context.view.GetExtent())) Show(context, leg, path);
  Thin(context);
}

double AirwayLayer::Apart(const LayerContext& context) const {
  double length = 0;
  for (const Shown& shown : m_shown) length += shown.line.Length();
  return 1.0 * context.view.Width() * context.view.Height() / length / context.scale;
}

void AirwayLayer::Thin(const LayerContext& context) {
  // How much there is depends on the window: pieces of a picture go by its scale.
  const bool isWide = context.view.NMPerPixel() * context.scale > PIECE_UPPER_FROM_NM;
  m_apart = context.IsPiece() ? (isWide ? TEEMING : CROWDED) : Apart(context);
  if (m_apart >= CROWDED) return;
  std::erase_if(m_shown, [](const Shown& shown) { return !shown.leg.high; });
  if (!context.IsPiece()) m_apart = Apart(context);
}

// A leg that leaves the window and comes back, or crosses a map's seam, is several lines.
void AirwayLayer::Show(const LayerContext& context, const AirwayLeg& leg, K7MapPath& path) {
  LineSink sink;
  const K7LatLon ends[] = {leg.from.place, leg.to.place};
  if (path.GreatCircle(&sink, ends, 2) <= 0) return;
  double fromX, fromY, toX, toY;
  context.view.ToDevice(leg.from.place.Lat(), leg.from.place.Lon(), fromX, fromY);
  context.view.ToDevice(leg.to.place.Lat(), leg.to.place.Lon(), toX, toY);
  for (DeviceLine& line : sink.lines) {
    if (line.points.size() < 2) continue;
    const bool hasFrom = Near(line.points.front(), fromX, fromY), hasTo = Near(line.points.back(), toX, toY);
    // Of a leg that is hardly longer than its symbols something is left.
    static const double MOST = 0.35;
    const double most = line.Length() * MOST;
    line = line.Trimmed(hasFrom ? std::min(RoomAt(context, leg.from.fix), most) : 0,
                        hasTo ? std::min(RoomAt(context, leg.to.fix), most) : 0);
    if (line.points.size() < 2) continue;
    const DevicePoint middle = line.SpotAt(line.Length() / 2).at;
    double lat, lon, nm = INFINITY;
    if (context.view.FromDevice(middle.x, middle.y, lat, lon)) nm = NMPerPixelAt(context.view, lat, lon);
    if (!context.theme[Item()].ShowsAt(nm)) continue;
    const bool far = nm > FAR * context.view.NMPerPixel();
    m_shown.push_back({leg, std::move(line), hasFrom, hasTo, far});
  }
}

void AirwayLayer::DrawLines(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  ThemeEntry entry = context.theme[Item()];
  const double ink = std::clamp(m_apart / CROWDED, FAINTEST, 1.0);
  entry.width *= ink;
  entry.line.alpha = static_cast<uint8_t>(entry.line.alpha * ink);
  UseLine(g, entry, context.scale);
  std::vector<double> arrows;
  for (const Shown& shown : m_shown) {
    shown.line.AddTo(g);
    g.Stroke();
    if (shown.leg.direction != K7AirwaySeg::BOTH_WAYS)
      AddArrow(shown.line, shown.leg.direction == K7AirwaySeg::FORWARD, context.scale, arrows);
  }
  entry.fill = entry.line;
  UseFill(g, entry);
  if (!arrows.empty()) g.Triangles(arrows.data(), static_cast<int>(arrows.size() / 6));
}

// What is written along lines.
struct AirwayLayer::Writer {
  Writer(const LayerContext& context, double size, bool teeming, LabelPlan& labels)
      : plan(labels),
        window{context.Part()},
        letters(size * LETTERS),
        spacing(teeming ? TEEMING_APART * letters : 0.5) {}

  LabelPlan& plan;
  PixelBox window;
  double letters;
  Spacing spacing;  // of names
  std::unordered_map<std::string, std::vector<DevicePoint>> named;

  Lettering Plain() const {
    return {.size = letters, .align = Align::Centre, .halo = true, .item = ThemeItem::Airways};
  }

  // Its middle so far along the line and so far across it, down as one reads.
  bool Write(const DeviceLine& line, const std::string& text, double along, double across, bool boxed) {
    Label label = {text, 0, 0, Plain()};
    label.boxed = boxed;
    label.lettering.halo = !boxed;
    const double half = plan.Width(text, label.lettering) / 2;
    if (!line.IsStraight(along - half, along + half, BEND * letters)) return false;
    const DeviceLine::Spot spot = line.TextSpotAt(along);
    const DevicePoint at = Beside(spot, 0, across + MIDDLE * letters);
    label.x = at.x;
    label.y = at.y;
    label.turn = spot.turn;
    return plan.OfferWithin(window, label);
  }

  bool IsNamedNear(const std::string& name, const DevicePoint& place) {
    const std::vector<DevicePoint>& places = named[name];
    return std::any_of(places.begin(), places.end(), [&](const DevicePoint& other) {
      return std::hypot(other.x - place.x, other.y - place.y) < NAMES_APART * letters;
    });
  }

  void Name(Shown& shown) {
    const std::string text = JoinedNames(shown.leg);
    const double length = shown.line.Length();
    const double half = plan.Width(text, Plain()) / 2 + letters * 0.5;
    shown.nameAlong = -1;
    if (length < 2 * half) return;
    for (const double share : {0.5, 0.35, 0.65, 0.2, 0.8}) {
      const double along = length * share;
      const DevicePoint place = shown.line.SpotAt(along).at;
      if (IsNamedNear(text, place) || !spacing.IsFree(place.x, place.y) ||
          !Write(shown.line, text, along, 0, true))
        continue;
      spacing.Take(place.x, place.y);
      named[text].push_back(place);
      shown.nameAlong = along;
      shown.nameHalf = half;
      return;
    }
  }

  // Over the name, or beside it, or under it.
  void Altitude(const Shown& shown) {
    const std::string text = MinimumText(shown.leg);
    if (text.empty() || shown.nameAlong < 0) return;
    const double half = plan.Width(text, Plain()) / 2;
    const double beside = shown.nameHalf + half + letters * 0.2;
    const double high = -ABOVE * letters, over = -1.35 * letters;
    Write(shown.line, text, shown.nameAlong, over, false) ||
        Write(shown.line, text, shown.nameAlong + beside, high, false) ||
        Write(shown.line, text, shown.nameAlong - beside, high, false) ||
        Write(shown.line, text, shown.nameAlong, -over, false);
  }

  // At each end, as one leaves the fix.
  void Courses(const Shown& shown) {
    for (const bool first : {true, false}) {
      if (!(first ? shown.hasFrom : shown.hasTo)) continue;
      const std::string text = CourseText(shown.leg, first);
      if (text.empty()) continue;
      const double from = plan.Width(text, Plain()) / 2 + letters * 0.3;
      const double length = shown.line.Length();
      if (length < 4 * from) continue;
      const double along = first ? from : length - from;
      Write(shown.line, text, along, -ABOVE * letters, false) ||
          Write(shown.line, text, along, ABOVE * letters, false);
    }
  }

  void Distance(const Shown& shown) {
    if (shown.nameAlong < 0) return;
    K7String text;
    text.Format(shown.leg.distance < 10 ? "%.1f" : "%.0f", shown.leg.distance);
    Write(shown.line, std::string(text), shown.nameAlong, 1.35 * letters, false);
  }
};

// The longest have the best room, and name the airway for the short ones beside them.
std::vector<AirwayLayer::Shown*> AirwayLayer::LongestFirst() {
  std::vector<Shown*> order;
  for (Shown& shown : m_shown)
    if (!shown.far) order.push_back(&shown);
  std::stable_sort(order.begin(), order.end(),
                   [](const Shown* a, const Shown* b) { return a->line.Length() > b->line.Length(); });
  return order;
}

void AirwayLayer::OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) {
  Writer writer(context, size, m_apart < TEEMING, plan);
  const std::vector<Shown*> order = LongestFirst();
  for (Shown* const shown : order) writer.Name(*shown);
  if (m_apart < TEEMING) return;
  for (const Shown* const shown : order) writer.Altitude(*shown);
}

void AirwayLayer::OfferDetails(const LayerContext& context, double size, LabelPlan& plan) {
  if (m_apart < TEEMING) return;
  Writer writer(context, size, false, plan);
  const std::vector<Shown*> order = LongestFirst();
  for (const Shown* const shown : order) writer.Courses(*shown);
  for (const Shown* const shown : order) writer.Distance(*shown);
}

void AirwayLayer::Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
                       std::vector<Picked>& found) {
  for (const Shown& shown : m_shown) {
    if (shown.line.Distance({dx, dy}) > PICK_REACH * context.scale) continue;
    const AirwayLeg& leg = shown.leg;
    K7String distance;
    distance.Format(", %.1f NM", leg.distance);
    const std::string minimum = MinimumText(leg);
    found.push_back(PickedRecords("airway " + JoinedNames(leg) + ": " + leg.from.ident + " " +
                                      CourseText(leg, true) + " - " + leg.to.ident + " " +
                                      CourseText(leg, false) + std::string(distance) +
                                      (minimum.empty() ? "" : ", not below " + minimum),
                                  *m_data, leg.segments));
  }
}

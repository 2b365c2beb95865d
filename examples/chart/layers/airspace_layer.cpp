#include "layers/airspace_layer.h"

#include "layers/airspace_outline.h"
#include "layers/edge_band.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

// Pixels.
constexpr double BAND = 6, THIN_BAND = 3;
constexpr double HATCHES_APART = 5;
constexpr double SMALLEST = 10;  // across; less would be a blot

// In letter sizes.
constexpr double LETTERS = 0.72;  // of the ordinary size
constexpr double LINE = 1.25;     // from the name to the limits below it

ThemeItem LookOf(const K7NavArea& area, char letter) {
  if (area.Type() == K7NAV_CTRL_AIRSPACE) {
    if (letter >= 'E' && letter <= 'G') return ThemeItem::ClassEAirspaces;
    if (letter == 'D') return ThemeItem::ClassDAirspaces;
    return letter == 'C' ? ThemeItem::ClassCAirspaces : ThemeItem::Airspaces;
  }
  switch (area.type) {
    case K7SUAirspace::DANGER:
    case K7SUAirspace::PROHIBITED:
    case K7SUAirspace::RESTRICTED:
    case K7SUAirspace::WARNING:
    case K7SUAirspace::MILITARY:
      return ThemeItem::RestrictedAirspaces;
    default:
      return ThemeItem::OtherAirspaces;
  }
}

std::string LimitText(const K7Alt& limit) {
  if (limit.Value() == 0) return "GND";
  K7String text;
  limit.ToString(text, true);
  return text.IsEmpty() ? "?" : Utf8(text);
}

std::string NameOf(const K7NavArea& area) {
  const bool special = area.Type() == K7NAV_SPECIAL_USE_AIRSPACE;
  const K7NavText& first = special ? area.ident : area.name;
  const K7NavText& second = special ? area.name : area.ident;
  const char* const text = !first.IsEmpty() ? first : second;
  return text ? Utf8(text) : std::string();
}

PixelBox BoundsOf(const std::vector<DeviceLine>& lines, const K7MapView& view) {
  PixelBox box = {INFINITY, INFINITY, -INFINITY, -INFINITY};
  for (const DeviceLine& line : lines)
    for (const DevicePoint& p : line.points) {
      const double x = std::clamp(p.x, 0.0, view.Width() * 1.0);
      const double y = std::clamp(p.y, 0.0, view.Height() * 1.0);
      box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x), std::max(box.bottom, y)};
    }
  return box;
}

double AreaOf(const PixelBox& box) { return (box.right - box.left) * (box.bottom - box.top); }

}  // namespace

void AirspaceLayer::Prepare(const LayerContext& context) {
  m_airspaces.clear();
  m_features.Clear();
  if (!context.theme[Item()].ShowsAt(context.view.NMPerPixel())) return;
  for (const K7NavType type : {K7NAV_CTRL_AIRSPACE, K7NAV_SPECIAL_USE_AIRSPACE})
    Take(type, context.view.GetExtent());
  std::erase_if(m_airspaces, [&](const Airspace& airspace) {
    return !context.theme[airspace.look].ShowsAt(context.view.NMPerPixel());
  });
  K7MapPath path(context.view);
  for (Airspace& airspace : m_airspaces) Lay(path, context.view, airspace);
}

void AirspaceLayer::Take(K7NavType type, const K7ChartRect& area) {
  const std::unique_ptr<K7NavQueryResult> result(m_data->AreaQuery(type, area));
  while (const K7NavRec* const rec = result ? result->Next() : nullptr) {
    const auto& airspace = static_cast<const K7NavArea&>(*rec);
    const bool controlled = type == K7NAV_CTRL_AIRSPACE;
    const K7Alt floor = controlled ? static_cast<const K7CtrlAirspace*>(rec)->floor
                                   : static_cast<const K7SUAirspace*>(rec)->floor;
    const K7Alt ceiling = controlled ? static_cast<const K7CtrlAirspace*>(rec)->ceiling
                                     : static_cast<const K7SUAirspace*>(rec)->ceiling;
    std::string name = NameOf(airspace);
    const char letter = controlled ? static_cast<const K7CtrlAirspace*>(rec)->airspaceClass : '\0';
    if (letter >= 'A' && letter <= 'G') name += std::string(name.empty() ? "" : " ") + letter;
    m_airspaces.push_back({LookOf(airspace, letter),
                           std::move(name),
                           LimitText(ceiling) + " / " + LimitText(floor),
                           airspace.key,
                           letter >= 'E' && letter <= 'G',
                           -1,
                           {},
                           {}});
  }
}

// A boundary without a piece becomes an area without a point, which nothing draws.
int AirspaceLayer::AddFeature(const K7NavKey& airspace) {
  std::vector<K7AirspaceSeg> pieces;
  const std::unique_ptr<K7NavQueryResult> result(m_data->AirspaceSegments(airspace));
  while (const K7NavRec* const rec = result ? result->Next() : nullptr)
    pieces.push_back(static_cast<const K7AirspaceSeg&>(*rec));
  const std::vector<K7LatLon> points = AirspaceOutline(pieces);
  const int size = static_cast<int>(points.size());
  return m_features.Add(K7_MAP_AREA, points.data(), &size, 1);
}

void AirspaceLayer::Lay(K7MapPath& path, const K7MapView& view, Airspace& airspace) {
  airspace.feature = AddFeature(airspace.key);
  LineSink sink;
  path.Outline(&sink, m_features, airspace.feature);
  airspace.bounds = BoundsOf(sink.lines, view);
  const PixelBox& b = airspace.bounds;
  if (b.right - b.left >= SMALLEST || b.bottom - b.top >= SMALLEST) airspace.outline = std::move(sink.lines);
}

void AirspaceLayer::DrawAreas(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  std::vector<double> triangles;
  for (const Airspace& airspace : m_airspaces) {
    triangles.clear();
    for (const DeviceLine& line : airspace.outline)
      AddEdgeBand(line, (airspace.thin ? THIN_BAND : BAND) * context.scale, triangles);
    UseFill(g, context.theme[airspace.look]);
    if (!triangles.empty()) g.Triangles(triangles.data(), static_cast<int>(triangles.size() / 6));
  }
}

void AirspaceLayer::DrawLines(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  for (const Airspace& airspace : m_airspaces) {
    UseLine(g, context.theme[airspace.look], context.scale);
    for (const DeviceLine& line : airspace.outline) {
      line.AddTo(g);
      if (airspace.look == ThemeItem::RestrictedAirspaces)
        AddHatching(line, BAND * context.scale, HATCHES_APART * context.scale, g);
      g.Stroke();
    }
  }
}

// Inside, as near to its middle as there is room for name and limits.
bool AirspaceLayer::OfferName(const LayerContext& context, const Airspace& airspace, double letters,
                              LabelPlan& plan) const {
  static const int SPOTS = 11;
  const K7MapView& view = context.view;
  const PixelBox window = context.Part();
  const PixelBox& b = airspace.bounds;
  Label name = {airspace.name,
                0,
                0,
                {.size = letters, .align = Align::Centre, .bold = true, .halo = true, .item = airspace.look}};
  Label limits = {airspace.limits, 0, 0, name.lettering};
  limits.lettering.bold = false;
  const double half =
      std::max(plan.Width(name.text, name.lettering), plan.Width(limits.text, limits.lettering)) / 2;
  if (b.right - b.left < 2 * half || b.bottom - b.top < 3 * letters) return false;
  const auto isInside = [&](double x, double y) {
    double lat, lon;
    return view.FromDevice(x, y, lat, lon) && m_features.Contains(airspace.feature, lat, lon);
  };
  std::vector<DevicePoint> spots;
  for (int row = 1; row <= SPOTS; ++row)
    for (int column = 1; column <= SPOTS; ++column)
      spots.push_back({b.left + (b.right - b.left) * column / (SPOTS + 1),
                       b.top + (b.bottom - b.top) * row / (SPOTS + 1)});
  const DevicePoint middle = {(b.left + b.right) / 2, (b.top + b.bottom) / 2};
  std::stable_sort(spots.begin(), spots.end(), [&](const DevicePoint& p, const DevicePoint& q) {
    return std::hypot(p.x - middle.x, p.y - middle.y) < std::hypot(q.x - middle.x, q.y - middle.y);
  });
  for (const DevicePoint& spot : spots) {
    name.x = limits.x = spot.x;
    name.y = spot.y;
    limits.y = spot.y + LINE * letters;
    if (!window.Holds(plan.BoxOf(name)) || !window.Holds(plan.BoxOf(limits)) ||
        !plan.IsFree(plan.BoxOf(name)) || !plan.IsFree(plan.BoxOf(limits)) ||
        !isInside(spot.x - half, spot.y) || !isInside(spot.x + half, spot.y) || !isInside(spot.x, limits.y))
      continue;
    plan.Offer(name);
    plan.Offer(limits);
    return true;
  }
  return false;
}

void AirspaceLayer::OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) {
  // The small ones have the least choice.
  std::vector<const Airspace*> order;
  for (const Airspace& airspace : m_airspaces)
    if (!airspace.outline.empty()) order.push_back(&airspace);
  std::stable_sort(order.begin(), order.end(), [](const Airspace* a, const Airspace* b) {
    return AreaOf(a->bounds) < AreaOf(b->bounds);
  });
  for (const Airspace* const airspace : order) OfferName(context, *airspace, size * LETTERS, plan);
}

void AirspaceLayer::Pick(const LayerContext& context, K7MapPath&, double dx, double dy,
                         std::vector<Picked>& found) {
  double lat, lon;
  if (!context.view.FromDevice(dx, dy, lat, lon)) return;
  for (const Airspace& airspace : m_airspaces)
    if (m_features.Contains(airspace.feature, lat, lon))
      found.push_back(
          PickedRecords("airspace " + airspace.name + ", " + airspace.limits, *m_data, {airspace.key}));
}

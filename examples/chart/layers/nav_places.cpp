#include "layers/nav_places.h"

#include <cmath>
#include <cstring>

double NMPerPixelAt(const K7MapView& view, double lat, double lon) {
  double north, east;
  if (!view.IsTilted()) return view.NMPerPixel();
  return view.Scale(lat, lon, north, east) ? std::sqrt(north * east) : INFINITY;
}

K7ChartRect PlacesIn(const LayerContext& context, double beyond) {
  const K7MapView& view = context.view;
  double north, south, east, west;
  if (!context.IsPiece() || !view.GetExtent(north, south, east, west)) return view.GetExtent();
  const double pixels = beyond * context.scale;
  const double aside = pixels * (east - west) / view.Width();
  double lat, lon;
  north = view.FromDevice(view.Width() / 2.0, -pixels, lat, lon) ? lat : 90;
  south = view.FromDevice(view.Width() / 2.0, view.Height() + pixels, lat, lon) ? lat : -90;
  if (east - west + 2 * aside >= 360) return {north, south, 180, -180};
  return {north, south, std::remainder(east + aside, 360), std::remainder(west - aside, 360)};
}

bool IsOnEdge(const LayerContext& context, double x, double y, double reach) {
  const PixelBox part = context.Part();
  return std::fabs(std::remainder(x - part.left, part.right - part.left)) < reach ||
         std::fabs(std::remainder(y - part.top, part.bottom - part.top)) < reach;
}

bool TakePlace(const LayerContext& context, ThemeItem item, const K7NavFix& fix, const char* name,
               NavPlace& place) {
  place.lat = K7NavData::FixPt2DecDeg(fix.lat);
  place.lon = K7NavData::FixPt2DecDeg(fix.lon);
  place.dx = place.dy = NAN;
  const bool isSeen = context.view.ToDevice(place.lat, place.lon, place.dx, place.dy);
  if (!isSeen && !(context.IsPiece() && std::isfinite(place.dx + place.dy))) return false;
  const double nm = NMPerPixelAt(context.view, place.lat, place.lon);
  if (!context.theme[item].ShowsAt(nm)) return false;
  place.nm = nm * context.scale;
  place.key = fix.key;
  place.ident.assign(fix.ident, strnlen(fix.ident, sizeof fix.ident));
  if (name) place.name = Utf8(name);
  return true;
}

double NMPerOrdinaryPixel(const LayerContext& context) { return context.view.NMPerPixel() * context.scale; }

std::string IdentAndName(const NavPlace& place) {
  return place.name.empty() || place.name == place.ident ? place.ident
                                                         : place.ident + " (" + place.name + ")";
}

int64_t Spacing::CellOf(double x, double y, int right, int down) const {
  const auto column = static_cast<int64_t>(std::floor(x / m_apart)) + right;
  const auto row = static_cast<int64_t>(std::floor(y / m_apart)) + down;
  return row * INT32_MAX + column;
}

bool Spacing::IsFree(double x, double y, double apart) const {
  for (int down = -1; down <= 1; ++down)
    for (int right = -1; right <= 1; ++right) {
      const auto cell = m_cells.find(CellOf(x, y, right, down));
      if (cell == m_cells.end()) continue;
      for (const At& at : cell->second)
        if (std::hypot(at.x - x, at.y - y) < apart) return false;
    }
  return true;
}

bool Spacing::Take(double x, double y, double apart) {
  if (!IsFree(x, y, apart)) return false;
  m_cells[CellOf(x, y, 0, 0)].push_back({x, y});
  return true;
}

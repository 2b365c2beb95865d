// How much of the world a view shows: its extent, and what its paths are cut to.
#include <k7/projection/map_view.h>

#include <k7/geodesy/constants.h>

#include "projection/map_limits.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int SIDE_SAMPLES = 64;  // along each side of the frame

// Visits the frame of a window, `beyond` pixels outside its edge, once around and its first place again.
template <class Visit>
void VisitFrame(double width, double height, double beyond, Visit visit) {
  const double left = -beyond, right = width + beyond;
  const double top = -beyond, bottom = height + beyond;
  for (int side = 0; side < 4; ++side)
    for (int i = 0; i < SIDE_SAMPLES; ++i) {
      const double t = static_cast<double>(i) / SIDE_SAMPLES;
      const double across = side % 2 ? (side == 1 ? right : left)
                                     : (side == 0 ? left + t * (right - left) : right + t * (left - right));
      const double down = side % 2 == 0
                              ? (side == 0 ? top : bottom)
                              : (side == 1 ? top + t * (bottom - top) : bottom + t * (top - bottom));
      visit(across, down);
    }
  visit(left, top);
}

}  // namespace

// All that lies within the cap: at the tangent meridians, sin(width) = sin(radius) / cos(latitude).
K7MapView::Box K7MapView::CapBox() const {
  const double radius = m_cap.radius * K7_RAD_TO_DEG;
  Box box = {m_lat + radius, m_lat - radius, m_lon + 180, m_lon - 180};
  if (box.north < 90 && box.south > -90) {
    const double width =
        std::asin(std::min(std::sin(m_cap.radius) / std::cos(m_lat * K7_DEG_TO_RAD), 1.0)) * K7_RAD_TO_DEG;
    box.east = m_lon + width;
    box.west = m_lon - width;
  }
  box.north = std::min(box.north, 90.0);
  box.south = std::max(box.south, -90.0);
  return box;
}

// What a frame runs through.
struct K7MapView::FrameBounds {
  double middle;  // longitudes are told from it on
  Box box{-INFINITY, INFINITY, -INFINITY, INFINITY};
  double latJump = 0, lonJump = 0;  // the largest between two samples
  bool whole = true;                // no sample is off the map

  K7LatLon Include(const K7LatLon& place) {
    const double lon = middle + std::remainder(place.Lon() - middle, 360);
    box = {std::max(box.north, place.Lat()), std::min(box.south, place.Lat()), std::max(box.east, lon),
           std::min(box.west, lon)};
    return K7LatLon(place.Lat(), lon);
  }
  void Jump(const K7LatLon& a, const K7LatLon& b) {
    latJump = std::max(latJump, std::fabs(a.Lat() - b.Lat()));
    lonJump = std::max(lonJump, std::fabs(a.Lon() - b.Lon()));
  }
};

void K7MapView::SampleFrame(double beyond, FrameBounds& bounds) const {
  FrameSample last{};
  bool first = true;
  VisitFrame(Width(), Height(), beyond, [&](double dx, double dy) {
    FrameSample sample = {dx, dy, {}, false};
    sample.onMap = OnMapAt(dx, dy, sample.place);
    if (sample.onMap) sample.place = bounds.Include(sample.place);
    if (!first && sample.onMap && last.onMap) bounds.Jump(last.place, sample.place);
    if (!first && sample.onMap != last.onMap) {
      const FrameSample& on = sample.onMap ? sample : last;
      bounds.Jump(on.place, bounds.Include(MapEdge(on, sample.onMap ? last : sample)));
    }
    bounds.whole = bounds.whole && sample.onMap;
    last = sample;
    first = false;
  });
}

// The positions along a frame bound those within it, but for the poles, which bring all longitudes with them,
// and for the corners of the map. What bulges between two samples is less than their difference: `slack` is
// the share of it that is added.
K7MapView::Box K7MapView::FrameBox(double beyond, double slack, double middle) const {
  const Box all =
      IsGlobe() ? CapBox() : Box{m_map.north, m_map.south, middle + HALF_WORLD, middle - HALF_WORLD};
  FrameBounds bounds{middle};
  SampleFrame(beyond, bounds);
  const Box& box = bounds.box;
  // Or the whole of a map lies within the frame.
  if ((!bounds.whole && IsGlobe()) || !(box.north >= box.south)) return all;
  const auto inFrame = [&](double lat, double lon) {
    double dx = NAN, dy = NAN;
    ToDevice(lat, lon, dx, dy);
    return dx >= -beyond && dx <= Width() + beyond && dy >= -beyond && dy <= Height() + beyond;
  };
  for (const double lat : {m_map.south, m_map.north})
    for (const double lon : {m_map.west, m_map.east})
      if (!bounds.whole && inFrame(lat, lon)) bounds.Include({lat, lon});
  // A pole may be a line, of which the frame shows a part.
  const auto isPoint = [&](double pole) {
    double ax = NAN, ay = NAN, bx = NAN, by = NAN;
    ToDevice(pole, m_lon, ax, ay);
    ToDevice(pole, m_lon + 90, bx, by);
    return std::hypot(ax - bx, ay - by) < 1;
  };
  const bool north = OnMap(90, m_lon) && inFrame(90, m_lon);
  const bool south = OnMap(-90, m_lon) && inFrame(-90, m_lon);
  // A cone that is not laid about the centre may show what lies half a turn off, between two poles.
  const bool turned = std::fabs(std::remainder(middle - (m_map.west + m_map.east) / 2, 360)) > 1e-6;
  const bool opposite = inFrame(m_map.north, middle + 180) || inFrame(m_map.south, middle + 180);
  const bool around = (!IsGlobe() && turned && opposite) || (north && isPoint(90)) || (south && isPoint(-90));
  const double lats = slack * bounds.latJump, lons = slack * bounds.lonJump;
  return {std::min(north ? 90 : box.north + lats, all.north),
          std::max(south ? -90 : box.south - lats, all.south),
          std::min(around ? middle + 180 : box.east + lons, all.east),
          std::max(around ? middle - 180 : box.west - lons, all.west)};
}

bool K7MapView::OnMapAt(double dx, double dy, K7LatLon& place) const {
  double lat, lon;
  if (!Pick(dx, dy, lat, lon) || !OnMap(lat, lon)) return false;
  place = K7LatLon(lat, lon);
  return true;
}

// The last place of the map on the way from a sample on it to one off it, to a thousandth of the way.
K7LatLon K7MapView::MapEdge(const FrameSample& on, const FrameSample& off) const {
  K7LatLon edge = on.place;
  double t = 0;
  for (double half = 0.5; half > 0.0005; half /= 2) {
    const double further = t + half;
    if (OnMapAt(on.dx + further * (off.dx - on.dx), on.dy + further * (off.dy - on.dy), edge)) t = further;
  }
  return edge;
}

bool K7MapView::FindLimits() {
  static const double LEAST = 1e-9;  // nautical miles: a thousand times the rounding of positions
  if (!(m_nmPerPixel >= LEAST) || !std::isfinite(m_nmPerPixel)) return false;
  const MapLimits limits = LimitsOf(*m_projection);
  const double middle = MiddleMeridian(*m_projection, m_lon);
  m_map = {limits.drawnNorth, limits.drawnSouth, middle + HALF_WORLD, middle - HALF_WORLD};
  if (IsGlobe()) {
    m_cap.axis = K7ECEF(m_lat, m_lon);
    double angle = 0;
    VisitFrame(Width(), Height(), OVERHANG, [&](double dx, double dy) {
      double lat, lon;
      const bool onGlobe = Pick(dx, dy, lat, lon);
      angle = std::max(angle, onGlobe ? m_cap.axis.Angle(K7ECEF(lat, lon)) * K7_RAD_TO_DEG : 180);
    });
    static const double SLACK = 1.02, AT_LEAST = 0.001;
    m_cap.radius = std::min(angle * SLACK + AT_LEAST, limits.drawnAngle) * K7_DEG_TO_RAD;
    m_cap.cosRadius = std::cos(m_cap.radius);
  }
  m_isSet = true;
  if (!ShowsSomething()) return false;
  m_seen = IsGlobe() ? CapBox() : FrameBox(OVERHANG, 1, middle);
  return true;
}

// Some of the window is map, and the map is no mirror image.
bool K7MapView::ShowsSomething() const {
  static const int STEPS = 8;
  double north[2], east[2];
  if (LocalFrame(m_lat, m_lon, north, east) && east[0] * north[1] - east[1] * north[0] >= 0) return false;
  for (int row = 0; row <= STEPS; ++row)
    for (int column = 0; column <= STEPS; ++column) {
      K7LatLon place;
      if (OnMapAt(Width() * 1.0 * column / STEPS, Height() * 1.0 * row / STEPS, place)) return true;
    }
  return false;
}

bool K7MapView::GetExtent(double& north, double& south, double& east, double& west) const {
  if (!m_isSet) return false;
  const Box box = FrameBox(0, 0.5, m_lon);
  north = box.north;
  south = box.south;
  east = box.east;
  west = box.west;
  return true;
}

K7ChartRect K7MapView::GetExtent() const {
  double north, south, east, west;
  if (!GetExtent(north, south, east, west)) return {};
  if (east - west >= 2 * HALF_WORLD) return {north, south, 180, -180};
  return {north, south, std::remainder(east, 360), std::remainder(west, 360)};
}

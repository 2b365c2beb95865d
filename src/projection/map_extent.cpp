// How much of the world a view shows: its extent, and what its paths are cut to.
#include <k7/projection/map_view.h>

#include <k7/geodesy/constants.h>

#include "projection/map_limits.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int SIDE_SAMPLES = 64;  // along each side of the frame

// Visits the frame of a window, `beyond` pixels outside its edge, once around.
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

// The positions along a frame bound those within it, but for the poles, which bring all longitudes with them,
// and for what the map ends at within the frame. What bulges between two samples is less than their
// difference: `slack` is the share of it that is added.
K7MapView::Box K7MapView::FrameBox(double beyond, double slack) const {
  const Box all = IsGlobe() ? CapBox() : m_map;
  const double middle = (all.west + all.east) / 2;
  Box box = {-INFINITY, INFINITY, -INFINITY, INFINITY};
  const auto include = [&](double lat, double lon) {
    box = {std::max(box.north, lat), std::min(box.south, lat), std::max(box.east, lon),
           std::min(box.west, lon)};
  };
  double latJump = 0, lonJump = 0, lastLat = NAN, lastLon = NAN;
  bool whole = true;
  VisitFrame(Width(), Height(), beyond, [&](double dx, double dy) {
    double lat, lon;
    if (!FromDevice(dx, dy, lat, lon)) {
      whole = false;
      return;
    }
    lon = middle + std::remainder(lon - middle, 360);
    if (std::isfinite(lastLat)) {
      latJump = std::max(latJump, std::fabs(lat - lastLat));
      lonJump = std::max(lonJump, std::fabs(lon - lastLon));
    }
    lastLat = lat;
    lastLon = lon;
    include(lat, lon);
  });
  if (!whole && IsGlobe()) return all;
  const auto inFrame = [&](double lat, double lon) {
    double dx = NAN, dy = NAN;
    ToDevice(lat, lon, dx, dy);
    return dx >= -beyond && dx <= Width() + beyond && dy >= -beyond && dy <= Height() + beyond;
  };
  if (!whole) {
    // The sides of the map that show, a degree apart.
    static const int STEPS = 360;
    for (int i = 0; i <= STEPS; ++i) {
      const double lat = all.south + (all.north - all.south) * i / STEPS;
      const double lon = all.west + (all.east - all.west) * i / STEPS;
      for (const double side : {all.west, all.east})
        if (inFrame(lat, side)) include(lat, side);
      for (const double end : {all.south, all.north})
        if (inFrame(end, lon)) include(end, lon);
    }
    latJump = std::max(latJump, 1.0);
    lonJump = std::max(lonJump, 1.0);
  }
  if (!(box.north >= box.south)) return all;
  const bool north = OnMap(90, m_lon) && inFrame(90, m_lon);
  const bool south = OnMap(-90, m_lon) && inFrame(-90, m_lon);
  // Of a cylinder's pole, a line, the frame may show a part.
  const bool around = (north || south) && !m_projection->IsCylindrical();
  return {std::min(north ? 90 : box.north + slack * latJump, all.north),
          std::max(south ? -90 : box.south - slack * latJump, all.south),
          std::min(around ? middle + 180 : box.east + slack * lonJump, all.east),
          std::max(around ? middle - 180 : box.west - slack * lonJump, all.west)};
}

bool K7MapView::FindLimits() {
  if (!(m_nmPerPixel > 0) || !std::isfinite(m_nmPerPixel)) return false;
  const MapLimits limits = LimitsOf(*m_projection);
  const double middle = MiddleMeridian(*m_projection, m_lon);
  m_map = {limits.drawnNorth, limits.drawnSouth, middle + HALF_WORLD, middle - HALF_WORLD};
  if (IsGlobe()) {
    m_cap.axis = K7ECEF(m_lat, m_lon);
    double angle = 0;
    VisitFrame(Width(), Height(), OVERHANG, [&](double dx, double dy) {
      double lat, lon;
      const bool onGlobe = FromDevice(dx, dy, lat, lon);
      angle = std::max(angle, onGlobe ? m_cap.axis.Angle(K7ECEF(lat, lon)) * K7_RAD_TO_DEG : 180);
    });
    static const double SLACK = 1.02, AT_LEAST = 0.001;
    m_cap.radius = std::min(angle * SLACK + AT_LEAST, limits.drawnAngle) * K7_DEG_TO_RAD;
    m_cap.cosRadius = std::cos(m_cap.radius);
  }
  m_isSet = true;
  if (!ShowsSomething()) return false;
  m_seen = IsGlobe() ? CapBox() : FrameBox(OVERHANG, 1);
  return true;
}

// Some of the window is map, and the map is no mirror image.
bool K7MapView::ShowsSomething() const {
  static const int STEPS = 8;
  double north[2], east[2];
  if (LocalFrame(m_lat, m_lon, north, east) && east[0] * north[1] - east[1] * north[0] >= 0) return false;
  for (int row = 0; row <= STEPS; ++row)
    for (int column = 0; column <= STEPS; ++column) {
      double lat, lon;
      if (FromDevice(Width() * 1.0 * column / STEPS, Height() * 1.0 * row / STEPS, lat, lon)) return true;
    }
  return false;
}

bool K7MapView::GetExtent(double& north, double& south, double& east, double& west) const {
  if (!m_isSet) return false;
  const Box box = FrameBox(0, 0.5);
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

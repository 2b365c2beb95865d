#include "layers/view.h"

#include <k7/geodesy/constants.h>
#include <k7/projection/azimuthal.h>
#include <k7/projection/conic.h>

#include <algorithm>
#include <cmath>

namespace {

// How far from the centre a globe projection can show the globe, in degrees. Stereographic and gnomonic
// charts run out to infinity; they are cut where a picture still makes sense.
double VisibleAngle(K7Projection& projection) {
  switch (projection.Type()) {
    case K7_PROJ_ORTHOGRAPHIC:
      return 90;
    case K7_PROJ_STEREOGRAPHIC:
      return 170;
    case K7_PROJ_GNOMONIC:
      return 85;
    default: {
      const double eye = K7PerspectiveProjection::Alt2Mag(projection.ParamValue(0));
      return std::acos(std::min(1 / eye, 1.0)) * K7_RAD_TO_DEG;
    }
  }
}

// An eye above the ground that a camera can be made of, as the projection states it.
bool IsPossible(const K7Projection& projection) {
  if (projection.Type() != K7_PROJ_PERSPECTIVE) return true;
  static const int ALTITUDE = 0, PITCH = 3, FIELD_OF_VIEW = 4;
  const double pitch = projection.ParamValue(PITCH);
  const double fieldOfView = projection.ParamValue(FIELD_OF_VIEW);
  return projection.ParamValue(ALTITUDE) >= 1 && pitch >= -90 && pitch < 80 && fieldOfView > 0 &&
         fieldOfView < 90;
}

// What a world view of a globe projection shows, in degrees from the centre.
double WorldAngle(K7Projection& projection) {
  switch (projection.Type()) {
    case K7_PROJ_STEREOGRAPHIC:
      return 110;
    case K7_PROJ_GNOMONIC:
      return 60;
    default:
      return VisibleAngle(projection);
  }
}

// Latitudes that a flat projection can show, and those that a world view of it shows.
struct LatitudeBand {
  double south, north;
};

LatitudeBand DrawnBand(K7Projection& projection, double centreLat) {
  switch (projection.Type()) {
    case K7_PROJ_MERCATOR:
      return {-89.98, 89.98};
    // Lambert's far pole lies at infinity.
    case K7_PROJ_LAMBERT:
      return centreLat < 0 ? LatitudeBand{-90, 80} : LatitudeBand{-80, 90};
    default:
      return {-90, 90};
  }
}

LatitudeBand WorldBand(K7Projection& projection, double centreLat) {
  switch (projection.Type()) {
    case K7_PROJ_MERCATOR:
      return {-80, 80};
    case K7_PROJ_LAMBERT:
      return centreLat < 0 ? LatitudeBand{-90, 30} : LatitudeBand{-30, 90};
    default:
      return {-90, 90};
  }
}

// The seam itself belongs to both edges of a flat map: it is left to each edge by a hair.
constexpr double HALF_WORLD = 180 - 1e-7;

}  // namespace

bool View::LookAt(double lat, double lon, double rangeNM) {
  m_centre = {lat, lon};
  if (!IsPossible(m_projection)) return false;
  const LatitudeBand band = DrawnBand(m_projection, lat);
  m_window = {lon - HALF_WORLD, lon + HALF_WORLD, band.south, band.north};
  if (!SetZoom(1)) return false;
  if (!(rangeNM > 0) && !IsGlobe() && !CentreMap()) return false;
  const double perNM = PixelsPerNM(rangeNM);
  const double half = std::min(m_grfx.Width(), m_grfx.Height()) / 2.0;
  const double zoom = IsTilted() ? 1 : rangeNM > 0 ? half / (rangeNM * perNM) : ZoomToFit();
  if (!(perNM > 0) || !std::isfinite(zoom) || !SetZoom(zoom)) return false;
  m_nmPerPixel = 1 / PixelsPerNM(rangeNM);
  FindLimits();
  return std::isfinite(m_nmPerPixel);
}

bool View::IsTilted() const {
  static const int PITCH = 3;
  return m_projection.Type() == K7_PROJ_PERSPECTIVE && m_projection.ParamValue(PITCH) != -90;
}

bool View::SetZoom(double zoom) {
  m_grfx.SetZoom(zoom);
  const int width = m_grfx.Width();
  const int height = m_grfx.Height();
  // The window's origin is where the centre falls: the middle of the window.
  return m_projection.SetupMatrix(&m_grfx, width / 2, height / 2, width, height) &&
         m_projection.CenterOn(&m_grfx, m_centre.lat, m_centre.lon);
}

DevicePoint View::ToDevice(GeoPoint point) const {
  double x, y, z;
  m_projection.LatLon2World(point.lat, point.lon, x, y, z);
  return m_grfx.Project(x, y, z);
}

bool View::Shows(GeoPoint point, DevicePoint& at) const {
  if (IsGlobe() && m_cap.axis.DotProduct(K7ECEF(point.lat, point.lon)) < m_cap.cosRadius) return false;
  if (!IsGlobe()) {
    point.lon = m_centre.lon + std::remainder(point.lon - m_centre.lon, 360);
    if (point.lat < m_window.south || point.lat > m_window.north) return false;
  }
  at = ToDevice(point);
  if (!(at.w > 0)) return false;
  at = {at.x / at.w, at.y / at.w, 1};
  return at.x >= 0 && at.x <= m_grfx.Width() && at.y >= 0 && at.y <= m_grfx.Height();
}

FlatWindow View::Extent() const {
  static const int STEPS = 24;
  static const FlatWindow NOTHING = {999, -999, 999, -999};
  FlatWindow extent = NOTHING;
  const FlatWindow world = {m_centre.lon - 180, m_centre.lon + 180, -90, 90};
  for (int row = 0; row <= STEPS; ++row)
    for (int column = 0; column <= STEPS; ++column) {
      GeoPoint point;
      if (!FromDevice(m_grfx.Width() * 1.0 * column / STEPS, m_grfx.Height() * 1.0 * row / STEPS, point))
        return world;
      const double lon = m_centre.lon + std::remainder(point.lon - m_centre.lon, 360);
      extent = {std::min(extent.west, lon), std::max(extent.east, lon), std::min(extent.south, point.lat),
                std::max(extent.north, point.lat)};
    }
  // Samples lie inside; what bulges between them is within a step of theirs. A pole brings all longitudes
  // with it.
  const double marginLat = (extent.north - extent.south) / STEPS;
  const double marginLon = (extent.east - extent.west) / STEPS;
  DevicePoint at;
  const bool north = Shows({90, m_centre.lon}, at);
  const bool south = Shows({-90, m_centre.lon}, at);
  extent.north = north ? 90 : std::min(extent.north + marginLat, 90.0);
  extent.south = south ? -90 : std::max(extent.south - marginLat, -90.0);
  extent.west = north || south ? world.west : std::max(extent.west - marginLon, world.west);
  extent.east = north || south ? world.east : std::min(extent.east + marginLon, world.east);
  return extent;
}

bool View::FromDevice(double dx, double dy, GeoPoint& point) const {
  return m_projection.Device2LatLon(dx, dy, &m_grfx, m_grfx.Width(), m_grfx.Height(), point.lat, point.lon);
}

// Scale at the centre, measured along the meridian over a good part of the range: an equal-area cone has no
// scale of its own at its pole.
double View::PixelsPerNM(double rangeNM) const {
  const double base = std::clamp(rangeNM / 4, 1.0, 300.0) / (K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM);
  const double north = std::min(m_centre.lat + base, 90.0);
  const double south = std::max(m_centre.lat - base, -90.0);
  const DevicePoint a = ToDevice(GeoPoint{north, m_centre.lon});
  const DevicePoint b = ToDevice(GeoPoint{south, m_centre.lon});
  const double pixels = std::hypot(a.x / a.w - b.x / b.w, a.y / a.w - b.y / b.w);
  return pixels / ((north - south) * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM);
}

// The outline of what a view of the whole world shows, as far as it lies before the eye.
std::vector<DevicePoint> View::WorldOutline() const {
  std::vector<DevicePoint> outline;
  const auto add = [&](GeoPoint point) {
    const DevicePoint p = ToDevice(point);
    if (p.w > 0) outline.push_back({p.x / p.w, p.y / p.w, 1});
  };
  if (IsGlobe()) {
    const double distance = WorldAngle(m_projection) * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM;
    for (int course = 0; course < 360; course += 2) {
      K7LatLon limb;
      limb.EndPoint(K7LatLon(m_centre.lat, m_centre.lon), course, distance);
      add({limb.Lat(), limb.Lon()});
    }
    return outline;
  }
  const LatitudeBand band = WorldBand(m_projection, m_centre.lat);
  for (int i = -90; i <= 90; ++i) {
    const double lat = band.south + (band.north - band.south) * (i + 90) / 180;
    const double lon = m_centre.lon + HALF_WORLD * i / 90;
    add({band.south, lon});
    add({band.north, lon});
    add({lat, m_window.west});
    add({lat, m_window.east});
  }
  return outline;
}

// Moves the centre along its meridian to the middle of the map, so that a world map fills its window.
bool View::CentreMap() {
  double top = 1e300;
  double bottom = -1e300;
  for (const DevicePoint& p : WorldOutline()) {
    top = std::min(top, p.y);
    bottom = std::max(bottom, p.y);
  }
  GeoPoint middle;
  // Whole millionths: the equator is to be the equator.
  if (FromDevice(m_grfx.Width() / 2.0, (top + bottom) / 2, middle))
    m_centre.lat = std::round(middle.lat * 1e6) / 1e6;
  return SetZoom(1);
}

// At zoom 1: how much larger the picture may be until the outline of the world meets the window.
double View::ZoomToFit() const {
  static const double MARGIN = 0.97;
  const double halfWidth = m_grfx.Width() / 2.0;
  const double halfHeight = m_grfx.Height() / 2.0;
  double zoom = 1e9;
  for (const DevicePoint& p : WorldOutline()) {
    const double dx = std::fabs(p.x - halfWidth);
    const double dy = std::fabs(p.y - halfHeight);
    if (dx > 0) zoom = std::min(zoom, halfWidth / dx);
    if (dy > 0) zoom = std::min(zoom, halfHeight / dy);
  }
  return zoom * MARGIN;
}

// The largest angle from the centre that falls into the window; 180 when the window shows more than the map.
double View::AngleAcross() const {
  static const int STEPS = 32;
  double angle = 0;
  const K7ECEF centre(m_centre.lat, m_centre.lon);
  for (int i = 0; i <= STEPS; ++i) {
    const double x = static_cast<double>(m_grfx.Width()) * i / STEPS;
    const double y = static_cast<double>(m_grfx.Height()) * i / STEPS;
    const double frame[4][2] = {{x, 0}, {x, m_grfx.Height() * 1.0}, {0, y}, {m_grfx.Width() * 1.0, y}};
    for (const auto& pixel : frame) {
      GeoPoint point;
      if (!FromDevice(pixel[0], pixel[1], point)) return 180;
      angle = std::max(angle, centre.Angle(K7ECEF(point.lat, point.lon)) * K7_RAD_TO_DEG);
    }
  }
  return angle;
}

void View::FindLimits() {
  if (!IsGlobe()) return;
  static const double BEYOND_FRAME = 1.05;
  const double angle = std::min(AngleAcross() * BEYOND_FRAME + 0.01, VisibleAngle(m_projection));
  m_cap.centre = K7LatLon(m_centre.lat, m_centre.lon);
  m_cap.axis = K7ECEF(m_centre.lat, m_centre.lon);
  m_cap.radius = angle * K7_DEG_TO_RAD;
  m_cap.cosRadius = std::cos(m_cap.radius);
}

std::unique_ptr<K7Projection> MakeProjection(K7ProjType type, double lat, double lon, double rangeNM) {
  if (type != K7_PROJ_LAMBERT && type != K7_PROJ_ALBERS)
    return std::unique_ptr<K7Projection>(K7Projection::Create(type, nullptr));

  // The cone goes through the chart a sixth of its height inside its edges (C. H. Deetz and O. S. Adams,
  // Elements of Map Projection, 1938, on the choice of standard parallels), and never through both sides of
  // the equator alike, where it would be no cone. A cone for the whole world keeps to middle latitudes.
  const bool world = !(rangeNM > 0);
  const double half = world ? 30 : std::min(rangeNM / 60, 45.0);
  const double middle =
      world ? std::clamp(std::fabs(lat), 30.0, 40.0) : std::clamp(std::fabs(lat), 3.0, 87.0);
  const double spread = std::clamp(half * 2 / 3, 0.1, std::min(middle - 1, 89 - middle));
  const double side = lat < 0 ? -1 : 1;
  const double outer = side * (middle + spread);
  const double inner = side * (middle - spread);
  if (type == K7_PROJ_LAMBERT)
    return std::unique_ptr<K7Projection>(new (std::nothrow) K7LambertProjection(outer, inner, lon, lat));
  return std::unique_ptr<K7Projection>(new (std::nothrow) K7AlbersProjection(outer, inner, lon, lat));
}

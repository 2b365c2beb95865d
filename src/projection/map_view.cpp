#include <k7/projection/map_view.h>

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/geodesy/latlon.h>
#include <k7/geodesy/vector.h>
#include <k7/projection/conic.h>

#include "projection/map_limits.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace {

// Takes down what a projection asks of a context. A parallel volume is laid about its middle: projections
// take the camera's place in whole pixels, and half a pixel is much once it is magnified.
class VolumeTaker : public K7Grfx {
 public:
  VolumeTaker(double (&lookAt)[9], double (&volume)[6], bool& parallel)
      : m_lookAt(lookAt), m_volume(volume), m_parallel(parallel) {}

  double GetZoom() override { return 1; }
  void LookAt(const double eye[3], const double centre[3], const double up[3]) override {
    std::copy(eye, eye + 3, m_lookAt);
    std::copy(centre, centre + 3, m_lookAt + 3);
    std::copy(up, up + 3, m_lookAt + 6);
  }
  void Ortho(double left, double right, double bottom, double top, double nearClip, double farClip) override {
    const double x = (right - left) / 2;
    const double y = (top - bottom) / 2;
    Take(true, {-x, x, -y, y, nearClip, farClip});
  }
  void Frustum(double left, double right, double bottom, double top, double nearClip,
               double farClip) override {
    Take(false, {left, right, bottom, top, nearClip, farClip});
  }
  bool UnProject(double, double, double, double&, double&, double&) override { return false; }

 private:
  void Take(bool parallel, const double (&volume)[6]) {
    m_parallel = parallel;
    std::copy(volume, volume + 6, m_volume);
  }

  double (&m_lookAt)[9];
  double (&m_volume)[6];
  bool& m_parallel;
};

constexpr double MAX_LON = 540;  // what projections take: one turn beyond the map
constexpr double MAX_TURN = 360;

// Turns the upward direction of a camera about its line of sight, clockwise as the picture shows it.
// `lookAt`: eye, centre, up.
void TurnCamera(double (&lookAt)[9], double degrees) {
  const double* const v = lookAt;
  K7Vector3 sight(v[3] - v[0], v[4] - v[1], v[5] - v[2]), up(v[6], v[7], v[8]), right, upright;
  sight.Normalize();
  sight.CrossProduct(up, right);
  right.Normalize();
  right.CrossProduct(sight, upright);
  const double c = std::cos(degrees * K7_DEG_TO_RAD), s = std::sin(degrees * K7_DEG_TO_RAD);
  for (int i = 0; i < 3; ++i) lookAt[6 + i] = upright.ToArray()[i] * c + right.ToArray()[i] * s;
}

}  // namespace

K7MapView::K7MapView(K7Projection* projection, int width, int height)
    : m_projection(projection), m_camera(width, height) {}

int K7MapView::LookAt(double lat, double lon, double range) {
  m_isSet = false;
  if (!(range >= 0)) return K7_ERR_BAD_ARGUMENT;
  if (const int code = Place(lat, lon, 1)) return code;
  if (range == 0 && !IsGlobe() && !CenterMap()) return K7_ERR_PROJECTION_RANGE;
  const double half = std::min(Width(), Height()) / 2.0;
  const double zoom = IsTilted() ? 1 : range > 0 ? half / (range * PixelsPerNM(range)) : ZoomToFit();
  if (!SetZoom(zoom)) return K7_ERR_PROJECTION_RANGE;
  m_nmPerPixel = IsTilted() ? NearestNMPerPixel() : 1 / PixelsPerNM(range);
  m_isSet = FindLimits();
  return m_isSet ? K7_OK : K7_ERR_PROJECTION_RANGE;
}

int K7MapView::LookAtZoom(double lat, double lon, double zoom) {
  m_isSet = false;
  if (const int code = Place(lat, lon, zoom)) return code;
  static const double LITTLE = 4;  // nautical miles over which the scale is taken
  m_nmPerPixel = IsTilted() ? NearestNMPerPixel() : 1 / PixelsPerNM(LITTLE);
  m_isSet = FindLimits();
  return m_isSet ? K7_OK : K7_ERR_PROJECTION_RANGE;
}

void K7MapView::SetNMPerPixel(double nmPerPixel) {
  if (m_isSet && nmPerPixel > 0 && std::isfinite(nmPerPixel)) m_nmPerPixel = nmPerPixel;
}

int K7MapView::Place(double lat, double lon, double zoom) {
  if (!m_projection || Width() <= 0 || Height() <= 0) return K7_ERR_BAD_ARGUMENT;
  if (!(std::fabs(lat) <= 90 && std::fabs(lon) <= MAX_LON)) return K7_ERR_BAD_ARGUMENT;
  if (!(std::fabs(m_turn) <= MAX_TURN)) return K7_ERR_BAD_ARGUMENT;
  m_lat = lat;
  m_lon = lon;
  return HasPicture(*m_projection) && SetZoom(zoom) ? K7_OK : K7_ERR_PROJECTION_RANGE;
}

bool K7MapView::SetZoom(double zoom) {
  if (!(zoom > 0) || !std::isfinite(zoom)) return false;
  VolumeTaker taker(m_lookAt, m_volume, m_parallel);
  if (!m_projection->SetupMatrix(&taker, Width() / 2, Height() / 2, Width(), Height()) ||
      !m_projection->CenterOn(&taker, m_lat, m_lon)) {
    return false;
  }
  // A camera that sees the globe from within has left and right changed.
  if (m_turn != 0) TurnCamera(m_lookAt, m_volume[0] < m_volume[1] ? m_turn : -m_turn);
  m_zoom = zoom;
  m_camera.SetZoom(zoom);
  m_isSet = true;
  SetUp(&m_camera);
  m_isSet = false;
  return true;
}

void K7MapView::SetUp(K7Grfx* g) const {
  if (!g || !m_isSet) return;
  // What this view magnifies and the context does not is taken from the volume's width and height.
  const double k = g->GetZoom() / m_zoom;
  const double* const v = m_volume;
  g->LookAt(m_lookAt, m_lookAt + 3, m_lookAt + 6);
  if (m_parallel)
    g->Ortho(v[0] * k, v[1] * k, v[2] * k, v[3] * k, v[4], v[5]);
  else
    g->Frustum(v[0] * k, v[1] * k, v[2] * k, v[3] * k, v[4], v[5]);
}

bool K7MapView::IsTilted() const {
  static const int PITCH = 3;
  return m_projection && m_projection->Type() == K7_PROJ_PERSPECTIVE &&
         m_projection->ParamValue(PITCH) != -90;
}

bool K7MapView::OnMap(double lat, double lon) const {
  if (IsGlobe()) return m_cap.axis.DotProduct(K7ECEF(lat, lon)) >= m_cap.cosRadius;
  return lat >= m_map.south && lat <= m_map.north;
}

bool K7MapView::ToDevice(double lat, double lon, double& dx, double& dy) const {
  // A flat map repeats: the place is meant that lies on this side of the seam.
  const double middle = (m_map.west + m_map.east) / 2;
  if (m_isSet && !IsGlobe()) lon = middle + std::remainder(lon - middle, 360);
  double x, y, z, hx, hy, hw;
  if (!m_projection) return false;
  m_projection->LatLon2World(lat, lon, x, y, z);
  m_camera.Project(x, y, z, hx, hy, hw);
  // Not so behind the eye, and where a map runs out to infinity.
  if (!(hw > 0) || !std::isfinite(hx + hy)) return false;
  dx = hx / hw;
  dy = hy / hw;
  return m_isSet && OnMap(lat, lon) && dx >= 0 && dx <= Width() && dy >= 0 && dy <= Height();
}

bool K7MapView::FromDevice(double dx, double dy, double& lat, double& lon) const {
  return m_isSet && Pick(dx, dy, lat, lon);
}

bool K7MapView::Pick(double dx, double dy, double& lat, double& lon) const {
  return m_projection->Device2LatLon(dx, dy, &m_camera, Width(), Height(), lat, lon);
}

// Device vectors of a small step to the north and to the east, per nautical mile.
bool K7MapView::LocalFrame(double lat, double lon, double (&north)[2], double (&east)[2]) const {
  static const double STEP = 0.001;  // degrees: seen from afar still many times the rounding
  if (!m_isSet || !(std::fabs(lat) < 90 - STEP) || !OnMap(lat, lon)) return false;
  const double wide = STEP / std::cos(lat * K7_DEG_TO_RAD);
  const double length = 2 * STEP * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM;
  double a[2] = {NAN, NAN}, b[2] = {NAN, NAN}, c[2] = {NAN, NAN}, d[2] = {NAN, NAN};
  ToDevice(lat - STEP, lon, a[0], a[1]);
  ToDevice(lat + STEP, lon, b[0], b[1]);
  ToDevice(lat, lon - wide, c[0], c[1]);
  ToDevice(lat, lon + wide, d[0], d[1]);
  for (int i = 0; i < 2; ++i) {
    north[i] = (b[i] - a[i]) / length;
    east[i] = (d[i] - c[i]) / length;
  }
  return std::isfinite(north[0] + east[0]);
}

bool K7MapView::Scale(double lat, double lon, double& north, double& east) const {
  double toNorth[2], toEast[2];
  if (!LocalFrame(lat, lon, toNorth, toEast)) return false;
  const double n = 1 / std::hypot(toNorth[0], toNorth[1]);
  const double e = 1 / std::hypot(toEast[0], toEast[1]);
  if (!std::isfinite(n) || !std::isfinite(e)) return false;
  north = n;
  east = e;
  return true;
}

bool K7MapView::TrueNorth(double lat, double lon, double& angle) const {
  double toNorth[2], toEast[2];
  if (!LocalFrame(lat, lon, toNorth, toEast) || (toNorth[0] == 0 && toNorth[1] == 0)) return false;
  angle = std::atan2(toNorth[0], -toNorth[1]) * K7_RAD_TO_DEG;
  return true;
}

// Of flat maps measured over a good part of the range: an equal-area cone has no scale of its own at its
// pole. The globe's is taken close to the centre: a low eye sees what is far off at another scale.
double K7MapView::PixelsPerNM(double range) const {
  static const double CLOSE_BY = 0.01;
  const double length = IsGlobe() ? CLOSE_BY : std::clamp(range / 4, 1.0, 300.0);
  const double reach = length / (K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM);
  const double north = std::min(m_lat + reach, 90.0);
  const double south = std::max(m_lat - reach, -90.0);
  double ax = NAN, ay = NAN, bx = NAN, by = NAN;
  ToDevice(north, m_lon, ax, ay);
  ToDevice(south, m_lon, bx, by);
  return std::hypot(ax - bx, ay - by) / ((north - south) * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM);
}

// Across the picture at the lowest pixel of its middle column that shows ground: below a level eye there is
// no centre to be seen.
double K7MapView::NearestNMPerPixel() const {
  static const int STEPS = 64;
  for (int i = STEPS; i >= 0; --i) {
    const double dy = Height() * 1.0 * i / STEPS;
    double aLat, aLon, bLat, bLon;
    if (Pick(Width() / 2.0, dy, aLat, aLon) && Pick(Width() / 2.0 + 1, dy, bLat, bLon))
      return K7LatLon(aLat, aLon).Distance(K7LatLon(bLat, bLon));
  }
  return NAN;
}

// The outline of what a view of the whole world shows, as far as it lies before the eye.
template <class Visit>
void K7MapView::VisitOutline(Visit visit) const {
  const MapLimits limits = LimitsOf(*m_projection);
  const auto at = [&](double lat, double lon) {
    double dx = NAN, dy = NAN;
    ToDevice(lat, lon, dx, dy);
    if (std::isfinite(dx) && std::isfinite(dy)) visit(dx, dy);
  };
  if (IsGlobe()) {
    const double distance = limits.worldAngle * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM;
    for (int course = 0; course < 360; course += 2) {
      K7LatLon limb;
      limb.EndPoint(K7LatLon(m_lat, m_lon), course, distance);
      at(limb.Lat(), limb.Lon());
    }
    return;
  }
  const double middle = MiddleMeridian(*m_projection, m_lon);
  for (int i = -90; i <= 90; ++i) {
    const double lat = limits.worldSouth + (limits.worldNorth - limits.worldSouth) * (i + 90) / 180;
    const double lon = middle + HALF_WORLD * i / 90;
    at(limits.worldSouth, lon);
    at(limits.worldNorth, lon);
    at(lat, middle - HALF_WORLD);
    at(lat, middle + HALF_WORLD);
  }
}

// Moves the centre along its meridian to the middle of the map, so that a world map fills its window.
bool K7MapView::CenterMap() {
  const double turn = std::exchange(m_turn, 0);
  if (turn != 0) SetZoom(1);
  double top = INFINITY;
  double bottom = -INFINITY;
  VisitOutline([&](double, double dy) {
    top = std::min(top, dy);
    bottom = std::max(bottom, dy);
  });
  double lat, lon;
  // Whole millionths: the equator is to be the equator.
  if (Pick(Width() / 2.0, (top + bottom) / 2, lat, lon)) m_lat = std::round(lat * 1e6) / 1e6;
  m_turn = turn;
  return SetZoom(1);
}

// At zoom 1: how much larger the picture may be until the outline of the world meets the window.
double K7MapView::ZoomToFit() const {
  static const double MARGIN = 0.97;
  const double halfWidth = Width() / 2.0;
  const double halfHeight = Height() / 2.0;
  double zoom = INFINITY;
  VisitOutline([&](double dx, double dy) {
    const double x = std::fabs(dx - halfWidth);
    const double y = std::fabs(dy - halfHeight);
    if (x > 0) zoom = std::min(zoom, halfWidth / x);
    if (y > 0) zoom = std::min(zoom, halfHeight / y);
  });
  return zoom * MARGIN;
}

K7Projection* K7MapView::CreateProjection(K7ProjType type, double lat, double lon, double range, int* error) {
  if (type != K7_PROJ_LAMBERT && type != K7_PROJ_ALBERS) return K7Projection::Create(type, error);
  // Never through both sides of the equator alike, where it would be no cone. A cone for the whole world
  // keeps to middle latitudes.
  const bool world = !(range > 0);
  const double half = world ? 30 : std::min(range / 60, 45.0);
  const double middle =
      world ? std::clamp(std::fabs(lat), 30.0, 40.0) : std::clamp(std::fabs(lat), 3.0, 87.0);
  const double spread = std::clamp(half * 2 / 3, 0.1, std::min(middle - 1, 89 - middle));
  const double side = lat < 0 ? -1 : 1;
  const double meridian = std::remainder(lon, 360);
  const double outer = side * (middle + spread);
  const double inner = side * (middle - spread);
  K7Projection* made = nullptr;
  if (type == K7_PROJ_LAMBERT)
    made = new (std::nothrow) K7LambertProjection(outer, inner, meridian, lat);
  else
    made = new (std::nothrow) K7AlbersProjection(outer, inner, meridian, lat);
  if (!made && error) *error = K7_ERR_MEMORY;
  return made;
}

#include <k7/projection/azimuthal.h>

#include <k7/geodesy/constants.h>
#include <k7/geodesy/ecef.h>
#include <k7/projection/grfx.h>

#include "projection/owned.h"

#include <cmath>
#include <new>

namespace {

constexpr double FEET_PER_METRE = 3.2808399;
constexpr double GLOBE_WIDTH = 2.0;
// The look-at point of an oblique camera stands this arc ahead of the centre point.
constexpr double LOOK_AHEAD = 0.17453292519943295;  // 10 degrees

double Sin(double degrees) { return std::sin(degrees * K7_DEG_TO_RAD); }
double Cos(double degrees) { return std::cos(degrees * K7_DEG_TO_RAD); }

void LookAt(K7Grfx& g, const K7ECEF& eye, const K7ECEF& centre, const K7ECEF& up) {
  const double eyeXyz[3] = {eye.X(), eye.Y(), eye.Z()};
  const double centreXyz[3] = {centre.X(), centre.Y(), centre.Z()};
  const double upXyz[3] = {up.X(), up.Y(), up.Z()};
  g.LookAt(eyeXyz, centreXyz, upXyz);
}

// Depth value, [0, 1] between the clip distances, of what lies `distance` in front of a perspective camera.
// The volume's matrix takes it to ((f + n) - 2 f n / distance) / (f - n) within [-1, 1] (OpenGL 2.1,
// section 2.11.2, the third row of Frustum), and the depth range to half of that and a half (section 2.11.1).
double PerspectiveDepth(double distance, double nearClip, double farClip) {
  return ((farClip + nearClip) - 2 * farClip * nearClip / distance) / ((farClip - nearClip) * 2) + 0.5;
}

bool UnProjectAt(K7Grfx& g, double dx, double dy, double depth, double& x, double& y, double& z) {
  return std::isfinite(depth) && g.UnProject(dx, dy, depth, x, y, z);
}

}  // namespace

// The unit vector of a position, and back: the latitude's sine is z, the longitude the angle of (x, y).
bool K7AzimuthalProjection::LatLon2World(double lat, double lon, double& x, double& y, double& z) const {
  const double phi = lat * K7_DEG_TO_RAD;
  const double lambda = lon * K7_DEG_TO_RAD;
  const double cosPhi = std::cos(phi);
  x = cosPhi * std::cos(lambda);
  y = cosPhi * std::sin(lambda);
  z = std::sin(phi);
  return true;
}

bool K7AzimuthalProjection::World2LatLon(double x, double y, double z, double& lat, double& lon) const {
  const double length = std::sqrt(x * x + y * y + z * z);
  if (length == 0.0) return false;
  lat = std::asin(z / length) * K7_RAD_TO_DEG;
  lon = std::atan2(y / length, x / length) * K7_RAD_TO_DEG;
  return true;
}

// East is the derivative of the unit vector by the longitude; it has length 1 at the poles too, where the
// longitude decides which way is up.
bool K7AzimuthalProjection::CenterOn(K7Grfx* g, double lat, double lon) const {
  double x, y, z;
  if (!g || !LatLon2World(lat, lon, x, y, z)) return false;
  const K7ECEF centre(x, y, z);
  const K7ECEF east(Cos(lon + 90.0), Sin(lon + 90.0), 0.0);
  K7ECEF north;
  north.CrossProduct(centre, east);
  LookAt(*g, K7ECEF(m_eyeDistance * x, m_eyeDistance * y, m_eyeDistance * z), centre, north);
  return true;
}

bool K7AzimuthalProjection::IsAzimuthal() const { return true; }

bool K7AzimuthalProjection::SetupInsideView(K7Grfx* g, int width, int height) const {
  if (!g || width == 0 || height == 0) return false;
  const double aspect = static_cast<double>(height) / width;
  g->Frustum(1.0, -1.0, -aspect, aspect, m_near, m_far);
  return true;
}

K7Projection* K7OrthographicProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7OrthographicProjection(*this), error);
}

const char* K7OrthographicProjection::Name() const { return "Orthographic"; }

// Half the window's width is the globe's radius, and parallel rays keep the distance from the axis: rho = sin
// c for the arc c from the centre (Snyder, chapter 20, sphere, inverse). So the surface lies at d - cos c = d
// - sqrt(1 - rho^2) along the camera's axis, in which parallel depth is linear.
bool K7OrthographicProjection::Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x,
                                            double& y, double& z) const {
  if (!g) return false;
  const double r = std::hypot(dx - width * 0.5, dy - height * 0.5);
  const double rho = r / (g->GetZoom() * width * 0.5);
  if (rho > 1.0) return false;
  const double depth = ((m_eyeDistance - std::sqrt(1 - rho * rho)) - m_near) / (m_far - m_near);
  return UnProjectAt(*g, dx, dy, depth, x, y, z);
}

bool K7OrthographicProjection::SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const {
  if (!g || width == 0 || height == 0) return false;
  const double worldHeight = GLOBE_WIDTH * height / width;
  // Subtracted, because the least int has no negative.
  const double left = (0.0 - x) * GLOBE_WIDTH / width;
  const double bottom = (0.0 - y) * worldHeight / height;
  g->Ortho(left, left + GLOBE_WIDTH, bottom, bottom + worldHeight, m_near, m_far);
  return true;
}

K7Projection* K7StereographicProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7StereographicProjection(*this), error);
}

const char* K7StereographicProjection::Name() const { return "Stereographic"; }

// Half the window's width spans far / near = 2 on the far plane, which touches the globe at the centre: rho
// is half of the distance there, the tangent of the angle at the eye. That angle stands on the globe itself
// and is half the arc's at its centre: c = 2 atan(rho) (Snyder, chapter 21, sphere, inverse, whose rho is
// twice this one). The surface lies at 1 + cos c along the axis.
bool K7StereographicProjection::Device2World(double dx, double dy, K7Grfx* g, int width, int height,
                                             double& x, double& y, double& z) const {
  if (!g) return false;
  const double r = std::hypot(dx - width * 0.5, dy - height * 0.5);
  const double rho = r / (g->GetZoom() * width * m_near / m_far);
  const double alpha = 2 * std::atan(rho);
  return UnProjectAt(*g, dx, dy, PerspectiveDepth(std::cos(alpha) + 1, m_near, m_far), x, y, z);
}

bool K7StereographicProjection::SetupMatrix(K7Grfx* g, int, int, int width, int height) const {
  return SetupInsideView(g, width, height);
}

K7Projection* K7GnomonicProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7GnomonicProjection(*this), error);
}

const char* K7GnomonicProjection::Name() const { return "Gnomonic"; }

// From the earth's centre the angle at the eye is the arc: c = atan(rho), where rho is the distance on the
// plane that touches the globe (Snyder, chapter 22, sphere, inverse), and the surface lies at cos c along the
// axis. Here rho is the distance on the far plane, 1.1 times that: away from the centre c comes out too
// large.
bool K7GnomonicProjection::Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x,
                                        double& y, double& z) const {
  if (!g) return false;
  // The centre in whole pixels: stored picks depend on it.
  const int centreX = width / 2;
  const int centreY = height / 2;
  const double r = std::hypot(dx - centreX, dy - centreY);
  const double rho = r / (g->GetZoom() * width * 0.5 * m_near / m_far);
  const double alpha = std::atan(rho);
  return UnProjectAt(*g, dx, dy, PerspectiveDepth(std::cos(alpha), m_near, m_far), x, y, z);
}

bool K7GnomonicProjection::SetupMatrix(K7Grfx* g, int, int, int width, int height) const {
  return SetupInsideView(g, width, height);
}

K7PerspectiveProjection::K7PerspectiveProjection(double magnification)
    : K7AzimuthalProjection(K7_PROJ_PERSPECTIVE, magnification, 0.0, 0.0) {
  SetClipPlanes();
}

K7Projection* K7PerspectiveProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7PerspectiveProjection(*this), error);
}

const char* K7PerspectiveProjection::Name() const { return "General Perspective"; }

int K7PerspectiveProjection::ParamCount() const { return 5; }

const char* K7PerspectiveProjection::ParamName(int index) const {
  static constexpr const char* NAMES[] = {"Altitude (ft)", "Heading", "Bank", "Pitch",
                                          "Field of View Y (degs)"};
  return index >= 0 && index < 5 ? NAMES[index] : nullptr;
}

void K7PerspectiveProjection::ParamValue(int index, double value) {
  switch (index) {
    case 0:
      m_eyeDistance = Alt2Mag(value);
      SetClipPlanes();
      break;
    case 1:
      m_heading = value;
      break;
    case 2:
      m_bank = value;
      break;
    case 3:
      m_pitch = value;
      break;
    case 4:
      m_fieldOfView = value;
      break;
    default:
      break;
  }
}

double K7PerspectiveProjection::ParamValue(int index) const {
  switch (index) {
    case 0:
      return Mag2Alt(m_eyeDistance);
    case 1:
      return m_heading;
    case 2:
      return m_bank;
    case 3:
      return m_pitch;
    case 4:
      return m_fieldOfView;
    default:
      return 0.0;
  }
}

// An eye at m sees the globe under the angle e from its axis at the distance t with t^2 - 2 m cos(e) t + m^2
// - 1 = 0 (law of cosines with the unit radius opposite e; Snyder, chapter 23, has the same view as a plane's
// coordinates): the nearer root, t cos(e) along the axis. tan(e) is taken as if half the window's width
// spanned far / near = (m + 1) / m at distance 1.
bool K7PerspectiveProjection::Device2World(double dx, double dy, K7Grfx* g, int width, int height, double& x,
                                           double& y, double& z) const {
  if (!g) return false;
  const double m = m_eyeDistance;
  const int centreX = width / 2;  // in whole pixels, as the gnomonic one
  const int centreY = height / 2;
  const double r = std::hypot(dx - centreX, dy - centreY);
  const double rho = r / (g->GetZoom() * width * 0.5 * m_near / m_far);
  const double c = std::cos(std::atan(rho));
  const double b = -2 * m * c;
  const double discriminant = b * b - 4 * (m * m - 1);
  if (discriminant < 0.0) return false;
  const double t = (-b - std::sqrt(discriminant)) / 2;
  return UnProjectAt(*g, dx, dy, PerspectiveDepth(t * c, m_near, m_far), x, y, z);
}

bool K7PerspectiveProjection::SetupMatrix(K7Grfx* g, int, int, int width, int height) const {
  if (!g || width == 0 || height == 0) return false;
  const double top = std::tan(m_fieldOfView * K7_DEG_TO_RAD) * m_near;
  const double right = top * (static_cast<double>(width) / height);
  if (!std::isfinite(right) || !std::isfinite(m_far)) return false;
  g->Frustum(-right, right, -top, top, m_near, m_far);
  return true;
}

bool K7PerspectiveProjection::CenterOn(K7Grfx* g, double lat, double lon) const {
  if (m_pitch == -90.0) return K7AzimuthalProjection::CenterOn(g, lat, lon);
  double x, y, z;
  if (!g || !LatLon2World(lat, lon, x, y, z)) return false;
  const K7ECEF below(x, y, z);
  const double tilt = m_pitch + 90.0;  // of the line of sight from straight down
  const double headingEast = Cos(90.0 - m_heading);
  const double headingNorth = Sin(90.0 - m_heading);

  // Earth's centre, eye and look-at point make a triangle with the angles LOOK_AHEAD, tilt and 80 - pitch:
  // the law of sines gives the look-at point's distance from the earth's centre.
  K7ECEF target(headingEast * std::sin(LOOK_AHEAD), headingNorth * std::sin(LOOK_AHEAD),
                std::cos(LOOK_AHEAD));
  below.OrthoToECEF(target);
  target *= Sin(tilt) * m_eyeDistance / Sin(80.0 - m_pitch);
  if (!std::isfinite(target.Magnitude())) return false;

  // Up is laid out for a level eye: the zenith, moved sideways by the bank. Then it is tipped with the line
  // of sight.
  K7ECEF up = below;
  if (m_bank != 0.0) up.EndPoint(below, m_heading + 90.0, m_bank * (K7_PI / 180.0) * K7_EARTH_RADIUS_NM);
  below.ECEFToOrtho(up);
  const double forward = up.Z() * Cos(tilt);
  up = K7ECEF(up.X() + forward * headingEast, up.Y() + forward * headingNorth, up.Z() * Sin(tilt));
  below.OrthoToECEF(up);

  LookAt(*g, K7ECEF(m_eyeDistance * x, m_eyeDistance * y, m_eyeDistance * z), target, up);
  return true;
}

double K7PerspectiveProjection::ScaleError(double, double) const {
  const double ratio = 3 / (m_eyeDistance - 1);
  return ratio * ratio;
}

// Along a line of sight tilted from straight down, the ground below the eye lies at (m - 1) cos(tilt). The
// horizon is sqrt(m^2 - 1) away, asin(1 / m) from straight down: the right triangle of eye, horizon and
// earth's centre.
void K7PerspectiveProjection::SetClipPlanes() {
  const double m = m_eyeDistance;
  const double tilt = m_pitch + 90.0;
  m_near = Cos(tilt) * (m - 1);
  m_far = Cos(std::asin(1 / m) * K7_RAD_TO_DEG - tilt) * std::sqrt(m * m - 1);
}

double K7PerspectiveProjection::Alt2Mag(double feet) { return feet / K7_EARTH_RADIUS_M / FEET_PER_METRE + 1; }

double K7PerspectiveProjection::Mag2Alt(double magnification) {
  return (magnification - 1) * K7_EARTH_RADIUS_M * FEET_PER_METRE;
}

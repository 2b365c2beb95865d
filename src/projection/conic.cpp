#include <k7/projection/conic.h>

#include <k7/geodesy/constants.h>
#include <k7/projection/grfx.h>

#include "projection/owned.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr double TURN = 6.283185307179586;

// One turn at most: hosts pass longitudes of one map, not of many.
double WrapOnce(double angle) {
  if (angle > K7_PI) return angle - TURN;
  if (angle < -K7_PI) return angle + TURN;
  return angle;
}

}  // namespace

K7ConicProjection::K7ConicProjection(K7ProjType type, double parallel1, double parallel2, double meridian,
                                     double origin)
    : K7Projection(type, -1.0, 1.0),
      m_lambda0(meridian * K7_DEG_TO_RAD),
      m_phi0(origin * K7_DEG_TO_RAD),
      m_phi1(parallel1 * K7_DEG_TO_RAD),
      m_phi2(parallel2 * K7_DEG_TO_RAD) {}

int K7ConicProjection::ParamCount() const { return 2; }

const char* K7ConicProjection::ParamName(int index) const {
  static constexpr const char* NAMES[] = {"Standard Parallel 1", "Standard Parallel 2"};
  return index == 0 || index == 1 ? NAMES[index] : nullptr;
}

double K7ConicProjection::ParamValue(int index) const {
  return (index == 0 ? m_phi1 : m_phi2) * K7_RAD_TO_DEG;
}

void K7ConicProjection::SetParallel(int index, double degrees) {
  (index == 0 ? m_phi1 : m_phi2) = degrees * K7_DEG_TO_RAD;
}

double K7ConicProjection::Lambda2Theta(double lambda) const { return m_n * WrapOnce(lambda - m_lambda0); }
double K7ConicProjection::Theta2Lambda(double theta) const { return WrapOnce(theta / m_n + m_lambda0); }

// A cone rolled out: parallels are arcs about the apex with the radius rho, and a turn of longitude is n of a
// turn there, theta = n (lambda - lambda0). Polar coordinates, the origin latitude at y = 0 (Snyder,
// equations 14-1, 14-2 and 14-4).
bool K7ConicProjection::LatLon2World(double lat, double lon, double& x, double& y, double& z) const {
  const double rho = Lat2Rho(lat * K7_DEG_TO_RAD);
  const double theta = Lambda2Theta(lon * K7_DEG_TO_RAD);
  x = rho * std::sin(theta);
  y = m_rho0 - rho * std::cos(theta);
  z = 0.0;
  return true;
}

// Snyder, equations 14-9 to 14-11. The radius has the cone constant's sign: a southern cone opens upwards,
// and both arguments of the arc tangent change theirs.
bool K7ConicProjection::World2LatLon(double x, double y, double, double& lat, double& lon) const {
  const double sign = m_n > 0 ? 1.0 : -1.0;
  const double fromApex = m_rho0 - y;
  const double rho = sign * std::sqrt(x * x + fromApex * fromApex);
  const double theta = std::atan2(sign * x, sign * fromApex);
  lat = Rho2Lat(rho) * K7_RAD_TO_DEG;
  lon = Theta2Lambda(theta) * K7_RAD_TO_DEG;
  return true;
}

bool K7ConicProjection::SetupMatrix(K7Grfx* g, int, int, int width, int height) const {
  if (!g || width == 0 || height == 0) return false;
  const double aspect = static_cast<double>(height) / width;
  g->Ortho(-1.0, 1.0, -aspect, aspect, m_near, m_far);
  return true;
}

bool K7ConicProjection::CenterOn(K7Grfx* g, double lat, double lon) const {
  const double theta = Lambda2Theta(lon * K7_DEG_TO_RAD);
  double x, y, z;
  if (!g || !LatLon2World(lat, lon, x, y, z) || !std::isfinite(x) || !std::isfinite(y)) return false;
  const double eye[3] = {x, y, 1.0};
  const double centre[3] = {x, y, 0.0};
  const double up[3] = {std::sin(-theta), std::cos(-theta), 0.0};
  g->LookAt(eye, centre, up);
  return true;
}

bool K7ConicProjection::IsConic() const { return true; }

K7LambertProjection::K7LambertProjection(double parallel1, double parallel2, double meridian, double origin)
    : K7ConicProjection(K7_PROJ_LAMBERT, parallel1, parallel2, meridian, origin) {
  ComputeCone();
}

K7Projection* K7LambertProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow)
                          K7LambertProjection(m_phi1 * K7_RAD_TO_DEG, m_phi2 * K7_RAD_TO_DEG,
                                              m_lambda0 * K7_RAD_TO_DEG, m_phi0 * K7_RAD_TO_DEG),
                      error);
}

const char* K7LambertProjection::Name() const { return "Lambert Conformal"; }

void K7LambertProjection::ParamValue(int index, double value) {
  SetParallel(index, value);
  ComputeCone();
}

// Both standard parallels keep their length: n rho = cos(phi) at each. With rho = F / tan^n (see Lat2Rho) the
// quotient of the two gives n and either of them F (Snyder, equations 15-3 and 15-2; on the ellipsoid, with m
// for the cosine and t for the tangent of half the colatitude, 15-8 and 15-10).
void K7LambertProjection::ComputeCone() {
  if (m_ellipsoidal) {
    m_n = (std::log(m(m_phi1)) - std::log(m(m_phi2))) / (std::log(t(m_phi1)) - std::log(t(m_phi2)));
    m_scale = m(m_phi1) / (m_n * std::pow(t(m_phi1), m_n));
  } else {
    const double tan1 = std::tan(K7_PI / 4 + m_phi1 / 2);
    m_n = std::log(std::cos(m_phi1) / std::cos(m_phi2)) / std::log(std::tan(K7_PI / 4 + m_phi2 / 2) / tan1);
    m_scale = std::cos(m_phi1) * std::pow(tan1, m_n) / m_n;
  }
  m_rho0 = K7LambertProjection::Lat2Rho(m_phi0);
}

// Conformal: -d(rho) / d(phi) = n rho / cos(phi), the scale along the meridian that of the parallel. Its
// integral is rho = F / tan^n(pi / 4 + phi / 2) (Snyder, equation 15-1; on the ellipsoid 15-7).
double K7LambertProjection::Lat2Rho(double phi) const {
  if (m_ellipsoidal) return m_scale * std::pow(t(phi), m_n);
  return m_scale / std::pow(std::tan(K7_PI / 4 + phi / 2), m_n);
}

// 15-1 solved for phi (Snyder, equation 15-5). On the ellipsoid t = (rho / F)^(1 / n) gives the conformal
// latitude chi = pi / 2 - 2 atan(t) (15-11 and 7-13), then the series 3-5 the latitude, nested as UseEllipEqs
// prepares it.
double K7LambertProjection::Rho2Lat(double rho) const {
  if (!m_ellipsoidal) return 2 * std::atan(std::pow(m_scale / rho, 1 / m_n)) - K7_PI / 2;
  const double chi = K7_PI / 2 - 2 * std::atan(std::pow(rho / m_scale, 1 / m_n));
  const double cos2 = std::cos(2 * chi);
  const double* const c = m_series;
  return chi + std::sin(2 * chi) * (((c[3] * cos2 + c[2]) * cos2 + c[1]) * cos2 + c[0]);
}

// The series 3-5 is a sin 2chi + b sin 4chi + c sin 6chi + d sin 8chi. With sin 4chi = 2 sin 2chi cos 2chi
// and so on it becomes sin 2chi times a polynomial of cos 2chi with the coefficients a - c, 2b - 4d, 4c, 8d
// (Snyder, chapter 3, on computing such series).
void K7LambertProjection::UseEllipEqs(double a, double b) {
  m_ellipsoidal = true;
  m_e = std::sqrt(1 - b * b / (a * a));
  const double e2 = m_e * m_e;
  const double e4 = e2 * e2;
  const double e6 = e4 * e2;
  const double e8 = e4 * e4;
  const double sin6 = 7 * e6 / 120 + 81 * e8 / 1120;
  const double sin8 = 4279 * e8 / 161280;
  m_series[0] = e2 / 2 + 5 * e4 / 24 + e6 / 12 + 13 * e8 / 360 - sin6;
  m_series[1] = 2 * (7 * e4 / 48 + 29 * e6 / 240 + 811 * e8 / 11520) - 4 * sin8;
  m_series[2] = 4 * sin6;
  m_series[3] = 8 * sin8;
  ComputeCone();
}

// The radius of a parallel on the ellipsoid in semi-major axes (Snyder, equation 14-15).
double K7LambertProjection::m(double phi) const {
  const double sine = std::sin(phi);
  return std::cos(phi) / std::sqrt(1 - m_e * m_e * (sine * sine));
}

// tan(pi / 4 - chi / 2) of the conformal latitude chi; (1 - sin) / (1 + sin) is the square of the sphere's
// tan(pi / 4 - phi / 2) (Snyder, equation 15-9a).
double K7LambertProjection::t(double phi) const {
  const double sine = std::sin(phi);
  const double eSine = m_e * sine;
  return std::sqrt((1 - sine) / (1 + sine) * std::pow((1 + eSine) / (1 - eSine), m_e));
}

K7AlbersProjection::K7AlbersProjection(double parallel1, double parallel2, double meridian, double origin)
    : K7ConicProjection(K7_PROJ_ALBERS, parallel1, parallel2, meridian, origin) {
  ComputeCone();
}

K7Projection* K7AlbersProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow)
                          K7AlbersProjection(m_phi1 * K7_RAD_TO_DEG, m_phi2 * K7_RAD_TO_DEG,
                                             m_lambda0 * K7_RAD_TO_DEG, m_phi0 * K7_RAD_TO_DEG),
                      error);
}

const char* K7AlbersProjection::Name() const { return "Albers Equal-Area"; }

void K7AlbersProjection::ParamValue(int index, double value) {
  SetParallel(index, value);
  ComputeCone();
}

// Equal areas: n rho d(rho) = -cos(phi) d(phi), so (n rho)^2 = C - 2 n sin(phi); true lengths at both
// standard parallels give n and C (Snyder, equations 14-6 and 14-5).
void K7AlbersProjection::ComputeCone() {
  const double sin1 = std::sin(m_phi1);
  const double cos1 = std::cos(m_phi1);
  m_n = (sin1 + std::sin(m_phi2)) / 2;
  m_scale = cos1 * cos1 + 2 * m_n * sin1;
  m_rho0 = K7AlbersProjection::Lat2Rho(m_phi0);
}

// The equal-area radius that ComputeCone derives (Snyder, equation 14-3).
double K7AlbersProjection::Lat2Rho(double phi) const {
  // Never below 0 but by rounding: at a pole that is a standard parallel.
  const double square = m_scale - 2 * m_n * std::sin(phi);
  return std::sqrt(std::max(square, 0.0)) / m_n;
}

// 14-3 solved for sin(phi) (Snyder, equation 14-8).
double K7AlbersProjection::Rho2Lat(double rho) const {
  const double sine = (m_scale - rho * rho * (m_n * m_n)) / (2 * m_n);
  // Rounding may carry the poles, not more, just beyond 1.
  constexpr double LARGEST = 1 + 1e-14;
  return std::asin(std::fabs(sine) <= LARGEST ? std::clamp(sine, -1.0, 1.0) : sine);
}

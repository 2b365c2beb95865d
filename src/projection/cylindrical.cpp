#include <k7/projection/cylindrical.h>

#include <k7/geodesy/constants.h>
#include <k7/projection/grfx.h>

#include "projection/owned.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr double R = K7_EARTH_RADIUS_M;
constexpr double WORLD_WIDTH = 12756274.0;  // metres across the window at unit zoom: two radii

constexpr double MERCATOR_LIMIT = 1.5706217938696971;  // 89.99 degrees
constexpr double MILLER_OFFSET = 1.9634954084936207;   // 5 pi / 8
constexpr double INVERSE_LIMIT = 89.0;                 // degrees

}  // namespace

bool K7CylindricalProjection::SetupMatrix(K7Grfx* g, int x, int y, int width, int height) const {
  if (!g || width == 0 || height == 0) return false;
  const double worldHeight = WORLD_WIDTH * height / width;
  // Subtracted, because the least int has no negative.
  const double left = (0.0 - x) * WORLD_WIDTH / width;
  const double bottom = (0.0 - y) * worldHeight / height;
  g->Ortho(left, left + WORLD_WIDTH, bottom, bottom + worldHeight, m_near, m_far);
  return true;
}

bool K7CylindricalProjection::CenterOn(K7Grfx* g, double lat, double lon) const {
  double x, y, z;
  if (!g || !LatLon2World(lat, lon, x, y, z)) return false;
  const double eye[3] = {x, y, 1.0};
  const double centre[3] = {x, y, 0.0};
  const double up[3] = {0.0, 1.0, 0.0};
  g->LookAt(eye, centre, up);
  return true;
}

bool K7CylindricalProjection::IsCylindrical() const { return true; }

K7Projection* K7MercatorProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7MercatorProjection(*this), error);
}

const char* K7MercatorProjection::Name() const { return "Mercator"; }

// Conformal: dy / d(phi) = R / cos(phi), as the parallels are drawn longer by 1 / cos(phi). Its integral is
// y = R log tan(pi / 4 + phi / 2) (Snyder, equations 7-1 and 7-2).
bool K7MercatorProjection::LatLon2World(double lat, double lon, double& x, double& y, double& z) const {
  const double phi = std::clamp(lat * K7_DEG_TO_RAD, -MERCATOR_LIMIT, MERCATOR_LIMIT);
  x = lon * K7_DEG_TO_RAD * R;
  y = std::log(std::tan(phi / 2 + K7_PI / 4)) * R;
  z = 0.0;
  return lat > -90.0 && lat < 90.0;
}

// 7-1 and 7-2 solved: tan(pi / 4 - phi / 2) = exp(-y / R) (Snyder, equations 7-4 and 7-5).
bool K7MercatorProjection::World2LatLon(double x, double y, double, double& lat, double& lon) const {
  lat = (K7_PI / 2 - 2 * std::atan(std::exp(-y / R))) * K7_RAD_TO_DEG;
  lon = x / R * K7_RAD_TO_DEG;
  return std::fabs(lat) <= INVERSE_LIMIT;
}

double K7MercatorProjection::ScaleError(double lat, double) const { return std::cos(lat * K7_DEG_TO_RAD); }

K7Projection* K7MillerProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7MillerProjection(*this), error);
}

const char* K7MillerProjection::Name() const { return "Miller"; }

// Mercator's y of 0.8 phi, divided by 0.8, so that the scales still agree at the equator: d(0.8 phi) / 0.8 =
// d(phi) there (Snyder, chapter 11, forward).
bool K7MillerProjection::LatLon2World(double lat, double lon, double& x, double& y, double& z) const {
  x = lon * K7_DEG_TO_RAD * R;
  y = std::log(std::tan(0.4 * (lat * K7_DEG_TO_RAD) + K7_PI / 4)) / 0.8 * R;
  z = 0.0;
  return lat >= -90.0 && lat <= 90.0;
}

// The same solved for phi: pi / 4 + 0.4 phi = atan(exp(0.8 y / R)), times 2.5 (Snyder, chapter 11, inverse).
bool K7MillerProjection::World2LatLon(double x, double y, double, double& lat, double& lon) const {
  lat = (2.5 * std::atan(std::exp(0.8 * y / R)) - MILLER_OFFSET) * K7_RAD_TO_DEG;
  lon = x / R * K7_RAD_TO_DEG;
  return std::fabs(lat) <= INVERSE_LIMIT;
}

K7RectangularProjection::K7RectangularProjection(double standardParallel)
    : K7CylindricalProjection(K7_PROJ_RECTANGULAR) {
  K7RectangularProjection::ParamValue(0, standardParallel);
}

K7Projection* K7RectangularProjection::Clone(int* error) const {
  return OwnedOrError(new (std::nothrow) K7RectangularProjection(m_standardParallel), error);
}

const char* K7RectangularProjection::Name() const { return "Rectangular"; }

int K7RectangularProjection::ParamCount() const { return 1; }
const char* K7RectangularProjection::ParamName(int) const { return "Standard Parallel"; }

void K7RectangularProjection::ParamValue(int, double value) {
  m_standardParallel = value;
  m_stretch = 1.0 / std::cos(m_standardParallel * K7_DEG_TO_RAD);
}

double K7RectangularProjection::ParamValue(int) const { return m_standardParallel; }

// x = R lambda cos(parallel) and y = R phi (Snyder, equations 12-1 and 12-2), both divided by the cosine: one
// factor for the whole map.
bool K7RectangularProjection::LatLon2World(double lat, double lon, double& x, double& y, double& z) const {
  x = lon * K7_DEG_TO_RAD * R;
  y = lat * K7_DEG_TO_RAD * m_stretch * R;
  z = 0.0;
  return true;
}

// The same solved (Snyder, equations 12-5 and 12-6).
bool K7RectangularProjection::World2LatLon(double x, double y, double, double& lat, double& lon) const {
  lat = y / R / m_stretch * K7_RAD_TO_DEG;
  lon = x / R * K7_RAD_TO_DEG;
  return true;
}

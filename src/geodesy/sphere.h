// The formulas of the sphere that K7LatLon and K7ECEF share.
#pragma once

#include <k7/geodesy/constants.h>
#include <k7/geodesy/ecef.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace k7geo {

/// The unit vector of a position: x towards latitude 0 longitude 0, z towards the north pole.
inline K7ECEF UnitVector(double lat, double lon) {
  const double phi = lat * K7_DEG_TO_RAD;
  const double lambda = lon * K7_DEG_TO_RAD;
  const double cosPhi = std::cos(phi);
  return K7ECEF(cosPhi * std::cos(lambda), cosPhi * std::sin(lambda), std::sin(phi));
}

/// The sine of a latitude, which rounding may carry just beyond 1 at a pole, to degrees. Not a number stays
/// that.
inline double Latitude(double z) { return std::asin(std::clamp(z, -1.0, 1.0)) * K7_RAD_TO_DEG; }

/// Angle between unit vectors, radians. P . Q is its cosine (Snyder, equation 5-3) and |P x Q| its sine; the
/// one that changes faster with the angle is taken, so that neither short nor nearly antipodal ways lose
/// digits.
inline double Angle(const K7ECEF& p, const K7ECEF& q) {
  const double k = p.DotProduct(q);
  if (std::fabs(k) < K7_SMALL_ANGLE_COS) return std::acos(k);
  K7ECEF cross;
  cross.CrossProduct(p, q);
  const double angle = std::asin(cross.Magnitude());
  return k >= 0 ? angle : K7_PI - angle;
}

inline double Distance(const K7ECEF& p, const K7ECEF& q) { return Angle(p, q) * K7_EARTH_RADIUS_NM; }

/// The point of a great circle, given by its unit normal, that is nearest to `p`: normal x (p x normal), `p`
/// without its part along the normal, of length 1.
inline K7ECEF Foot(const K7ECEF& p, const K7ECEF& normal) {
  K7ECEF pole, foot;
  pole.UnitNormal(p, normal);
  foot.CrossProduct(normal, pole);
  return foot;
}

/// Two names of one position: 180 east and west, any two longitudes of a pole. Rounding would leave a course
/// of noise between some of them.
inline bool Identical(const K7ECEF& p, const K7ECEF& q) {
  constexpr double ROUNDING = 4 * std::numeric_limits<double>::epsilon();
  return std::fabs(p.X() - q.X()) <= ROUNDING && std::fabs(p.Y() - q.Y()) <= ROUNDING &&
         std::fabs(p.Z() - q.Z()) <= ROUNDING;
}

/// Course from its east and north components, [0, 360). Components of exactly zero give no course, which has
/// 360 added like any negative angle.
inline double Course(double east, double north) {
  if (east == 0 && north == 0) return K7_NO_COURSE + 360;
  const double course = std::atan2(east, north) * K7_RAD_TO_DEG;
  const double turned = course < 0 ? course + 360 : course;
  // A hair west of north rounds up to 360.
  return turned == 360 ? 0 : turned;
}

/// The east-north-up frame at a point: the earth's axes turned about z by the longitude, then tipped by the
/// latitude. East is (-sin lon, cos lon, 0), up the point itself, north up x east.
struct LocalFrame {
  explicit LocalFrame(const K7ECEF& p)
      : r(std::sqrt(p.X() * p.X() + p.Y() * p.Y())), cosLon(p.X() / r), sinLon(p.Y() / r), z(p.Z()) {}

  K7ECEF ToOrtho(const K7ECEF& v) const {
    const double h = v.X() * cosLon + v.Y() * sinLon;
    return K7ECEF(-v.X() * sinLon + v.Y() * cosLon, v.Z() * r - h * z, v.Z() * z + h * r);
  }
  K7ECEF ToEarth(const K7ECEF& v) const {
    const double w = v.Y() * z - v.Z() * r;
    return K7ECEF(-v.X() * sinLon - w * cosLon, v.X() * cosLon - w * sinLon, v.Z() * z + v.Y() * r);
  }

  double r;  // cosine of the latitude
  double cosLon;
  double sinLon;
  double z;  // sine of the latitude
};

/// In the start's local frame, the point at the arc delta = distance / radius in the direction of the course
/// is (sin course sin delta, cos course sin delta, cos delta): Snyder's equations 5-5 and 5-6 as a vector.
inline K7ECEF EndPoint(const K7ECEF& start, double course, double distance) {
  const double delta = distance / K7_EARTH_RADIUS_NM;
  const double psi = (90 - course) * K7_DEG_TO_RAD;
  const double sinDelta = std::sin(delta);
  return LocalFrame(start).ToEarth(
      K7ECEF(std::cos(psi) * sinDelta, std::sin(psi) * sinDelta, std::cos(delta)));
}

/// Course of arrival from the course of the way back.
inline double Arrival(double wayBack) { return NormalizeHeading(wayBack + 180); }

}  // namespace k7geo

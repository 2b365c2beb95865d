// K7ECEF: earth-centred unit vectors, and the arithmetic of headings.
#pragma once

#include <k7/export.h>

#include <cmath>

/// A vector from the earth's centre, in earth radii: x towards latitude 0 longitude 0, z towards the north
/// pole. As a position it has length 1; the same three numbers also serve as a plain vector (normals, local
/// frames). Distances are nautical miles, angles degrees except where radians are named. No operation guards
/// against vectors without a direction: at a pole, where x and y are exactly 0, there is no local frame and
/// the results are not numbers. A value: copy freely, no locking.
class K7_API K7ECEF {
 public:
  K7ECEF() = default;
  K7ECEF(double x, double y, double z) : m_x(x), m_y(y), m_z(z) {}
  /// Makes the unit vector of a position.
  K7ECEF(double lat, double lon);
  /// Makes the point reached from `start`, as `EndPoint` does.
  K7ECEF(const K7ECEF& start, double course, double distance);

  double X() const { return m_x; }
  double Y() const { return m_y; }
  double Z() const { return m_z; }

  /// \name Positions
  /// @{
  void SetLatLon(double lat, double lon);
  /// Answers a longitude within +-180. Of the length only z matters: it is the sine of the latitude.
  void GetLatLon(double& lat, double& lon) const;

  /// Answers the great-circle distance in nautical miles.
  double Distance(const K7ECEF& to) const;
  /// Answers the same in radians.
  double Angle(const K7ECEF& to) const;
  /// Answers the course on leaving this point towards `to`, [0, 360). It is -639 where there is no course:
  /// between points whose vectors differ by at most 4 epsilon in each component (180 east and west, a pole
  /// and itself), and where both components of the course come out exactly zero.
  double InitCourse(const K7ECEF& to) const;
  /// Moves this to the point reached from `start` on the initial `course` after `distance`.
  void EndPoint(const K7ECEF& start, double course, double distance);
  /// @}

  /// \name Vectors
  /// @{
  /// Sets this to a x b. Either may be this object.
  void CrossProduct(const K7ECEF& a, const K7ECEF& b) {
    *this =
        K7ECEF(a.m_y * b.m_z - a.m_z * b.m_y, a.m_z * b.m_x - a.m_x * b.m_z, a.m_x * b.m_y - a.m_y * b.m_x);
  }
  double DotProduct(const K7ECEF& b) const { return m_x * b.m_x + m_y * b.m_y + m_z * b.m_z; }
  /// Sets this to a x b, normalised. Answers false, and leaves the product as it is, when its length is not
  /// above 0.
  bool UnitNormal(const K7ECEF& a, const K7ECEF& b) {
    CrossProduct(a, b);
    return Normalize();
  }
  double Magnitude() const { return std::sqrt(DotProduct(*this)); }
  /// Divides by the length. Answers false, and changes nothing, when the length is not above 0.
  bool Normalize() {
    const double length = Magnitude();
    if (!(length > 0)) return false;
    *this /= length;
    return true;
  }

  /// Rewrites `v`, given in the earth's frame, as (east, north, up) at this point; and back.
  void ECEFToOrtho(K7ECEF& v) const;
  void OrthoToECEF(K7ECEF& v) const;

  K7ECEF& operator*=(double k) {
    m_x *= k;
    m_y *= k;
    m_z *= k;
    return *this;
  }
  K7ECEF& operator/=(double k) {
    m_x /= k;
    m_y /= k;
    m_z /= k;
    return *this;
  }
  /// Compares exactly, component by component.
  bool operator==(const K7ECEF& b) const { return m_x == b.m_x && m_y == b.m_y && m_z == b.m_z; }
  bool operator!=(const K7ECEF& b) const { return !(*this == b); }
  /// @}

 private:
  double m_x = 0;
  double m_y = 0;
  double m_z = 0;
};

static_assert(sizeof(K7ECEF) == 3 * sizeof(double));

/// \name Headings
/// Degrees.
/// @{
/// Answers the angle between two headings within one turn, [0, 180].
K7_API double HeadingDiff(double a, double b);
/// Answers the heading half-way on the shorter side. The result is not normalised: it may exceed 360.
K7_API double MidHeading(double a, double b);
/// Answers the heading within [0, 360]; 360 itself and its positive multiples give 360. It is not a number
/// for an infinite one.
K7_API double NormalizeHeading(double h);
/// Answers the course on arriving at `to`, [0, 360]; 261 between identical points (see
/// K7LatLon::FinalCourse).
K7_API double FinalCourse(const K7ECEF& from, const K7ECEF& to);
/// @}

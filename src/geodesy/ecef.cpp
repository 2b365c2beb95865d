#include <k7/geodesy/ecef.h>

#include "geodesy/sphere.h"

K7ECEF::K7ECEF(double lat, double lon) : K7ECEF(k7geo::UnitVector(lat, lon)) {}

K7ECEF::K7ECEF(const K7ECEF& start, double course, double distance)
    : K7ECEF(k7geo::EndPoint(start, course, distance)) {}

void K7ECEF::SetLatLon(double lat, double lon) { *this = k7geo::UnitVector(lat, lon); }

void K7ECEF::GetLatLon(double& lat, double& lon) const {
  lat = k7geo::Latitude(m_z);
  lon = std::atan2(m_y, m_x) * K7_RAD_TO_DEG;
}

double K7ECEF::Distance(const K7ECEF& to) const { return k7geo::Distance(*this, to); }

double K7ECEF::Angle(const K7ECEF& to) const { return k7geo::Angle(*this, to); }

// `to` in the local frame of this point: east = E . to and north = N . to with the unit vectors of
// LocalFrame, whose quotient is the tangent of the course (Snyder, equation 5-4b). K7LatLon states it in
// another order.
double K7ECEF::InitCourse(const K7ECEF& to) const {
  if (k7geo::Identical(*this, to)) return k7geo::Course(0, 0);
  const double r = std::sqrt(m_x * m_x + m_y * m_y);
  const double east = (m_x * to.m_y - m_y * to.m_x) / r;
  const double north = to.m_z * r - m_z * (m_x * to.m_x + m_y * to.m_y) / r;
  return k7geo::Course(east, north);
}

void K7ECEF::EndPoint(const K7ECEF& start, double course, double distance) {
  *this = k7geo::EndPoint(start, course, distance);
}

void K7ECEF::ECEFToOrtho(K7ECEF& v) const { v = k7geo::LocalFrame(*this).ToOrtho(v); }

void K7ECEF::OrthoToECEF(K7ECEF& v) const { v = k7geo::LocalFrame(*this).ToEarth(v); }

double HeadingDiff(double a, double b) {
  const double d = std::fabs(a - b);
  return d < 180 ? d : 360 - d;
}

double MidHeading(double a, double b) {
  const double mean = (a + b) / 2;
  return std::fabs(a - b) < 180 ? mean : mean + 180;
}

double NormalizeHeading(double h) {
  if (h >= 0 && h <= 360) return h;
  // The remainder is exact: what adding and subtracting 360 in a loop gives, without the loop.
  const double rest = std::fmod(h, 360);
  if (h > 0) return rest == 0 ? 360 : rest;
  return rest < 0 ? rest + 360 : rest + 0.0;
}

double FinalCourse(const K7ECEF& from, const K7ECEF& to) { return k7geo::Arrival(to.InitCourse(from)); }

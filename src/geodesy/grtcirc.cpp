#include <k7/geodesy/grtcirc.h>

#include "geodesy/sphere.h"

#include <cmath>
#include <limits>

namespace {

// Whether the unit vector `x` of two circles' crossing lies on both segments. Only the other segment has
// tolerance: a path's legs share their ends, and a crossing there must count once.
bool OnBoth(const K7ECEF& x, const K7ECEF& beginA, const K7ECEF& endA, const K7ECEF& normalA,
            const K7ECEF& beginB, const K7ECEF& endB, const K7ECEF& normalB, double tolerance) {
  const auto ahead = [&x](const K7ECEF& p, const K7ECEF& normal) {
    K7ECEF turn;
    turn.CrossProduct(p, x);
    return turn.DotProduct(normal);
  };
  if (!(ahead(beginA, normalA) > 0) || !(ahead(endA, normalA) < 0)) return false;
  const double fromBegin = ahead(beginB, normalB);
  const double fromEnd = ahead(endB, normalB);
  return (fromBegin > 0 || std::fabs(fromBegin) < tolerance) &&
         (fromEnd < 0 || std::fabs(fromEnd) < tolerance);
}

double SineOfArc(const K7ECEF& begin, const K7ECEF& end) {
  K7ECEF normal;
  normal.CrossProduct(begin, end);
  return normal.Magnitude();
}

// Rounding of an arc's ends turns its normal by up to 2 epsilon / sine of the arc. Circles are one where the
// sine of the angle between them is within twice the sum: sine <= 4 epsilon (1 / sineA + 1 / sineB).
bool Crosses(double sine, double sineA, double sineB) {
  return sine * sineA * sineB > 4 * std::numeric_limits<double>::epsilon() * (sineA + sineB);
}

}  // namespace

K7GrtCirc::K7GrtCirc(double lat1, double lon1, double lat2, double lon2) {
  Init(k7geo::UnitVector(lat1, lon1), k7geo::UnitVector(lat2, lon2));
}

void K7GrtCirc::Init(const K7ECEF& b, const K7ECEF& e) {
  // Local copies: the arguments may be this segment's own ends.
  const K7ECEF begin = b;
  const K7ECEF end = e;
  m_begin = begin;
  m_end = end;
  m_normal.UnitNormal(m_begin, m_end);
  m_tangent.CrossProduct(m_normal, m_begin);
  m_length = k7geo::Distance(m_begin, m_end);
}

void K7GrtCirc::Init(const K7LatLon& b, const K7LatLon& e) {
  Init(k7geo::UnitVector(b.Lat(), b.Lon()), k7geo::UnitVector(e.Lat(), e.Lon()));
}

// Two circles cross along the line that lies in both planes: at +-(normal x other normal), of length the sine
// of the angle between them.
bool K7GrtCirc::Intersect(const K7GrtCirc& other, K7ECEF& at, double tolerance) const {
  at.CrossProduct(m_normal, other.m_normal);
  if (!Crosses(at.Magnitude(), SineOfArc(m_begin, m_end), SineOfArc(other.m_begin, other.m_end)))
    return false;
  at.Normalize();
  const auto accepted = [&] {
    return OnBoth(at, m_begin, m_end, m_normal, other.m_begin, other.m_end, other.m_normal, tolerance);
  };
  if (accepted()) return true;
  at *= -1;
  return accepted();
}

bool K7GrtCirc::Intersect(const K7GrtCirc& other, K7LatLon& at, double tolerance) const {
  K7ECEF crossing;
  if (!Intersect(other, crossing, tolerance)) return false;
  double lat, lon;
  crossing.GetLatLon(lat, lon);
  at.Init(lat, lon);
  return true;
}

// Both angles are taken as every distance is, by the cosine or by the sine, so that legs, routes and tiles
// measure alike to the last bit.
void K7GrtCirc::OrthoDist(const K7ECEF& p, double& cross, double& along) const {
  const K7ECEF foot = k7geo::Foot(p, m_normal);
  along = k7geo::Distance(m_begin, foot);
  if (m_tangent.DotProduct(foot) < 0) along = -along;
  cross = k7geo::Distance(p, foot);
  if (m_normal.DotProduct(p) > 0) cross = -cross;
}

void K7GrtCirc::OrthoDist(const K7LatLon& p, double& cross, double& along) const {
  OrthoDist(k7geo::UnitVector(p.Lat(), p.Lon()), cross, along);
}

// Beyond half of a quarter turn the sine hardly changes with the angle: there its cosine tells, |p x normal|.
double K7GrtCirc::CrossTrack(const K7ECEF& p) const {
  const double sine = m_normal.DotProduct(p);
  if (sine == 0) return m_normal == K7ECEF() ? K7_PI / 2 * K7_EARTH_RADIUS_NM : 0;
  if (std::fabs(sine) < K7_SMALL_ANGLE_COS) return -std::asin(sine) * K7_EARTH_RADIUS_NM;
  K7ECEF across;
  across.CrossProduct(p, m_normal);
  return -std::copysign(std::acos(across.Magnitude()), sine) * K7_EARTH_RADIUS_NM;
}

double K7GrtCirc::CrossTrack(const K7LatLon& p) const {
  return CrossTrack(k7geo::UnitVector(p.Lat(), p.Lon()));
}

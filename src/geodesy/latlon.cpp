// K7LatLon: navigation on the sphere.

#include <k7/geodesy/latlon.h>

#include "geodesy/sphere.h"

namespace {

K7ECEF UnitVector(const K7LatLon& p) { return k7geo::UnitVector(p.Lat(), p.Lon()); }

// East and north components of `to` in the local frame of `from`, whose quotient is the tangent of the course
// (Snyder, equation 5-4b). K7ECEF states the same course in another order of operations: the two differ in
// the last digits.
double InitialCourse(const K7LatLon& from, const K7LatLon& to) {
  const K7ECEF p = UnitVector(from);
  const K7ECEF q = UnitVector(to);
  if (k7geo::Identical(p, q)) return k7geo::Course(0, 0);
  const k7geo::LocalFrame frame(p);
  const double east = q.Y() * frame.cosLon - q.X() * frame.sinLon;
  const double north = q.Z() * frame.r - (q.X() * frame.cosLon + q.Y() * frame.sinLon) * p.Z();
  return k7geo::Course(east, north);
}

}  // namespace

double K7LatLon::Distance(const K7LatLon& to) const {
  return k7geo::Distance(UnitVector(*this), UnitVector(to));
}

double K7LatLon::InitCourse(const K7LatLon& to) const { return InitialCourse(*this, to); }

double K7LatLon::FinalCourse(const K7LatLon& to) const { return k7geo::Arrival(InitialCourse(to, *this)); }

void K7LatLon::EndPoint(const K7LatLon& start, double course, double distance) {
  const K7ECEF end = k7geo::EndPoint(UnitVector(start), course, distance);
  Init(k7geo::Latitude(end.Z()), std::atan2(end.Y(), end.X()) * K7_RAD_TO_DEG);
}

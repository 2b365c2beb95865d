#include "geodesy/sphere_hull.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/geodesy/cromley.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace {

K7ECEF Sum(const K7ECEF& a, const K7ECEF& b) { return {a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z()}; }
K7ECEF Difference(const K7ECEF& a, const K7ECEF& b) { return {a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z()}; }

// But for rounding.
constexpr double HEMISPHERE = K7_PI / 2 * K7_EARTH_RADIUS_NM * (1 - 1e-9);

// A circle as the plane that cuts it from the sphere: the points p with p . axis >= cosine are inside.
struct Cap {
  K7ECEF axis;
  double cosine = 2;  // of the radius; above 1 there is none

  // Points on the rim may lie outside by rounding.
  bool Holds(const K7ECEF& p) const { return p.DotProduct(axis) >= cosine - 4e-16; }
};

Cap Around(const K7ECEF& p) { return {p, 1}; }

// The smallest circle through two points. Antipodes have many: any at right angles.
Cap Around(const K7ECEF& a, const K7ECEF& b) {
  Cap cap;
  cap.axis = Sum(a, b);
  if (cap.axis.Magnitude() < 1e-9) {
    const K7ECEF aside = std::fabs(a.Z()) < 0.9 ? K7ECEF(0, 0, 1) : K7ECEF(1, 0, 0);
    cap.axis.CrossProduct(a, aside);
  }
  cap.axis.Normalize();
  cap.cosine = std::min(cap.axis.DotProduct(a), cap.axis.DotProduct(b));
  return cap;
}

// The circle through three points, with the centre on the side where they are: its axis is the normal of
// their plane.
Cap Around(const K7ECEF& a, const K7ECEF& b, const K7ECEF& c) {
  Cap cap;
  cap.axis.CrossProduct(Difference(b, a), Difference(c, a));
  if (!cap.axis.Normalize()) return {};
  if (cap.axis.DotProduct(a) < 0) cap.axis *= -1;
  cap.cosine = std::min({cap.axis.DotProduct(a), cap.axis.DotProduct(b), cap.axis.DotProduct(c)});
  return cap;
}

// Points in an order of our own, where those that once made a circle grow come first.
class Points {
 public:
  explicit Points(K7Array& points)
      : m_count(points.Count()), m_order(new (std::nothrow) K7ECEF[static_cast<size_t>(m_count)]) {
    if (!m_order) return;
    K7ECEF* const order = m_order.get();
    for (int i = 0; i < m_count; i++) order[i] = *static_cast<const K7ECEF*>(points.Get(i));
    // Shuffled by a fixed rule: the expected time is that of a random order.
    uint64_t random = 0x9E3779B97F4A7C15;
    for (int i = m_count - 1; i > 0; i--) {
      random = random * 6364136223846793005u + 1442695040888963407u;
      std::swap(order[i], order[(random >> 33) % static_cast<uint64_t>(i + 1)]);
    }
  }

  bool IsValid() const { return m_order != nullptr; }
  int Count() const { return m_count; }
  const K7ECEF& operator[](int i) const { return m_order.get()[i]; }
  const K7ECEF* Data() const { return m_order.get(); }
  double Radius(const K7ECEF& centre) const {
    double radius = 0;
    for (int i = 0; i < m_count; i++) radius = std::max(radius, centre.Distance(m_order.get()[i]));
    return radius;
  }
  // Whether all are unit vectors; coordinates too small for exact products become 0.
  bool ReadyForHull() {
    for (int i = 0; i < m_count; i++) {
      K7ECEF& p = m_order.get()[i];
      if (!(std::fabs(p.DotProduct(p) - 1) < 1e-9)) return false;
      const auto near0 = [](double v) { return std::fabs(v) < 1e-60 ? 0 : v; };
      p = K7ECEF(near0(p.X()), near0(p.Y()), near0(p.Z()));
    }
    return true;
  }
  void ToFront(int i) { std::rotate(m_order.get(), m_order.get() + i, m_order.get() + i + 1); }

 private:
  int m_count;
  std::unique_ptr<K7ECEF[]> m_order;
};

// Welzl's way, which counts its tests: ten a point are expected, and without end when no hemisphere holds the
// points.
class Smallest {
 public:
  Smallest(Points& points, int64_t tests) : m_points(points), m_tests(tests) {}

  // False when the tests did not do.
  bool Find(Cap& cap) {
    cap = Around(m_points[0]);
    m_tests -= m_points.Count();
    for (int i = 1; i < m_points.Count() && m_tests >= 0; i++) {
      if (cap.Holds(m_points[i])) continue;
      cap = WithRim(i, m_points[i]);
      m_points.ToFront(i);
    }
    return m_tests >= 0;
  }

 private:
  // The smallest circle of the first `count` points with two given ones on its rim; with one.
  Cap WithRim(int count, const K7ECEF& a, const K7ECEF& b) {
    Cap cap = Around(a, b);
    m_tests -= count;
    for (int i = 0; i < count; i++) {
      if (cap.Holds(m_points[i])) continue;
      // A point that is one of the two but for rounding spans no plane with them.
      if (const Cap wider = Around(a, b, m_points[i]); wider.cosine <= 1) cap = wider;
    }
    return cap;
  }
  Cap WithRim(int count, const K7ECEF& a) {
    Cap cap = Around(a);
    m_tests -= count;
    for (int i = 0; i < count && m_tests >= 0; i++) {
      if (!cap.Holds(m_points[i])) cap = WithRim(i, a, m_points[i]);
    }
    return cap;
  }

  Points& m_points;
  int64_t m_tests;
};

}  // namespace

int GenMinSpanCircle(K7Array& points, K7ECEF& centre, double& radius) {
  if (points.Count() < 1) return 0;
  Points order(points);
  if (!order.IsValid()) return K7_ERR_MEMORY;
  Cap cap;
  const bool isFound = Smallest(order, int64_t{64} * order.Count() + 1000).Find(cap);
  double least = order.Radius(cap.axis);
  if (!(isFound && least < HEMISPHERE) && order.ReadyForHull()) {
    // Around the earth's centre the smallest ball cuts no circle. What the points leave free of the sphere
    // then does: the largest circle without any of them, its other side.
    K7ECEF normal;
    const int faces = k7geo::NearestFace(order.Data(), order.Count(), normal);
    if (faces < 0) return faces;
    normal *= -1;
    const double free = faces ? order.Radius(normal) : least;
    if (free < HEMISPHERE && !isFound) {
      Smallest(order, std::numeric_limits<int64_t>::max()).Find(cap);
      least = order.Radius(cap.axis);
    }
    if (free < least) {
      cap.axis = normal;
      least = free;
    }
  }
  centre = cap.axis;
  radius = least;
  return 0;
}

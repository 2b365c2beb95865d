#include <k7/foundation/error_string.h>
#include <k7/geodesy/cromley.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

K7ECEF Sum(const K7ECEF& a, const K7ECEF& b) { return {a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z()}; }
K7ECEF Difference(const K7ECEF& a, const K7ECEF& b) { return {a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z()}; }

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
  void ToFront(int i) { std::rotate(m_order.get(), m_order.get() + i, m_order.get() + i + 1); }

 private:
  int m_count;
  std::unique_ptr<K7ECEF[]> m_order;
};

// The smallest circle of the first `count` points with two given ones on its rim.
Cap WithRim(const Points& points, int count, const K7ECEF& a, const K7ECEF& b) {
  Cap cap = Around(a, b);
  for (int i = 0; i < count; i++) {
    if (cap.Holds(points[i])) continue;
    // A point that is one of the two but for rounding spans no plane with them.
    if (const Cap wider = Around(a, b, points[i]); wider.cosine <= 1) cap = wider;
  }
  return cap;
}

Cap WithRim(const Points& points, int count, const K7ECEF& a) {
  Cap cap = Around(a);
  for (int i = 0; i < count; i++) {
    if (!cap.Holds(points[i])) cap = WithRim(points, i, a, points[i]);
  }
  return cap;
}

}  // namespace

int GenMinSpanCircle(K7Array& points, K7ECEF& centre, double& radius) {
  if (points.Count() < 1) return 0;
  Points order(points);
  if (!order.IsValid()) return K7_ERR_MEMORY;
  Cap cap = Around(order[0]);
  for (int i = 1; i < order.Count(); i++) {
    if (cap.Holds(order[i])) continue;
    cap = WithRim(order, i, order[i]);
    order.ToFront(i);
  }
  centre = cap.axis;
  radius = 0;
  for (int i = 0; i < order.Count(); i++) radius = std::max(radius, centre.Distance(order[i]));
  return 0;
}

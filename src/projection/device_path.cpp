#include "projection/device_path.h"

#include "projection/map_limits.h"
#include "projection/plane_cut.h"

#include <cmath>

namespace {

// Pixels: points closer together than this are one, and off the straight line no bent edge runs further.
constexpr double CLOSE = 1.0 / 3;
constexpr double FLATNESS = 0.2;
// Shorter edges are not looked at: to bend visibly their curve would have to be that of a dot.
constexpr double SHORT = 2;
constexpr int MAX_HALVINGS = 7;

GeoPoint Middle(const GeoPoint& a, const GeoPoint& b) { return {(a.lat + b.lat) / 2, (a.lon + b.lon) / 2}; }

K7ECEF Middle(const K7ECEF& a, const K7ECEF& b) {
  K7ECEF middle(a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z());
  middle.Normalize();
  return middle;
}

bool AreBefore(const DevicePoint& a, const DevicePoint& b) {
  return a.w >= Guards::NEAREST && b.w >= Guards::NEAREST;
}

double SquareBetween(const DevicePoint& a, const DevicePoint& b) {
  const double dx = b.x / b.w - a.x / a.w;
  const double dy = b.y / b.w - a.y / a.w;
  return dx * dx + dy * dy;
}

bool IsStraight(const DevicePoint& a, const DevicePoint& m, const DevicePoint& b) {
  if (!AreBefore(a, b) || m.w < Guards::NEAREST) return false;
  const double ax = a.x / a.w, ay = a.y / a.w;
  const double dx = b.x / b.w - ax, dy = b.y / b.w - ay;
  const double mx = m.x / m.w - ax, my = m.y / m.w - ay;
  const double length = std::hypot(dx, dy);
  if (length < 1) return true;
  return std::fabs(dx * my - dy * mx) <= FLATNESS * length;
}

// What a cut ring is handed to.
struct RingOut {
  K7Grfx& g;
  int count = 0;

  void Add(const DevicePoint& p) {
    if (count++ == 0)
      g.MoveTo(p.x / p.w, p.y / p.w);
    else
      g.LineTo(p.x / p.w, p.y / p.w);
  }
};

}  // namespace

Guards::Guards(int width, int height)
    : m_low(-OVERHANG), m_right(width + OVERHANG), m_bottom(height + OVERHANG) {}

void DevicePath::SetUp(const K7Projection& projection, const K7GrfxK7& camera) {
  m_projection = &projection;
  m_camera = &camera;
  m_guards = Guards(camera.Width(), camera.Height());
}

void DevicePath::Reset() {
  m_failed = false;
  m_count = 0;
  Start();
}

void DevicePath::Start() {
  m_points.Clear();
  m_hasDropped = false;
  m_allInside = true;
}

template <class Point>
void DevicePath::Take(const Point& point, const DevicePoint& at, Point& last) {
  if (m_points.Count() > 0) {
    const DevicePoint from = m_points.Last();
    if (AreBefore(from, at)) {
      const double square = SquareBetween(from, at);
      if (square < CLOSE * CLOSE) {
        last = point;
        m_droppedAt = at;
        m_hasDropped = true;
        return;
      }
      if (square > SHORT * SHORT) Halve(last, point, from, at, MAX_HALVINGS);
    } else {
      Halve(last, point, from, at, MAX_HALVINGS);
    }
  }
  m_hasDropped = false;
  m_allInside = m_allInside && m_guards.Holds(at);
  m_points.Add(at);
  last = point;
}

template <class Point>
void DevicePath::Halve(const Point& a, const Point& b, const DevicePoint& da, const DevicePoint& db,
                       int halvings) {
  if (halvings == 0 || m_guards.Hides(da, db)) return;
  const Point middle = Middle(a, b);
  const DevicePoint dm = ToDevice(middle);
  if (IsStraight(da, dm, db)) return;
  Halve(a, middle, da, dm, halvings - 1);
  m_allInside = m_allInside && m_guards.Holds(dm);
  m_points.Add(dm);
  Halve(middle, b, dm, db, halvings - 1);
}

// The run ends where it ends, however close that is to the point before.
void DevicePath::Finish() {
  if (m_hasDropped) {
    m_points.Add(m_droppedAt);
    m_allInside = m_allInside && m_guards.Holds(m_droppedAt);
    m_hasDropped = false;
  }
  m_failed = m_failed || m_points.Failed();
}

void DevicePath::FinishRing(K7Grfx& g) {
  Finish();
  RingOut out{g};
  if (m_allInside && m_points.Count() >= 3) {
    for (int i = 0; i < m_points.Count(); ++i) out.Add(m_points[i]);
  } else if (!m_allInside) {
    RingCutter<Guards, DevicePoint, RingOut> cutter(m_guards, out);
    for (int i = 0; i < m_points.Count(); ++i) cutter.Add(m_points[i]);
    cutter.Close();
  }
  if (out.count > 0) g.ClosePath();
  m_count += out.count;
  Start();
}

void DevicePath::FinishLine(K7Grfx& g) {
  Finish();
  bool drawing = false;
  for (int i = 0; i + 1 < m_points.Count(); ++i) {
    DevicePoint a = m_points[i];
    DevicePoint b = m_points[i + 1];
    bool cutA = false;
    bool cutB = false;
    if (!m_allInside && !CutSegment(m_guards, a, b, cutA, cutB)) {
      drawing = false;
      continue;
    }
    if (!drawing || cutA) {
      g.MoveTo(a.x / a.w, a.y / a.w);
      ++m_count;
    }
    g.LineTo(b.x / b.w, b.y / b.w);
    ++m_count;
    drawing = !cutB;
  }
  Start();
}

template void DevicePath::Take(const GeoPoint&, const DevicePoint&, GeoPoint&);
template void DevicePath::Take(const K7ECEF&, const DevicePoint&, K7ECEF&);

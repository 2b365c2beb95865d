#include "layers/geo_path.h"

#include "layers/geo_clip.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

namespace {

// Paths run this many pixels beyond the window, so that no stroke shows where they were cut.
constexpr double OVERHANG = 64;
// Off the straight line, in pixels, that a bent edge may run.
constexpr double FLATNESS = 0.2;
constexpr int MAX_HALVINGS = 7;
// Closer to the eye's plane than this nothing is drawn, in earth radii: a hand above the ground.
constexpr double NEAREST = 1e-8;

GeoPoint Middle(const GeoPoint& a, const GeoPoint& b) { return {(a.lat + b.lat) / 2, (a.lon + b.lon) / 2}; }

K7ECEF Middle(const K7ECEF& a, const K7ECEF& b) {
  K7ECEF middle(a.X() + b.X(), a.Y() + b.Y(), a.Z() + b.Z());
  middle.Normalize();
  return middle;
}

// The side of a guard plane on which a homogeneous point lies: inside from 0 on.
class Guards {
 public:
  explicit Guards(const CairoGrfx& grfx) : m_width(grfx.Width()), m_height(grfx.Height()) {}

  static constexpr int COUNT = 5;
  double Inside(int plane, const DevicePoint& p) const {
    switch (plane) {
      case 0:
        return p.w - NEAREST;
      case 1:
        return p.x + OVERHANG * p.w;
      case 2:
        return (m_width + OVERHANG) * p.w - p.x;
      case 3:
        return p.y + OVERHANG * p.w;
      default:
        return (m_height + OVERHANG) * p.w - p.y;
    }
  }
  // Both points beyond the same plane: nothing between them shows.
  bool Hides(const DevicePoint& a, const DevicePoint& b) const {
    for (int plane = 0; plane < COUNT; ++plane)
      if (Inside(plane, a) < 0 && Inside(plane, b) < 0) return true;
    return false;
  }

 private:
  double m_width;
  double m_height;
};

DevicePoint Cross(const DevicePoint& a, const DevicePoint& b, double insideA, double insideB) {
  const double t = insideA / (insideA - insideB);
  return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.w + t * (b.w - a.w)};
}

using DeviceLine = std::vector<DevicePoint>;

// Projects a run of geographic points, halving edges until they are straight enough on the device.
template <class Point>
class Bender {
 public:
  Bender(const View& view, const Guards& guards) : m_view(view), m_guards(guards) {}

  DeviceLine Bend(const std::vector<Point>& line) {
    DeviceLine out;
    if (line.empty()) return out;
    out.push_back(m_view.ToDevice(line.front()));
    for (size_t i = 0; i + 1 < line.size(); ++i) {
      const DevicePoint end = m_view.ToDevice(line[i + 1]);
      Halve(line[i], line[i + 1], out.back(), end, MAX_HALVINGS, out);
      out.push_back(end);
    }
    return out;
  }

 private:
  void Halve(const Point& a, const Point& b, DevicePoint da, const DevicePoint& db, int halvings,
             DeviceLine& out) {
    if (halvings == 0 || m_guards.Hides(da, db)) return;
    const Point middle = Middle(a, b);
    const DevicePoint dm = m_view.ToDevice(middle);
    if (Straight(da, dm, db)) return;
    Halve(a, middle, da, dm, halvings - 1, out);
    out.push_back(dm);
    Halve(middle, b, dm, db, halvings - 1, out);
  }

  static bool Straight(const DevicePoint& a, const DevicePoint& m, const DevicePoint& b) {
    if (a.w < NEAREST || m.w < NEAREST || b.w < NEAREST) return false;
    const double ax = a.x / a.w, ay = a.y / a.w;
    const double dx = b.x / b.w - ax, dy = b.y / b.w - ay;
    const double mx = m.x / m.w - ax, my = m.y / m.w - ay;
    const double length = std::hypot(dx, dy);
    if (length < 1) return true;
    return std::fabs(dx * my - dy * mx) <= FLATNESS * length;
  }

  const View& m_view;
  const Guards& m_guards;
};

// Cuts a ring to the guard planes and adds it to the path.
void AddRing(cairo_t* cairo, const Guards& guards, DeviceLine ring) {
  for (int plane = 0; plane < Guards::COUNT && !ring.empty(); ++plane) {
    DeviceLine out;
    for (size_t i = 0; i < ring.size(); ++i) {
      const DevicePoint& a = ring[i];
      const DevicePoint& b = ring[(i + 1) % ring.size()];
      const double insideA = guards.Inside(plane, a);
      const double insideB = guards.Inside(plane, b);
      if (insideA >= 0) out.push_back(a);
      if ((insideA >= 0) != (insideB >= 0)) out.push_back(Cross(a, b, insideA, insideB));
    }
    ring = std::move(out);
  }
  if (ring.size() < 3) return;
  cairo_new_sub_path(cairo);
  for (const DevicePoint& p : ring) cairo_line_to(cairo, p.x / p.w, p.y / p.w);
  cairo_close_path(cairo);
}

// Cuts each segment of a line to the guard planes and adds the pieces to the path.
void AddPieces(cairo_t* cairo, const Guards& guards, const DeviceLine& line) {
  bool drawing = false;
  for (size_t i = 0; i + 1 < line.size(); ++i) {
    DevicePoint a = line[i];
    DevicePoint b = line[i + 1];
    bool shows = true;
    bool cutA = false;
    bool cutB = false;
    for (int plane = 0; plane < Guards::COUNT && shows; ++plane) {
      const double insideA = guards.Inside(plane, a);
      const double insideB = guards.Inside(plane, b);
      shows = insideA >= 0 || insideB >= 0;
      if (!shows || (insideA >= 0 && insideB >= 0)) continue;
      (insideA < 0 ? a : b) = Cross(a, b, insideA, insideB);
      (insideA < 0 ? cutA : cutB) = true;
    }
    if (!shows) {
      drawing = false;
      continue;
    }
    if (!drawing || cutA) cairo_move_to(cairo, a.x / a.w, a.y / a.w);
    cairo_line_to(cairo, b.x / b.w, b.y / b.w);
    drawing = !cutB;
  }
}

// Edges of flat maps are divided from this length on, in degrees, whether or not they look straight: an
// S-shaped edge crosses its chord in the middle.
constexpr double FLAT_STEP = 5;

}  // namespace

GeoPath::GeoPath(const View& view) : m_view(view) {
  // On the globe edges become arcs of great circles; short ones stay close to the parallels that they mean.
  const double span = view.NMPerPixel() * view.Grfx().Width() / 60;
  m_step = std::clamp(span / 40, 0.05, 2.0);
}

void GeoPath::AddArea(const std::vector<GeoLine>& rings) const {
  cairo_t* const cairo = m_view.Grfx().Cairo();
  const Guards guards(m_view.Grfx());
  if (m_view.IsGlobe()) {
    for (const GlobeLine& ring : CutArea(rings, m_view.Cap(), m_step))
      AddRing(cairo, guards, Bender<K7ECEF>(m_view, guards).Bend(ring));
  } else {
    for (GeoLine& ring : CutArea(rings, m_view.Window())) {
      ring.push_back(ring.front());
      AddRing(cairo, guards, Bender<GeoPoint>(m_view, guards).Bend(Divide(ring, FLAT_STEP)));
    }
  }
}

void GeoPath::AddLine(const GeoLine& line) const {
  cairo_t* const cairo = m_view.Grfx().Cairo();
  const Guards guards(m_view.Grfx());
  if (m_view.IsGlobe()) {
    for (const GlobeLine& piece : CutLine(line, m_view.Cap(), m_step))
      AddPieces(cairo, guards, Bender<K7ECEF>(m_view, guards).Bend(piece));
  } else {
    for (const GeoLine& piece : CutLine(line, m_view.Window()))
      AddPieces(cairo, guards, Bender<GeoPoint>(m_view, guards).Bend(Divide(piece, FLAT_STEP)));
  }
}

void GeoPath::AddWholeMap() const {
  cairo_t* const cairo = m_view.Grfx().Cairo();
  const Guards guards(m_view.Grfx());
  if (m_view.IsGlobe()) {
    GlobeLine rim;
    AddRim(rim, m_view.Cap(), 0, 2 * K7_PI, m_step);
    AddRing(cairo, guards, Bender<K7ECEF>(m_view, guards).Bend(rim));
    return;
  }
  const FlatWindow& w = m_view.Window();
  const GeoLine outline = {
      {w.south, w.west}, {w.north, w.west}, {w.north, w.east}, {w.south, w.east}, {w.south, w.west}};
  AddRing(cairo, guards, Bender<GeoPoint>(m_view, guards).Bend(Divide(outline, FLAT_STEP)));
}

GeoLine Unroll(const GeoLine& line) {
  GeoLine out = line;
  // An edge of exactly 180 is one already, and stays as it runs: ties go to even, which is no turn.
  for (size_t i = 1; i < out.size(); ++i)
    out[i].lon += 360 * std::nearbyint((out[i - 1].lon - out[i].lon) / 360);
  return out;
}

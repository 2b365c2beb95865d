// The stages of a path, in the order in which points pass through them: a row of positions is cut to the box
// that the view may show, its long edges are divided, it is projected in blocks, on the globe cut to the cap,
// then bent, thinned and handed on (device_path).
#include <k7/projection/map_path.h>

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/projection/map_features.h>
#include <k7/projection/map_view.h>

#include "projection/cap_cut.h"
#include "projection/device_path.h"
#include "projection/feature_store.h"
#include "projection/map_limits.h"
#include "projection/plane_cut.h"
#include "projection/seam.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

// Edges of flat maps are divided from this length on, in degrees, whether or not they look straight: an
// S-shaped edge crosses its chord in the middle.
constexpr double FLAT_STEP = 5;
constexpr double GLOBE_STEP = 2;
constexpr double LEAST_STEP = 1e-9;

// Positions that are projected at a time.
constexpr int BLOCK = 256;

// The sides of a box in degrees as half-planes.
struct BoxSides {
  static constexpr int COUNT = 4;
  double north, south, east, west;

  double Inside(int side, const GeoPoint& p) const {
    switch (side) {
      case 0:
        return p.lon - west;
      case 1:
        return east - p.lon;
      case 2:
        return p.lat - south;
      default:
        return north - p.lat;
    }
  }
  GeoPoint Cross(const GeoPoint& a, const GeoPoint& b, int side) const {
    const double insideA = Inside(side, a);
    const double t = insideA / (insideA - Inside(side, b));
    GeoPoint p = {a.lat + t * (b.lat - a.lat), a.lon + t * (b.lon - a.lon)};
    // Exactly on the side: what is cut there on both sides must meet.
    const double sides[COUNT] = {west, east, south, north};
    (side < 2 ? p.lon : p.lat) = sides[side];
    return p;
  }
  // One bit a side that the point is beyond.
  int Beyond(const GeoPoint& p) const {
    return (p.lon < west ? 1 : 0) | (p.lon > east ? 2 : 0) | (p.lat < south ? 4 : 0) |
           (p.lat > north ? 8 : 0);
  }
  // Whatever the longitudes.
  bool Misses(const DegreeBox& box) const { return box.IsEmpty() || box.north < south || box.south > north; }
  bool Holds(const DegreeBox& box, double turn) const {
    return box.west + turn >= west && box.east + turn <= east && box.south >= south && box.north <= north;
  }
};

// The points between two on the great circle through them, no further apart than `step` radians. Half way to
// an antipode any great circle will do: the pole decides.
void AddArc(Buffer<K7ECEF>& out, const K7ECEF& from, const K7ECEF& to, double step) {
  static const double ANTIPODAL = 1e-9;
  const double angle = from.Angle(to);
  if (K7_PI - angle < ANTIPODAL) {
    const K7ECEF pole(0, 0, 1), equator(1, 0, 0);
    const K7ECEF& middle = std::fabs(from.Z()) < 1 - ANTIPODAL ? pole : equator;
    AddArc(out, from, middle, step);
    out.Add(middle);
    AddArc(out, middle, to, step);
    return;
  }
  const int pieces = static_cast<int>(std::ceil(angle / step));
  for (int k = 1; k < pieces; ++k) {
    const double a = std::sin(angle * (pieces - k) / pieces);
    const double b = std::sin(angle * k / pieces);
    K7ECEF p(a * from.X() + b * to.X(), a * from.Y() + b * to.Y(), a * from.Z() + b * to.Z());
    p.Normalize();
    out.Add(p);
  }
}

// Not asin: it has half the digits near the poles.
K7LatLon Position(const K7ECEF& p) {
  return {std::atan2(p.Z(), std::hypot(p.X(), p.Y())) * K7_RAD_TO_DEG,
          std::atan2(p.Y(), p.X()) * K7_RAD_TO_DEG};
}

}  // namespace

struct K7MapPath::Stages {
  void SetView(const K7MapView& v);

  int Begin(K7Grfx* target);
  int End() const;

  void AddArea(const K7MapFeatureStore& store, const Feature& feature);
  void AddLines(const K7MapFeatureStore& store, int first, int count);
  void AddWholeMap();
  void AddRoute(const K7LatLon* points, int count);

  void AddRing(const PointSpan& ring, double turn, bool whole, double overlap);
  void AddLine(const PointSpan& line, double turn, bool whole);

  // The next stage of cut rows.
  void StartRow();
  void Add(const GeoPoint& p);
  int Pieces(const GeoPoint& to) const;
  void Flush();
  void FinishRing();
  void FinishLine();

  template <class Visit>
  void VisitTurns(const DegreeBox& box, Visit visit) const;
  void AddBent(const K7ECEF& from, const K7ECEF& to, int halvings);

  const K7MapView* view = nullptr;
  bool ready = false;  // for a view that has looked at something
  K7Grfx* g = nullptr;
  BoxSides sides{};
  bool around = false;  // the sides hold all longitudes of a globe, which has no seam
  double step = FLAT_STEP;
  double halfPixel = 0;  // degrees
  CapCutter cap;
  DevicePath path;
  Buffer<K7ECEF> surface;  // the row on the globe
  int pending = 0;
  double lat[BLOCK], lon[BLOCK];
  double x[BLOCK], y[BLOCK], z[BLOCK];
  GeoPoint first{}, last{};
  bool started = false;
  bool failed = false;
  K7MapFeatures scratch;
  Buffer<K7LatLon> route;
};

void K7MapPath::Stages::SetView(const K7MapView& v) {
  view = &v;
  ready = v.IsSet();
  if (!ready) return;
  const K7MapView::Box& seen = v.m_seen;
  around = v.IsGlobe() && seen.east - seen.west >= 360;
  // Short against what is seen, so that between two points outside the window no edge bends into it. On the
  // globe edges become arcs of great circles: short ones stay close to the parallels that they mean.
  if (v.IsGlobe())
    step = std::clamp(std::max(v.NMPerPixel() * v.Width() / 60, v.m_cap.radius * K7_RAD_TO_DEG) / 40,
                      LEAST_STEP, GLOBE_STEP);
  else
    step = std::clamp(std::max(seen.north - seen.south, seen.east - seen.west) / 16, LEAST_STEP, FLAT_STEP);
  // The box of a cap touches its rim. Kept a step away from it, what is cut along the box is never seen.
  const double away = v.IsGlobe() ? step : 0;
  sides = {seen.north + away, seen.south - away, around ? 1e9 : seen.east + away,
           around ? -1e9 : seen.west - away};
  halfPixel = std::min(v.NMPerPixel() / 60 / 2, 0.005);
  cap.SetUp(v.m_cap.axis, v.m_cap.radius, step);
  path.SetUp(*v.Projection(), v.m_camera);
}

int K7MapPath::Stages::Begin(K7Grfx* target) {
  if (!target || !ready || !view->IsSet()) return K7_ERR_BAD_ARGUMENT;
  g = target;
  path.Reset();
  cap.StartArea();
  failed = false;
  return K7_OK;
}

int K7MapPath::Stages::End() const {
  return failed || path.Failed() || cap.Failed() ? K7_ERR_MEMORY : path.Count();
}

// Data and view may each lie a turn or two from -180 to 180: the world repeats to its west and east.
template <class Visit>
void K7MapPath::Stages::VisitTurns(const DegreeBox& box, Visit visit) const {
  if (sides.Misses(box)) return;
  const double least = around ? 0 : std::ceil((sides.west - box.east) / 360);
  const double most = around ? 0 : std::floor((sides.east - box.west) / 360);
  for (double turns = least; turns <= most; ++turns) visit(turns * 360, sides.Holds(box, turns * 360));
}

void K7MapPath::Stages::AddRing(const PointSpan& ring, double turn, bool whole, double overlap) {
  const int n = ring.count - 1;
  const auto at = [&](int i) {
    const double seam = std::fabs(ring.lon[i]) == 180 ? std::copysign(overlap, ring.lon[i]) : 0;
    return GeoPoint{ring.lat[i], ring.lon[i] + seam + turn};
  };
  StartRow();
  if (whole) {
    for (int i = 0; i < n; ++i) Add(at(i));
  } else {
    RingCutter<BoxSides, GeoPoint, Stages> cutter(sides, *this);
    // Of a run of points beyond one side only the ends matter.
    GeoPoint point = at(0);
    int before = 0, beyond = sides.Beyond(point);
    for (int i = 0; i < n; ++i) {
      const GeoPoint next = at(i + 1);
      const int after = sides.Beyond(next);
      if (!(before & beyond & after)) {
        cutter.Add(point);
        before = beyond;
      }
      point = next;
      beyond = after;
    }
    cutter.Close();
  }
  FinishRing();
}

void K7MapPath::Stages::AddLine(const PointSpan& line, double turn, bool whole) {
  const auto at = [&](int i) { return GeoPoint{line.lat[i], line.lon[i] + turn}; };
  StartRow();
  if (whole) {
    for (int i = 0; i < line.count; ++i) Add(at(i));
    FinishLine();
    return;
  }
  GeoPoint from = at(0);
  int beyond = sides.Beyond(from);
  bool drawing = false;
  for (int i = 1; i < line.count; ++i) {
    const GeoPoint to = at(i);
    const int after = sides.Beyond(to);
    GeoPoint a = from, b = to;
    bool cutA = false, cutB = false;
    const bool shows = !(beyond & after) && CutSegment(sides, a, b, cutA, cutB);
    if (drawing && (!shows || cutA)) {
      FinishLine();
      StartRow();
      drawing = false;
    }
    if (shows) {
      if (!drawing) Add(a);
      Add(b);
      drawing = true;
    }
    from = to;
    beyond = after;
  }
  FinishLine();
}

void K7MapPath::Stages::StartRow() {
  pending = 0;
  started = false;
  surface.Clear();
}

void K7MapPath::Stages::Add(const GeoPoint& p) {
  const auto take = [this](double pointLat, double pointLon) {
    lat[pending] = pointLat;
    lon[pending] = pointLon;
    if (++pending == BLOCK) Flush();
  };
  if (started) {
    const double dLat = p.lat - last.lat;
    const double dLon = p.lon - last.lon;
    const int pieces = std::max(std::fabs(dLat), std::fabs(dLon)) > step ? Pieces(p) : 1;
    for (int k = 1; k < pieces; ++k) take(last.lat + dLat * k / pieces, last.lon + dLon * k / pieces);
  } else {
    first = p;
    started = true;
  }
  take(p.lat, p.lon);
  last = p;
}

// Into how many an edge from the last point is divided. Near the poles of a globe many degrees of longitude
// are a short way.
int K7MapPath::Stages::Pieces(const GeoPoint& to) const {
  const double dLat = std::fabs(to.lat - last.lat);
  const double dLon = std::fabs(to.lon - last.lon);
  if (!view->IsGlobe()) return static_cast<int>(std::ceil(std::max(dLat, dLon) / step));
  const double across = dLon * std::cos(std::min(std::fabs(to.lat), std::fabs(last.lat)) * K7_DEG_TO_RAD);
  return static_cast<int>(std::ceil(std::max(std::max(dLat, across) / step, dLon / GLOBE_STEP)));
}

void K7MapPath::Stages::Flush() {
  const K7Projection& projection = *view->Projection();
  const bool globe = view->IsGlobe();
  projection.LatLons2World(lat, lon, pending, x, y, z);
  if (globe) {
    K7ECEF* const row = surface.Extend(pending);
    failed = failed || !row;
    for (int i = 0; row && i < pending; ++i) row[i] = K7ECEF(x[i], y[i], z[i]);
  } else {
    for (int i = 0; i < pending; ++i)
      path.Add(GeoPoint{lat[i], lon[i]}, path.ToDevice(K7ECEF(x[i], y[i], 0)));
  }
  pending = 0;
}

void K7MapPath::Stages::FinishRing() {
  if (!started) return;
  Add(first);
  Flush();
  if (!view->IsGlobe())
    path.FinishRing(*g);
  else if (surface.Count() >= 4)
    cap.AddRing(surface, path, *g);
}

void K7MapPath::Stages::FinishLine() {
  if (!started) return;
  Flush();
  if (view->IsGlobe())
    cap.AddLine(surface, path, *g);
  else
    path.FinishLine(*g);
}

void K7MapPath::Stages::AddArea(const K7MapFeatureStore& store, const Feature& feature) {
  bool shows = false;
  VisitTurns(feature.box, [&](double, bool) { shows = true; });
  if (!shows) return;
  // An area that was cut along 180 degrees and its other half, another feature, overlap by half a pixel each,
  // so that no seam shows between them. Two halves of one feature fit without.
  const double overlap = feature.isHalf ? halfPixel : 0;
  for (int i = 0; i < feature.partCount; ++i) {
    const FeaturePart& ring = store.parts[feature.firstPart + i];
    VisitTurns(ring.box, [&](double turn, bool whole) { AddRing(store.Points(ring), turn, whole, overlap); });
  }
  if (!view->IsGlobe()) return;
  double rimLat, rimLon;
  cap.RimPoint(rimLat, rimLon);
  cap.FinishArea(store.Contains(feature, rimLat, rimLon), path, *g);
}

void K7MapPath::Stages::AddLines(const K7MapFeatureStore& store, int firstPart, int count) {
  for (int i = firstPart; i < firstPart + count; ++i) {
    const FeaturePart& part = store.parts[i];
    VisitTurns(part.box, [&](double turn, bool whole) { AddLine(store.Points(part), turn, whole); });
  }
}

void K7MapPath::Stages::AddWholeMap() {
  if (view->IsGlobe()) {
    cap.AddRim(path, *g);
    return;
  }
  const K7MapView::Box& map = view->m_map;
  const double lats[] = {map.south, map.north, map.north, map.south, map.south};
  const double lons[] = {map.west, map.west, map.east, map.east, map.west};
  AddRing({lats, lons, 5}, 0, false, 0);
}

// On a flat map: the points of the great circle from a point up to another that an edge needs which is
// straight in latitude and longitude. Its middle is to stand where the circle's does. Long edges are always
// divided: an S-shaped one has the right middle.
void K7MapPath::Stages::AddBent(const K7ECEF& from, const K7ECEF& to, int halvings) {
  static const double FLATNESS = 0.2, LONG = 200;
  const K7LatLon a = Position(from), b = Position(to);
  K7ECEF middle(from.X() + to.X(), from.Y() + to.Y(), from.Z() + to.Z());
  middle.Normalize();
  const K7LatLon m = Position(middle);
  const K7LatLon edge((a.Lat() + b.Lat()) / 2, a.Lon() + std::remainder(b.Lon() - a.Lon(), 360) / 2);
  double ax = NAN, ay = NAN, bx = NAN, by = NAN, mx = NAN, my = NAN, ex = NAN, ey = NAN;
  view->ToDevice(a.Lat(), a.Lon(), ax, ay);
  view->ToDevice(b.Lat(), b.Lon(), bx, by);
  view->ToDevice(m.Lat(), m.Lon(), mx, my);
  view->ToDevice(edge.Lat(), edge.Lon(), ex, ey);
  const double length = std::hypot(bx - ax, by - ay);
  const double outside = std::max(std::max(-mx, mx - view->Width()), std::max(-my, my - view->Height()));
  const bool straight = std::hypot(ex - mx, ey - my) <= FLATNESS && length <= LONG;
  // What runs out to infinity is never seen.
  if (halvings > 0 && !straight && std::isfinite(length) && outside <= length + OVERHANG) {
    AddBent(from, middle, halvings - 1);
    AddBent(middle, to, halvings - 1);
  } else {
    route.Add(b);
  }
}

void K7MapPath::Stages::AddRoute(const K7LatLon* points, int count) {
  surface.Clear();
  K7ECEF from;
  for (int i = 0; i < count; ++i) {
    if (!OnEarth(points[i].Lat(), points[i].Lon())) continue;
    const K7ECEF to(points[i].Lat(), points[i].Lon());
    if (surface.Count() > 0) AddArc(surface, from, to, GLOBE_STEP * K7_DEG_TO_RAD);
    surface.Add(to);
    from = to;
  }
  if (surface.Failed()) {
    failed = true;
  } else if (view->IsGlobe()) {
    cap.AddLine(surface, path, *g);
  } else if (surface.Count() > 0) {
    static const int MAX_HALVINGS = 16;
    route.Clear();
    route.Add(Position(surface[0]));
    for (int i = 1; i < surface.Count(); ++i) AddBent(surface[i - 1], surface[i], MAX_HALVINGS);
    const int size = route.Count();
    scratch.Clear();
    failed = route.Failed() || scratch.Add(K7_MAP_LINES, route.Data(), &size, 1) < 0;
    if (!failed) AddLines(*scratch.m_store, 0, scratch.m_store->parts.Count());
  }
}

K7MapPath::K7MapPath(const K7MapView& view) : m_stages(new (std::nothrow) Stages) { SetView(view); }
K7MapPath::~K7MapPath() { delete m_stages; }

void K7MapPath::SetView(const K7MapView& view) {
  if (m_stages) m_stages->SetView(view);
}

int K7MapPath::Area(K7Grfx* g, const K7MapFeatures& features, int feature) {
  if (!m_stages || !features.m_store) return K7_ERR_MEMORY;
  if (const int code = m_stages->Begin(g)) return code;
  const Feature* const f = features.m_store->At(feature);
  if (f && f->kind == K7_MAP_AREA) m_stages->AddArea(*features.m_store, *f);
  return m_stages->End();
}

int K7MapPath::Outline(K7Grfx* g, const K7MapFeatures& features, int feature) {
  if (!m_stages || !features.m_store) return K7_ERR_MEMORY;
  if (const int code = m_stages->Begin(g)) return code;
  const Feature* const f = features.m_store->At(feature);
  if (f && f->kind == K7_MAP_AREA) m_stages->AddLines(*features.m_store, f->firstOutline, f->outlineCount);
  if (f && f->kind == K7_MAP_LINES) m_stages->AddLines(*features.m_store, f->firstPart, f->partCount);
  return m_stages->End();
}

int K7MapPath::Area(K7Grfx* g, const K7LatLon* points, const int* sizes, int rings) {
  if (!m_stages) return K7_ERR_MEMORY;
  m_stages->scratch.Clear();
  const int feature = m_stages->scratch.Add(K7_MAP_AREA, points, sizes, rings);
  return feature < 0 ? feature : Area(g, m_stages->scratch, feature);
}

int K7MapPath::Line(K7Grfx* g, const K7LatLon* points, int count) {
  if (!m_stages) return K7_ERR_MEMORY;
  m_stages->scratch.Clear();
  const int feature = m_stages->scratch.Add(K7_MAP_LINES, points, &count, 1);
  return feature < 0 ? feature : Outline(g, m_stages->scratch, feature);
}

int K7MapPath::GreatCircle(K7Grfx* g, const K7LatLon* points, int count) {
  if (!m_stages) return K7_ERR_MEMORY;
  if (count < 0 || (count > 0 && !points)) return K7_ERR_BAD_ARGUMENT;
  if (const int code = m_stages->Begin(g)) return code;
  m_stages->AddRoute(points, count);
  return m_stages->End();
}

int K7MapPath::WholeMap(K7Grfx* g) {
  if (!m_stages) return K7_ERR_MEMORY;
  if (const int code = m_stages->Begin(g)) return code;
  m_stages->AddWholeMap();
  return m_stages->End();
}

#include "projection/cap_cut.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

void CapCutter::SetUp(const K7ECEF& axis, double radius, double step) {
  m_axis = axis;
  m_radius = radius;
  m_cosRadius = std::cos(radius);
  m_step = step;
}

// Where the arc between two points, one inside and one outside, meets the rim.
K7ECEF CapCutter::RimCrossing(K7ECEF inside, K7ECEF outside) const {
  for (int i = 0; i < 40; ++i) {
    K7ECEF middle(inside.X() + outside.X(), inside.Y() + outside.Y(), inside.Z() + outside.Z());
    middle.Normalize();
    (Holds(middle) ? inside : outside) = middle;
  }
  return inside;
}

// Whether an arc between two points outside the cap runs through it, and where it comes closest to the
// centre.
bool CapCutter::DipsIn(const K7ECEF& a, const K7ECEF& b, K7ECEF& deepest) const {
  const double toA = m_axis.DotProduct(a), toB = m_axis.DotProduct(b), along = a.DotProduct(b);
  if (!(toB > along * toA && toA > along * toB)) return false;
  K7ECEF normal;
  if (!normal.UnitNormal(a, b)) return false;
  const double off = m_axis.DotProduct(normal);
  deepest =
      K7ECEF(m_axis.X() - off * normal.X(), m_axis.Y() - off * normal.Y(), m_axis.Z() - off * normal.Z());
  // Between points that differ by rounding a normal has any direction: then it is nowhere near them.
  return deepest.Normalize() && Holds(deepest) && deepest.DotProduct(a) >= along &&
         deepest.DotProduct(b) >= along;
}

// Seen from the cap's centre, clockwise from north, 0 to 2 pi.
double CapCutter::Azimuth(const K7ECEF& point) const {
  K7ECEF local = point;
  m_axis.ECEFToOrtho(local);
  const double angle = std::atan2(local.X(), local.Y());
  return angle < 0 ? angle + 2 * K7_PI : angle;
}

void CapCutter::AddRimPoints(double from, double to, DevicePath& path) const {
  const double distance = m_radius * K7_EARTH_RADIUS_NM;
  // The rim is as finely divided as edges are, but a small cap's rim needs no fewer points than a large
  // one's.
  const double turn = std::clamp(m_step * K7_DEG_TO_RAD / std::max(std::sin(m_radius), 1e-6), 0.002, 0.05);
  const int pieces = static_cast<int>(std::ceil(std::fabs(to - from) / turn));
  for (int i = 1; i < pieces; ++i)
    path.Add(K7ECEF(m_axis, (from + (to - from) * i / pieces) * K7_RAD_TO_DEG, distance));
}

void CapCutter::AddRim(DevicePath& path, K7Grfx& g) const {
  AddRimPoints(0, 2 * K7_PI, path);
  path.FinishRing(g);
}

void CapCutter::StartArea() {
  m_points.Clear();
  m_runs.Clear();
  m_crossings.Clear();
}

void CapCutter::AddRun(int begin) {
  if (Failed()) return;
  m_runs.Add({begin, m_points.Count(), false, 0, 0});
  m_crossings.Add({Azimuth(m_points[begin]), m_runs.Count() - 1, false});
  m_crossings.Add({Azimuth(m_points.Last()), m_runs.Count() - 1, true});
}

void CapCutter::AddRing(const Buffer<K7ECEF>& ring, DevicePath& path, K7Grfx& g) {
  const int n = ring.Count() - 1;
  int start = 0;
  while (start < n && Holds(ring[start])) ++start;
  if (start == n) {
    for (int i = 0; i < n; ++i) path.Add(ring[i]);
    path.Add(ring[0]);
    path.FinishRing(g);
    return;
  }
  bool inside = false;  // as the point is that the ring is taken up at
  int begin = 0;
  for (int k = 0, i = start; k < n; ++k) {
    const K7ECEF& a = ring[i];
    i = i + 1 == n ? 0 : i + 1;
    const K7ECEF& b = ring[i];
    const bool goesInside = Holds(b);
    K7ECEF deepest;
    if (inside && goesInside) {
      m_points.Add(b);
    } else if (goesInside) {
      begin = m_points.Count();
      m_points.Add(RimCrossing(b, a));
      m_points.Add(b);
    } else if (inside) {
      m_points.Add(RimCrossing(a, b));
      AddRun(begin);
    } else if (DipsIn(a, b, deepest)) {
      begin = m_points.Count();
      m_points.Add(RimCrossing(deepest, a));
      m_points.Add(deepest);
      m_points.Add(RimCrossing(deepest, b));
      AddRun(begin);
    }
    inside = goesInside;
  }
}

// All crossings clockwise, from behind the widest gap between two, in which the point of the rim is taken.
void CapCutter::RimPoint(double& lat, double& lon) {
  static const double ASKEW = 1;  // radians: not likely to lie in line with a corner
  double between = ASKEW;
  const int count = m_crossings.Failed() ? 0 : m_crossings.Count();
  Crossing* const first = m_crossings.Data();
  if (count > 0) {
    // Ties by the order of the runs, as they came.
    std::sort(first, first + count, [](const Crossing& a, const Crossing& b) {
      if (a.azimuth != b.azimuth) return a.azimuth < b.azimuth;
      return a.run != b.run ? a.run < b.run : a.leaves > b.leaves;
    });
    double widest = first->azimuth + 2 * K7_PI - first[count - 1].azimuth;
    int start = 0;
    for (int i = 1; i < count; ++i) {
      const double gap = first[i].azimuth - first[i - 1].azimuth;
      if (gap <= widest) continue;
      widest = gap;
      start = i;
    }
    between = first[start].azimuth - widest / 2;
    std::rotate(first, first + start, first + count);
    for (int i = count - start; i < count; ++i) first[i].azimuth += 2 * K7_PI;
  }
  const K7ECEF rim(m_axis, between * K7_RAD_TO_DEG, m_radius * K7_EARTH_RADIUS_NM);
  // Not asin: it has half the digits near the poles.
  lat = std::atan2(rim.Z(), std::hypot(rim.X(), rim.Y())) * K7_RAD_TO_DEG;
  lon = std::atan2(rim.Y(), rim.X()) * K7_RAD_TO_DEG;
}

// Every ring that crosses the rim leads into the area or out of it. So every other stretch between two
// crossings is an edge of the area, and with the runs these make loops, whichever way the rings run (after K.
// Weiler and P. Atherton, Hidden Surface Removal Using Polygon Area Sorting, 1977).
void CapCutter::FinishArea(bool rimInside, DevicePath& path, K7Grfx& g) {
  const int count = m_crossings.Count();
  if (Failed()) return;
  if (count == 0) {
    if (rimInside) AddRim(path, g);
    return;
  }
  for (int i = 0; i < count; ++i) {
    Run& run = m_runs[m_crossings[i].run];
    (m_crossings[i].leaves ? run.exit : run.entry) = i;
  }
  for (int i = 0; i < m_runs.Count(); ++i) {
    if (m_runs[i].joined) continue;
    bool forward = true;
    for (int k = i; !m_runs[k].joined;) {
      Run& run = m_runs[k];
      run.joined = true;
      for (int p = 0; p < run.end - run.begin; ++p)
        path.Add(m_points[forward ? run.begin + p : run.end - 1 - p]);
      const int from = forward ? run.exit : run.entry;
      // The stretch across the first place is the last one's.
      const bool next = (from % 2 == 0) != rimInside;
      const int to = (from + (next ? 1 : count - 1)) % count;
      const double turn = next && to == 0 ? 2 * K7_PI : !next && from == 0 ? -2 * K7_PI : 0;
      AddRimPoints(m_crossings[from].azimuth, m_crossings[to].azimuth + turn, path);
      k = m_crossings[to].run;
      forward = !m_crossings[to].leaves;
    }
    path.FinishRing(g);
  }
}

void CapCutter::AddLine(const Buffer<K7ECEF>& line, DevicePath& path, K7Grfx& g) const {
  bool inside = false;
  for (int i = 0; i < line.Count(); ++i) {
    const bool goesInside = Holds(line[i]);
    K7ECEF deepest;
    if (goesInside && !inside && i > 0) path.Add(RimCrossing(line[i], line[i - 1]));
    if (goesInside) path.Add(line[i]);
    if (inside && !goesInside) {
      path.Add(RimCrossing(line[i - 1], line[i]));
      path.FinishLine(g);
    } else if (i > 0 && !goesInside && DipsIn(line[i - 1], line[i], deepest)) {
      path.Add(RimCrossing(deepest, line[i - 1]));
      path.Add(deepest);
      path.Add(RimCrossing(deepest, line[i]));
      path.FinishLine(g);
    }
    inside = goesInside;
  }
  if (inside) path.FinishLine(g);
}

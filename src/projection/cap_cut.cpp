#include "projection/cap_cut.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

void CapCutter::SetUp(const K7ECEF& axis, double radius, double step) {
  m_axis = axis;
  m_radius = radius;
  m_cosRadius = std::cos(radius);
  m_step = step;
  // The cosine of a small radius has few digits; where an edge meets the rim is known to as few.
  const double sine = std::sin(radius);
  m_samePlace = 1e-9 + 1e-14 / (sine * sine);
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
  const int pieces = static_cast<int>(std::ceil((to - from) / turn));
  for (int i = 1; i < pieces; ++i)
    path.Add(K7ECEF(m_axis, (from + (to - from) * i / pieces) * K7_RAD_TO_DEG, distance));
}

void CapCutter::AddRim(DevicePath& path, K7Grfx& g) const {
  path.Start();
  AddRimPoints(0, 2 * K7_PI, path);
  path.FinishRing(g);
}

void CapCutter::StartArea() {
  m_points.Clear();
  m_runs.Clear();
  m_crossings.Clear();
  m_open.Clear();
}

void CapCutter::AddRun(int begin) {
  if (m_points.Failed()) return;
  m_runs.Add({begin, m_points.Count(), Azimuth(m_points[begin]), Azimuth(m_points.Last()), 0, false});
}

void CapCutter::AddRing(const Buffer<K7ECEF>& ring, DevicePath& path, K7Grfx& g) {
  const int n = ring.Count() - 1;
  int start = 0;
  while (start < n && Holds(ring[start])) ++start;
  if (start == n) {
    path.Start();
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
bool CapCutter::AsksForRim(double& lat, double& lon) {
  static const double ASKEW = 1;  // radians: not likely to lie in line with a corner
  double between = ASKEW;
  m_crossings.Clear();
  for (int i = 0; i < m_runs.Count(); ++i) {
    m_crossings.Add({m_runs[i].exit, i, true});
    m_crossings.Add({m_runs[i].entry, i, false});
  }
  const int count = m_crossings.Failed() ? 0 : m_crossings.Count();
  Crossing* const first = m_crossings.Data();
  bool asks = m_runs.Count() == 0;
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
    for (int i = 1; i < count; ++i)
      asks = asks || (first[i].azimuth - first[i - 1].azimuth < m_samePlace &&
                      first[i].leaves != first[i - 1].leaves);
  }
  const K7ECEF rim(m_axis, between * K7_RAD_TO_DEG, m_radius * K7_EARTH_RADIUS_NM);
  // Not asin: it has half the digits near the poles.
  lat = std::atan2(rim.Z(), std::hypot(rim.X(), rim.Y())) * K7_RAD_TO_DEG;
  lon = std::atan2(rim.Y(), rim.X()) * K7_RAD_TO_DEG;
  return asks;
}

// The crossings from `begin` on that are one place but for rounding.
int CapCutter::PlaceEnd(int begin) const {
  int end = begin + 1;
  while (end < m_crossings.Count() && m_crossings[end].azimuth - m_crossings[end - 1].azimuth < m_samePlace)
    ++end;
  return end;
}

// Crossings at one place, as of an edge to a pole and back, come in the order in which an area can have them:
// entering ends what the rim lies in, leaving begins it. `cover`: how many areas the rim lies in before the
// first crossing.
void CapCutter::OrderPlaces(int cover) {
  for (int i = 0, end; i < m_crossings.Count(); i = end) {
    end = PlaceEnd(i);
    for (int k = i; k < end; ++k) {
      const bool leaves = cover <= 0;
      int next = k;
      while (next < end && m_crossings[next].leaves != leaves) ++next;
      if (next < end) std::swap(m_crossings[k], m_crossings[next]);
      cover += m_crossings[k].leaves ? 1 : -1;
    }
  }
}

// Turns the order so that it begins where the fewest areas cover the rim.
void CapCutter::StartUncovered() {
  const int count = m_crossings.Count();
  int cover = 0, least = 0, start = 0;
  for (int i = 0; i < count; ++i) {
    cover += m_crossings[i].leaves ? 1 : -1;
    if (cover >= least) continue;
    least = cover;
    start = i + 1;
  }
  for (int i = 0; i < start; ++i) m_crossings[i].azimuth += 2 * K7_PI;
  Crossing* const first = m_crossings.Data();
  std::rotate(first, first + start, first + count);
}

// Rings keep their area to the right, so that from where one leaves the cap the area's edge follows the rim
// clockwise to an entry (K. Weiler and P. Atherton, Hidden Surface Removal Using Polygon Area Sorting, 1977).
// Rings may overlap themselves at the seam: then exits and entries do not alternate, and each exit takes the
// first entry that no exit before it has taken.
void CapCutter::JoinRuns() {
  m_open.Clear();
  int taken = 0;
  for (int i = 0; i < m_crossings.Count(); ++i) {
    const Crossing& crossing = m_crossings[i];
    Run& run = m_runs[crossing.run];
    (crossing.leaves ? run.exit : run.entry) = crossing.azimuth;
    if (crossing.leaves)
      m_open.Add(crossing.run);
    else if (taken < m_open.Count())
      m_runs[m_open[taken++]].next = crossing.run;
  }
}

void CapCutter::FinishArea(bool rimInside, DevicePath& path, K7Grfx& g) {
  if (m_runs.Count() == 0 && rimInside) AddRim(path, g);
  if (m_runs.Count() == 0 || m_crossings.Failed()) return;
  OrderPlaces(rimInside ? 1 : 0);
  StartUncovered();
  JoinRuns();
  for (int i = 0; i < m_runs.Count(); ++i) {
    if (m_runs[i].joined) continue;
    path.Start();
    for (int k = i; !m_runs[k].joined; k = m_runs[k].next) {
      Run& run = m_runs[k];
      run.joined = true;
      for (int p = run.begin; p < run.end; ++p) path.Add(m_points[p]);
      AddRimPoints(run.exit, m_runs[run.next].entry, path);
    }
    path.FinishRing(g);
  }
}

void CapCutter::AddLine(const Buffer<K7ECEF>& line, DevicePath& path, K7Grfx& g) const {
  bool inside = false;
  for (int i = 0; i < line.Count(); ++i) {
    const bool goesInside = Holds(line[i]);
    K7ECEF deepest;
    if (goesInside && !inside) {
      path.Start();
      if (i > 0) path.Add(RimCrossing(line[i], line[i - 1]));
    }
    if (goesInside) path.Add(line[i]);
    if (inside && !goesInside) {
      path.Add(RimCrossing(line[i - 1], line[i]));
      path.FinishLine(g);
    } else if (i > 0 && !goesInside && DipsIn(line[i - 1], line[i], deepest)) {
      path.Start();
      path.Add(RimCrossing(deepest, line[i - 1]));
      path.Add(deepest);
      path.Add(RimCrossing(deepest, line[i]));
      path.FinishLine(g);
    }
    inside = goesInside;
  }
  if (inside) path.FinishLine(g);
}

#include "projection/cap_cut.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

namespace {

// Radians: azimuths closer than this differ by rounding only.
constexpr double SAME_PLACE = 1e-9;

}  // namespace

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

void CapCutter::RimPoint(double& lat, double& lon) const {
  static const double ASKEW = 57;
  K7ECEF(m_axis, ASKEW, m_radius * K7_EARTH_RADIUS_NM).GetLatLon(lat, lon);
}

void CapCutter::StartArea() {
  m_points.Clear();
  m_runs.Clear();
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
    if (!inside && goesInside) {
      begin = m_points.Count();
      m_points.Add(RimCrossing(b, a));
    }
    if (goesInside) m_points.Add(b);
    if (inside && !goesInside) {
      m_points.Add(RimCrossing(a, b));
      if (m_points.Failed()) return;
      m_runs.Add({begin, m_points.Count(), Azimuth(m_points[begin]), Azimuth(m_points.Last()), 0, false});
    }
    inside = goesInside;
  }
}

// All crossings clockwise, from where the fewest areas cover the rim. Of two at one place, as at a pole on
// the rim, the one that leaves comes first: else rounding would send the edge once around.
void CapCutter::SortCrossings() {
  m_crossings.Clear();
  for (int i = 0; i < m_runs.Count(); ++i) {
    m_crossings.Add({m_runs[i].exit, i, true});
    m_crossings.Add({std::fmod(m_runs[i].entry + SAME_PLACE, 2 * K7_PI), i, false});
  }
  if (m_crossings.Failed()) return;
  Crossing* const first = m_crossings.Data();
  Crossing* const end = first + m_crossings.Count();
  // Ties by the order of the runs, as they came.
  std::sort(first, end, [](const Crossing& a, const Crossing& b) {
    if (a.azimuth != b.azimuth) return a.azimuth < b.azimuth;
    return a.run != b.run ? a.run < b.run : a.leaves > b.leaves;
  });
  int cover = 0;
  int least = 0;
  Crossing* start = first;
  for (Crossing* c = first; c != end; ++c) {
    cover += c->leaves ? 1 : -1;
    if (cover >= least) continue;
    least = cover;
    start = c + 1;
  }
  std::rotate(first, start, end);
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
    if (crossing.leaves)
      m_open.Add(crossing.run);
    else if (taken < m_open.Count())
      m_runs[m_open[taken++]].next = crossing.run;
  }
}

bool CapCutter::FinishArea(DevicePath& path, K7Grfx& g) {
  if (m_runs.Count() == 0) return true;
  SortCrossings();
  if (m_crossings.Failed()) return false;
  JoinRuns();
  for (int i = 0; i < m_runs.Count(); ++i) {
    if (m_runs[i].joined) continue;
    path.Start();
    for (int k = i; !m_runs[k].joined; k = m_runs[k].next) {
      Run& run = m_runs[k];
      run.joined = true;
      for (int p = run.begin; p < run.end; ++p) path.Add(m_points[p]);
      const double turn = m_runs[run.next].entry - run.exit;
      AddRimPoints(run.exit, run.exit + (turn < -SAME_PLACE ? turn + 2 * K7_PI : turn), path);
    }
    path.FinishRing(g);
  }
  return false;
}

void CapCutter::AddLine(const Buffer<K7ECEF>& line, DevicePath& path, K7Grfx& g) const {
  bool inside = false;
  for (int i = 0; i < line.Count(); ++i) {
    const bool goesInside = Holds(line[i]);
    if (goesInside && !inside) {
      path.Start();
      if (i > 0) path.Add(RimCrossing(line[i], line[i - 1]));
    }
    if (goesInside) path.Add(line[i]);
    if (inside && !goesInside) path.Add(RimCrossing(line[i - 1], line[i]));
    if (inside && !goesInside) path.FinishLine(g);
    inside = goesInside;
  }
  if (inside) path.FinishLine(g);
}

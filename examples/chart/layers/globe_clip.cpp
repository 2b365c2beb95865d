// Cutting on the globe: what lies within an angle of one point.

#include "layers/geo_clip.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>
#include <deque>

namespace {

GlobeLine OnGlobe(const GeoLine& line, double step) {
  GlobeLine out;
  for (const GeoPoint& p : Divide(line, step)) out.emplace_back(p.lat, p.lon);
  return out;
}

K7ECEF Between(const K7ECEF& a, const K7ECEF& b, double t) {
  K7ECEF p(a.X() + t * (b.X() - a.X()), a.Y() + t * (b.Y() - a.Y()), a.Z() + t * (b.Z() - a.Z()));
  p.Normalize();
  return p;
}

// Where the arc between two points, one inside and one outside, meets the rim.
K7ECEF RimCrossing(K7ECEF inside, K7ECEF outside, const GlobeCap& cap) {
  for (int i = 0; i < 40; ++i) {
    const K7ECEF middle = Between(inside, outside, 0.5);
    (cap.axis.DotProduct(middle) >= cap.cosRadius ? inside : outside) = middle;
  }
  return inside;
}

// Azimuth of a surface point seen from the cap's centre, clockwise from north, 0 to 2 pi.
double Azimuth(const K7ECEF& point, const GlobeCap& cap) {
  K7ECEF local = point;
  cap.axis.ECEFToOrtho(local);
  const double angle = std::atan2(local.X(), local.Y());
  return angle < 0 ? angle + 2 * K7_PI : angle;
}

// Radians: azimuths closer than this differ by rounding only.
constexpr double SAME_PLACE = 1e-9;

// A run of a ring inside the cap, from where it enters to where it leaves.
struct Run {
  GlobeLine points;
  double entry = 0;
  double exit = 0;
  Run* next = nullptr;  // the one that the area's edge goes on with
  bool joined = false;
};

// Splits a closed line into its runs inside the cap. A ring that never leaves comes back as one whole ring.
void SplitRing(const GlobeLine& ring, const GlobeCap& cap, std::vector<Run>& runs,
               std::vector<GlobeLine>& whole) {
  const size_t n = ring.size() - 1;  // the last point is the first again
  const auto inside = [&](size_t i) { return cap.axis.DotProduct(ring[i % n]) >= cap.cosRadius; };
  size_t start = 0;
  while (start < n && inside(start)) ++start;
  if (start == n) {
    whole.push_back(ring);
    return;
  }
  GlobeLine run;
  for (size_t k = start; k < start + n; ++k) {
    const K7ECEF& a = ring[k % n];
    const K7ECEF& b = ring[(k + 1) % n];
    const bool inA = inside(k);
    const bool inB = inside(k + 1);
    if (!inA && inB) run.assign(1, RimCrossing(b, a, cap));
    if (inB) run.push_back(b);
    if (inA && !inB) {
      run.push_back(RimCrossing(a, b, cap));
      runs.push_back({run, Azimuth(run.front(), cap), Azimuth(run.back(), cap)});
    }
  }
}

// Even-odd rule in plane latitude and longitude. Rings may run on across 180, so the point is looked for a
// turn to either side too.
bool Contains(const std::vector<GeoLine>& rings, double lat, double lon) {
  bool in = false;
  for (const GeoLine& ring : rings)
    for (size_t i = 0; i + 1 < ring.size(); ++i) {
      const GeoPoint& a = ring[i];
      const GeoPoint& b = ring[i + 1];
      if ((a.lat > lat) == (b.lat > lat)) continue;
      const double edge = a.lon + (b.lon - a.lon) * (lat - a.lat) / (b.lat - a.lat);
      for (const double turn : {-360.0, 0.0, 360.0})
        if (lon + turn < edge) in = !in;
    }
  return in;
}

// Where a ring leaves or enters the cap, on the rim.
struct Crossing {
  double azimuth;
  Run* run;
  bool leaves;
};

// All crossings clockwise, from where the fewest areas cover the rim. Of two at one place, as at a pole on
// the rim, the one that leaves comes first: else rounding would send the edge once around.
std::vector<Crossing> Crossings(std::vector<Run>& runs) {
  std::vector<Crossing> crossings;
  for (Run& run : runs) {
    crossings.push_back({run.exit, &run, true});
    crossings.push_back({std::fmod(run.entry + SAME_PLACE, 2 * K7_PI), &run, false});
  }
  std::sort(crossings.begin(), crossings.end(),
            [](const Crossing& a, const Crossing& b) { return a.azimuth < b.azimuth; });
  int cover = 0;
  int least = 0;
  auto start = crossings.begin();
  for (auto c = crossings.begin(); c != crossings.end(); ++c) {
    cover += c->leaves ? 1 : -1;
    if (cover >= least) continue;
    least = cover;
    start = c + 1;
  }
  std::rotate(crossings.begin(), start, crossings.end());
  return crossings;
}

// Rings keep their area to the right, so that from where one leaves the cap the area's edge follows the rim
// clockwise to an entry (K. Weiler and P. Atherton, Hidden Surface Removal Using Polygon Area Sorting, 1977).
// Rings may overlap themselves at the seam: then exits and entries do not alternate, and each exit takes the
// first entry that no exit before it has taken.
void JoinRuns(std::vector<Run>& runs, const GlobeCap& cap, double step, std::vector<GlobeLine>& out) {
  std::deque<Run*> open;
  for (const Crossing& crossing : Crossings(runs)) {
    if (crossing.leaves) {
      open.push_back(crossing.run);
    } else {
      open.front()->next = crossing.run;
      open.pop_front();
    }
  }
  for (Run& first : runs) {
    GlobeLine ring;
    for (Run* run = &first; !run->joined; run = run->next) {
      run->joined = true;
      ring.insert(ring.end(), run->points.begin(), run->points.end());
      const double turn = run->next->entry - run->exit;
      AddRim(ring, cap, run->exit, run->exit + (turn < -SAME_PLACE ? turn + 2 * K7_PI : turn), step);
    }
    if (!ring.empty()) out.push_back(std::move(ring));
  }
}

}  // namespace

void AddRim(GlobeLine& out, const GlobeCap& cap, double from, double to, double step) {
  const double distance = cap.radius * K7_EARTH_RADIUS_NM;
  // The rim is as finely divided as edges are, but a small cap's rim needs no fewer points than a large
  // one's.
  const double turn = std::clamp(step * K7_DEG_TO_RAD / std::max(std::sin(cap.radius), 1e-6), 0.002, 0.05);
  const int pieces = static_cast<int>(std::ceil((to - from) / turn));
  for (int i = 1; i < pieces; ++i)
    out.emplace_back(cap.axis, (from + (to - from) * i / pieces) * K7_RAD_TO_DEG, distance);
}

std::vector<GlobeLine> CutArea(const std::vector<GeoLine>& rings, const GlobeCap& cap, double step) {
  std::vector<Run> runs;
  std::vector<GlobeLine> out;
  for (const GeoLine& ring : rings)
    if (ring.size() >= 4) SplitRing(OnGlobe(ring, step), cap, runs, out);
  JoinRuns(runs, cap, step, out);

  // Rings that never meet the rim leave it all inside the area or all outside. Any point of it tells; one
  // askew to the compass is least likely to lie in line with a corner.
  if (runs.empty()) {
    static const double ASKEW = 57;
    double lat, lon;
    K7ECEF(cap.axis, ASKEW, cap.radius * K7_EARTH_RADIUS_NM).GetLatLon(lat, lon);
    if (Contains(rings, lat, lon)) {
      GlobeLine rim;
      AddRim(rim, cap, 0, 2 * K7_PI, step);
      out.push_back(std::move(rim));
    }
  }
  return out;
}

std::vector<GlobeLine> CutLine(const GeoLine& line, const GlobeCap& cap, double step) {
  std::vector<GlobeLine> out;
  const GlobeLine points = OnGlobe(line, step);
  GlobeLine piece;
  for (size_t i = 0; i < points.size(); ++i) {
    const bool in = cap.axis.DotProduct(points[i]) >= cap.cosRadius;
    const bool wasIn = !piece.empty();
    if (in && !wasIn && i > 0) piece.push_back(RimCrossing(points[i], points[i - 1], cap));
    if (in) piece.push_back(points[i]);
    if (!in && wasIn) piece.push_back(RimCrossing(points[i - 1], points[i], cap));
    if (!in || i + 1 == points.size()) {
      if (piece.size() > 1) out.push_back(std::move(piece));
      piece.clear();
    }
  }
  return out;
}

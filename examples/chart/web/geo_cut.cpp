#include "web/geo_cut.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Longitudes go on beyond 180, so that neighbours are never more than half a turn apart.
GeoLine Unrolled(const std::vector<K7LatLon>& points) {
  GeoLine line;
  for (const K7LatLon& p : points) {
    const double lat = std::clamp(p.Lat(), -90.0, 90.0);
    if (!std::isfinite(p.Lat()) || !std::isfinite(p.Lon())) continue;
    const double last = line.empty() ? 0 : line.back().lon;
    const double lon =
        line.empty() ? std::clamp(p.Lon(), -540.0, 540.0) : last + std::remainder(p.Lon() - last, 360);
    if (line.empty() || lon != last || lat != line.back().lat) line.push_back({lon, lat});
  }
  return line;
}

// Twice what it encloses; positive when it runs counter-clockwise.
double SignedArea(const GeoLine& ring) {
  double area = 0;
  for (size_t i = 0; i < ring.size(); ++i) {
    const GeoPoint &p = ring[i], &q = ring[(i + 1) % ring.size()];
    area += (p.lon - ring[0].lon) * (q.lat - ring[0].lat) - (q.lon - ring[0].lon) * (p.lat - ring[0].lat);
  }
  return area;
}

GeoPoint At(const GeoPoint& p, const GeoPoint& q, double lon) {
  return {lon, p.lat + (q.lat - p.lat) * (lon - p.lon) / (q.lon - p.lon)};
}

// A ring without its last point; one around a pole goes on over the pole.
GeoLine OpenRing(const std::vector<K7LatLon>& points) {
  GeoLine ring = Unrolled(points);
  if (ring.size() < 3) return {};
  const GeoPoint first = ring.front(), last = ring.back();
  const double end = last.lon + std::remainder(first.lon - last.lon, 360);
  if (std::fabs(end - first.lon) > 180) {
    double sum = 0;
    for (const GeoPoint& p : ring) sum += p.lat;
    const double pole = sum < 0 ? -90 : 90;
    ring.insert(ring.end(), {{end, first.lat}, {end, pole}, {first.lon, pole}});
  } else if (last.lon == first.lon && last.lat == first.lat) {
    ring.pop_back();
  }
  return ring;
}

// What lies west, or east, of a meridian. Rings do not cross themselves, so that the crossings, in the order
// of their latitudes, are the ends of stretches of the meridian that lie within.
std::vector<GeoLine> Side(const GeoLine& ring, double lon, bool west) {
  struct Chain {
    GeoLine points;
    size_t begins = 0, ends = 0;  // crossings by their place along the meridian
    bool isUsed = false;
  };
  const auto isIn = [&](const GeoPoint& p) { return (p.lon < lon) == west; };
  const size_t size = ring.size();
  size_t start = 0;
  while (start < size && (!isIn(ring[(start + 1) % size]) || isIn(ring[start]))) ++start;
  if (start == size) return isIn(ring[0]) ? std::vector<GeoLine>{ring} : std::vector<GeoLine>();
  std::vector<Chain> chains;
  std::vector<std::pair<double, std::pair<size_t, bool>>>
      crossings;  // latitude; chain, and whether it begins
  for (size_t i = 0; i < size; ++i) {
    const GeoPoint &p = ring[(start + i) % size], &q = ring[(start + i + 1) % size];
    const bool enters = !isIn(p) && isIn(q), leaves = isIn(p) && !isIn(q);
    if (enters) chains.emplace_back();
    if (enters || leaves) {
      const GeoPoint crossing = At(p, q, lon);
      chains.back().points.push_back(crossing);
      crossings.push_back({crossing.lat, {chains.size() - 1, enters}});
    }
    if (isIn(q)) chains.back().points.push_back(q);
  }
  std::stable_sort(crossings.begin(), crossings.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (size_t i = 0; i < crossings.size(); ++i) {
    Chain& chain = chains[crossings[i].second.first];
    (crossings[i].second.second ? chain.begins : chain.ends) = i;
  }
  std::vector<GeoLine> pieces;
  for (Chain& first : chains) {
    GeoLine piece;
    for (Chain* chain = &first; !chain->isUsed;) {
      chain->isUsed = true;
      piece.insert(piece.end(), chain->points.begin(), chain->points.end());
      chain = &chains[crossings[chain->ends ^ 1].second.first];
    }
    if (!piece.empty()) pieces.push_back(std::move(piece));
  }
  return pieces;
}

bool IsWest(const GeoPoint& a, const GeoPoint& b) { return a.lon < b.lon; }

void Shift(GeoLine& line, double degrees) {
  for (GeoPoint& p : line) p.lon += degrees;
}

// To where the westernmost point is on the map.
void MoveOntoMap(GeoLine& line) {
  const double least = std::min_element(line.begin(), line.end(), IsWest)->lon;
  Shift(line, -360 * std::floor((least + 180) / 360));
}

// Cuts off what lies west of 180, moves the rest by a turn and goes on with it.
template <class Cut>
std::vector<GeoLine> OntoMap(GeoLine line, Cut side) {
  static const int MOST_TURNS = 4;
  std::vector<GeoLine> pieces, rest;
  if (line.empty()) return pieces;
  MoveOntoMap(line);
  rest.push_back(std::move(line));
  for (int turn = 0; turn < MOST_TURNS && !rest.empty(); ++turn) {
    std::vector<GeoLine> beyond;
    for (GeoLine& part : rest) {
      if (std::max_element(part.begin(), part.end(), IsWest)->lon <= 180) {
        pieces.push_back(std::move(part));
        continue;
      }
      for (GeoLine& piece : side(part, 180, true)) pieces.push_back(std::move(piece));
      for (GeoLine& piece : side(part, 180, false)) {
        Shift(piece, -360);
        beyond.push_back(std::move(piece));
      }
    }
    rest = std::move(beyond);
  }
  return pieces;
}

std::vector<GeoLine> LineSide(const GeoLine& line, double lon, bool west) {
  const auto isIn = [&](const GeoPoint& p) { return (p.lon < lon) == west; };
  std::vector<GeoLine> pieces;
  for (size_t i = 0; i < line.size(); ++i) {
    const bool wasIn = i > 0 && isIn(line[i - 1]);
    if (isIn(line[i]) && !wasIn) pieces.emplace_back();
    if (i > 0 && isIn(line[i]) != wasIn) pieces.back().push_back(At(line[i - 1], line[i], lon));
    if (isIn(line[i])) pieces.back().push_back(line[i]);
  }
  return pieces;
}

struct Ring {
  GeoLine points;
  GeoPoint low, high, probe;  // bounds; a point of it that no cut made
  double area;
  const Ring* within = nullptr;  // the smallest that holds it
  bool isHole = false;
};

Ring RingOf(GeoLine points) {
  Ring ring = {std::move(points), {INFINITY, INFINITY}, {-INFINITY, -INFINITY}, {180, 0}, 0};
  ring.area = std::fabs(SignedArea(ring.points));
  for (const GeoPoint& p : ring.points) {
    ring.low = {std::min(ring.low.lon, p.lon), std::min(ring.low.lat, p.lat)};
    ring.high = {std::max(ring.high.lon, p.lon), std::max(ring.high.lat, p.lat)};
    if (std::fabs(p.lon) < std::fabs(ring.probe.lon)) ring.probe = p;
  }
  return ring;
}

bool Holds(const Ring& outer, const Ring& inner) {
  if (outer.area <= inner.area || outer.low.lon > inner.low.lon || outer.low.lat > inner.low.lat ||
      outer.high.lon < inner.high.lon || outer.high.lat < inner.high.lat)
    return false;
  bool holds = false;
  for (size_t i = 0; i < outer.points.size(); ++i) {
    const GeoPoint &p = outer.points[i], &q = outer.points[(i + 1) % outer.points.size()];
    if ((p.lon > inner.probe.lon) != (q.lon > inner.probe.lon) &&
        At(p, q, inner.probe.lon).lat > inner.probe.lat)
      holds = !holds;
  }
  return holds;
}

// As it is written: closed, an outer ring with its inside to the left.
GeoLine Written(const Ring& ring) {
  GeoLine line = ring.points;
  if ((SignedArea(line) < 0) != ring.isHole) std::reverse(line.begin(), line.end());
  line.push_back(line.front());
  return line;
}

}  // namespace

std::vector<GeoLine> CutLine(const std::vector<K7LatLon>& points) {
  return OntoMap(Unrolled(points), LineSide);
}

std::vector<GeoPolygon> CutArea(const std::vector<std::vector<K7LatLon>>& rings) {
  std::vector<Ring> pieces;
  for (const std::vector<K7LatLon>& ring : rings)
    for (GeoLine& piece : OntoMap(OpenRing(ring), Side)) {
      Ring made = RingOf(std::move(piece));
      if (made.area > 0) pieces.push_back(std::move(made));
    }
  // The largest first: what holds a ring has been looked at before it.
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Ring& a, const Ring& b) { return a.area > b.area; });
  for (size_t i = 0; i < pieces.size(); ++i)
    for (size_t j = i; j-- > 0 && !pieces[i].within;)
      if (Holds(pieces[j], pieces[i])) {
        pieces[i].within = &pieces[j];
        pieces[i].isHole = !pieces[j].isHole;
      }
  std::vector<GeoPolygon> polygons;
  for (const Ring& outer : pieces) {
    if (outer.isHole) continue;
    polygons.push_back({Written(outer)});
    for (const Ring& hole : pieces)
      if (hole.isHole && hole.within == &outer) polygons.back().push_back(Written(hole));
  }
  return polygons;
}

// Cutting on the unrolled map, where latitude and longitude are plane coordinates.

#include "layers/geo_clip.h"

#include <algorithm>
#include <cmath>

namespace {

// One edge of the window: the half-plane where side * (coordinate - limit) >= 0.
struct Edge {
  double GeoPoint::*coordinate;
  double limit;
  double side;

  double Inside(const GeoPoint& p) const { return side * (p.*coordinate - limit); }
};

GeoPoint Cross(const GeoPoint& a, const GeoPoint& b, const Edge& edge) {
  const double t = edge.Inside(a) / (edge.Inside(a) - edge.Inside(b));
  GeoPoint p{a.lat + t * (b.lat - a.lat), a.lon + t * (b.lon - a.lon)};
  p.*edge.coordinate = edge.limit;
  return p;
}

// I. E. Sutherland and G. W. Hodgman, Reentrant Polygon Clipping, Communications of the ACM 17 (1974), for
// one edge.
GeoLine CutRing(const GeoLine& ring, const Edge& edge) {
  GeoLine out;
  for (size_t i = 0; i < ring.size(); ++i) {
    const GeoPoint& a = ring[i];
    const GeoPoint& b = ring[(i + 1) % ring.size()];
    const bool inA = edge.Inside(a) >= 0;
    const bool inB = edge.Inside(b) >= 0;
    if (inA) out.push_back(a);
    if (inA != inB) out.push_back(Cross(a, b, edge));
  }
  return out;
}

// The part of a segment inside the window; false when there is none.
bool CutSegment(GeoPoint& a, GeoPoint& b, const Edge (&edges)[4]) {
  for (const Edge& edge : edges) {
    const bool inA = edge.Inside(a) >= 0;
    const bool inB = edge.Inside(b) >= 0;
    if (!inA && !inB) return false;
    if (!inA) a = Cross(a, b, edge);
    if (!inB) b = Cross(a, b, edge);
  }
  return true;
}

// Data lies within -180 to 180, the window anywhere: the world is repeated to its west and east.
constexpr double TURNS[] = {-360, 0, 360};

GeoLine Turned(const GeoLine& line, double turn) {
  GeoLine out = line;
  for (GeoPoint& p : out) p.lon += turn;
  return out;
}

bool Misses(const GeoLine& line, const FlatWindow& window) {
  const auto [west, east] = std::minmax_element(line.begin(), line.end(),
                                                [](const auto& a, const auto& b) { return a.lon < b.lon; });
  return east->lon < window.west || west->lon > window.east;
}

struct WindowEdges {
  explicit WindowEdges(const FlatWindow& w)
      : edges{{&GeoPoint::lon, w.west, 1},
              {&GeoPoint::lon, w.east, -1},
              {&GeoPoint::lat, w.south, 1},
              {&GeoPoint::lat, w.north, -1}} {}
  Edge edges[4];
};

}  // namespace

GeoLine Divide(const GeoLine& line, double step) {
  GeoLine out;
  for (size_t i = 0; i < line.size(); ++i) {
    out.push_back(line[i]);
    if (i + 1 == line.size()) break;
    const double dLat = line[i + 1].lat - line[i].lat;
    const double dLon = line[i + 1].lon - line[i].lon;
    const int pieces = static_cast<int>(std::ceil(std::max(std::fabs(dLat), std::fabs(dLon)) / step));
    for (int k = 1; k < pieces; ++k)
      out.push_back({line[i].lat + dLat * k / pieces, line[i].lon + dLon * k / pieces});
  }
  return out;
}

std::vector<GeoLine> CutArea(const std::vector<GeoLine>& rings, const FlatWindow& window) {
  const WindowEdges window4(window);
  std::vector<GeoLine> out;
  for (const GeoLine& ring : rings) {
    for (const double turn : TURNS) {
      GeoLine piece = Turned(ring, turn);
      if (piece.empty() || Misses(piece, window)) continue;
      for (const Edge& edge : window4.edges) piece = CutRing(piece, edge);
      if (piece.size() >= 3) out.push_back(std::move(piece));
    }
  }
  return out;
}

std::vector<GeoLine> CutLine(const GeoLine& line, const FlatWindow& window) {
  const WindowEdges window4(window);
  std::vector<GeoLine> out;
  for (const double turn : TURNS) {
    const GeoLine turned = Turned(line, turn);
    if (turned.empty() || Misses(turned, window)) continue;
    GeoLine piece;
    for (size_t i = 0; i + 1 < turned.size(); ++i) {
      GeoPoint a = turned[i];
      GeoPoint b = turned[i + 1];
      if (!CutSegment(a, b, window4.edges)) continue;
      const bool goesOn = !piece.empty() && piece.back().lat == a.lat && piece.back().lon == a.lon;
      if (!goesOn) {
        if (piece.size() > 1) out.push_back(std::move(piece));
        piece.assign(1, a);
      }
      piece.push_back(b);
    }
    if (piece.size() > 1) out.push_back(std::move(piece));
  }
  return out;
}

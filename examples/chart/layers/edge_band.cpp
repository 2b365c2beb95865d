#include "layers/edge_band.h"

#include <algorithm>
#include <cmath>

namespace {

// How far a sharp corner's band may reach into it, in widths.
constexpr double SHARPEST = 3;

struct Normal {
  double x, y;
};

Normal RightOf(const DevicePoint& a, const DevicePoint& b) {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  return {(a.y - b.y) / length, (b.x - a.x) / length};
}

DevicePoint Off(const DevicePoint& p, const Normal& n, double width) {
  return {p.x + n.x * width, p.y + n.y * width};
}

void AddTriangle(const DevicePoint& a, const DevicePoint& b, const DevicePoint& c,
                 std::vector<double>& triangles) {
  triangles.insert(triangles.end(), {a.x, a.y, b.x, b.y, c.x, c.y});
}

// Where the band's inner edge has its corners before and behind a point: one place inside a corner that turns
// to the band, two where it turns away.
struct Corner {
  DevicePoint before, behind;
};

Corner CornerAt(const DevicePoint& p, const Normal& n1, const Normal& n2, double width) {
  const bool towards = n1.x * n2.y - n1.y * n2.x > 0;
  const double square = (n1.x + n2.x) * (n1.x + n2.x) + (n1.y + n2.y) * (n1.y + n2.y);
  if (!towards || square < 1e-6) return {Off(p, n1, width), Off(p, n2, width)};
  const double length = std::sqrt(square), reach = std::min(2 / length, SHARPEST) * width;
  const DevicePoint inner = Off(p, {(n1.x + n2.x) / length, (n1.y + n2.y) / length}, reach);
  return {inner, inner};
}

std::vector<DevicePoint> Distinct(const std::vector<DevicePoint>& points) {
  static const double SAME = 1e-3;
  std::vector<DevicePoint> out;
  for (const DevicePoint& p : points)
    if (out.empty() || std::hypot(p.x - out.back().x, p.y - out.back().y) > SAME) out.push_back(p);
  return out;
}

// A line without repeated points, and what lies across the band from each of its edges.
struct Band {
  std::vector<DevicePoint> points;
  std::vector<Corner> corners;  // one a point
};

Band BandOf(const DeviceLine& line, double width) {
  Band band = {Distinct(line.points), {}};
  const std::vector<DevicePoint>& points = band.points;
  if (points.size() < 2) return {};
  const size_t edges = points.size() - 1;
  std::vector<Normal> normals;
  for (size_t i = 0; i < edges; ++i) normals.push_back(RightOf(points[i], points[i + 1]));
  const bool closed = line.IsClosed();
  for (size_t i = 0; i <= edges; ++i) {
    const Normal& before = i > 0 ? normals[i - 1] : closed ? normals[edges - 1] : normals[0];
    const Normal& behind = i < edges ? normals[i] : closed ? normals[0] : normals[edges - 1];
    band.corners.push_back(CornerAt(points[i], before, behind, width));
  }
  return band;
}

DevicePoint Between(const DevicePoint& a, const DevicePoint& b, double share) {
  return {std::lerp(a.x, b.x, share), std::lerp(a.y, b.y, share)};
}

}  // namespace

void AddEdgeBand(const DeviceLine& line, double width, std::vector<double>& triangles) {
  const auto [points, corners] = BandOf(line, width);
  for (size_t i = 0; i + 1 < points.size(); ++i) {
    AddTriangle(points[i], points[i + 1], corners[i + 1].before, triangles);
    AddTriangle(points[i], corners[i + 1].before, corners[i].behind, triangles);
    AddTriangle(points[i + 1], corners[i + 1].behind, corners[i + 1].before, triangles);
  }
}

void AddHatching(const DeviceLine& line, double width, double apart, K7Grfx& g) {
  const Band band = BandOf(line, width);
  double along = apart / 2;  // the edge's start
  for (size_t i = 0; i + 1 < band.points.size(); ++i) {
    const DevicePoint &from = band.points[i], &to = band.points[i + 1];
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    for (; along < length; along += apart) {
      const DevicePoint outer = Between(from, to, along / length);
      const DevicePoint inner = Between(band.corners[i].behind, band.corners[i + 1].before, along / length);
      g.MoveTo(outer.x, outer.y);
      g.LineTo(inner.x, inner.y);
    }
    along -= length;
  }
}

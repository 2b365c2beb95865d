// Polygons of any rings. Each coordinate is a byte that tells how the bytes behind it are read: on a coarse
// grid, where everything touches, a step from the number before, where everything is nearly on one line, or
// any bits. Two polygons go into one cutter. What comes out has vertices within the rings' bounds, triangles
// with an area each, and contours of the same area in all.

#include <k7/foundation/error_string.h>
#include <k7/geometry.h>

#include "input.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

double TakeNumber(Input& in, double before) {
  const int how = in.Take<uint8_t>();
  switch (how % 8) {
    case 0:
      return in.Take<double>();
    case 1:
      return std::nextafter(before, how < 128 ? 1e300 : -1e300);
    case 2:
      return before + in.Take<int8_t>() * 1e-15;
    case 3:
      return in.Take<int16_t>() / 180.0;
    default:
      return how / 8 % 8;
  }
}

double Area(const K7ShpXY& a, const K7ShpXY& b, const K7ShpXY& c) {
  return ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)) / 2;
}

struct Polygon {
  std::vector<K7ShpXY> points;
  std::vector<int> sizes;
};

Polygon TakePolygon(Input& in) {
  Polygon polygon;
  for (int parts = 1 + in.Take<uint8_t>() % 4; parts > 0; --parts) {
    const int size = in.Take<uint8_t>() % 64;
    polygon.sizes.push_back(size);
    K7ShpXY p = {0, 0};
    for (int i = 0; i < size; ++i) polygon.points.push_back(p = {TakeNumber(in, p.x), TakeNumber(in, p.y)});
  }
  polygon.points.push_back({0, 0});  // never an empty array
  return polygon;
}

void Check(const K7PolyBifurcator& cut, int firstTriangle, int firstContour, const Polygon& polygon) {
  double most = 0;
  K7ShpRect box = {0, 0, 0, 0};
  for (const K7ShpXY& p : polygon.points) {
    box = {std::min(box.xMin, p.x), std::min(box.yMin, p.y), std::max(box.xMax, p.x),
           std::max(box.yMax, p.y)};
    most = std::max({most, std::fabs(p.x), std::fabs(p.y)});
  }
  const double hair = 1e-15 * most + 1e-120;
  const K7ShpXY* const vertices = cut.Vertices();
  const auto vertex = [&](int32_t i) {
    Require(i >= 0 && i < cut.VertexCount());
    const K7ShpXY& p = vertices[i];
    Require(p.x >= box.xMin - hair && p.x <= box.xMax + hair);
    Require(p.y >= box.yMin - hair && p.y <= box.yMax + hair);
    return p;
  };
  double triangles = 0, contours = 0;
  for (int i = firstTriangle; i < cut.TriangleCount(); ++i) {
    const int32_t* const t = cut.Triangles() + int64_t{3} * i;
    const double area = Area(vertex(t[0]), vertex(t[1]), vertex(t[2]));
    Require(t[0] != t[1] && t[1] != t[2] && t[2] != t[0] && area >= -hair * most);
    triangles += area;
  }
  for (int i = firstContour; i < cut.ContourCount(); ++i) {
    int count = 0;
    const int32_t* const contour = cut.Contour(i, count);
    Require(contour && count >= 3);
    for (int k = 2; k < count; ++k)
      contours += Area(vertex(contour[0]), vertex(contour[k - 1]), vertex(contour[k]));
  }
  Require(std::fabs(triangles - contours) <= 1e-9 * most * most);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  K7PolyBifurcator cut;
  for (int i = 0; i < 2 && !in.IsEmpty(); ++i) {
    const Polygon polygon = TakePolygon(in);
    const int triangles = cut.TriangleCount(), contours = cut.ContourCount();
    const int added =
        cut.Add(polygon.points.data(), polygon.sizes.data(), static_cast<int>(polygon.sizes.size()));
    const bool inRange = std::all_of(polygon.points.begin(), polygon.points.end() - 1, [](auto& p) {
      return std::fabs(p.x) <= 1e120 && std::fabs(p.y) <= 1e120;
    });
    Require(inRange ? added >= 0 : added == K7_ERR_INVALID_DATA);
    Require(cut.TriangleCount() == triangles + std::max(added, 0));
    if (inRange) Check(cut, triangles, contours, polygon);
  }
  return 0;
}

// Views and paths of any numbers. The input chooses a projection with its parameters, a window, a centre and
// a range or magnification, and then features: each point's two numbers are a byte that tells how the bytes
// behind it are read, as fractions of the world or as any bits. What reaches the drawing surface is finite,
// within the window and its overhang, in order and as many as was said.

#include <k7/foundation/error_string.h>
#include <k7/projection.h>

#include "input.h"

#include <cmath>
#include <memory>
#include <vector>

namespace {

// Checks what it is given.
class Checker : public K7GrfxK7 {
 public:
  Checker(int width, int height) : K7GrfxK7(width, height) {}

  void MoveTo(double dx, double dy) override {
    m_drawing = true;
    Check(dx, dy);
  }
  void LineTo(double dx, double dy) override {
    Require(m_drawing);
    Check(dx, dy);
  }
  void ClosePath() override {
    Require(m_drawing);
    m_drawing = false;
  }
  void Expect(int count) {
    Require(count == m_count);
    m_count = 0;
    m_drawing = false;
  }

 private:
  void Check(double dx, double dy) {
    static const double BEYOND = 64.01;
    Require(dx >= -BEYOND && dx <= Width() + BEYOND && dy >= -BEYOND && dy <= Height() + BEYOND);
    ++m_count;
  }

  bool m_drawing = false;
  int m_count = 0;
};

std::unique_ptr<K7Projection> TakeProjection(Input& in, double lat, double lon, double range) {
  const auto type = static_cast<K7ProjType>(in.Below(9));
  if (in.Below(2))
    return std::unique_ptr<K7Projection>(K7MapView::CreateProjection(type, lat, lon, range, nullptr));
  std::unique_ptr<K7Projection> made(K7Projection::Create(type, nullptr));
  const double parallel = in.Number(90), other = in.Number(90);
  if (type == K7_PROJ_LAMBERT) made = std::make_unique<K7LambertProjection>(parallel, other, lon, lat);
  if (type == K7_PROJ_ALBERS) made = std::make_unique<K7AlbersProjection>(parallel, other, in.Number(180), 0);
  if (type == K7_PROJ_RECTANGULAR) made->ParamValue(0, parallel);
  if (type == K7_PROJ_PERSPECTIVE) {
    const double sizes[] = {4e6, 360, 90, 90, 45};
    for (int i = 0; i < 5; ++i) made->ParamValue(i, in.Number(sizes[i]));
    if (in.Below(2)) static_cast<K7PerspectiveProjection&>(*made).SetClipPlanes();
  }
  return made;
}

void CheckView(const K7MapView& view, Input& in) {
  double north = 0, south = 0, east = 0, west = 0, lat = 0, lon = 0, dx = 0, dy = 0;
  Require(view.GetExtent(north, south, east, west));
  Require(north <= 90 && south >= -90 && south <= north && west <= east && east - west <= 360 + 1e-9);
  const K7ChartRect extent = view.GetExtent();
  Require(!extent.IsEmpty() && extent.East() <= 180 && extent.West() >= -180);
  const double x = (in.Number(1) + 1) / 2 * view.Width(), y = (in.Number(1) + 1) / 2 * view.Height();
  if (!view.FromDevice(x, y, lat, lon)) return;
  Require(std::fabs(lat) <= 90 && std::fabs(lon) <= 180);
  if (x < 0 || x > view.Width() || y < 0 || y > view.Height() || !view.ToDevice(lat, lon, dx, dy)) return;
  // Seen, so it is within what is said to be seen.
  const double hair = 1e-9 + 1e-6 * (east - west);
  const double off = std::remainder(lon - (east + west) / 2, 360);
  Require(lat <= north + hair && lat >= south - hair && std::fabs(off) <= (east - west) / 2 + hair);
  double scaleNorth = 0, scaleEast = 0, angle = 0;
  if (view.Scale(lat, lon, scaleNorth, scaleEast))
    Require(std::isfinite(scaleNorth) && std::isfinite(scaleEast));
  if (view.TrueNorth(lat, lon, angle)) Require(std::fabs(angle) <= 180);
}

struct Rows {
  std::vector<K7LatLon> points;
  std::vector<int> sizes;
};

Rows TakeRows(Input& in) {
  Rows rows;
  for (int parts = 1 + in.Below(3); parts > 0; --parts) {
    const int size = in.Below(12);
    rows.sizes.push_back(size);
    for (int i = 0; i < size; ++i) {
      const double lat = in.Number(90);
      rows.points.emplace_back(lat, in.Number(in.Below(4) ? 180 : 540));
    }
  }
  rows.points.emplace_back();  // never an empty array
  return rows;
}

void CheckFeature(const K7MapFeatures& features, int feature) {
  const K7ChartRect bounds = features.Bounds(feature);
  const int count = features.PointCount(feature);
  for (int i = 0; i < count; ++i) {
    const K7LatLon p = features.Point(feature, i);
    Require(std::fabs(p.Lat()) <= 90 && std::isfinite(p.Lon()));
    Require(p.Lat() <= bounds.North() && p.Lat() >= bounds.South());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  const double lat = in.Number(90), lon = in.Number(180), range = in.Number(8000);
  const std::unique_ptr<K7Projection> projection = TakeProjection(in, lat, lon, range);
  const int width = 1 + in.Take<uint16_t>() % 2000, height = 1 + in.Take<uint16_t>() % 2000;
  K7MapView view(projection.get(), width, height);
  const int code = in.Below(4) ? view.LookAt(lat, lon, range) : view.LookAtZoom(lat, lon, range);
  Require((code == K7_OK) == view.IsSet());
  if (code == K7_OK) CheckView(view, in);

  Checker checker(width, height);
  K7MapPath path(view);
  const auto draw = [&](auto operation) {
    const int points = operation(&checker);
    Require(view.IsSet() ? points >= 0 : points == K7_ERR_BAD_ARGUMENT);
    checker.Expect(points < 0 ? 0 : points);
  };
  draw([&](K7Grfx* g) { return path.WholeMap(g); });
  K7MapFeatures features;
  while (!in.IsEmpty() && features.Count() < 20) {
    const auto kind = static_cast<K7MapFeatureKind>(in.Below(3));
    const Rows rows = TakeRows(in);
    const int feature =
        features.Add(kind, rows.points.data(), rows.sizes.data(), static_cast<int>(rows.sizes.size()));
    Require(feature == features.Count() - 1);
    CheckFeature(features, feature);
    features.Contains(feature, lat, lon);
    draw([&](K7Grfx* g) { return path.Area(g, features, feature); });
    draw([&](K7Grfx* g) { return path.Outline(g, features, feature); });
    draw([&](K7Grfx* g) {
      return path.GreatCircle(g, rows.points.data(), static_cast<int>(rows.points.size()));
    });
  }
  return 0;
}

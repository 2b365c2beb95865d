#include "geometry/shp_rows.h"

#include "geometry/shp_layer_store.h"
#include "projection/seam.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cmath>

namespace {

// False when the reader refuses a point.
bool TakeRow(const ShpLayerRec& record, int first, int count, ShpRows& rows) {
  const int start = rows.points.Count();
  for (int i = first; i < first + count; ++i) {
    double lat, lon;
    if (record.Obj()->GetPoint(record.Store()->file.get(), i, lat, lon) != 0) return false;
    if (OnEarth(lat, lon)) rows.points.Add({lon, std::clamp(lat, -90.0, 90.0)});
  }
  const K7ShpXY* const row = rows.points.Data() + start;
  const bool isOpen =
      rows.points.Count() - start > 1 && (row->x != rows.points.Last().x || row->y != rows.points.Last().y);
  if (record.IsArea() && isOpen) rows.points.Add(*row);
  rows.sizes.Add(rows.points.Count() - start);
  if (rows.points.Failed() || rows.sizes.Failed() || record.GetPolyCount() == 0) return true;
  const int taken = rows.sizes.Last();
  const auto lonOf = [&](int i) -> double& { return rows.points[start + i].x; };
  if (!record.IsArea() || CarriesOnToRing(taken, lonOf)) CarryOn(taken, lonOf);
  return true;
}

struct Stretch {
  double west = 1e9, east = -1e9;
  void Include(const Stretch& other) {
    west = std::min(west, other.west);
    east = std::max(east, other.east);
  }
  bool IsWithin(const Stretch& other) const { return west >= other.west && east <= other.east; }
};

Stretch StretchOf(const K7ShpXY* row, int count) {
  Stretch stretch;
  for (int i = 0; i < count; ++i) stretch.Include({row[i].x, row[i].x});
  return stretch;
}

// Holes go with the ring that was carried on around them.
void TurnToFellows(ShpRows& rows) {
  constexpr Stretch WORLD{-180, 180};
  Stretch beyond;
  K7ShpXY* row = rows.points.Data();
  for (int i = 0; i < rows.sizes.Count(); row += rows.sizes[i++]) {
    const Stretch own = StretchOf(row, rows.sizes[i]);
    if (rows.sizes[i] > 0 && !own.IsWithin(WORLD)) beyond.Include(own);
  }
  if (beyond.east < beyond.west) return;
  row = rows.points.Data();
  for (int i = 0; i < rows.sizes.Count(); row += rows.sizes[i++]) {
    const Stretch own = StretchOf(row, rows.sizes[i]);
    if (own.IsWithin(beyond)) continue;
    for (const double turn : {360.0, -360.0}) {
      if (!Stretch{own.west + turn, own.east + turn}.IsWithin(beyond)) continue;
      for (int k = 0; k < rows.sizes[i]; ++k) row[k].x += turn;
      break;
    }
  }
}

}  // namespace

int ShpRows::Take(const ShpLayerRec& record) {
  points.Clear();
  sizes.Clear();
  const K7ShpObj* const obj = record.Obj();
  if (!obj) return 0;
  const int polys = record.GetPolyCount();
  bool isWhole = polys > 0 || TakeRow(record, 0, obj->GetPointCount(), *this);
  for (int i = 0; i < polys && isWhole; ++i)
    isWhole = TakeRow(record, record.PolyStart(i), record.GetPolySize(i), *this);
  if (points.Failed() || sizes.Failed()) return K7_ERR_MEMORY;
  if (!isWhole) {
    points.Clear();
    sizes.Clear();
  }
  if (record.IsArea()) TurnToFellows(*this);
  return 0;
}

K7ChartRect ShpRows::Bounds() const {
  if (points.Count() == 0) return {};
  K7ShpXY least = points[0], most = least;
  for (int i = 1; i < points.Count(); ++i) {
    least = {std::min(least.x, points[i].x), std::min(least.y, points[i].y)};
    most = {std::max(most.x, points[i].x), std::max(most.y, points[i].y)};
  }
  if (most.x - least.x >= 360) return {most.y, least.y, 180, -180};
  return {most.y, least.y, std::remainder(most.x, 360), std::remainder(least.x, 360)};
}

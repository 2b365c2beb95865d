#include "geometry/shp_layer_rec.h"

#include "geometry/shp_layer_store.h"
#include "geometry/tess_block.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cstdlib>

namespace {

// Where a parallel enters and leaves the rings.
bool FindCrossings(const K7ShapeRec& record, double lat, Buffer<double>& crossings) {
  for (int poly = 0; poly < record.GetPolyCount(); ++poly) {
    double lastLat = 0, lastLon = 0;
    for (int i = 0; i < record.GetPolySize(poly); ++i) {
      double pointLat, pointLon;
      if (record.GetPolyPoint(poly, i, pointLat, pointLon) != 0) return false;
      if (i > 0 && (lastLat > lat) != (pointLat > lat))
        crossings.Add(lastLon + (pointLon - lastLon) * (lat - lastLat) / (pointLat - lastLat));
      lastLat = pointLat;
      lastLon = pointLon;
    }
  }
  std::sort(crossings.Data(), crossings.Data() + crossings.Count());
  return crossings.Count() >= 2 && !crossings.Failed();
}

// The middle of the widest stretch that a parallel halfway up lies inside.
bool FindInside(const K7ShapeRec& record, double& lat, double& lon) {
  K7ChartRect bounds;
  if (record.GetBounds(bounds) != 0) return false;
  const double middle = (bounds.North() + bounds.South()) / 2;
  Buffer<double> crossings;
  if (!FindCrossings(record, middle, crossings)) return false;
  double widest = -1;
  for (int i = 0; i + 1 < crossings.Count(); i += 2) {
    const double width = crossings[i + 1] - crossings[i];
    if (!(width > widest)) continue;
    widest = width;
    lat = middle;
    lon = crossings[i] + width / 2;
  }
  return widest > 0;
}

}  // namespace

const K7ShpObj* ShpLayerRec::Obj() const { return m_store->file->GetRecord(m_number)->Obj(); }

bool ShpLayerRec::IsArea() const {
  const K7ShpObj* const obj = Obj();
  const int type = obj ? obj->Type() : K7_SHP_NULL;
  return type == K7_SHP_POLYGON || type == K7_SHP_POLYGON_Z || type == K7_SHP_POLYGON_M;
}

int ShpLayerRec::GetBounds(K7ChartRect& bounds) const {
  const K7ShpObj* const obj = Obj();
  if (!obj) return K7_ERR_NOT_FOUND;
  double north, south, east, west;
  const int err = obj->GetBounds(m_store->file.get(), north, south, east, west);
  if (err == 0) bounds.Init(north, south, east, west);
  return err;
}

int ShpLayerRec::GetPos(double& lat, double& lon) const {
  const K7ShpObj* const obj = Obj();
  if (!obj || obj->GetPointCount() + (obj->GetPolyCount() == 0) == 0) return K7_ERR_NOT_FOUND;
  if (IsArea() && FindInside(*this, lat, lon)) return 0;
  if (obj->GetPolyCount() == 0 && obj->GetPos(m_store->file.get(), lat, lon) == 0) return 0;
  int longest = 0, first = 0, start = 0;
  for (int i = 0; i < obj->GetPolyCount(); start += obj->GetPolySize(i++)) {
    if (obj->GetPolySize(i) <= longest) continue;
    longest = obj->GetPolySize(i);
    first = start;
  }
  return obj->GetPoint(m_store->file.get(), first + longest / 2, lat, lon);
}

int ShpLayerRec::GetPolyCount() const {
  const K7ShpObj* const obj = Obj();
  return obj ? obj->GetPolyCount() : 0;
}

int ShpLayerRec::GetPolySize(int i) const {
  const K7ShpObj* const obj = Obj();
  return obj && obj->GetPolyCount() > 0 ? obj->GetPolySize(i) : int{K7_ERR_OUT_OF_RANGE};
}

int ShpLayerRec::GetPolyPoint(int poly, int i, double& lat, double& lon) const {
  if (i < 0 || i >= GetPolySize(poly)) return K7_ERR_OUT_OF_RANGE;
  const K7ShpObj* const obj = Obj();
  return obj->GetPoint(m_store->file.get(), static_cast<const K7ShpPoly*>(obj)->PartStarts()[poly] + i, lat,
                       lon);
}

// Made once, by whoever comes first; null without memory, and where there is no area to cut.
const TessBlock* ShpLayerRec::Tess() {
  if (const TessBlock* const made = m_tess.load(std::memory_order_acquire)) return made;
  if (!IsArea()) return nullptr;
  const K7LockGuard lock(m_store->mutex);
  if (const TessBlock* const made = m_tess.load(std::memory_order_relaxed)) return made;
  Buffer<K7LatLon> points;
  Buffer<int> sizes;
  for (int poly = 0; poly < GetPolyCount(); ++poly) {
    sizes.Add(GetPolySize(poly));
    for (int i = 0; i < GetPolySize(poly); ++i) {
      double lat, lon;
      if (GetPolyPoint(poly, i, lat, lon) != 0) return nullptr;
      points.Add(K7LatLon(lat, lon));
    }
  }
  if (points.Failed() || sizes.Failed()) return nullptr;
  m_store->cut.Clear();
  if (m_store->cut.Add(points.Data(), sizes.Data(), sizes.Count()) < 0) return nullptr;
  m_tess.store(MakeTessBlock(m_store->cut), std::memory_order_release);
  return m_tess.load(std::memory_order_relaxed);
}

int ShpLayerRec::GetTriVertCount() {
  const TessBlock* const tess = Tess();
  return tess ? tess->vertexCount : 0;
}

const K7ShpXY* ShpLayerRec::GetTriVerts() {
  const TessBlock* const tess = Tess();
  return tess ? tess->Vertices() : nullptr;
}

const uint16_t* ShpLayerRec::GetTriVertIndices() {
  const TessBlock* const tess = Tess();
  return tess ? tess->Indices() : nullptr;
}

int ShpLayerRec::GetTessGroupCount() {
  const TessBlock* const tess = Tess();
  return tess ? tess->groupCount : 0;
}

int ShpLayerRec::GetTessGroups(const K7STessGroup*& groups) {
  const TessBlock* const tess = Tess();
  groups = tess ? tess->Groups() : nullptr;
  return tess ? tess->groupCount : 0;
}

int ShpLayerRec::FreeCache() {
  TessBlock* const tess = m_tess.exchange(nullptr);
  if (!tess) return 0;
  const size_t size = tess->Size();
  std::free(tess);
  return static_cast<int>(std::min<size_t>(size, INT32_MAX));
}

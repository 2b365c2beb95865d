#include "geometry/shp_layer_rec.h"

#include "geometry/shp_layer_store.h"
#include "geometry/shp_rows.h"
#include "geometry/tess_block.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

// Where a parallel enters and leaves the rings.
void FindCrossings(const ShpRows& rows, double lat, Buffer<double>& crossings) {
  const K7ShpXY* p = rows.points.Data();
  for (int row = 0; row < rows.sizes.Count(); p += rows.sizes[row++])
    for (int i = 1; i < rows.sizes[row]; ++i)
      if ((p[i - 1].y > lat) != (p[i].y > lat))
        crossings.Add(p[i - 1].x + (p[i].x - p[i - 1].x) * (lat - p[i - 1].y) / (p[i].y - p[i - 1].y));
  std::sort(crossings.Data(), crossings.Data() + crossings.Count());
}

// The middle of the widest stretch that a parallel lies inside: 0, K7_ERR_NOT_FOUND or K7_ERR_MEMORY.
int FindInside(const ShpRows& rows, double parallel, double& lat, double& lon) {
  Buffer<double> crossings;
  FindCrossings(rows, parallel, crossings);
  if (crossings.Failed()) return K7_ERR_MEMORY;
  double widest = 0;
  for (int i = 0; i + 1 < crossings.Count(); i += 2) {
    const double width = crossings[i + 1] - crossings[i];
    if (width <= widest) continue;
    widest = width;
    lat = parallel;
    lon = std::remainder(crossings[i] + width / 2, 360);
  }
  return widest > 0 ? 0 : int{K7_ERR_NOT_FOUND};
}

}  // namespace

int ShpLayerRec::Init(K7ShpLayerStore* store, int number, ShpRows& rows) {
  m_store = store;
  m_number = number;
  if (const int err = rows.Take(*this)) return err;
  m_bounds = rows.Bounds();
  return 0;
}

const K7ShpObj* ShpLayerRec::Obj() const { return m_store->file->GetRecord(m_number)->Obj(); }

bool ShpLayerRec::IsArea() const {
  const K7ShpObj* const obj = Obj();
  const int type = obj ? obj->Type() : K7_SHP_NULL;
  return type == K7_SHP_POLYGON || type == K7_SHP_POLYGON_Z || type == K7_SHP_POLYGON_M;
}

int ShpLayerRec::GetBounds(K7ChartRect& bounds) const {
  if (m_bounds.IsEmpty()) return K7_ERR_NOT_FOUND;
  bounds = m_bounds;
  return 0;
}

int ShpLayerRec::GetPos(double& lat, double& lon) const {
  if (m_bounds.IsEmpty()) return K7_ERR_NOT_FOUND;
  ShpRows rows;
  if (const int err = rows.Take(*this)) return err;
  if (IsArea()) {
    const int err = FindInside(rows, (m_bounds.North() + m_bounds.South()) / 2, lat, lon);
    if (err != K7_ERR_NOT_FOUND) return err;
  }
  int longest = 0, first = 0, start = 0;
  for (int i = 0; i < rows.sizes.Count(); start += rows.sizes[i++]) {
    if (rows.sizes[i] <= longest) continue;
    longest = rows.sizes[i];
    first = start;
  }
  const K7ShpXY& middle = rows.points[first + longest / 2];
  lat = middle.y;
  lon = std::remainder(middle.x, 360);
  return 0;
}

int ShpLayerRec::GetPolyCount() const {
  const K7ShpObj* const obj = Obj();
  return obj ? obj->GetPolyCount() : 0;
}

int ShpLayerRec::GetPolySize(int i) const {
  const K7ShpObj* const obj = Obj();
  return obj && obj->GetPolyCount() > 0 ? obj->GetPolySize(i) : int{K7_ERR_OUT_OF_RANGE};
}

int ShpLayerRec::PolyStart(int poly) const {
  return static_cast<const K7ShpPoly*>(Obj())->PartStarts()[poly];
}

int ShpLayerRec::GetPolyPoint(int poly, int i, double& lat, double& lon) const {
  if (i < 0 || i >= GetPolySize(poly)) return K7_ERR_OUT_OF_RANGE;
  return Obj()->GetPoint(m_store->file.get(), PolyStart(poly) + i, lat, lon);
}

// Made once, by whoever comes first; null without memory, and for what is no area. One that cannot be cut
// has no triangles: it is not tried again each time.
const TessBlock* ShpLayerRec::Tess() {
  if (const TessBlock* const made = m_tess.load(std::memory_order_acquire)) return made;
  if (!IsArea()) return nullptr;
  const K7LockGuard lock(m_store->mutex);
  if (const TessBlock* const made = m_tess.load(std::memory_order_relaxed)) return made;
  ShpRows rows;
  if (rows.Take(*this) != 0) return nullptr;
  m_store->cut.Clear();
  const int count = rows.sizes.Count();
  if (count > 0 && m_store->cut.Add(rows.points.Data(), rows.sizes.Data(), count) == K7_ERR_MEMORY)
    return nullptr;
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

#include <k7/geometry/tile_feature.h>

#include <k7/foundation/error_string.h>

#include "foundation/append.h"

#include <cstdlib>
#include <cstring>

static_assert(sizeof(K7LatLon) == 2 * sizeof(double) && sizeof(K7ShpXY) == 2 * sizeof(double));

K7TileFeature::~K7TileFeature() { std::free(m_own); }

void K7TileFeature::Clear() {
  std::free(m_own);
  m_own = nullptr;
  m_lat = m_lon = nullptr;
  m_pointCount = 0;
  m_starts.Clear();
}

int K7TileFeature::AddPart(int size) {
  if (size < 0 || size > INT32_MAX - m_pointCount) return K7_ERR_BAD_ARGUMENT;
  if (const int err = m_starts += m_pointCount; err < 0) return err;
  m_pointCount += size;
  return 0;
}

int K7TileFeature::SetPoints(const K7LatLon* points, const int* sizes, int parts) {
  Clear();
  if (parts < 0 || (parts > 0 && (!points || !sizes))) return K7_ERR_BAD_ARGUMENT;
  if (parts == 0) return 0;
  m_lat = reinterpret_cast<const double*>(points);
  m_lon = m_lat + 1;
  int err = m_starts.GrowTo(parts, false);
  for (int i = 0; i < parts && err == 0; ++i) err = AddPart(sizes[i]);
  if (err) Clear();
  return err;
}

int K7TileFeature::SetShape(const K7ShpPoly& shape) {
  Clear();
  const K7ShpXY* const points = shape.Points();
  if (!points) return 0;
  m_lon = &points->x;
  m_lat = &points->y;
  int err = m_starts.GrowTo(shape.GetPolyCount(), false);
  for (int i = 0; i < shape.GetPolyCount() && err == 0; ++i) err = AddPart(shape.GetPolySize(i));
  if (err) Clear();
  return err;
}

int K7TileFeature::PartSize(int part) const {
  if (!m_starts.ValidIdx(part)) return 0;
  return (part + 1 < m_starts.Count() ? m_starts[part + 1] : m_pointCount) - m_starts[part];
}

int K7TileFeature::TakeOver(const K7Array& points, const K7IntArray& starts) {
  const size_t size = static_cast<size_t>(points.Count()) * sizeof(K7LatLon);
  auto* const own = static_cast<K7LatLon*>(std::malloc(size + 1));
  if (!own || m_starts.GrowTo(starts.Count(), false) != 0) {
    std::free(own);
    return K7_ERR_MEMORY;
  }
  std::memcpy(own, points.Data(), size);
  m_starts.ClearNoFree();
  m_starts.Insert(starts.Data(), -1, starts.Count());
  std::free(m_own);
  m_own = own;
  m_lat = reinterpret_cast<const double*>(own);
  m_lon = m_lat + 1;
  m_pointCount = points.Count();
  return 0;
}

void K7PolyPtMngr::SetTileBnd(double north, double south, double east, double west) {
  m_north = north;
  m_south = south;
  m_east = east;
  m_west = west;
}

int K7PolyPtMngr::AddPoint(double lat, double lon) {
  const int count = m_points.Count();
  if (count >= INT32_MAX - m_base) return K7_ERR_MEMORY;
  const double point[2] = {lat, lon};
  if (const int err = Append(m_points, point)) return err;
  return m_base + count;
}

int K7PolyPtMngr::AddCorner(int side) {
  const bool north = side == 0 || side == 3, east = side < 2;
  return AddPoint(north ? m_north : m_south, east ? m_east : m_west);
}

void K7PolyPtMngr::Truncate(int count) { m_points.Remove(count, m_points.Count() - count); }

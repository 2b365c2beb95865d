#include <k7/geometry/shape_tile.h>

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cstdlib>

namespace {

template <class T>
void DeleteAll(K7PtrArray& array) {
  for (int i = 0; i < array.Count(); ++i) delete static_cast<T*>(array[i]);
  array.Clear();
}

template <class T>
const T& At(const void* element) {
  return **static_cast<T* const*>(element);
}

}  // namespace

K7TileString::~K7TileString() { std::free(m_ranks); }

bool K7TileString::GetPoint(int i, double& lat, double& lon) const {
  if (!m_indexes.ValidIdx(i)) return false;
  GetPos(m_indexes[i], lat, lon);
  return true;
}

void K7TileString::GetPos(int index, double& lat, double& lon) const {
  const int created = index - m_feature->PointCount();
  lat = created < 0 ? std::clamp(m_feature->Lat(index), -90.0, 90.0) : m_points->Lat(created);
  lon = created < 0 ? std::clamp(m_feature->Lon(index), -180.0, 180.0) : m_points->Lon(created);
}

K7TileBrdrPt::K7TileBrdrPt(const K7ShapeTile& tile, double lat, double lon, K7TileSide side, bool isEntry)
    : m_lat(lat), m_lon(lon), m_side(side), m_isEntry(isEntry) {
  const double width = tile.East() - tile.West(), height = tile.North() - tile.South();
  const double along[] = {lon - tile.West(), tile.North() - lat, tile.East() - lon, lat - tile.South()};
  const double starts[] = {0, width, width + height, 2 * width + height, 2 * (width + height)};
  m_perimeter = std::clamp(along[side] + starts[side], starts[side], starts[side + 1]);
}

void K7TileBrdrPt::SetOwner(K7LineString* owner) {
  m_owner = owner;
  if (owner) (m_isEntry ? owner->m_entry : owner->m_exit) = this;
}

// At one place a side ends where the next begins, and a ring leaves before it comes back.
int K7TileBrdrPt::Comp(const void* a, const void* b) {
  const K7TileBrdrPt &p = At<K7TileBrdrPt>(a), &q = At<K7TileBrdrPt>(b);
  if (p.m_perimeter != q.m_perimeter) return p.m_perimeter < q.m_perimeter ? -1 : 1;
  if (p.m_side != q.m_side) return p.m_side < q.m_side ? -1 : 1;
  return p.m_isEntry - q.m_isEntry;
}

int K7LineString::Prepend(K7LineString* other) {
  if (!other || other == this) return K7_ERR_BAD_ARGUMENT;
  if (other->m_indexes.Count() > 0)
    if (const int err = m_indexes.Insert(other->m_indexes.Data(), 0, other->m_indexes.Count())) return err;
  m_tile = other->m_tile;
  other->m_tile = nullptr;
  if (other->m_entry) other->m_entry->SetOwner(this);
  m_entry = other->m_entry;
  other->m_entry = nullptr;
  other->m_indexes.ClearNoFree();
  return 0;
}

int K7LineString::Comp(const void* a, const void* b) {
  const K7LineString &p = At<K7LineString>(a), &q = At<K7LineString>(b);
  if (p.m_isJoined != q.m_isJoined) return p.m_isJoined ? 1 : -1;
  const double pArea = p.m_bounds.Area(), qArea = q.m_bounds.Area();
  return pArea == qArea ? 0 : pArea > qArea ? -1 : 1;
}

K7ShapeTile::~K7ShapeTile() = default;

void K7PointTile::Clear() { m_points.Clear(); }

K7PolylineTile::~K7PolylineTile() { K7PolylineTile::Clear(); }

void K7PolylineTile::Clear() {
  m_polylines.Clear();
  DeleteAll<K7PolylineString>(m_pieces);
}

K7PolygonTile::~K7PolygonTile() { K7PolygonTile::Clear(); }

void K7PolygonTile::Clear() {
  m_polygons.Clear();
  DeleteAll<K7LineString>(m_pieces);
  DeleteAll<K7TileBrdrPt>(m_border);
}

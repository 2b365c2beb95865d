// Points of pieces: which there are, and which of them are left at a tolerance.

#include <k7/foundation/error_string.h>
#include <k7/geodesy/cromley.h>
#include <k7/geometry/tiling.h>

#include "foundation/append.h"
#include "geometry/tile_scratch.h"
#include "projection/seam.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<K7ECEF>);

namespace {

constexpr float ALWAYS = std::numeric_limits<float>::infinity();

// Appends the points of a piece as vectors; `count` of them from number `from` on, turning around its end.
bool AddVectors(const K7TileString& piece, int from, int count, Buffer<K7ECEF>& vectors) {
  for (int i = 0; i < count; ++i) {
    double lat, lon;
    piece.GetPoint((from + i) % piece.PointCount(), lat, lon);
    vectors.Add(K7ECEF(lat, lon));
  }
  return !vectors.Failed();
}

// Where the plane ends areas have corners that are none on the globe.
bool IsFixed(const K7TileString& piece, int i) {
  double lat, lon;
  piece.GetPoint(i, lat, lon);
  return !piece.IsOwnPoint(i) || OnPole(lat) || OnSeam(lon);
}

// The departures of all points of a tree. A tree may be as deep as it has points.
bool Flatten(const K7CromleyNode& tree, int from, int count, float* ranks) {
  Buffer<const K7CromleyNode*> open;
  open.Add(&tree);
  while (open.Count() > 0 && !open.Failed()) {
    const K7CromleyNode& node = *open.Last();
    open.Truncate(open.Count() - 1);
    if (node.Index() >= 0) ranks[(from + node.Index()) % count] = static_cast<float>(node.Distance());
    if (node.Left()) open.Add(node.Left());
    if (node.Right()) open.Add(node.Right());
  }
  return !open.Failed();
}

}  // namespace

int FillPiece(K7TileString& piece, const CutPiece& cut) {
  K7IntArray& indexes = piece.Indexes();
  const int own = std::max(cut.end - cut.start + 1, 0);
  piece.SetStartPtIdx(cut.start);
  piece.SetEndPtIdx(cut.end);
  if (const int err = indexes.GrowTo((cut.entry >= 0) + own + (cut.exit >= 0), true)) return err;
  int* index = static_cast<int*>(indexes.Data());
  if (cut.entry >= 0) *index++ = cut.entry;
  for (int i = cut.start; i <= cut.end; ++i) *index++ = i;
  if (cut.exit >= 0) *index = cut.exit;
  return 0;
}

int K7TileString::Rank() {
  const int count = m_indexes.Count();
  if (m_ranks || count == 0) return 0;
  std::unique_ptr<float, decltype(&std::free)> ranks(
      static_cast<float*>(std::malloc(static_cast<size_t>(count) * sizeof(float))), std::free);
  if (!ranks) return K7_ERR_MEMORY;
  // Spans run from one point that always stays to the next; a ring's last one comes back to its first.
  int first = 0;
  while (m_isRing && first < count - 1 && !IsFixed(*this, first)) ++first;
  if (!IsFixed(*this, first)) first = 0;
  const int last = m_isRing ? count : count - 1;
  Buffer<K7ECEF> vectors;
  if (!AddVectors(*this, first, last + 1, vectors)) return K7_ERR_MEMORY;
  for (int from = 0; from < last || from == 0;) {
    ranks.get()[(first + from) % count] = ALWAYS;
    int to = from + 1;
    while (to < last && !IsFixed(*this, (first + to) % count)) ++to;
    K7CromleyNode tree;
    if (const int err = tree.Generate(0, to - from, vectors.Data() + from)) return err;
    if (!Flatten(tree, first + from, count, ranks.get())) return K7_ERR_MEMORY;
    from = to;
  }
  if (!m_isRing) ranks.get()[count - 1] = ALWAYS;
  m_ranks = ranks.release();
  return 0;
}

int K7TileString::Select(double tolerance, K7IntArray& out) const {
  const int before = out.Count();
  for (int i = 0; i < m_indexes.Count(); ++i) {
    if (m_ranks && !(static_cast<double>(m_ranks[i]) >= tolerance)) continue;
    if (const int err = AppendInt(out, i)) return err;
  }
  if (m_isRing && m_ranks && out.Count() - before < 3) out.Remove(before, out.Count() - before);
  return 0;
}

namespace {

// Appends the numbers of those of a piece's points that a tolerance keeps.
int Simplify(const K7TileString& piece, bool closed, double tolerance, K7TileScratch& scratch,
             K7IntArray& indexes) {
  const int last = piece.PointCount() - !closed;
  scratch.vectors.Clear();
  scratch.kept.ClearNoFree();
  if (!AddVectors(piece, 0, last + 1, scratch.vectors)) return K7_ERR_MEMORY;
  K7CromleyNode tree;
  if (const int err = tree.Generate(0, last, scratch.vectors.Data())) return err;
  if (const int err = tree.Traverse(tolerance, scratch.vectors.Data(), scratch.kept)) return err;
  if (const int err = AppendInt(indexes, piece.Indexes()[0])) return err;
  for (int i = 0; i < scratch.kept.Count(); ++i)
    if (const int err = AppendInt(indexes, piece.Indexes()[scratch.kept[i]])) return err;
  return closed ? 0 : AppendInt(indexes, piece.Indexes()[last]);
}

}  // namespace

int K7PolygonTileMngr::ProcessPolylineString(K7PolylineString* piece, const K7Polyline* polyline,
                                             K7PolylineTile* tile) {
  if (!piece || !polyline || !tile) {
    delete piece;
    return K7_ERR_BAD_ARGUMENT;
  }
  piece->SetTile(tile);
  if (const int err = AppendPtr(tile->m_pieces, piece)) {
    delete piece;
    return err;
  }
  const int known = tile->PolylineCount();
  if (known == 0 || tile->Polyline(known - 1) != polyline) {
    auto* const feature = const_cast<K7Polyline*>(polyline);  // arrays of pointers know no const
    if (const int err = AppendPtr(tile->m_polylines, feature)) return err;
  }
  if (m_tolerance > 0 && piece->PointCount() > 2) {
    K7IntArray& indexes = m_scratch->indexes;
    indexes.ClearNoFree();
    if (const int err = Simplify(*piece, false, m_tolerance, *m_scratch, indexes)) return err;
    piece->m_indexes.Clear();
    if (const int err = piece->m_indexes.Insert(indexes.Data(), -1, indexes.Count())) return err;
  }
  for (int i = 0; i < piece->PointCount(); ++i) {
    double lat, lon;
    piece->GetPoint(i, lat, lon);
    piece->Include(lat, lon);
  }
  return 0;
}

int K7PolygonTileMngr::ProcessLineString(const K7LineString* piece, bool backwards, K7TileRect* bounds,
                                         K7IntArray& indexes) {
  if (!piece || !bounds) return K7_ERR_BAD_ARGUMENT;
  const int before = indexes.Count();
  const K7IntArray& own = piece->Indexes();
  if (own.Count() == 0) return 0;
  const bool simplified = m_tolerance > 0 && own.Count() > 2;
  if (const int err = simplified ? Simplify(*piece, !piece->Entry(), m_tolerance, *m_scratch, indexes)
                                 : Append(indexes, own.Data(), own.Count()))
    return err;
  if (backwards)
    std::reverse(static_cast<int*>(indexes.Data()) + before,
                 static_cast<int*>(indexes.Data()) + indexes.Count());
  for (int i = before; i < indexes.Count(); ++i) {
    double lat, lon;
    piece->GetPos(indexes[i], lat, lon);
    bounds->Include(lat, lon);
  }
  return 0;
}

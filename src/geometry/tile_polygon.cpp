// Polygons cut into tiles. What lies inside is told by counting: along the southern border of a row every
// crossing leads from outside in or back, from the western edge of the grid on, and so it goes on along the
// sides of each tile. Pieces are joined along the stretches of border that are inside.

#include <k7/geometry/tiling.h>

#include <k7/foundation/error_string.h>

#include "foundation/append.h"
#include "geometry/tile_scratch.h"

#include <algorithm>
#include <new>
#include <tuple>

struct K7PolygonTileMngr::Job {
  const K7PolyPolygon& polygon;
  K7PolyPtMngr& points;
  K7PolygonTile* tile = nullptr;
  int firstPiece = 0, firstBorder = 0;  // of this polygon in the tile
  bool isInside = false;                // at the south-western corner
  bool rightInside = true;              // the inside lies to the right of most rings' edges
  int firstInside = 0;                  // border point where the first stretch that is inside begins
};

namespace {

bool InOrder(const RowCrossing& a, const RowCrossing& b) {
  return std::tie(a.row, a.col) < std::tie(b.row, b.col);
}

bool InOrderOfTiles(const CutPiece& a, const CutPiece& b) {
  return std::tie(a.row, a.col, a.start) < std::tie(b.row, b.col, b.start);
}

// Twice the area of the first ring: negative for one that runs clockwise.
double FirstRingArea(const K7PolyPolygon& polygon) {
  const int start = polygon.PartStart(0), count = polygon.PartSize(0);
  double area = 0;
  for (int i = 0; i < count; ++i) {
    const int a = start + i, b = start + (i + 1 < count ? i + 1 : 0);
    area += (polygon.Lat(b) - polygon.Lat(start)) * (polygon.Lon(a) - polygon.Lon(start)) -
            (polygon.Lon(b) - polygon.Lon(start)) * (polygon.Lat(a) - polygon.Lat(start));
  }
  return area;
}

// Crossings of the southern borders of rows. Each is the end of one piece and the beginning of another.
void AddCrossings(const Buffer<CutPiece>& pieces, Buffer<RowCrossing>& crossings) {
  crossings.Clear();
  for (int i = 0; i < pieces.Count(); ++i) {
    const CutPiece& cut = pieces[i];
    if (cut.entry >= 0 && cut.entrySide == K7_SIDE_SOUTH) crossings.Add({cut.row, cut.col});
    if (cut.exit >= 0 && cut.exitSide == K7_SIDE_SOUTH) crossings.Add({cut.row, cut.col});
  }
  std::sort(crossings.Data(), crossings.Data() + crossings.Count(), InOrder);
}

// Whether the south-western corner of a tile is inside: by the crossings to the west of its column.
bool IsCornerInside(const Buffer<RowCrossing>& crossings, int row, int col) {
  const RowCrossing* const end = crossings.Data() + crossings.Count();
  const RowCrossing* const first = std::lower_bound(crossings.Data(), end, RowCrossing{row, 0}, InOrder);
  return (std::lower_bound(first, end, RowCrossing{row, col}, InOrder) - first) % 2 != 0;
}

}  // namespace

int K7PolygonTileMngr::TilizePolygon(const K7PolyPolygon* polygon, K7PolyPtMngr* points) {
  if (!polygon || !points || RowCount() == 0 || m_kind != K7_TILE_POLYGONS) return K7_ERR_BAD_ARGUMENT;
  if (polygon->PartCount() == 0) return 0;
  Job job{*polygon, *points};
  points->Begin(*polygon);
  const int before = points->Count();
  if (const int err = CutRings(job)) {
    points->Truncate(before);
    return err;
  }
  const Buffer<CutPiece>& pieces = m_scratch->pieces;
  for (int first = 0, next; first < pieces.Count(); first = next) {
    next = first;
    while (next < pieces.Count() && pieces[next].row == pieces[first].row &&
           pieces[next].col == pieces[first].col)
      ++next;
    if (const int err = StoreCell(job, first, next - first)) return err;
  }
  const Buffer<RowCrossing>& crossings = m_scratch->crossings;
  for (int i = 0; i < crossings.Count(); ++i)
    if (i == 0 || crossings[i].row != crossings[i - 1].row)
      if (const int err = FillRow(job, i)) return err;
  return 0;
}

int K7PolygonTileMngr::CutRings(Job& job) {
  const K7PolyPolygon& polygon = job.polygon;
  Buffer<CutPiece>& pieces = m_scratch->pieces;
  pieces.Clear();
  TileWalk walk(*m_grid, polygon, job.points, pieces);
  for (int part = 0; part < polygon.PartCount(); ++part)
    if (const int err = walk.Ring(polygon.PartStart(part), polygon.PartSize(part))) return err;
  job.rightInside = FirstRingArea(polygon) <= 0;
  AddCrossings(pieces, m_scratch->crossings);
  std::sort(pieces.Data(), pieces.Data() + pieces.Count(), InOrderOfTiles);
  return pieces.Failed() || m_scratch->crossings.Failed() ? K7_ERR_MEMORY : 0;
}

// Stores what the polygon leaves in one tile. After a failure the tile holds none of it.
int K7PolygonTileMngr::StoreCell(Job& job, int first, int count) {
  const CutPiece& cut = m_scratch->pieces[first];
  int err;
  job.tile = static_cast<K7PolygonTile*>(GetTile(cut.row, cut.col, true, &err));
  if (!job.tile) return err;
  K7PolygonTile& tile = *job.tile;
  SetBounds(tile, job.points);
  job.isInside = IsCornerInside(m_scratch->crossings, cut.row, cut.col);
  job.firstPiece = tile.PieceCount();
  job.firstBorder = tile.BorderCount();
  err = AddPolygon(job);
  for (int i = first; i < first + count && err == 0; ++i) err = AddPiece(job, i);
  if (err == 0) err = JoinPieces(job);
  // Larger rings first; those that became part of others, or of nothing, go.
  K7PtrArray& pieces = tile.m_pieces;
  auto** const all = static_cast<K7LineString**>(pieces.Data());
  std::sort(all + job.firstPiece, all + pieces.Count(),
            [](K7LineString* a, K7LineString* b) { return K7LineString::Comp(&a, &b) < 0; });
  while (pieces.Count() > job.firstPiece && (err != 0 || tile.Piece(pieces.Count() - 1)->IsJoined())) {
    delete tile.Piece(pieces.Count() - 1);
    pieces.K7Array::Remove(pieces.Count() - 1, 1);
  }
  if (err == 0) return 0;
  for (int i = tile.BorderCount(); i-- > job.firstBorder; tile.m_border.K7Array::Remove(i, 1))
    delete tile.Border(i);
  return err;
}

// Corners and borders lie where features are cut.
void K7PolygonTileMngr::SetBounds(const K7ShapeTile& tile, K7PolyPtMngr& points) const {
  const int row = GetTileRow((tile.South() + tile.North()) / 2);
  const int col = GetTileCol((tile.West() + tile.East()) / 2, row);
  points.SetTileBnd(m_grid->RowBorder(row + 1), m_grid->RowBorder(row), m_grid->ColBorder(col + 1, row),
                    m_grid->ColBorder(col, row));
}

int K7PolygonTileMngr::AddPolygon(Job& job) {
  auto* const feature = const_cast<K7PolyPolygon*>(&job.polygon);  // arrays of pointers know no const
  return AppendPtr(job.tile->m_polygons, feature);
}

// In its tile, which owns it from then on; null without memory.
K7LineString* K7PolygonTileMngr::NewPiece(Job& job) {
  auto* const piece = new (std::nothrow) K7LineString(&job.polygon, &job.points);
  if (piece && AppendPtr(job.tile->m_pieces, piece) == 0) {
    piece->SetTile(job.tile);
    return piece;
  }
  delete piece;
  return nullptr;
}

int K7PolygonTileMngr::AddPiece(Job& job, int number) {
  const CutPiece& cut = m_scratch->pieces[number];
  K7LineString* const piece = NewPiece(job);
  if (!piece) return K7_ERR_MEMORY;
  const bool hasTail = cut.tailEnd >= cut.tailStart;
  CutPiece run = cut;
  if (hasTail) run.entry = -1;
  if (const int err = FillPiece(*piece, run)) return err;
  if (hasTail) {
    K7LineString tail(&job.polygon, &job.points);
    tail.SetTile(job.tile);
    run = cut;
    run.start = cut.tailStart;
    run.end = cut.tailEnd;
    run.exit = -1;
    if (const int err = FillPiece(tail, run)) return err;
    if (const int err = piece->Prepend(&tail)) return err;
  }
  if (cut.entry < 0) return 0;
  if (const int err = AddBorderPt(job, *piece, cut.entry, cut.entrySide, true)) return err;
  return AddBorderPt(job, *piece, cut.exit, cut.exitSide, false);
}

int K7PolygonTileMngr::AddBorderPt(Job& job, K7LineString& piece, int created, K7TileSide side,
                                   bool isEntry) {
  const int i = created - job.polygon.PointCount();
  auto* const point =
      new (std::nothrow) K7TileBrdrPt(*job.tile, job.points.Lat(i), job.points.Lon(i), side, isEntry);
  if (!point) return K7_ERR_MEMORY;
  point->SetOwner(&piece);
  if (const int err = AppendPtr(job.tile->m_border, point)) {
    delete point;
    return err;
  }
  return 0;
}

namespace {

K7TileBrdrPt*& At(K7PtrArray& border, int i) { return static_cast<K7TileBrdrPt**>(border.Data())[i]; }

// Rings that meet at one place of the border: in turns one that leaves and one that comes, so that pieces
// are joined in their direction. Runs of equal places come with those that leave first.
bool AlternateAtOnePlace(K7PtrArray& border, int from, int to, bool exitFirst, Buffer<void*>& sorted) {
  sorted.Clear();
  int next[2] = {from, from};  // of those that leave, of those that come
  while (next[1] < to && !At(border, next[1])->IsEntry()) ++next[1];
  const int ends[2] = {next[1], to};
  for (int i = from; i < to; ++i) {
    const bool wanted = ((i - from) % 2 == 0) != exitFirst;
    const int kind = next[wanted] < ends[wanted] ? wanted : !wanted;
    sorted.Add(At(border, next[kind]++));
  }
  if (sorted.Failed()) return false;
  std::copy_n(sorted.Data(), to - from, static_cast<void**>(border.Data()) + from);
  return true;
}

}  // namespace

int K7PolygonTileMngr::JoinPieces(Job& job) {
  K7PtrArray& border = m_scratch->border;
  border.ClearNoFree();
  K7PolygonTile& tile = *job.tile;
  for (int i = job.firstBorder; i < tile.BorderCount(); ++i)
    if (const int err = AppendPtr(border, tile.m_border[i])) return err;
  const int count = border.Count();
  bool isFilled = false;
  if (count > 0) {
    auto** const all = static_cast<K7TileBrdrPt**>(border.Data());
    std::sort(all, all + count,
              [](K7TileBrdrPt* a, K7TileBrdrPt* b) { return K7TileBrdrPt::Comp(&a, &b) < 0; });
    // What is inside between the southern and the western side changes at each crossing from there on.
    int west = 0;
    while (west < count && all[west]->Side() != K7_SIDE_WEST) ++west;
    job.firstInside = (west + job.isInside) % 2;
    // All at one place: the stretch that begins at the last one is the whole border, not nothing.
    isFilled = job.firstInside == 1 && all[0]->Perimeter() == all[count - 1]->Perimeter();
    if (isFilled) job.firstInside = 0;
    for (int from = 0, to; from < count; from = to) {
      to = from + 1;
      while (to < count && all[to]->Perimeter() == all[from]->Perimeter() &&
             all[to]->Side() == all[from]->Side())
        ++to;
      const bool exitFirst = ((from - job.firstInside) % 2 == 0) == job.rightInside;
      if (to - from > 1 && !AlternateAtOnePlace(border, from, to, exitFirst, m_scratch->sorted))
        return K7_ERR_MEMORY;
    }
    for (int i = 0; i < count; ++i) all[i]->m_order = i;
  }
  for (int i = job.firstPiece, end = tile.PieceCount(); i < end; ++i)
    if (!tile.Piece(i)->IsJoined())
      if (const int err = CloseRing(job, *tile.Piece(i))) return err;
  return isFilled || (count == 0 && job.isInside) ? AddWholeTile(job) : 0;
}

// Follows pieces and the stretches of border between them until it is back at the piece, which takes over
// the points of all. A ring that crosses no border closes by itself.
int K7PolygonTileMngr::CloseRing(Job& job, K7LineString& piece) {
  K7IntArray& indexes = m_scratch->indexes;
  const K7PtrArray& border = m_scratch->border;
  indexes.ClearNoFree();
  K7TileRect bounds;
  const K7LineString* at = &piece;
  bool backwards = false;
  do {
    if (const int err = ProcessLineString(at, backwards, &bounds, indexes)) return err;
    K7TileBrdrPt* const out = backwards ? at->Entry() : at->Exit();
    if (!out) break;
    // Stretches that are inside lead from every other border point to the one behind it.
    const bool leads = (out->m_order - job.firstInside) % 2 == 0;
    const int count = border.Count();
    const int other = (out->m_order + (leads ? 1 : count - 1)) % count;
    const int before = indexes.Count();
    const int corners =
        ProcessBorderCorners(leads ? out->m_order : other, border, job.tile, &job.points, &bounds, indexes);
    if (corners < 0) return corners;
    int* const added = static_cast<int*>(indexes.Data()) + before;
    if (!leads) std::reverse(added, added + corners);
    auto* const in = static_cast<K7TileBrdrPt*>(border[other]);
    at = in->Owner();
    backwards = !in->IsEntry();
    in->Owner()->SetJoined(true);
    if (at != &piece) continue;
    break;
  } while (true);
  // Simplified to nothing that has an area.
  piece.SetJoined(m_tolerance > 0 && indexes.Count() < 3);
  piece.m_indexes.Clear();
  piece.m_bounds = bounds;
  return piece.m_indexes.Insert(indexes.Data(), -1, indexes.Count());
}

int K7PolygonTileMngr::ProcessBorderCorners(int from, const K7PtrArray& border, const K7ShapeTile* tile,
                                            K7PolyPtMngr* points, K7TileRect* bounds, K7IntArray& indexes) {
  if (!tile || !points || !bounds) return K7_ERR_BAD_ARGUMENT;
  const auto* const a = static_cast<const K7TileBrdrPt*>(border[from]);
  if (!a) return 0;
  const auto* const b = static_cast<const K7TileBrdrPt*>(border[(from + 1) % border.Count()]);
  int corners = b->Side() - a->Side();
  if (b->Perimeter() < a->Perimeter() || corners < 0) corners += 4;
  SetBounds(*tile, *points);
  for (int k = 0; k < corners; ++k) {
    const int corner = points->AddCorner((a->Side() + k) % 4);
    if (corner < 0) return corner;
    if (const int err = AppendInt(indexes, corner)) return err;
    const int created = points->Count() - 1;
    bounds->Include(points->Lat(created), points->Lon(created));
  }
  return corners;
}

int K7PolygonTileMngr::AddWholeTile(Job& job) {
  K7LineString* const piece = NewPiece(job);
  if (!piece) return K7_ERR_MEMORY;
  for (int k = 0; k < 4; ++k) {
    const int corner = job.points.AddCorner((K7_SIDE_WEST + k) % 4);
    if (corner < 0) return corner;
    if (const int err = AppendInt(piece->m_indexes, corner)) return err;
    const int created = job.points.Count() - 1;
    piece->Include(job.points.Lat(created), job.points.Lon(created));
  }
  return 0;
}

// Tiles of a row between two crossings of its southern border, the first of the row being number `at`. Those
// that a ring touches have their pieces already.
int K7PolygonTileMngr::FillRow(Job& job, int at) {
  const Buffer<RowCrossing>& crossings = m_scratch->crossings;
  const Buffer<CutPiece>& pieces = m_scratch->pieces;
  const int row = crossings[at].row;
  CutPiece place{};
  place.row = row;
  place.start = INT32_MIN;
  const CutPiece* const end = pieces.Data() + pieces.Count();
  const CutPiece* touched = std::lower_bound(pieces.Data(), end, place, InOrderOfTiles);
  bool inside = true;
  for (int i = at; i + 1 < crossings.Count() && crossings[i + 1].row == row; ++i, inside = !inside) {
    for (int col = crossings[i].col + 1; inside && col < crossings[i + 1].col; ++col) {
      while (touched != end && touched->row == row && touched->col < col) ++touched;
      if (touched != end && touched->row == row && touched->col == col) continue;
      int err;
      job.tile = static_cast<K7PolygonTile*>(GetTile(row, col, true, &err));
      if (!job.tile) return err;
      SetBounds(*job.tile, job.points);
      if (err = AddPolygon(job); err == 0) err = AddWholeTile(job);
      if (err != 0) return err;
    }
  }
  return 0;
}

// The grid, points and polylines of K7PolygonTileMngr.

#include <k7/geometry/tiling.h>

#include <k7/foundation/error_string.h>

#include "foundation/append.h"
#include "geometry/tile_scratch.h"

#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

double BoundOf(double border, double least) { return border > least ? border - BORDER_WIDTH : least; }

void SetCode(int* err, int code) {
  if (err) *err = code;
}

}  // namespace

K7PolygonTileMngr::~K7PolygonTileMngr() {
  delete m_grid;
  delete m_scratch;
}

int K7PolygonTileMngr::Init(double rowHeight, double colWidth, double tolerance) {
  delete m_grid;
  m_grid = nullptr;
  m_tolerance = 0;
  for (const double value : {rowHeight, colWidth, tolerance})
    if (!(value >= 0 && std::isfinite(value))) return K7_ERR_BAD_ARGUMENT;
  if (rowHeight == 0) return 0;
  std::unique_ptr<K7TileGrid> grid(new (std::nothrow) K7TileGrid);
  if (!m_scratch) m_scratch = new (std::nothrow) K7TileScratch;
  if (!grid || !m_scratch) return K7_ERR_MEMORY;
  if (const int err = grid->Build(rowHeight, colWidth)) return err;
  m_grid = grid.release();
  m_tolerance = tolerance;
  return 0;
}

// Columns of a whole turn each, for what runs across 180.
int K7PolygonTileMngr::MakeGrid(double west, int turns) {
  if (const int err = Init(180, 360)) return err;
  if (!m_grid) return K7_ERR_MEMORY;
  m_grid->west = west;
  m_grid->east = west + 360 * turns;
  m_grid->row[0].cols = turns;
  return 0;
}

int K7PolygonTileMngr::RowCount() const { return m_grid ? m_grid->rows : 0; }
double K7PolygonTileMngr::RowHeight() const { return m_grid ? m_grid->height : 0; }

int K7PolygonTileMngr::ColCount(int row) const {
  return row >= 0 && row < RowCount() ? m_grid->row[row].cols : 0;
}

double K7PolygonTileMngr::ColWidth(int row) const {
  return row >= 0 && row < RowCount() ? m_grid->row[row].width : 0;
}

int K7PolygonTileMngr::GetTileRow(double lat) const { return m_grid ? m_grid->RowOf(lat) : -1; }
int K7PolygonTileMngr::GetTileCol(double lon, int row) const { return m_grid ? m_grid->ColOf(lon, row) : -1; }

double K7PolygonTileMngr::GetTileLat(int row) const {
  if (row < 1) return -90;
  return row >= RowCount() ? 90 : BoundOf(m_grid->RowBorder(row), -90);
}

double K7PolygonTileMngr::GetTileLon(int col, int row) const {
  const double west = m_grid ? m_grid->west : -180, east = m_grid ? m_grid->east : 180;
  if (col < 1) return west;
  return col >= ColCount(row) ? east : BoundOf(m_grid->ColBorder(col, row), west);
}

K7ShapeTile* K7PolygonTileMngr::GetTile(double lat, double lon, int* err) {
  const int row = GetTileRow(lat);
  return GetTile(row, GetTileCol(lon, row), true, err);
}

K7ShapeTile* K7PolygonTileMngr::GetTile(int row, int col, bool create, int* err) {
  SetCode(err, 0);
  if (row < 0 || row >= RowCount() || col < 0 || col >= ColCount(row)) {
    SetCode(err, K7_ERR_BAD_ARGUMENT);
    return nullptr;
  }
  K7TileGrid::Row& r = m_grid->row[row];
  if (!create) return r.tiles ? r.tiles[col] : nullptr;
  if (!r.tiles)
    r.tiles = static_cast<K7ShapeTile**>(std::calloc(static_cast<size_t>(r.cols), sizeof(K7ShapeTile*)));
  if (r.tiles && !r.tiles[col]) {
    const double south = GetTileLat(row), west = GetTileLon(col, row);
    const double north = row == m_grid->rows - 1 ? 90 : south + m_grid->height;
    const double east = col == r.cols - 1 ? m_grid->east : west + r.width;
    if (m_kind == K7_TILE_POLYGONS)
      r.tiles[col] = new (std::nothrow) K7PolygonTile(north, south, east, west);
    else if (m_kind == K7_TILE_POLYLINES)
      r.tiles[col] = new (std::nothrow) K7PolylineTile(north, south, east, west);
    else
      r.tiles[col] = new (std::nothrow) K7PointTile(north, south, east, west);
  }
  if (!r.tiles || !r.tiles[col]) SetCode(err, K7_ERR_MEMORY);
  return r.tiles ? r.tiles[col] : nullptr;
}

int K7PolygonTileMngr::GetTiles(const K7ChartRect& rect, K7PtrArray& tiles) const {
  for (int row = 0; row < RowCount(); ++row) {
    if (!m_grid->row[row].tiles || !(GetTileLat(row + 1) >= rect.South() && GetTileLat(row) <= rect.North()))
      continue;
    for (int col = 0; col < ColCount(row); ++col) {
      K7ShapeTile* const tile = m_grid->row[row].tiles[col];
      if (!tile || !rect.AreaIn(tile->North(), tile->South(), tile->East(), tile->West())) continue;
      if (const int err = AppendPtr(tiles, tile)) return err;
    }
  }
  return 0;
}

int K7PolygonTileMngr::TilizePoint(K7PointRec* point) {
  if (!point || RowCount() == 0 || m_kind != K7_TILE_POINTS) return K7_ERR_BAD_ARGUMENT;
  int err;
  auto* const tile = static_cast<K7PointTile*>(GetTile(point->lat, point->lon, &err));
  return tile ? AppendPtr(tile->m_points, point) : err;
}

int K7PolygonTileMngr::TilizePolyline(const K7Polyline* polyline, K7PolyPtMngr* points) {
  if (!polyline || !points || RowCount() == 0 || m_kind != K7_TILE_POLYLINES) return K7_ERR_BAD_ARGUMENT;
  Buffer<CutPiece>& pieces = m_scratch->pieces;
  pieces.Clear();
  points->Begin(*polyline);
  const int before = points->Count();
  TileWalk walk(*m_grid, *polyline, *points, pieces);
  for (int part = 0; part < polyline->PartCount(); ++part)
    if (const int err = walk.Line(polyline->PartStart(part), polyline->PartSize(part))) {
      points->Truncate(before);
      return err;
    }
  for (int i = 0; i < pieces.Count(); ++i) {
    const CutPiece& cut = pieces[i];
    int err;
    auto* const tile = static_cast<K7PolylineTile*>(GetTile(cut.row, cut.col, true, &err));
    if (!tile) return err;
    auto* const piece = new (std::nothrow) K7PolylineString(polyline, points);
    if (!piece) return K7_ERR_MEMORY;
    err = FillPiece(*piece, cut);
    if (const int stored = ProcessPolylineString(piece, polyline, tile); err == 0) err = stored;
    if (err) return err;
  }
  return 0;
}

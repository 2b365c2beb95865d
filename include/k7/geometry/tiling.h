// K7PolygonTileMngr: features spread over a grid of geographic tiles.
#pragma once

#include <k7/export.h>
#include <k7/geometry/shape_tile.h>

#include <cstdint>

struct K7TileGrid;
struct K7TileScratch;

/// The kinds of features; a manager serves one.
enum K7TileKind : int32_t {
  K7_TILE_POLYGONS = 0,
  K7_TILE_POLYLINES = 1,
  K7_TILE_POINTS = 2,
};

/// A K7PolygonTileMngr cuts features at the borders of tiles, so that a chart has to look only at the tiles
/// it shows. Rows of tiles have one height; each row has a width of its own, which by default widens towards
/// the poles, so that tiles stay roughly square on the ground.
///
///     K7PolygonTileMngr tiles(K7_TILE_POLYGONS);
///     K7PolyPtMngr created;
///     tiles.Init(10, 0, 0);
///     area.SetPoints(points, sizes, rings);
///     tiles.TilizePolygon(&area, &created);
///     K7PtrArray shown;
///     tiles.GetTiles(chartRect, shown);  // K7PolygonTile*: its pieces are closed rings
///
/// Edges are straight in latitude and longitude. Crossings lie on the border itself and belong to the pieces
/// on both sides; together with the corners that close polygons they make the pieces cover exactly what the
/// polygon covers. Features and created points are referred to: they must outlive the tiles.
///
/// One thread adds features; any number may read afterwards.
class K7_API K7PolygonTileMngr {
 public:
  explicit K7PolygonTileMngr(K7TileKind kind = K7_TILE_POLYGONS) : m_kind(kind) {}
  K7PolygonTileMngr(const K7PolygonTileMngr&) = delete;
  K7PolygonTileMngr& operator=(const K7PolygonTileMngr&) = delete;
  virtual ~K7PolygonTileMngr();

  /// Drops all tiles and builds the grid: rows `rowHeight` degrees high, columns `colWidth` wide or, with 0,
  /// of whole degrees from 1 to 30 that divide 360. Features are simplified by `tolerance` in NM; 0 keeps
  /// every point. A row height of 0 leaves the manager empty. 0, K7_ERR_BAD_ARGUMENT for what is negative or
  /// not finite, K7_ERR_MEMORY with the manager empty.
  int Init(double rowHeight, double colWidth = 0, double tolerance = 0);

  K7TileKind Kind() const { return m_kind; }
  double Tolerance() const { return m_tolerance; }
  int RowCount() const;
  double RowHeight() const;
  /// 0 for a row that is not there.
  int ColCount(int row) const;
  double ColWidth(int row) const;

  /// \name Where
  /// @{
  /// Answer the row (column) of a position, -1 for one off the earth and where there is no such row or
  /// column. What lies up to 1e-8 degrees south or west of a border belongs to the tile beyond it; 90 and
  /// 180 belong to the last ones.
  int GetTileRow(double lat) const;
  int GetTileCol(double lon, int row) const;
  /// Answer the southern (western) bound: -90 (-180) for the first row (column) and below, 90 (180) from
  /// the count on, and where there is no such row.
  double GetTileLat(int row) const;
  double GetTileLon(int col, int row) const;
  /// @}

  /// \name Tiles
  /// `err` (optional) receives 0, K7_ERR_BAD_ARGUMENT for a place outside the grid, or K7_ERR_MEMORY. Tiles
  /// are of the class that belongs to the kind, and belong to the manager.
  /// @{
  /// Answers the tile of a position, made when it is not there.
  K7ShapeTile* GetTile(double lat, double lon, int* err = nullptr);
  /// Answers a tile; one that is not there only when it is to be created.
  K7ShapeTile* GetTile(int row, int col, bool create, int* err = nullptr);
  /// Appends the tiles that are there and share a point with `rect`, which may run across 180. 0 or
  /// K7_ERR_MEMORY.
  int GetTiles(const K7ChartRect& rect, K7PtrArray& tiles) const;
  /// @}

  /// \name Features
  /// 0; K7_ERR_BAD_ARGUMENT for null, an empty grid, a manager of another kind and coordinates off the
  /// earth; K7_ERR_MEMORY. What was stored of a feature before a failure stays. Longitudes beyond 180 are
  /// taken as 180: what runs across is cut first, by the feature's `CutAtSeam`.
  /// @{
  int TilizePoint(K7PointRec* point);
  int TilizePolyline(const K7Polyline* polyline, K7PolyPtMngr* points);
  int TilizePolygon(const K7PolyPolygon* polygon, K7PolyPtMngr* points);
  /// @}

 protected:
  /// Stores a finished piece with its polyline in its tile: with a tolerance only the points that depart by
  /// as much, and both ends. The piece is the tile's from then on, after a failure too.
  int ProcessPolylineString(K7PolylineString* piece, const K7Polyline* polyline, K7PolylineTile* tile);
  /// Appends the points of a polygon's piece to those of a ring that is being closed, and includes them in
  /// `bounds`: with a tolerance only those that depart by as much, and both ends. Those of a piece that is
  /// run through against its direction come last first.
  int ProcessLineString(const K7LineString* piece, bool backwards, K7TileRect* bounds, K7IntArray& indexes);
  /// Appends the corners that lie clockwise between point `from` of `border`, which is in the order of
  /// `K7TileBrdrPt::Comp`, and the one behind it. Answers how many; 0 where there is no such point;
  /// K7_ERR_BAD_ARGUMENT for null, K7_ERR_MEMORY.
  int ProcessBorderCorners(int from, const K7PtrArray& border, const K7ShapeTile* tile, K7PolyPtMngr* points,
                           K7TileRect* bounds, K7IntArray& indexes);

 private:
  friend class K7TileFeature;
  struct Job;

  int MakeGrid(double west, int turns);
  void SetBounds(const K7ShapeTile& tile, K7PolyPtMngr& points) const;
  int CutRings(Job& job);
  int StoreCell(Job& job, int first, int count);
  static int AddPolygon(Job& job);
  static K7LineString* NewPiece(Job& job);
  int AddPiece(Job& job, int number);
  int AddBorderPt(Job& job, K7LineString& piece, int created, K7TileSide side, bool isEntry);
  int JoinPieces(Job& job);
  int CloseRing(Job& job, K7LineString& piece);
  int AddWholeTile(Job& job);
  int FillRow(Job& job, int row);

  K7TileKind m_kind;
  double m_tolerance = 0;
  K7TileGrid* m_grid = nullptr;
  K7TileScratch* m_scratch = nullptr;
};

// Tiles of vector features, and the pieces that features are cut into.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/geometry/tile_feature.h>
#include <k7/projection/chart_rect.h>

#include <cstdint>

class K7LineString;
class K7PolygonTile;
class K7PolylineTile;
class K7ShapeTile;

/// Bounds in degrees that nothing turns around 180.
struct K7TileRect {
  double north = -999;
  double south = 999;
  double east = -999;
  double west = 999;

  void Include(double lat, double lon) {
    if (lat > north) north = lat;
    if (lat < south) south = lat;
    if (lon > east) east = lon;
    if (lon < west) west = lon;
  }
  double Area() const { return (east - west) * (north - south); }
};

/// The sides of a tile, clockwise.
enum K7TileSide : int32_t { K7_SIDE_NORTH = 0, K7_SIDE_EAST = 1, K7_SIDE_SOUTH = 2, K7_SIDE_WEST = 3 };

/// A piece of a feature inside one tile: numbers of points of the feature and of those that cutting
/// created. Pieces belong to their tile.
class K7_API K7TileString {
 public:
  K7TileString(const K7TileFeature* feature, const K7PolyPtMngr* points)
      : m_feature(feature), m_points(points) {}
  K7TileString(const K7TileString&) = delete;
  K7TileString& operator=(const K7TileString&) = delete;
  ~K7TileString();

  K7ShapeTile* Tile() const { return m_tile; }
  void SetTile(K7ShapeTile* tile) { m_tile = tile; }
  const K7TileFeature* Feature() const { return m_feature; }
  /// True for the pieces of polygons.
  bool IsRing() const { return m_isRing; }

  /// The run of the feature's own points that the piece was begun with. The end is -1 while it is open, and
  /// for a piece that crosses its tile without a point of its own.
  int StartPtIdx() const { return m_start; }
  int EndPtIdx() const { return m_end; }
  void SetStartPtIdx(int i) { m_start = i; }
  void SetEndPtIdx(int i) { m_end = i < m_start ? -1 : i; }

  /// The box of the points that the piece holds.
  const K7TileRect& Bounds() const { return m_bounds; }
  void Include(double lat, double lon) { m_bounds.Include(lat, lon); }

  /// \name Points
  /// The last point of a polygon's piece is joined to its first.
  /// @{
  int PointCount() const { return m_indexes.Count(); }
  K7IntArray& Indexes() { return m_indexes; }
  const K7IntArray& Indexes() const { return m_indexes; }
  /// True for points of the feature, false for those of borders and corners.
  bool IsOwnPoint(int i) const { return m_indexes[i] < m_feature->PointCount(); }
  /// Gives the position of point i in degrees; false outside 0 to `PointCount` - 1.
  bool GetPoint(int i, double& lat, double& lon) const;
  /// Gives the position that a number among `Indexes` stands for, without a check of it.
  void GetPos(int index, double& lat, double& lon) const;
  /// @}

  /// \name Any tolerance
  /// @{
  /// Ranks all points once by how far they depart, in NM, as `K7CromleyNode` does between the points of the
  /// border. 0 or K7_ERR_MEMORY. Not to be called while others read the piece. Once ranked it does nothing.
  int Rank();
  /// Appends, in their order, which points (0 to `PointCount` - 1) are left at a tolerance in NM: those whose
  /// departure, kept as a float, is at least the tolerance, the ends of a line, all points of borders and
  /// corners, and those at 180 degrees (0.001) and the poles (0.002), where the plane ends. A ring of which
  /// less than three are left gives none. Without `Rank` it gives all. 0 or K7_ERR_MEMORY.
  int Select(double tolerance, K7IntArray& out) const;
  /// @}

 protected:
  bool m_isRing = false;
  K7ShapeTile* m_tile = nullptr;
  const K7TileFeature* m_feature;
  const K7PolyPtMngr* m_points;
  int32_t m_start = -1;
  int32_t m_end = -1;
  K7TileRect m_bounds;
  K7IntArray m_indexes{4};
  float* m_ranks = nullptr;

  friend class K7PolygonTileMngr;
};

/// The piece of a polyline.
class K7_API K7PolylineString : public K7TileString {
 public:
  using K7TileString::K7TileString;
};

/// A point where a ring enters or leaves a tile.
class K7_API K7TileBrdrPt {
 public:
  /// Takes where it is: `lat` and `lon` on a side of `tile`. An entry is where the ring enters.
  K7TileBrdrPt(const K7ShapeTile& tile, double lat, double lon, K7TileSide side, bool isEntry);

  double Lat() const { return m_lat; }
  double Lon() const { return m_lon; }
  /// The way along the border, clockwise from the north-west corner, in degrees. It stays within its side.
  double Perimeter() const { return m_perimeter; }
  K7TileSide Side() const { return static_cast<K7TileSide>(m_side); }
  bool IsEntry() const { return m_isEntry != 0; }
  /// The piece that enters or leaves here, which learns of it.
  K7LineString* Owner() const { return m_owner; }
  void SetOwner(K7LineString* owner);

  /// Orders pointers to border points clockwise, for arrays of them.
  static int Comp(const void* a, const void* b);

 private:
  friend class K7PolygonTileMngr;

  double m_lat, m_lon, m_perimeter;
  int32_t m_side;
  uint8_t m_isEntry;
  int32_t m_order = -1;  // among those of its polygon and tile, while these are joined
  K7LineString* m_owner = nullptr;
};

/// A piece of a polygon's ring. Those that cross the tile are joined with others along its border to closed
/// ones.
class K7_API K7LineString : public K7TileString {
 public:
  K7LineString(const K7TileFeature* feature, const K7PolyPtMngr* points) : K7TileString(feature, points) {
    m_isRing = true;
  }

  /// Where the ring came into the tile, and left it; null for a ring that never does.
  K7TileBrdrPt* Entry() const { return m_entry; }
  K7TileBrdrPt* Exit() const { return m_exit; }
  /// True once the piece is part of another.
  bool IsJoined() const { return m_isJoined; }
  void SetJoined(bool joined) { m_isJoined = joined; }

  /// Takes over the tile, the entry and, in front of its own, the points of the piece that comes before it.
  /// 0; K7_ERR_BAD_ARGUMENT for null or itself, K7_ERR_MEMORY, each with both unchanged.
  int Prepend(K7LineString* other);

  /// Orders pointers to pieces: joined ones last, before them those with the larger boxes first.
  static int Comp(const void* a, const void* b);

 private:
  friend class K7TileBrdrPt;

  K7TileBrdrPt* m_entry = nullptr;
  K7TileBrdrPt* m_exit = nullptr;
  bool m_isJoined = false;
};

/// A tile: its bounds in degrees, and by its class what lies in it. Bounds begin 1e-8 degrees south and west
/// of the lines where features are cut, since points so close to a line belong to the tile beyond it.
class K7_API K7ShapeTile {
 public:
  K7ShapeTile(double north, double south, double east, double west)
      : m_north(north), m_south(south), m_east(east), m_west(west) {}
  K7ShapeTile(const K7ShapeTile&) = delete;
  K7ShapeTile& operator=(const K7ShapeTile&) = delete;
  virtual ~K7ShapeTile();
  /// Empties the tile.
  virtual void Clear() = 0;

  double North() const { return m_north; }
  double South() const { return m_south; }
  double East() const { return m_east; }
  double West() const { return m_west; }

 private:
  double m_north, m_south, m_east, m_west;
};

class K7_API K7PointTile : public K7ShapeTile {
 public:
  using K7ShapeTile::K7ShapeTile;
  void Clear() override;
  int Count() const { return m_points.Count(); }
  /// Null outside.
  K7PointRec* Point(int i) const { return static_cast<K7PointRec*>(m_points[i]); }

 private:
  friend class K7PolygonTileMngr;
  K7PtrArray m_points{128};
};

class K7_API K7PolylineTile : public K7ShapeTile {
 public:
  using K7ShapeTile::K7ShapeTile;
  ~K7PolylineTile() override;
  void Clear() override;
  /// The polylines that have pieces here, each once; null outside.
  int PolylineCount() const { return m_polylines.Count(); }
  const K7Polyline* Polyline(int i) const { return static_cast<const K7Polyline*>(m_polylines[i]); }
  /// The pieces, those of one polyline one after the other; null outside.
  int PieceCount() const { return m_pieces.Count(); }
  K7PolylineString* Piece(int i) const { return static_cast<K7PolylineString*>(m_pieces[i]); }

 private:
  friend class K7PolygonTileMngr;
  K7PtrArray m_polylines{128};
  K7PtrArray m_pieces{128};
};

class K7_API K7PolygonTile : public K7ShapeTile {
 public:
  using K7ShapeTile::K7ShapeTile;
  ~K7PolygonTile() override;
  void Clear() override;
  /// The polygons that have pieces here, each once; null outside.
  int PolygonCount() const { return m_polygons.Count(); }
  const K7PolyPolygon* Polygon(int i) const { return static_cast<const K7PolyPolygon*>(m_polygons[i]); }
  /// The pieces, those of one polygon one after the other, larger ones first: closed rings, of which what
  /// lies inside an odd number is inside. Null outside.
  int PieceCount() const { return m_pieces.Count(); }
  K7LineString* Piece(int i) const { return static_cast<K7LineString*>(m_pieces[i]); }
  /// Where rings crossed the border, in no order; null outside.
  int BorderCount() const { return m_border.Count(); }
  const K7TileBrdrPt* Border(int i) const { return static_cast<const K7TileBrdrPt*>(m_border[i]); }

 private:
  friend class K7PolygonTileMngr;
  K7PtrArray m_polygons{128};
  K7PtrArray m_pieces{128};
  K7PtrArray m_border{128};
};

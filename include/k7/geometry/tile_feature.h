// The features that a host hands in to be spread over tiles, and the points that cutting adds to them.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/geodesy/latlon.h>
#include <k7/geometry/shp_obj.h>

/// A point feature. It stays the host's, which may derive from it.
struct K7PointRec {
  double lat = 0;
  double lon = 0;
  void* data = nullptr;  ///< the host's own
};

/// A K7TileFeature is a line or an area of several parts, each a run of points in degrees. The points stay
/// the host's and must live as long as the feature: a tile's pieces are numbers of points. The edges between
/// them run straight in latitude and longitude.
class K7_API K7TileFeature {
 public:
  K7TileFeature() = default;
  K7TileFeature(const K7TileFeature&) = delete;
  K7TileFeature& operator=(const K7TileFeature&) = delete;
  ~K7TileFeature();

  /// Takes points laid end to end, part by part, `sizes` holding the length of each. 0; K7_ERR_BAD_ARGUMENT
  /// for null and negative sizes, K7_ERR_MEMORY, each with the feature left empty.
  int SetPoints(const K7LatLon* points, const int* sizes, int parts);
  /// Takes the points of a shape whose coordinates are degrees; as with `SetPoints` they stay the shape's.
  /// The same codes.
  int SetShape(const K7ShpPoly& shape);
  void Clear();

  int PointCount() const { return m_pointCount; }
  /// Answer a coordinate of point i, without a check of i.
  double Lat(int i) const { return m_lat[2 * i]; }
  double Lon(int i) const { return m_lon[2 * i]; }
  int PartCount() const { return m_starts.Count(); }
  int PartStart(int part) const { return m_starts[part]; }
  int PartSize(int part) const;

  void* data = nullptr;  ///< the host's own

 protected:
  /// Cuts parts that run across 180 degrees there. Those that do not stay as they are.
  int CutAtSeam(bool rings);

 private:
  static int CutPlane(const K7LatLon* points, int count, bool ring, K7IntArray& starts, K7Array& cut);
  int CopyPart(int part, K7IntArray& starts, K7Array& cut) const;
  int AddPart(int size);
  int TakeOver(const K7Array& points, const K7IntArray& starts);

  const double* m_lat = nullptr;  // pairs of doubles, whichever comes first
  const double* m_lon = nullptr;
  int m_pointCount = 0;
  K7IntArray m_starts;
  K7LatLon* m_own = nullptr;
};

/// A line of one or more parts.
class K7_API K7Polyline : public K7TileFeature {
 public:
  /// Makes parts that are given as they run on the globe fit for tiles: neighbours more than 180 degrees
  /// apart, or beyond 180, are joined the shorter way, and the part is cut where that crosses 180. 0,
  /// K7_ERR_INVALID_DATA for coordinates off the earth, K7_ERR_MEMORY; the feature is unchanged then.
  int CutAtSeam() { return K7TileFeature::CutAtSeam(false); }
};

/// An area: rings, closed whether or not the first point is repeated at the end. What lies inside an odd
/// number of rings is inside, so that rings within rings are holes, whichever way they run.
class K7_API K7PolyPolygon : public K7TileFeature {
 public:
  /// As that of K7Polyline. The halves of a ring are closed along 180; a ring that runs around a pole is
  /// closed over the one that is nearer to most of its points. A band around the world stays as it stands.
  int CutAtSeam() { return K7TileFeature::CutAtSeam(true); }
};

/// A K7PolyPtMngr stores the points that cutting creates: where edges cross the borders of tiles, and the
/// corners of tiles. One may serve a single feature or all of a set; it must live as long as the tiles.
/// Points of a feature have the numbers 0 to its `PointCount` - 1; created ones follow behind, in the order
/// of their making by whatever feature.
class K7_API K7PolyPtMngr {
 public:
  K7PolyPtMngr() : m_points(2 * sizeof(double), 128) {}

  /// Says whose points come before the created ones.
  void Begin(const K7TileFeature& feature) { m_base = feature.PointCount(); }
  /// Sets the bounds whose corners `AddCorner` makes, in degrees.
  void SetTileBnd(double north, double south, double east, double west);
  /// Creates a point. Answers its number, or K7_ERR_MEMORY.
  int AddPoint(double lat, double lon);
  /// Creates the corner that lies clockwise behind a side: of the north side (0) the north-east one.
  int AddCorner(int side);

  /// Answers how many there are.
  int Count() const { return m_points.Count(); }
  /// Answer a coordinate of the created point i, from 0, without a check of i.
  double Lat(int i) const { return At(i)[0]; }
  double Lon(int i) const { return At(i)[1]; }
  /// Forgets all points from number `count` on.
  void Truncate(int count);

 private:
  const double* At(int i) const { return static_cast<const double*>(m_points.Data()) + 2 * i; }

  K7Array m_points;
  int m_base = 0;
  double m_north = 90, m_south = -90, m_east = 180, m_west = -180;
};

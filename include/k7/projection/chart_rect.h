// K7ChartRect: a geographic box that may run across the 180th meridian.
#pragma once

#include <k7/export.h>

class K7File;

/// A K7ChartRect is the extent of charts, stores, shapes, tiles and queries: a latitude band and a
/// longitude interval, in degrees, edges included. East below west means across the 180th meridian: west to
/// 180 and -180 to east. A value; no locks.
class K7_API K7ChartRect {
 public:
  /// Makes the empty rectangle, north -999, south 999, east -999, west 999. No point is in it, and
  /// `Include` starts it.
  K7ChartRect() = default;
  K7ChartRect(double n, double s, double e, double w) : m_north(n), m_south(s), m_east(e), m_west(w) {}
  void Init(double n, double s, double e, double w) { *this = K7ChartRect(n, s, e, w); }
  void Empty() { *this = K7ChartRect(); }

  double North() const { return m_north; }
  double South() const { return m_south; }
  double East() const { return m_east; }
  double West() const { return m_west; }

  /// \name Questions
  /// @{
  bool IsEmpty() const { return m_south > m_north; }
  /// Answers true for exactly 90, -90, 180, -180.
  bool IsEntireWorld() const;
  /// Answers false for what is not a number.
  bool PtIn(double lat, double lon) const;
  /// Answers whether the two share a point: overlap, not containment.
  bool AreaIn(double n, double s, double e, double w) const;
  bool AreaIn(const K7ChartRect& area) const;
  /// Answers the middle latitude and longitude. The longitude lies within [-180, 180].
  void Center(double& lat, double& lon) const;
  bool operator==(const K7ChartRect& other) const;
  bool operator!=(const K7ChartRect& other) const { return !(*this == other); }
  /// Answers whether this lies within `other`: including this in `other` leaves it exactly as it is.
  bool operator<(const K7ChartRect& other) const;
  /// @}

  /// \name Growing and cutting
  /// @{
  /// Grows by the lesser way to take in a point, across 180 where that is shorter. Of two ways as long, the
  /// point's side of the eastern edge decides. A position that is not a number changes nothing.
  void Include(double lat, double lon);
  /// Grows by margins in degrees and clamps to the world. A rectangle across 180 is clamped alike and may
  /// lose its crossing.
  void Expand(double dLat, double dLon);
  /// Takes a's extent, then includes b's north-east and south-west corners, each by the lesser way: `b` must
  /// not be empty, and what lies between its corners may be left out. Hosts that bound areas use
  /// `BoundingUnion`.
  void Union(const K7ChartRect& a, const K7ChartRect& b);
  K7ChartRect& operator|=(const K7ChartRect& other);
  /// Becomes the narrowest rectangle that holds every point of both; across 180 where that is narrower, all
  /// longitudes (180, -180) where both together leave no gap. Either may be empty, across 180, or this.
  void BoundingUnion(const K7ChartRect& a, const K7ChartRect& b);
  /// Becomes what both have in common. Answers false when that is nothing: this is then empty or, when
  /// already the latitudes are disjoint, holds their crossed bounds and keeps its longitudes. With one of
  /// the two across 180, what is common is sought only on that side of 180 on which the other has its
  /// eastern edge, with both, only across it. `AreaIn` has no such limit.
  bool Intersect(const K7ChartRect& a, const K7ChartRect& b);
  K7ChartRect& operator&=(const K7ChartRect& other);
  /// @}

  /// Reads north, south, east, west as 8-byte little-endian floats. Answers what the last read returned (8
  /// when all is well, less or a negative code at the end of the file), or K7_ERR_BAD_ARGUMENT for null. A
  /// field that does not come whole keeps its value.
  int Read(K7File* f);

 private:
  double m_north = -999.0;
  double m_south = 999.0;
  double m_east = -999.0;
  double m_west = 999.0;
};

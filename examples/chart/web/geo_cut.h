// Lines and rings cut at 180 degrees, as RFC 7946 wants them (section 3.1.9).
#pragma once

#include <k7/geodesy/latlon.h>

#include <vector>

/// Degrees.
struct GeoPoint {
  double lon, lat;
};
using GeoLine = std::vector<GeoPoint>;
/// The outer ring, counter-clockwise, and its holes, clockwise; each ends with its first point.
using GeoPolygon = std::vector<GeoLine>;

/// The pieces of a line whose neighbours are less than half a turn apart.
std::vector<GeoLine> CutLine(const std::vector<K7LatLon>& points);
/// The polygons that rings enclose, each a ring in either direction, closed or not. A ring lies within
/// another or beside it; one that runs around a pole holds the nearer pole.
std::vector<GeoPolygon> CutArea(const std::vector<std::vector<K7LatLon>>& rings);

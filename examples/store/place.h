// Where records lie: their bounds, boxes around circles, distances.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/projection/chart_rect.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "store/columns.h"

/// Bounds in 2^-23 degree; `east` below `west` across 180. A point's are the point.
struct Box {
  int32_t west = 0;
  int32_t east = 0;
  int32_t south = 0;
  int32_t north = 0;

  bool IsPoint() const { return west == east && south == north; }
  K7ChartRect Degrees() const;
  K7LatLon SouthWest() const;
};

/// The bounds of a record; nothing for types without a place, areas without bounds and positions off the
/// globe.
std::optional<Box> BoundsOf(const TypeTable& table, const K7NavRec& rec);
/// The ends of a record that is a line.
void EndsOf(const K7NavRec& segment, K7LatLon& from, K7LatLon& to);

/// A box in degrees that does not cross 180.
struct Window {
  double west, east, south, north;
};
/// A rectangle as the windows that it is made of: none when it is empty or not a number, two across 180.
std::vector<Window> WindowsOf(const K7ChartRect& area);
/// The windows that hold a circle of `radius` NM, poles and 180 included.
std::vector<Window> WindowsAround(const K7LatLon& center, double radius);

/// NM from a position to the nearest point of a great circle's piece, and to bounds; 0 within them.
double DistanceToLine(const K7LatLon& at, const K7LatLon& from, const K7LatLon& to);
double DistanceToBox(const K7LatLon& at, const Box& box);

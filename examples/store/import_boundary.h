// Boundaries of airspaces: pieces that join, and the bounds of what they hold.
#pragma once

#include "store/import_openair.h"

#include <k7/navdata.h>

#include <vector>

/// The pieces of a boundary (their places, via, radius and bearings): lines between the parts that do not
/// meet, none without a length. Empty, or why it bounds nothing.
std::string JoinBoundary(const std::vector<BoundaryPart>& parts, std::vector<K7AirspaceSeg>& pieces);

/// Degrees; east below west across 180.
struct BoundaryBounds {
  double north, south, east, west;
};
/// What holds the boundary with the bulges of its arcs and great circles, and a pole that it runs around.
BoundaryBounds BoundsOf(const std::vector<K7AirspaceSeg>& pieces);

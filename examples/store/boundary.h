// Whether a position lies within an airspace's boundary.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/airspace.h>

#include <vector>

/// True for a position within the boundary of `pieces`, in their order; on a corner as well. The boundary
/// goes once around what is less than half of the earth. Never within no pieces.
bool IsWithin(const std::vector<K7AirspaceSeg>& pieces, const K7LatLon& at);

// How a route's points are written in addresses.
#pragma once

#include <k7/geodesy/latlon.h>

#include <string>

/// "47.43539,-122.30961"
std::string PointText(const K7LatLon& place);
/// "SEA@47.43539,-122.30961", which is read by `FindPlaces`; the position alone without an identifier, or
/// with one that is none.
std::string PointText(const std::string& ident, const K7LatLon& place);

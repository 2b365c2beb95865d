// The boundary of an airspace as points on the sphere.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/airspace.h>

#include <span>
#include <vector>

/// Goes once around, without the first point again: so finely that great circles and rhumb lines between the
/// points may be drawn straight in latitude and longitude, and arcs as chords. Pieces that say nothing
/// sensible are straight.
std::vector<K7LatLon> AirspaceOutline(std::span<const K7AirspaceSeg> pieces);

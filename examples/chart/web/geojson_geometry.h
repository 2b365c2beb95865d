// Geometries of GeoJSON (RFC 7946), cut at 180 degrees.
#pragma once

#include "web/json.h"

#include <k7/geodesy/latlon.h>

#include <vector>

/// Null for what has no point, as the others for what has no line and no area.
void WritePoints(JsonWriter& json, const std::vector<K7LatLon>& points);
void WriteLines(JsonWriter& json, const std::vector<std::vector<K7LatLon>>& lines);
void WriteArea(JsonWriter& json, const std::vector<std::vector<K7LatLon>>& rings);

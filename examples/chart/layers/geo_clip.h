// Cuts lines and areas to what a projection can show: a window of the unrolled map, or a cap of the globe.
#pragma once

#include "layers/geo_path.h"

/// A run of surface points as unit vectors.
using GlobeLine = std::vector<K7ECEF>;

/// The line with more points, so that no edge is longer than `step` degrees of latitude or longitude.
GeoLine Divide(const GeoLine& line, double step);

/// Rings cut to the window, along its edges where they leave it.
std::vector<GeoLine> CutArea(const std::vector<GeoLine>& rings, const FlatWindow& window);
/// The pieces of a line inside the window.
std::vector<GeoLine> CutLine(const GeoLine& line, const FlatWindow& window);

/// Rings cut to the cap, along its rim where they leave it. `step` (degrees) bounds the length of an edge.
std::vector<GlobeLine> CutArea(const std::vector<GeoLine>& rings, const GlobeCap& cap, double step);
/// The pieces of a line inside the cap.
std::vector<GlobeLine> CutLine(const GeoLine& line, const GlobeCap& cap, double step);
/// The rim of the cap, clockwise, from one azimuth to another (radians, the second the larger).
void AddRim(GlobeLine& out, const GlobeCap& cap, double from, double to, double step);

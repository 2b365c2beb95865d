// The band that printed charts draw inside the boundary of an area.
#pragma once

#include "layers/device_line.h"

#include <vector>

/// Adds the triangles of a band of that width in pixels, to the right of a line; for a line that is closed it
/// goes all around.
void AddEdgeBand(const DeviceLine& line, double width, std::vector<double>& triangles);
/// Adds short strokes across such a band to the path, so many pixels from one to the next.
void AddHatching(const DeviceLine& line, double width, double apart, K7Grfx& g);

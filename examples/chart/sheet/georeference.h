// Where a picture's pixels lie on a map that geographic programs know.
#pragma once

#include <k7/projection/map_view.h>

#include <optional>
#include <string>

struct Georeference {
  /// Map coordinates in metres of a corner of pixels: x = toMap[0] + toMap[1] * column + toMap[2] * row, and
  /// y by the other three.
  double toMap[6];
  std::string system;  ///< on the sphere of the library's maps, as well-known text of version 1
};

/// Of a view whose window has its upper left corner at a pixel of the picture. Nothing for a perspective from
/// a stated height, which that text has no name for.
std::optional<Georeference> GeoreferenceOf(const K7MapView& view, int left, int top);

/// The six lines of a world file, by the middles of pixels.
std::string WorldFileOf(const Georeference& georeference);
/// What GDAL keeps beside a picture: of the others it does not read the system for a PNG.
std::string SidecarOf(const Georeference& georeference);

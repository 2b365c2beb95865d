// Where a picture lies that geographic programs ask for by a box of map coordinates.
#pragma once

#include "web/map_painter.h"

#include <optional>

enum class MapCrs {
  Mercator,  ///< metres on the sphere of radius 6378137: EPSG:3857
  Degrees,   ///< longitude to the right, latitude upwards: CRS:84, and EPSG:4326 with its axes exchanged
};

/// The outer edges of a picture's pixels, x to the right and y upwards whatever the order of the axes.
struct MapBox {
  MapCrs crs = MapCrs::Mercator;
  double west = 0, south = 0, east = 0, north = 0;
  int width = 0, height = 0;
};

/// What there is to draw of it. A map has square pixels: of a box that has not they are stretched, lettering
/// included.
struct MapWindow {
  MapRequest map;            ///< all but layers and theme
  cairo_matrix_t toPicture;  ///< from the map's pixels to the picture's
  PixelBox world;            ///< outside it the picture is empty
};

/// Whether the pixels of a box are near enough to squares to be drawn.
bool IsDrawable(const MapBox& box);
/// Longitudes go on beyond 180: a box across it, or a whole turn further, shows the map as it lies there. Of
/// more than a whole turn the middle one is drawn. Nothing for a box beside the world.
std::optional<MapWindow> WindowOf(const MapBox& box);

#include "web/map_window.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double RADIUS = 6378137;  // of the sphere of the library's cylindrical projections, metres
constexpr double METRES_PER_NM = 1852;
constexpr double RADIANS = std::numbers::pi / 180;
constexpr double MOST_STRETCH = 64;
constexpr double ROUNDING = 1e-6;  // pixels

double MetresPerUnit(MapCrs crs) { return crs == MapCrs::Mercator ? 1 : RADIUS * RADIANS; }
// From the middle to where the map begins again.
double HalfTurn(MapCrs crs) { return RADIUS * std::numbers::pi / MetresPerUnit(crs); }
// From the equator to the map's upper edge; Mercator's makes the world a square, as in web maps.
double HalfHeight(MapCrs crs) { return crs == MapCrs::Mercator ? HalfTurn(crs) : 90; }

int PixelsFor(double size) { return std::max(1, static_cast<int>(std::ceil(size - ROUNDING))); }

double Snapped(double value) {
  return std::fabs(value - std::round(value)) < ROUNDING ? std::round(value) : value;
}

K7LatLon PlaceAt(MapCrs crs, double x, double y) {
  const double metres = MetresPerUnit(crs);
  const double lon = std::remainder(x * metres / RADIUS / RADIANS, 360);
  return {crs == MapCrs::Mercator ? std::atan(std::sinh(y / RADIUS)) / RADIANS : y, lon};
}

// By the resolution at the equator: pictures beside one another show the same data, of whatever size they
// are.
const DataScale& DataFor(double metresPerPixel) {
  static const double HALF_SCREEN = 400;  // pixels
  return ScaleFor(metresPerPixel * HALF_SCREEN / METRES_PER_NM);
}

}  // namespace

bool IsDrawable(const MapBox& box) {
  const double stretch = (box.east - box.west) / box.width / ((box.north - box.south) / box.height);
  return stretch <= MOST_STRETCH && stretch >= 1 / MOST_STRETCH;
}

std::optional<MapWindow> WindowOf(const MapBox& box) {
  const double unitsX = (box.east - box.west) / box.width, unitsY = (box.north - box.south) / box.height;
  const double middle = (box.west + box.east) / 2, turn = HalfTurn(box.crs), top = HalfHeight(box.crs);
  const double west = std::max(box.west, middle - turn), east = std::min(box.east, middle + turn);
  const double south = std::max(box.south, -top), north = std::min(box.north, top);
  if (!(south < north)) return {};
  const double units = std::sqrt(unitsX * unitsY);
  const double x = (west + east) / 2, y = (south + north) / 2;

  MapWindow window;
  MapRequest& map = window.map;
  map.width = PixelsFor((east - west) / units);
  map.height = PixelsFor((north - south) / units);
  map.chart.type = box.crs == MapCrs::Mercator ? K7_PROJ_MERCATOR : K7_PROJ_RECTANGULAR;
  map.chart.center = PlaceAt(box.crs, x, y);
  // At magnification 1 the window is two radii wide.
  const double metres = units * MetresPerUnit(box.crs);
  map.chart.zoom = 2 * RADIUS / (metres * map.width);
  map.data = &DataFor(metres);

  const double stretchX = units / unitsX, stretchY = units / unitsY;
  cairo_matrix_init(&window.toPicture, stretchX, 0, 0, stretchY,
                    Snapped((x - box.west) / unitsX - map.width / 2.0 * stretchX),
                    Snapped((box.north - y) / unitsY - map.height / 2.0 * stretchY));
  window.world = {(west - box.west) / unitsX, (box.north - north) / unitsY, (east - box.west) / unitsX,
                  (box.north - south) / unitsY};
  return window;
}

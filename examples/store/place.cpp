#include "store/place.h"

#include <k7/geodesy/constants.h>
#include <k7/geodesy/grtcirc.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace {

constexpr int32_t UNITS = 1 << 23;  // a degree
constexpr double RADIANS = std::numbers::pi / 180;

int32_t Units(const TypeTable& table, const K7NavRec& rec, const char* name) {
  const Column* column = table.Find(name);
  int32_t units = 0;
  if (column) std::memcpy(&units, reinterpret_cast<const char*>(&rec) + column->at, sizeof units);
  return units;
}

Box PointBox(int32_t lat, int32_t lon) { return {lon, lon, lat, lat}; }

// A great circle runs nearer to the pole than its ends where its vertex lies between them.
Box LineBox(const K7AirwaySeg& seg) {
  Box box = {seg.fromLon, seg.toLon, std::min(seg.fromLat, seg.toLat), std::max(seg.fromLat, seg.toLat)};
  const int64_t east = static_cast<int64_t>(seg.toLon) - seg.fromLon;
  const bool across = std::abs(east) > 180LL * UNITS;
  if ((east < 0) != across) std::swap(box.west, box.east);
  K7LatLon from, to;
  EndsOf(seg, from, to);
  if (from.InitCourse(to) < 0) return box;  // no way to go
  const double out = from.InitCourse(to) * RADIANS, in = from.FinalCourse(to) * RADIANS;
  const double vertex = std::acos(std::min(1.0, std::abs(std::sin(out)) * std::cos(from.Lat() * RADIANS)));
  const auto units = static_cast<int32_t>(std::ceil(vertex / RADIANS * UNITS));
  if (std::cos(out) > 0 && std::cos(in) < 0) box.north = std::max(box.north, units);
  if (std::cos(out) < 0 && std::cos(in) > 0) box.south = std::min(box.south, -units);
  return box;
}

bool IsOnGlobe(const Box& box) {
  const auto valid = [](int32_t lon) { return std::abs(static_cast<int64_t>(lon)) <= 180LL * UNITS; };
  return valid(box.west) && valid(box.east) && box.south <= box.north && box.south >= -90 * UNITS &&
         box.north <= 90 * UNITS;
}

double Degrees(int32_t units) { return K7NavData::FixPt2DecDeg(units); }

}  // namespace

K7ChartRect Box::Degrees() const {
  return {::Degrees(north), ::Degrees(south), ::Degrees(east), ::Degrees(west)};
}
K7LatLon Box::SouthWest() const { return {::Degrees(south), ::Degrees(west)}; }

std::optional<Box> BoundsOf(const TypeTable& table, const K7NavRec& rec) {
  Box box;
  switch (table.place) {
    case Place::NONE:
      return {};
    case Place::POINT: {
      const bool formation = table.Find("ref_lat");
      box = PointBox(Units(table, rec, formation ? "ref_lat" : "lat"),
                     Units(table, rec, formation ? "ref_lon" : "lon"));
      break;
    }
    case Place::LINE:
      box = LineBox(static_cast<const K7AirwaySeg&>(rec));
      break;
    case Place::AREA:
      box = {Units(table, rec, "west"), Units(table, rec, "east"), Units(table, rec, "south"),
             Units(table, rec, "north")};
      if (!box.west && !box.east && !box.south && !box.north) return {};
      break;
    case Place::CELL: {
      const auto& cell = static_cast<const K7Mora&>(rec);
      if (cell.lat < -90 || cell.lat >= 90 || cell.lon < -180 || cell.lon >= 180) return {};
      box = {cell.lon * UNITS, (cell.lon + 1) * UNITS, cell.lat * UNITS, (cell.lat + 1) * UNITS};
    }
  }
  return IsOnGlobe(box) ? std::optional(box) : std::nullopt;
}

void EndsOf(const K7NavRec& segment, K7LatLon& from, K7LatLon& to) {
  const auto& seg = static_cast<const K7AirwaySeg&>(segment);
  from.Init(Degrees(seg.fromLat), Degrees(seg.fromLon));
  to.Init(Degrees(seg.toLat), Degrees(seg.toLon));
}

std::vector<Window> WindowsOf(const K7ChartRect& area) {
  const double north = area.North(), south = area.South(), east = area.East(), west = area.West();
  if (!(south <= north) || !std::isfinite(east) || !std::isfinite(west)) return {};
  if (west <= east) return {{west, east, south, north}};
  return {{west, 180, south, north}, {-180, east, south, north}};
}

std::vector<Window> WindowsAround(const K7LatLon& center, double radius) {
  const double reach = radius / K7_EARTH_RADIUS_NM / RADIANS + 1e-6;
  const double south = center.Lat() - reach, north = center.Lat() + reach;
  if (!(std::abs(center.Lat()) <= 90) || !std::isfinite(center.Lon())) return {};
  if (south <= -90 || north >= 90) return {{-180, 180, std::max(south, -90.0), std::min(north, 90.0)}};
  // Where the circle touches its meridians.
  const double sine = std::sin(reach * RADIANS) / std::cos(center.Lat() * RADIANS);
  const double width = std::asin(std::min(1.0, sine)) / RADIANS + 1e-6;
  const double west = center.Lon() - width, east = center.Lon() + width;
  if (west < -180) return {{west + 360, 180, south, north}, {-180, east, south, north}};
  if (east > 180) return {{west, 180, south, north}, {-180, east - 360, south, north}};
  return {{west, east, south, north}};
}

double DistanceToLine(const K7LatLon& at, const K7LatLon& from, const K7LatLon& to) {
  const double toEnds = std::min(at.Distance(from), at.Distance(to));
  const K7GrtCirc line(from, to);
  double cross, along;
  line.OrthoDist(at, cross, along);
  const bool beside = line.Length() > 0 && along >= 0 && along <= line.Length();
  return beside ? std::min(toEnds, std::abs(cross)) : toEnds;
}

double DistanceToBox(const K7LatLon& at, const Box& box) {
  if (box.IsPoint()) return at.Distance(box.SouthWest());
  const double south = Degrees(box.south), north = Degrees(box.north);
  const double west = Degrees(box.west), east = Degrees(box.east);
  const K7ChartRect columns(90, -90, east, west);
  if (columns.PtIn(0, at.Lon())) return at.Distance(K7LatLon(std::clamp(at.Lat(), south, north), at.Lon()));
  return std::min(DistanceToLine(at, K7LatLon(south, west), K7LatLon(north, west)),
                  DistanceToLine(at, K7LatLon(south, east), K7LatLon(north, east)));
}

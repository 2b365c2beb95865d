#include "layers/airspace_outline.h"

#include <k7/geodesy/constants.h>
#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double CHORD_NM = 5;
constexpr double CHORD_DEGREES = 2;  // of an arc: off by a seven-thousandth of its radius
constexpr int MOST_CHORDS = 4000;    // half around the earth
constexpr double RADIANS = std::numbers::pi / 180;

K7LatLon Place(int32_t lat, int32_t lon) {
  return {K7NavData::FixPt2DecDeg(lat), K7NavData::FixPt2DecDeg(lon)};
}

int Chords(double whole, double chord) {
  return std::clamp(static_cast<int>(std::ceil(whole / chord)), 1, MOST_CHORDS);
}

// From where a piece begins up to its end, which the next piece begins with.
void AddGreatCircle(const K7LatLon& from, const K7LatLon& to, std::vector<K7LatLon>& points) {
  const double distance = from.Distance(to), course = from.InitCourse(to);
  const int chords = course < 0 ? 1 : Chords(distance, CHORD_NM);
  points.push_back(from);
  for (int i = 1; i < chords; ++i) {
    K7LatLon point;
    point.EndPoint(from, course, distance * i / chords);
    points.push_back(point);
  }
}

// Straight on Mercator's map.
void AddRhumbLine(const K7LatLon& from, const K7LatLon& to, std::vector<K7LatLon>& points) {
  const auto northing = [](double lat) { return std::asinh(std::tan(lat * RADIANS)); };
  const double y1 = northing(from.Lat()), y2 = northing(to.Lat());
  const double east = std::remainder(to.Lon() - from.Lon(), 360);
  const int chords = Chords(std::hypot(to.Lat() - from.Lat(), east) * 60, CHORD_NM);
  for (int i = 0; i < chords; ++i) {
    const double t = static_cast<double>(i) / chords;
    const double lat = std::atan(std::sinh(y1 + (y2 - y1) * t)) / RADIANS;
    points.emplace_back(i == 0 ? from.Lat() : lat, std::remainder(from.Lon() + east * t, 360));
  }
}

void AddArc(const K7LatLon& centre, double brg, double sweep, double radius, double endRadius,
            std::vector<K7LatLon>& points) {
  const int chords = Chords(std::fabs(sweep), CHORD_DEGREES);
  for (int i = 0; i < chords; ++i) {
    const double t = static_cast<double>(i) / chords;
    K7LatLon point;
    point.EndPoint(centre, std::fmod(brg + sweep * t + 720, 360), radius + (endRadius - radius) * t);
    points.push_back(point);
  }
}

// The ends are what neighbouring pieces share, so that the boundary closes whatever the radius says.
void AddArcBetween(const K7AirspaceSeg& piece, const K7LatLon& from, const K7LatLon& to,
                   std::vector<K7LatLon>& points) {
  const K7LatLon centre = Place(piece.centerLat, piece.centerLon);
  const double start = centre.InitCourse(from), end = centre.InitCourse(to);
  if (start < 0 || end < 0) return AddGreatCircle(from, to, points);
  const bool clockwise = piece.via == K7AirspaceSeg::CLOCKWISE_ARC;
  double sweep = std::fmod(clockwise ? end - start + 360 : start - end + 360, 360);
  if (sweep == 0) sweep = 360;
  AddArc(centre, start, clockwise ? sweep : -sweep, centre.Distance(from), centre.Distance(to), points);
}

}  // namespace

std::vector<K7LatLon> AirspaceOutline(std::span<const K7AirspaceSeg> pieces) {
  std::vector<K7LatLon> points;
  for (size_t i = 0; i < pieces.size(); ++i) {
    const K7AirspaceSeg& piece = pieces[i];
    const K7AirspaceSeg& next = pieces[(i + 1) % pieces.size()];
    const K7LatLon from = Place(piece.lat, piece.lon), to = Place(next.lat, next.lon);
    switch (piece.via) {
      case K7AirspaceSeg::CIRCLE:
        AddArc(Place(piece.centerLat, piece.centerLon), 0, 360, piece.radius, piece.radius, points);
        break;
      case K7AirspaceSeg::CLOCKWISE_ARC:
      case K7AirspaceSeg::COUNTER_ARC:
        AddArcBetween(piece, from, to, points);
        break;
      case K7AirspaceSeg::RHUMB_LINE:
        AddRhumbLine(from, to, points);
        break;
      default:
        AddGreatCircle(from, to, points);
    }
  }
  return points;
}

#include "store/boundary.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double RADIANS = std::numbers::pi / 180;

K7LatLon Position(int32_t lat, int32_t lon) {
  return {K7NavData::FixPt2DecDeg(lat), K7NavData::FixPt2DecDeg(lon)};
}

// Counts the turns of the view from a position while a point goes along a great circle from stop to stop:
// straight lines as they are seen from there.
class View {
 public:
  explicit View(const K7LatLon& from) : m_from(from) {}

  void To(const K7LatLon& point) {
    const double course = m_from.InitCourse(point);
    // No course leads to where one is.
    if (course < 0) m_there = m_there || m_from.Distance(point) < 1;
    if (course < 0) return;
    if (m_begun) m_turned += std::remainder(course - m_course, 360);
    m_begun = true;
    m_course = course;
  }
  bool WentAround() const { return m_there || std::abs(m_turned) > 180; }

 private:
  K7LatLon m_from;
  double m_course = 0;
  double m_turned = 0;
  bool m_begun = false;
  bool m_there = false;
};

void FollowArc(View& view, const K7AirspaceSeg& piece, const K7LatLon& from, const K7LatLon& to) {
  const K7LatLon center = Position(piece.centerLat, piece.centerLon);
  const double begin = center.InitCourse(from), end = center.InitCourse(to);
  const double first = center.Distance(from), last = center.Distance(to);
  const bool clockwise = piece.via == K7AirspaceSeg::CLOCKWISE_ARC;
  double turn = std::fmod((clockwise ? end - begin : begin - end) + 360, 360);
  if (from.Lat() == to.Lat() && from.Lon() == to.Lon()) turn = 360;
  const int steps = std::max(1, static_cast<int>(std::ceil(turn / 0.5)));
  for (int i = 1; i < steps; i++) {
    const double part = static_cast<double>(i) / steps;
    K7LatLon stop;
    stop.EndPoint(center, begin + (clockwise ? turn : -turn) * part, first + (last - first) * part);
    view.To(stop);
  }
}

double MercatorY(double lat) { return std::asinh(std::tan(std::clamp(lat, -89.9999, 89.9999) * RADIANS)); }

void FollowRhumbLine(View& view, const K7LatLon& from, const K7LatLon& to) {
  const double north = to.Lat() - from.Lat(), east = std::remainder(to.Lon() - from.Lon(), 360);
  const double y = MercatorY(from.Lat()), rise = MercatorY(to.Lat()) - y;
  const int steps = static_cast<int>(std::ceil(std::max(std::abs(north), std::abs(east)) * 8));
  for (int i = 1; i < steps; i++) {
    const double part = static_cast<double>(i) / steps;
    const double lat = from.Lat() + north * part;
    const double along = std::abs(rise) > 1e-9 ? (MercatorY(lat) - y) / rise : part;
    view.To(K7LatLon(lat, std::remainder(from.Lon() + east * along, 360)));
  }
}

}  // namespace

bool IsWithin(const std::vector<K7AirspaceSeg>& pieces, const K7LatLon& at) {
  View view(at);
  for (size_t i = 0; i < pieces.size(); i++) {
    const K7AirspaceSeg& piece = pieces[i];
    if (piece.via == K7AirspaceSeg::CIRCLE)
      return at.Distance(Position(piece.centerLat, piece.centerLon)) <= static_cast<double>(piece.radius);
    const K7AirspaceSeg& next = pieces[(i + 1) % pieces.size()];
    const K7LatLon from = Position(piece.lat, piece.lon), to = Position(next.lat, next.lon);
    view.To(from);
    if (piece.via == K7AirspaceSeg::CLOCKWISE_ARC || piece.via == K7AirspaceSeg::COUNTER_ARC)
      FollowArc(view, piece, from, to);
    if (piece.via == K7AirspaceSeg::RHUMB_LINE) FollowRhumbLine(view, from, to);
  }
  if (!pieces.empty()) view.To(Position(pieces[0].lat, pieces[0].lon));
  return view.WentAround();
}

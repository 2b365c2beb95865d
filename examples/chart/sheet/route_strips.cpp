#include "sheet/route_strips.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double OVERLAP = 0.1;
constexpr double ALONG = 0.8, ACROSS = 1 / 3.0;  // of the chart, for the stretch of route
constexpr int STEPS = 60;                        // to a strip's shorter side

struct Place {
  K7LatLon at;
  double distance;
};

// Miles to the right and up from a centre, along a turned frame.
struct Offset {
  double right, up;
};

Offset OffsetOf(const RouteStrip& strip, const K7LatLon& place) {
  const double course = strip.center.InitCourse(place), distance = strip.center.Distance(place);
  if (course < 0) return {0, 0};
  const double angle = (course - strip.turn) * K7_DEG_TO_RAD;
  return {distance * std::sin(angle), distance * std::cos(angle)};
}

K7LatLon PlaceAt(const RouteStrip& strip, const Offset& offset) {
  K7LatLon place;
  const double course = std::atan2(offset.right, offset.up) * K7_RAD_TO_DEG + strip.turn;
  place.EndPoint(strip.center, std::fmod(course + 720, 360), std::hypot(offset.right, offset.up));
  return place;
}

class Cutter {
 public:
  Cutter(const Route& route, const StripFrame& frame)
      : m_frame(frame), m_step(std::min(frame.width, frame.height) / STEPS) {
    double distance = 0;
    for (size_t leg = 0; leg + 1 < route.fixes.size(); ++leg) {
      const K7LatLon &from = route.fixes[leg].place, &to = route.fixes[leg + 1].place;
      const double length = from.Distance(to), course = from.InitCourse(to);
      for (double along = 0; course >= 0 && along < length; along += m_step) {
        K7LatLon at = from;
        if (along > 0) at.EndPoint(from, course, along);
        m_places.push_back({at, distance + along});
      }
      distance += length;
    }
    if (!m_places.empty()) m_places.push_back({route.fixes.back().place, distance});
  }

  // The fewest strips, then the shortest that are no more.
  std::vector<RouteStrip> Cut() const {
    if (m_places.size() < 2) return {};
    double most = m_places.back().distance, least = 0;
    std::vector<RouteStrip> strips = CutAt(most);
    static const int ROUNDS = 12;
    for (int round = 0; round < ROUNDS && strips.size() > 1; ++round) {
      const double middle = (least + most) / 2;
      std::vector<RouteStrip> shorter = CutAt(middle);
      const bool isAsFew = !shorter.empty() && shorter.size() <= strips.size();
      (isAsFew ? most : least) = middle;
      if (isAsFew) strips = std::move(shorter);
    }
    return strips;
  }

 private:
  std::vector<RouteStrip> CutAt(double longest) const {
    std::vector<RouteStrip> strips;
    for (size_t begin = 0;;) {
      if (strips.size() == MOST_STRIPS) return {};
      RouteStrip strip;
      size_t end = begin + 1;
      Lay(begin, end, strip);
      for (RouteStrip longer;
           end + 1 < m_places.size() && m_places[end + 1].distance - m_places[begin].distance <= longest &&
           Lay(begin, end + 1, longer);
           ++end)
        strip = longer;
      strips.push_back(strip);
      if (end + 1 == m_places.size()) return strips;
      const double back = strip.to - OVERLAP * (strip.to - strip.from);
      size_t next = end;
      while (next > begin + 1 && m_places[next].distance > back) --next;
      begin = std::max(next, begin + 1);
    }
  }

  // Lays a strip about a stretch. False where it does not fit.
  bool Lay(size_t begin, size_t end, RouteStrip& strip) const {
    const K7LatLon &first = m_places[begin].at, &last = m_places[end].at;
    strip = {first, 0, m_places[begin].distance, m_places[end].distance};
    const double course = first.InitCourse(last);
    if (course >= 0) strip.center.EndPoint(first, course, first.Distance(last) / 2);
    if (m_frame.trackUp) strip.turn = std::max(strip.center.InitCourse(last), 0.0);
    Offset low{INFINITY, INFINITY}, high{-INFINITY, -INFINITY};
    for (size_t i = begin; i <= end; ++i) {
      const Offset offset = OffsetOf(strip, m_places[i].at);
      low = {std::min(low.right, offset.right), std::min(low.up, offset.up)};
      high = {std::max(high.right, offset.right), std::max(high.up, offset.up)};
    }
    const Offset middle = {(low.right + high.right) / 2, (low.up + high.up) / 2};
    const RouteStrip laid = strip;
    strip.center = PlaceAt(laid, middle);
    // North lies elsewhere from there.
    if (m_frame.trackUp)
      strip.turn = std::max(strip.center.InitCourse(PlaceAt(laid, {middle.right, middle.up + m_step})), 0.0);
    return high.right - low.right <= m_frame.width * (m_frame.trackUp ? ACROSS : ALONG) &&
           high.up - low.up <= m_frame.height * ALONG;
  }

  StripFrame m_frame;
  double m_step;
  std::vector<Place> m_places;
};

}  // namespace

std::vector<RouteStrip> CutStrips(const Route& route, const StripFrame& frame) {
  // Of more strips than there may be, no places are kept.
  const double most = std::hypot(frame.width, frame.height) * MOST_STRIPS;
  if (!(frame.width > 0 && frame.height > 0) || !(route.distance <= most)) return {};
  return Cutter(route, frame).Cut();
}

K7LatLon CornerOf(const RouteStrip& strip, const StripFrame& frame, int right, int up) {
  return PlaceAt(strip, {frame.width / 2 * right, frame.height / 2 * up});
}

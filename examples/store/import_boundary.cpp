#include "store/import_boundary.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double RADIAN = 3.14159265358979323846 / 180;
constexpr double DEGREES_PER_NM = 1 / (3437.74677 * RADIAN);
constexpr double SAME_PLACE = 0.05;  // NM: files round points to seconds and radii to tenths

K7LatLon StartOf(const K7AirspaceSeg& piece) {
  return {K7NavData::FixPt2DecDeg(piece.lat), K7NavData::FixPt2DecDeg(piece.lon)};
}
K7LatLon EndOf(const K7AirspaceSeg& piece) {
  return {K7NavData::FixPt2DecDeg(piece.endLat), K7NavData::FixPt2DecDeg(piece.endLon)};
}
K7LatLon CenterOf(const K7AirspaceSeg& piece) {
  return {K7NavData::FixPt2DecDeg(piece.centerLat), K7NavData::FixPt2DecDeg(piece.centerLon)};
}
void SetStart(K7AirspaceSeg& piece, const K7LatLon& at) {
  piece.lat = K7NavData::DecDeg2FixPt(at.Lat());
  piece.lon = K7NavData::DecDeg2FixPt(at.Lon());
}
void SetEnd(K7AirspaceSeg& piece, const K7LatLon& at) {
  piece.endLat = K7NavData::DecDeg2FixPt(at.Lat());
  piece.endLon = K7NavData::DecDeg2FixPt(at.Lon());
}

K7AirspaceSeg Line(const K7LatLon& from, const K7LatLon& to) {
  K7AirspaceSeg piece;
  SetStart(piece, from);
  SetEnd(piece, to);
  return piece;
}

K7AirspaceSeg Curve(const BoundaryPart& part) {
  K7AirspaceSeg piece = Line(part.start, part.end);
  piece.via = part.kind == BoundaryPart::CIRCLE ? K7AirspaceSeg::CIRCLE
              : part.counterClockwise           ? K7AirspaceSeg::COUNTER_ARC
                                                : K7AirspaceSeg::CLOCKWISE_ARC;
  piece.centerLat = K7NavData::DecDeg2FixPt(part.center.Lat());
  piece.centerLon = K7NavData::DecDeg2FixPt(part.center.Lon());
  piece.radius = static_cast<float>(part.radius);
  piece.startBrg = static_cast<float>(part.startBrg);
  piece.endBrg = static_cast<float>(part.endBrg);
  return piece;
}

bool IsSame(const K7LatLon& a, const K7LatLon& b) { return a.Distance(b) <= SAME_PLACE; }

double Turned(double degrees) {
  const double turned = std::fmod(degrees, 360);
  return turned < 0 ? turned + 360 : turned;
}

// Longitudes are counted on across 180 along the boundary.
class Extent {
 public:
  void Add(const K7LatLon& at) {
    m_lon = m_any ? m_lon + std::remainder(at.Lon() - m_lon, 360) : at.Lon();
    Grow(at.Lat(), m_lon);
  }
  void AddArc(const K7AirspaceSeg& piece);
  void AddBulge(const K7LatLon& from, const K7LatLon& to);
  void AddPole(bool north) {
    Grow(north ? 90 : -90, m_lon);
    m_around = true;
  }
  double Lon() const { return m_lon; }
  double MiddleLat() const { return (m_bounds.north + m_bounds.south) / 2; }
  BoundaryBounds Bounds() const;

 private:
  void Grow(double lat, double lon) {
    if (!m_any) m_bounds = {lat, lat, lon, lon};
    m_any = true;
    m_bounds = {std::max(m_bounds.north, lat), std::min(m_bounds.south, lat), std::max(m_bounds.east, lon),
                std::min(m_bounds.west, lon)};
  }

  BoundaryBounds m_bounds{};
  double m_lon = 0;
  bool m_any = false;
  bool m_around = false;
};

// A circle reaches furthest north and south at bearings 0 and 180, furthest east and west where the meridian
// touches it: there the triangle of pole, centre and point has its right angle at the point.
void Extent::AddArc(const K7AirspaceSeg& piece) {
  const K7LatLon center = CenterOf(piece), ends[] = {StartOf(piece), EndOf(piece)};
  const bool circle = piece.via == K7AirspaceSeg::CIRCLE;
  const bool counter = piece.via == K7AirspaceSeg::COUNTER_ARC;
  const double first = counter ? piece.endBrg : piece.startBrg;
  const double sweep = Turned((counter ? piece.startBrg : piece.endBrg) - first);
  const double radius = circle ? static_cast<double>(piece.radius)
                               : std::max(center.Distance(ends[0]), center.Distance(ends[1]));
  const double r = radius * DEGREES_PER_NM;
  const double base = m_any ? m_lon : center.Lon();
  if (circle && r + std::fabs(center.Lat()) >= 90) AddPole(center.Lat() > 0);
  const double touch =
      std::acos(std::clamp(std::tan(r * RADIAN) * std::tan(center.Lat() * RADIAN), -1.0, 1.0)) / RADIAN;
  for (const double bearing : {0.0, 180.0, touch, -touch}) {
    if (!circle && Turned(bearing - first) > sweep) continue;
    K7LatLon at;
    at.EndPoint(center, bearing, radius);
    Grow(at.Lat(), base + std::remainder(at.Lon() - base, 360));
  }
}

void Extent::AddBulge(const K7LatLon& from, const K7LatLon& to) {
  const double leaving = from.InitCourse(to), arriving = from.FinalCourse(to);
  const double top =
      std::acos(std::fabs(std::sin(leaving * RADIAN)) * std::cos(from.Lat() * RADIAN)) / RADIAN;
  const double up = std::cos(leaving * RADIAN), later = std::cos(arriving * RADIAN);
  if (up > 0 && later < 0) Grow(top, m_lon);
  if (up < 0 && later > 0) Grow(-top, m_lon);
}

BoundaryBounds Extent::Bounds() const {
  // Records round places to 2^-23 degree, radii and bearings to single precision.
  static constexpr double MARGIN = 1e-5;
  BoundaryBounds out{std::min(m_bounds.north + MARGIN, 90.0), std::max(m_bounds.south - MARGIN, -90.0),
                     m_bounds.east + MARGIN, m_bounds.west - MARGIN};
  if (m_around || out.east - out.west >= 360) {
    out.east = 180;
    out.west = -180;
  } else {
    out.east = std::remainder(out.east, 360);
    out.west = std::remainder(out.west, 360);
  }
  return out;
}

}  // namespace

std::string JoinBoundary(const std::vector<BoundaryPart>& parts, std::vector<K7AirspaceSeg>& pieces) {
  pieces.clear();
  if (parts.empty()) return "has no boundary";
  if (parts[0].kind == BoundaryPart::CIRCLE && parts.size() == 1) {
    pieces.push_back(Curve(parts[0]));
    return {};
  }
  const K7LatLon first = parts[0].start;
  K7LatLon at = first;
  const auto goTo = [&](const K7LatLon& to) {
    if (!IsSame(at, to)) pieces.push_back(Line(at, to));
    at = to;
    // What ends almost there ends there.
    if (!pieces.empty()) SetEnd(pieces.back(), to);
  };
  bool curved = false;
  for (const BoundaryPart& part : parts) {
    if (part.kind == BoundaryPart::CIRCLE) return "has a circle and more";
    goTo(part.start);
    if (part.kind == BoundaryPart::POINT) continue;
    pieces.push_back(Curve(part));
    at = part.end;
    curved = true;
  }
  goTo(first);
  return pieces.size() < (curved ? 2 : 3) ? "has a boundary without an area" : "";
}

BoundaryBounds BoundsOf(const std::vector<K7AirspaceSeg>& pieces) {
  Extent extent;
  if (pieces.size() == 1) {
    extent.AddArc(pieces[0]);
    return extent.Bounds();
  }
  for (const K7AirspaceSeg& piece : pieces) {
    extent.Add(StartOf(piece));
    if (piece.via == K7AirspaceSeg::GREAT_CIRCLE)
      extent.AddBulge(StartOf(piece), EndOf(piece));
    else
      extent.AddArc(piece);
  }
  const double lon = extent.Lon();
  extent.Add(EndOf(pieces.back()));
  const double whole = StartOf(pieces[0]).Lon();
  // Back at its start, but once around.
  if (std::fabs(extent.Lon() - whole) > 180 || std::fabs(lon - whole) > 360)
    extent.AddPole(extent.MiddleLat() > 0);
  return extent.Bounds();
}

#include <k7/projection/chart_rect.h>

#include <k7/foundation/error_string.h>
#include <k7/io/file.h>

#include <algorithm>
#include <cmath>

namespace {

// Separation of two longitudes by the shorter way.
double Separation(double a, double b) {
  const double d = std::fabs(a - b);
  return d > 180.0 ? 360.0 - d : d;
}

double Width(double east, double west) { return east >= west ? east - west : east - west + 360.0; }

// Whether the interval `east`, `west` holds that of `r`. By comparisons alone: no point is lost to rounding.
bool HoldsLongitudes(double east, double west, const K7ChartRect& r) {
  const bool easterly = r.East() <= east;
  const bool westerly = r.West() >= west;
  if (east >= west) return easterly && westerly && (r.East() >= r.West() || (east == 180 && west == -180));
  return r.East() < r.West() ? easterly && westerly : easterly || westerly;
}

}  // namespace

bool K7ChartRect::IsEntireWorld() const { return *this == K7ChartRect(90.0, -90.0, 180.0, -180.0); }

bool K7ChartRect::PtIn(double lat, double lon) const {
  if (!(lat <= m_north && lat >= m_south)) return false;  // what is not a number is in no band
  if (m_east >= m_west) return m_west <= lon && lon <= m_east;
  return lon <= m_east || m_west <= lon;
}

bool K7ChartRect::AreaIn(double n, double s, double e, double w) const {
  if (!(s <= m_north && m_south <= n)) return false;
  const bool crosses = m_east < m_west;
  const bool areaCrosses = e < w;
  if (crosses && areaCrosses) return true;
  if (areaCrosses) return m_west <= e || w <= m_east;
  if (crosses) return w <= m_east || m_west <= e;
  return m_west <= e && w <= m_east;
}

bool K7ChartRect::AreaIn(const K7ChartRect& area) const {
  return AreaIn(area.m_north, area.m_south, area.m_east, area.m_west);
}

// A point outside moves one edge to itself: the edge that is nearer by the shorter way round. Ties are a
// single meridian, both of whose edges are as near, and a point just as far from both edges. There the
// point's side of the eastern edge decides. Within 180 degrees of that edge by their numbers, a point at or
// east of it moves the eastern edge, one west of it the western. Farther apart the shorter way runs across
// 180, where a lesser number is the more easterly: then a point of a lesser longitude moves the eastern edge,
// of a greater the western. At exactly 180 degrees the numbers count as they stand.
void K7ChartRect::Include(double lat, double lon) {
  if (std::isnan(lat) || std::isnan(lon)) return;
  m_north = std::max(m_north, lat);
  m_south = std::min(m_south, lat);
  if (m_west > 180.0 && m_east < -180.0) {
    m_east = m_west = lon;
    return;
  }
  if (PtIn(lat, lon)) return;

  const double toEast = Separation(lon, m_east);
  const double toWest = Separation(lon, m_west);
  bool moveEast;
  if (m_east != m_west && toWest != toEast) {
    moveEast = toWest > toEast;
  } else if (std::fabs(lon - m_east) > 180.0) {
    moveEast = m_east > lon;
  } else {
    moveEast = lon >= m_east;
  }
  (moveEast ? m_east : m_west) = lon;
}

void K7ChartRect::Center(double& lat, double& lon) const {
  lat = (m_north + m_south) / 2;
  lon = (m_east + m_west) / 2;
  if (m_west > m_east) {
    lon -= 180.0;
    if (lon < -180.0) lon += 360.0;
  }
}

void K7ChartRect::Expand(double dLat, double dLon) {
  m_north = std::min(m_north + dLat, 90.0);
  m_south = std::max(m_south - dLat, -90.0);
  m_west = std::min(std::max(m_west - dLon, -180.0), 180.0);
  m_east = std::max(std::min(m_east + dLon, 180.0), -180.0);
}

void K7ChartRect::Union(const K7ChartRect& a, const K7ChartRect& b) {
  const K7ChartRect other = b;  // may be this
  *this = a;
  Include(other.m_north, other.m_east);
  Include(other.m_south, other.m_west);
}

K7ChartRect& K7ChartRect::operator|=(const K7ChartRect& other) {
  Union(*this, other);
  return *this;
}

void K7ChartRect::BoundingUnion(const K7ChartRect& a, const K7ChartRect& b) {
  const K7ChartRect first = a;  // either may be this
  const K7ChartRect second = b;
  if (first.IsEmpty() || second.IsEmpty()) {
    *this = first.IsEmpty() ? second : first;
    return;
  }
  m_north = std::max(first.m_north, second.m_north);
  m_south = std::min(first.m_south, second.m_south);
  m_east = 180.0;
  m_west = -180.0;
  // The narrowest interval that holds both begins at the western edge of one and ends at an eastern edge. Of
  // two as narrow the one with the lesser western longitude is taken, so that the order of the two does not
  // matter.
  for (const double east : {first.m_east, second.m_east}) {
    for (const double west : {first.m_west, second.m_west}) {
      if (!HoldsLongitudes(east, west, first) || !HoldsLongitudes(east, west, second)) continue;
      const double narrower = Width(m_east, m_west) - Width(east, west);
      if (narrower < 0.0 || (narrower == 0.0 && west > m_west)) continue;
      m_east = east;
      m_west = west;
    }
  }
}

bool K7ChartRect::Intersect(const K7ChartRect& a, const K7ChartRect& b) {
  const K7ChartRect first = a;  // either may be this
  const K7ChartRect second = b;
  if (first.IsEntireWorld() || second.IsEntireWorld()) {
    *this = first.IsEntireWorld() ? second : first;
    return true;
  }
  m_north = std::min(first.m_north, second.m_north);
  m_south = std::max(first.m_south, second.m_south);
  if (m_south > m_north) return false;

  const bool firstCrosses = first.m_east < first.m_west;
  const bool secondCrosses = second.m_east < second.m_west;
  if (firstCrosses == secondCrosses) {
    m_east = std::min(first.m_east, second.m_east);
    m_west = std::max(first.m_west, second.m_west);
    if (firstCrosses || m_west <= m_east) return true;
    Empty();
    return false;
  }

  // The crossing one is unrolled to the side of 180 on which the other has its eastern edge.
  const K7ChartRect& normal = firstCrosses ? second : first;
  const K7ChartRect& crossing = firstCrosses ? first : second;
  const bool western = normal.m_east < 0.0;
  m_east = std::min(normal.m_east, western ? crossing.m_east : crossing.m_east + 360.0);
  m_west = std::max(normal.m_west, western ? crossing.m_west - 360.0 : crossing.m_west);
  if (m_east > 180.0) m_east -= 360.0;
  if (m_west <= -180.0) m_west += 360.0;
  if ((m_east < 0.0) != (m_west < 0.0) || m_west <= m_east) return true;
  Empty();
  return false;
}

K7ChartRect& K7ChartRect::operator&=(const K7ChartRect& other) {
  Intersect(*this, other);
  return *this;
}

bool K7ChartRect::operator==(const K7ChartRect& other) const {
  return m_north == other.m_north && m_south == other.m_south && m_east == other.m_east &&
         m_west == other.m_west;
}

bool K7ChartRect::operator<(const K7ChartRect& other) const {
  K7ChartRect both;
  both.Union(other, *this);
  return both == other;
}

int K7ChartRect::Read(K7File* f) {
  if (!f) return K7_ERR_BAD_ARGUMENT;
  int result = 0;
  for (double* field : {&m_north, &m_south, &m_east, &m_west}) {
    double value;
    result = f->Read(&value, sizeof value);
    if (result == sizeof value) *field = value;
  }
  return result;
}

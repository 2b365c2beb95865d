// Elevations along a great circle, for every kind of terrain.

#include <k7/foundation/array.h>
#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/geodesy/ecef.h>
#include <k7/terrain/terrain.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool IsPosition(const K7LatLon& at) { return std::isfinite(at.Lat()) && std::isfinite(at.Lon()); }

// The arc between two positions by its angle from the start: begin x cos + tangent x sin.
class Arc {
 public:
  Arc(const K7LatLon& from, const K7LatLon& to) : m_begin(from.Lat(), from.Lon()) {
    const K7ECEF end(to.Lat(), to.Lon());
    m_angle = m_begin.Angle(end);
    m_tangent.CrossProduct(m_begin, end);
    // As for courses: vectors closer than this have no direction between them.
    m_hasCircle = m_tangent.Magnitude() > 4 * std::numeric_limits<double>::epsilon();
    m_tangent.Normalize();
    m_tangent.CrossProduct(m_tangent, m_begin);
  }

  bool HasCircle() const { return m_hasCircle; }
  double Angle() const { return m_angle; }
  void At(double angle, double& lat, double& lon) const {
    const double c = std::cos(angle), s = std::sin(angle);
    const K7ECEF at(m_begin.X() * c + m_tangent.X() * s, m_begin.Y() * c + m_tangent.Y() * s,
                    m_begin.Z() * c + m_tangent.Z() * s);
    at.GetLatLon(lat, lon);
  }

 private:
  K7ECEF m_begin;
  K7ECEF m_tangent;
  double m_angle;
  bool m_hasCircle;
};

}  // namespace

K7Terrain::~K7Terrain() = default;
void K7Terrain::ClearSRTImages() {}

int K7Terrain::GetElevUnderLine(const K7LatLon& from, const K7LatLon& to, double resolution, double spacing,
                                K7Array& profile) {
  if (profile.Width() != sizeof(K7TerElevPoint)) return K7_ERR_BAD_ARGUMENT;
  profile.ClearNoFree();
  if (spacing == 0) spacing = resolution / 60;
  if (!IsPosition(from) || !IsPosition(to) || !(spacing > 0) || !std::isfinite(spacing))
    return K7_ERR_BAD_ARGUMENT;
  const Arc arc(from, to);
  const bool isPoint = !arc.HasCircle() && arc.Angle() < 1;
  if (!isPoint && !arc.HasCircle()) return K7_ERR_INVALID_DATA;
  const double length = isPoint ? 0 : arc.Angle() * K7_EARTH_RADIUS_NM;
  const double legs = isPoint ? 0 : std::max(std::ceil(length / spacing), 1.0);
  if (legs >= MAX_PROFILE) return K7_ERR_OUT_OF_RANGE;

  const int last = static_cast<int>(legs);
  if (const int err = profile.GrowTo(last + 1, true); err < 0) return err;
  for (int i = 0; i <= last; ++i) {
    K7TerElevPoint& point = static_cast<K7TerElevPoint*>(profile.Data())[i];
    const double share = last > 0 ? static_cast<double>(i) / last : 0;
    point.lat = i == 0 ? from.Lat() : to.Lat();
    point.lon = i == 0 ? from.Lon() : to.Lon();
    if (i > 0 && i < last) arc.At(arc.Angle() * share, point.lat, point.lon);
    point.distance = length * share;
    point.elev = GetElev(point.lat, point.lon, resolution);
    point.unused = 0;
  }
  return last + 1;
}

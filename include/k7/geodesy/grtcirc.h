// K7GrtCirc: a great-circle segment.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/ecef.h>
#include <k7/geodesy/latlon.h>

/// A K7GrtCirc is the shorter great-circle arc between two positions, with its frame worked out once, for
/// intersections and cross-track distances. Distances are nautical miles. A value: copy freely, no locking.
///
///     K7GrtCirc leg(from, to);
///     leg.OrthoDist(here, cross, along);
///     if (std::fabs(leg.CrossTrack(beacon)) < 5) ...
class K7_API K7GrtCirc {
 public:
  /// Makes a segment whose numbers are all zero.
  K7GrtCirc() = default;
  K7GrtCirc(const K7ECEF& b, const K7ECEF& e) { Init(b, e); }
  K7GrtCirc(const K7LatLon& b, const K7LatLon& e) { Init(b, e); }
  K7GrtCirc(double lat1, double lon1, double lat2, double lon2);

  void Init(const K7ECEF& b, const K7ECEF& e);
  void Init(const K7LatLon& b, const K7LatLon& e);

  const K7ECEF& Begin() const { return m_begin; }
  const K7ECEF& End() const { return m_end; }
  double Length() const { return m_length; }

  /// \name Questions
  /// @{
  /// Finds where this segment crosses `other`. `tolerance`, in earth radii, widens the ends of `other`
  /// only: a crossing exactly on an end of this segment is refused, so that consecutive legs of one path do
  /// not both report it. Answers false for segments of one circle: where the sine of the angle between the
  /// circles is at most 4 epsilon (1/sin A + 1/sin B), A and B the segments' arcs. `at` is overwritten in
  /// either case.
  bool Intersect(const K7GrtCirc& other, K7ECEF& at, double tolerance) const;
  /// Does the same; `at` changes on success only.
  bool Intersect(const K7GrtCirc& other, K7LatLon& at, double tolerance) const;

  /// Measure `cross`, the distance of `p` from the whole circle, positive to the right of the direction of
  /// travel, and `along`, the distance from the begin to the foot of its perpendicular, negative behind the
  /// begin.
  void OrthoDist(const K7ECEF& p, double& cross, double& along) const;
  void OrthoDist(const K7LatLon& p, double& cross, double& along) const;
  /// Answers `cross` alone, four times as fast: minus the latitude that `p` has when the normal is the pole.
  /// Within 5e-12 NM, or 10 nanometres, of the exact distance from the circle; that divided by the sine of
  /// the leg's arc, because the rounding of its ends turns a short leg's circle. A segment without a circle,
  /// whose ends are equal, is a quarter turn away from everything, as for `OrthoDist`.
  double CrossTrack(const K7ECEF& p) const;
  double CrossTrack(const K7LatLon& p) const;
  /// @}

 private:
  K7ECEF m_normal;  // begin x end, of length 1 unless the two are parallel
  K7ECEF m_begin;
  K7ECEF m_end;
  K7ECEF m_tangent;  // direction of travel at the begin
  double m_length = 0;
};

static_assert(sizeof(K7GrtCirc) == 13 * sizeof(double));

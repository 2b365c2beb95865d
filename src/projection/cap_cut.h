// Cutting on the globe: what lies within an angle of one point.
#pragma once

#include <k7/geodesy/ecef.h>

#include "projection/buffer.h"
#include "projection/device_path.h"

/// Cuts rings and lines of surface points to a cap and hands on what is left. Rings keep their area to the
/// right; where they leave the cap, the area's edge follows its rim.
class CapCutter {
 public:
  /// The cap's centre, its radius in radians, and how long an edge of its rim may be, in degrees.
  void SetUp(const K7ECEF& axis, double radius, double step);

  void StartArea();
  /// A closed ring, the last point the first again. One wholly within the cap is handed on at once.
  void AddRing(const Buffer<K7ECEF>& ring, DevicePath& path, K7Grfx& g);
  /// Joins what the rings left. True when no ring met the rim or lay within: then the rim is wholly inside
  /// the area or wholly outside.
  bool FinishArea(DevicePath& path, K7Grfx& g);

  void AddLine(const Buffer<K7ECEF>& line, DevicePath& path, K7Grfx& g) const;
  /// The whole rim as a ring.
  void AddRim(DevicePath& path, K7Grfx& g) const;
  /// A point of the rim, askew to the compass, so that it is not likely to lie in line with a corner.
  void RimPoint(double& lat, double& lon) const;

  bool Failed() const {
    return m_points.Failed() || m_runs.Failed() || m_crossings.Failed() || m_open.Failed();
  }

 private:
  // A run of a ring inside the cap, from where it enters to where it leaves.
  struct Run {
    int begin, end;      // in m_points
    double entry, exit;  // azimuths
    int next;            // the one that the area's edge goes on with
    bool joined;
  };
  // Where a ring leaves or enters the cap, on the rim.
  struct Crossing {
    double azimuth;
    int run;
    bool leaves;
  };

  bool Holds(const K7ECEF& p) const { return m_axis.DotProduct(p) >= m_cosRadius; }
  K7ECEF RimCrossing(K7ECEF inside, K7ECEF outside) const;
  double Azimuth(const K7ECEF& point) const;
  void AddRimPoints(double from, double to, DevicePath& path) const;
  void SortCrossings();
  void JoinRuns();

  K7ECEF m_axis;
  double m_radius = 0;
  double m_cosRadius = 1;
  double m_step = 1;
  Buffer<K7ECEF> m_points;
  Buffer<Run> m_runs;
  Buffer<Crossing> m_crossings;
  Buffer<int> m_open;
};

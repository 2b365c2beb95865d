// Cutting on the globe: what lies within an angle of one point.
#pragma once

#include <k7/geodesy/ecef.h>

#include "foundation/buffer.h"
#include "projection/device_path.h"

/// Cuts rings and lines of surface points to a cap and hands on what is left. Where rings leave the cap, the
/// area's edge follows its rim.
class CapCutter {
 public:
  /// The cap's centre, its radius in radians, and how long an edge of its rim may be, in degrees.
  void SetUp(const K7ECEF& axis, double radius, double step);

  void StartArea();
  /// A closed ring, the last point the first again. One wholly within the cap is handed on at once.
  void AddRing(const Buffer<K7ECEF>& ring, DevicePath& path, K7Grfx& g);
  /// A point of the rim, away from where the rings cross it.
  void RimPoint(double& lat, double& lon);
  /// Joins what the rings left. `rimInside`: that point lies in the area.
  void FinishArea(bool rimInside, DevicePath& path, K7Grfx& g);

  void AddLine(const Buffer<K7ECEF>& line, DevicePath& path, K7Grfx& g) const;
  /// The whole rim as a ring.
  void AddRim(DevicePath& path, K7Grfx& g) const;

  bool Failed() const { return m_points.Failed() || m_runs.Failed() || m_crossings.Failed(); }

 private:
  // A run of a ring inside the cap, from where it enters to where it leaves.
  struct Run {
    int begin, end;  // in m_points
    bool joined;
    int entry, exit;  // in m_crossings, once they are in order
  };
  // Where a run begins or ends on the rim.
  struct Crossing {
    double azimuth;
    int run;
    bool leaves;
  };

  bool Holds(const K7ECEF& p) const { return m_axis.DotProduct(p) >= m_cosRadius; }
  bool DipsIn(const K7ECEF& a, const K7ECEF& b, K7ECEF& deepest) const;
  K7ECEF RimCrossing(K7ECEF inside, K7ECEF outside) const;
  double Azimuth(const K7ECEF& point) const;
  void AddRimPoints(double from, double to, DevicePath& path) const;
  void AddRun(int begin);

  K7ECEF m_axis;
  double m_radius = 0;
  double m_cosRadius = 1;
  double m_step = 1;
  Buffer<K7ECEF> m_points;
  Buffer<Run> m_runs;
  Buffer<Crossing> m_crossings;
};

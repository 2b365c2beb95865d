// Cutting rings and segments to half-planes, whatever their coordinates.
#pragma once

/// Cuts a ring, point by point, to what lies inside every plane of `Planes` (I. E. Sutherland and
/// G. W. Hodgman, Reentrant Polygon Clipping, Communications of the ACM 17, 1974), each plane handing on to
/// the next. `Planes` has COUNT, Inside(plane, point), which is 0 or above inside, and Cross(a, b, plane).
template <class Planes, class Point, class Out>
class RingCutter {
 public:
  RingCutter(const Planes& planes, Out& out) : m_planes(planes), m_out(out) {}

  void Add(const Point& p) { Push(0, p); }
  /// The edge from the last point to the first.
  void Close() {
    for (int i = 0; i < Planes::COUNT; ++i) {
      const Stage& stage = m_stages[i];
      if (stage.started && stage.inside != stage.firstInside)
        Push(i + 1, m_planes.Cross(stage.last, stage.first, i));
    }
  }

 private:
  struct Stage {
    bool started = false;
    bool firstInside = false;
    bool inside = false;  // the last point
    Point first, last;
  };

  void Push(int plane, const Point& p) {
    if (plane == Planes::COUNT) {
      m_out.Add(p);
      return;
    }
    Stage& stage = m_stages[plane];
    const bool inside = m_planes.Inside(plane, p) >= 0;
    if (!stage.started) {
      stage.started = true;
      stage.first = p;
      stage.firstInside = inside;
    } else if (inside != stage.inside) {
      Push(plane + 1, m_planes.Cross(stage.last, p, plane));
    }
    if (inside) Push(plane + 1, p);
    stage.last = p;
    stage.inside = inside;
  }

  const Planes& m_planes;
  Out& m_out;
  Stage m_stages[Planes::COUNT];
};

/// Cuts a segment to what lies inside every plane. False when nothing of it does; `cutA` and `cutB` tell
/// which ends have moved.
template <class Planes, class Point>
bool CutSegment(const Planes& planes, Point& a, Point& b, bool& cutA, bool& cutB) {
  cutA = cutB = false;
  for (int i = 0; i < Planes::COUNT; ++i) {
    const bool insideA = planes.Inside(i, a) >= 0;
    const bool insideB = planes.Inside(i, b) >= 0;
    if (!insideA && !insideB) return false;
    if (insideA && insideB) continue;
    (insideA ? b : a) = planes.Cross(a, b, i);
    (insideA ? cutB : cutA) = true;
  }
  return true;
}

#include "layers/frame_sink.h"

#include <algorithm>
#include <cmath>

FramePlace OutsideFrame(int side, double along, int width, int height) {
  switch (side) {
    case 0:
      return {along, 0, 0, -1};
    case 1:
      return {along, height * 1.0, 0, 1};
    case 2:
      return {0, along, -1, 0};
    default:
      return {width * 1.0, along, 1, 0};
  }
}

void FrameSink::Clear() {
  m_crossings.clear();
  m_places.clear();
}

void FrameSink::MoveTo(double dx, double dy) { m_last = {dx, dy}; }

void FrameSink::LineTo(double dx, double dy) {
  Cross(0, 0, m_last.x, m_last.y, dx, dy);
  Cross(1, Height(), m_last.x, m_last.y, dx, dy);
  Cross(2, 0, m_last.y, m_last.x, dy, dx);
  Cross(3, Width(), m_last.y, m_last.x, dy, dx);
  static const double APART = 8;
  const int pieces = std::max(1, static_cast<int>(std::hypot(dx - m_last.x, dy - m_last.y) / APART));
  for (int i = 1; i <= pieces; ++i) {
    const DevicePlace p = {m_last.x + (dx - m_last.x) * i / pieces, m_last.y + (dy - m_last.y) * i / pieces};
    if (p.x >= 0 && p.x <= Width() && p.y >= 0 && p.y <= Height()) m_places.push_back(p);
  }
  m_last = {dx, dy};
}

// A segment from (along1, across1) to (along2, across2) against the side at `limit` across.
void FrameSink::Cross(int side, double limit, double along1, double across1, double along2, double across2) {
  if ((across1 < limit) == (across2 < limit)) return;
  const double along = along1 + (along2 - along1) * (limit - across1) / (across2 - across1);
  const double length = IsUpright(side) ? Height() : Width();
  if (along >= 0 && along <= length) m_crossings.push_back({side, along});
}

// A graphics context that draws nothing and asks of each path whether one device point is on it: what is
// picked is what is painted.
#pragma once

#include <k7/projection/grfx.h>

#include <algorithm>
#include <cmath>

class PickGrfx : public K7GrfxK7 {
 public:
  PickGrfx(double dx, double dy) : K7GrfxK7(1, 1), m_x(dx), m_y(dy) {}

  void MoveTo(double dx, double dy) override {
    m_startX = m_lastX = dx;
    m_startY = m_lastY = dy;
  }
  void LineTo(double dx, double dy) override {
    Take(dx, dy);
    m_lastX = dx;
    m_lastY = dy;
  }
  void ClosePath() override { LineTo(m_startX, m_startY); }

  void Clear() {
    m_encloses = false;
    m_distance = INFINITY;
  }
  /// By the even-odd rule, and on the path itself: pieces of one area that meet, as at 180 degrees, leave no
  /// gap between them.
  bool Covers() const { return m_encloses || m_distance < ON_THE_PATH; }
  /// Pixels from the point to the path.
  double Distance() const { return m_distance; }

 private:
  void Take(double dx, double dy) {
    const double ax = m_lastX - m_x, ay = m_lastY - m_y;
    const double bx = dx - m_x, by = dy - m_y;
    if ((ay > 0) != (by > 0) && ax + (bx - ax) * -ay / (by - ay) > 0) m_encloses = !m_encloses;
    const double square = (bx - ax) * (bx - ax) + (by - ay) * (by - ay);
    const double t = square > 0 ? std::clamp(-(ax * (bx - ax) + ay * (by - ay)) / square, 0.0, 1.0) : 0;
    m_distance = std::min(m_distance, std::hypot(ax + t * (bx - ax), ay + t * (by - ay)));
  }

  static constexpr double ON_THE_PATH = 0.01;  // pixels

  double m_x, m_y;
  double m_startX = 0, m_startY = 0, m_lastX = 0, m_lastY = 0;
  bool m_encloses = false;
  double m_distance = INFINITY;
};

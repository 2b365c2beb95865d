// A graphics context that draws nothing and takes down where lines meet the frame of the window, and where
// they run within it.
#pragma once

#include <k7/projection/grfx.h>

#include <vector>

/// The sides of the frame: top, bottom, left, right.
inline constexpr int FRAME_SIDES = 4;
inline bool IsUpright(int side) { return side >= 2; }

struct DevicePlace {
  double x, y;
};

/// A place on the frame and the direction away from the window.
struct FramePlace {
  double x, y, outX, outY;
};
/// `along`: pixels from the left or the top.
FramePlace OutsideFrame(int side, double along, int width, int height);

class FrameSink : public K7GrfxK7 {
 public:
  struct Crossing {
    int side;
    double along;
  };

  FrameSink(int width, int height) : K7GrfxK7(width, height) {}
  void MoveTo(double dx, double dy) override;
  void LineTo(double dx, double dy) override;

  void Clear();
  const std::vector<Crossing>& Crossings() const { return m_crossings; }
  /// Points of the lines within the window, a few pixels apart.
  const std::vector<DevicePlace>& Places() const { return m_places; }

 private:
  void Cross(int side, double limit, double x1, double y1, double x2, double y2);

  DevicePlace m_last{};
  std::vector<Crossing> m_crossings;
  std::vector<DevicePlace> m_places;
};

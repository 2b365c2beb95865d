// A graphics context without pixels: the library's own camera with its zoom at hand.
#pragma once

#include <k7/projection/grfx.h>

class SoftGrfx : public K7GrfxK7 {
 public:
  SoftGrfx(int width, int height, double zoom = 1.0) : K7GrfxK7(width, height) { SetZoom(zoom); }

  /// Where a world point is drawn; false behind a perspective camera.
  bool Project(double x, double y, double z, double& dx, double& dy) const {
    double hx, hy, hw;
    K7GrfxK7::Project(x, y, z, hx, hy, hw);
    dx = hx / hw;
    dy = hy / hw;
    return hw > 0;
  }
};

// Where something lies on the device.
#pragma once

/// A rectangle of pixels.
struct PixelBox {
  double left, top, right, bottom;

  bool Meets(const PixelBox& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
  bool Holds(const PixelBox& other) const {
    return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
  }
};

// Range checks of positions and bitmap sizes.
#pragma once

#include <k7/export.h>

/// Checks ranges. Not-a-number is never within a range.
class K7_API K7Validate {
 public:
  /// Takes -90 ... 90 degrees.
  static bool checkLat(double lat);
  /// Takes -180 ... 180 degrees.
  static bool checkLon(double lon);
  static bool checkLatLon(double lat, double lon);
  /// Takes `n` pairs, at least one, all of them valid. Answers false for null.
  static bool checkLatLonArrays(const double* lats, const double* lons, int n);
  /// Takes width and height of a bitmap, each 50 ... 3840 pixels.
  static bool checkWidthHeight(int w, int h);
};

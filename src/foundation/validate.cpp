#include <k7/foundation/validate.h>

bool K7Validate::checkLat(double lat) { return lat >= -90 && lat <= 90; }

bool K7Validate::checkLon(double lon) { return lon >= -180 && lon <= 180; }

bool K7Validate::checkLatLon(double lat, double lon) { return checkLat(lat) && checkLon(lon); }

bool K7Validate::checkLatLonArrays(const double* lats, const double* lons, int n) {
  if (!lats || !lons || n < 1) return false;
  for (int i = 0; i < n; ++i)
    if (!checkLatLon(lats[i], lons[i])) return false;
  return true;
}

bool K7Validate::checkWidthHeight(int w, int h) {
  static const int SMALLEST = 50;
  static const int LARGEST = 3840;
  return w >= SMALLEST && w <= LARGEST && h >= SMALLEST && h <= LARGEST;
}

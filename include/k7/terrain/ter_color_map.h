// K7TerColorMap: the colour of an elevation.
#pragma once

#include <k7/export.h>
#include <k7/foundation/mutex.h>
#include <k7/raster/color.h>

#include <cstdint>

/// Up to 20 bands of elevation with a colour each, in metres, from low to high. A band reaches up to where
/// the next begins; the first reaches down without end. Any number of threads may look colours up while one
/// sets the map up: each sees the old bands or the new ones.
class K7_API K7TerColorMap {
 public:
  static constexpr int MAX_BANDS = 20;

  /// Makes a map without bands.
  K7TerColorMap() = default;
  K7TerColorMap(const K7TerColorMap&) = delete;
  K7TerColorMap& operator=(const K7TerColorMap&) = delete;

  /// Replaces the bands by copies of `count` lower limits and colours; 0 empties the map. Answers false, with
  /// the map unchanged, for a count below 0 or above 20 and for a missing array. Limits that do not rise
  /// are taken as they are: `GetColor` then finds the first that is above the elevation.
  bool Init(int count, const int32_t* elevations, const K7Color* colors);

  /// Answers the colour of an elevation in metres: that of the band before the first limit, of the second
  /// band's on, that lies above it; a map without bands has none and answers a transparent black.
  K7Color GetColor(int elevation) const;
  int Count() const;
  /// Answer the lower limit and the colour of band i; 0 and a transparent black for a band that there is not.
  int DefElev(int i) const;
  K7Color DefColor(int i) const;
  /// Gives all bands at once, so that they belong together. Room for `MAX_BANDS` each. Answers how many.
  int GetBands(int32_t* elevations, K7Color* colors) const;

 private:
  int32_t m_count = 0;
  int32_t m_elevations[MAX_BANDS] = {};
  K7Color m_colors[MAX_BANDS];
  mutable K7Mutex m_mutex;
};

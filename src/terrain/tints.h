// The colours of K7TerParams, made ready for many pixels.
#pragma once

#include <k7/terrain/ter_params.h>

#include "terrain/slopes.h"

/// A copy of the settings: those may change while a picture is drawn from it.
class Tints {
 public:
  /// Does nothing else: without memory of its own it is filled by `Set`.
  void Set(const K7TerParams& params);

  /// The colour, 0xAARRGGBB, of a pixel that shows this ground and `metres` of it; 0 without data. Where the
  /// limit of a band runs through the pixel, its colours are mixed by what each has of the pixel's range of
  /// elevations: limits are smooth lines.
  uint32_t Pixel(const Slope& ground, double metres) const;

 private:
  // Straight colours times alpha, and the alpha, up to 255 each.
  struct Paint {
    float red, green, blue, alpha;
  };
  int BandAt(float elevation, int from) const;
  Paint Mix(float low, float high) const;
  float WaterLight(float elevation) const;
  float LandLight(const Slope& ground) const;

  int m_count = 0;
  float m_limits[K7TerColorMap::MAX_BANDS] = {};
  Paint m_paints[K7TerColorMap::MAX_BANDS] = {};
  float m_exaggeration = 1;
  float m_toLight[3] = {};  // times the share of directed light, east, north and up
  float m_ambient = 0;
  float m_seaLevel = 0, m_deepWater = 0, m_deepLoss = 0;
  bool m_shadeLand = true, m_shadeWater = false;
};

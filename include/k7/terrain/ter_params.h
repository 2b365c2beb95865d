// K7TerParams: how terrain is drawn.
#pragma once

#include <k7/export.h>
#include <k7/terrain/ter_color_map.h>

#include <cstdint>

/// What the drawing of terrain takes: the colours of elevations, the light, the water. Plain settings, any
/// value is safe: a setting that is not a number or out of its range counts as the nearest in it, not a
/// number as the initial value. One thread sets, while no other draws.
class K7_API K7TerParams {
 public:
  /// Makes a map of one white band and the settings below: relief in grey.
  K7TerParams();
  K7TerParams(const K7TerParams&) = delete;
  K7TerParams& operator=(const K7TerParams&) = delete;

  K7TerColorMap& ColorMap() { return m_colorMap; }
  const K7TerColorMap& ColorMap() const { return m_colorMap; }

 private:
  K7TerColorMap m_colorMap;

 public:
  /// Times that heights are drawn too high, in slopes and in meshes, 0 to 1000. 0 is flat ground.
  double m_exaggeration = 1.0;
  /// What water loses of its brightness from the sea's level to deep water, in percent, 0 to 100. Elevations
  /// below the sea's level are water.
  int32_t m_deepDarkening = 50;
  int32_t m_seaLevel = 0;       ///< metres
  int32_t m_deepWater = -2000;  ///< metres; at and below it the darkening is full
  /// Degrees, clockwise, by which the light comes from elsewhere than the north-west, where readers of maps
  /// expect it.
  double m_lightTurn = 0.0;
  /// Sine of the light's angle above the horizon, 0.01 to 1 (straight down). 0.8: 53 degrees.
  double m_lightHeight = 0.8;
  /// Shares of the light that come from everywhere and from the light's own direction, 0 to 1000 each. Only
  /// their ratio counts: level ground keeps the colour of its band.
  double m_ambient = 0.3;
  double m_diffuse = 0.7;
  /// The light's colour, by which every colour is multiplied; 255 leaves it.
  uint8_t m_lightRed = 255;
  uint8_t m_lightGreen = 255;
  uint8_t m_lightBlue = 255;
  uint8_t m_opacity = 255;   ///< of the picture; 255 covers what is below
  uint8_t m_shadeLand = 1;   ///< relief on land; 0: colours alone
  uint8_t m_shadeWater = 0;  ///< relief on the sea's bottom
};

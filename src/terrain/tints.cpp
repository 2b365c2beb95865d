#include "terrain/tints.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

namespace {

// Interpolation gives level ground at the limit of a band back with an error in the last digit.
constexpr float SAME_METRES = 1e-3F;

double Within(double value, double least, double most, double otherwise) {
  return std::isnan(value) ? otherwise : std::clamp(value, least, most);
}

}  // namespace

void Tints::Set(const K7TerParams& params) {
  int32_t limits[K7TerColorMap::MAX_BANDS];
  K7Color colors[K7TerColorMap::MAX_BANDS];
  m_count = params.ColorMap().GetBands(limits, colors);
  for (int i = 0; i < m_count; ++i) {
    // As a lookup finds bands: one that begins below its predecessor is empty.
    m_limits[i] = std::max(static_cast<float>(limits[i]), i > 1 ? m_limits[i - 1] : -1e9F);
    const float alpha = static_cast<float>(colors[i].A()) * params.m_opacity / 255;
    const float light = alpha / 255 / 255;
    m_paints[i] = {static_cast<float>(colors[i].R()) * params.m_lightRed * light,
                   static_cast<float>(colors[i].G()) * params.m_lightGreen * light,
                   static_cast<float>(colors[i].B()) * params.m_lightBlue * light, alpha};
  }
  m_exaggeration = static_cast<float>(Within(params.m_exaggeration, 0, 1000, 1));
  m_seaLevel = static_cast<float>(params.m_seaLevel);
  m_deepWater = static_cast<float>(params.m_deepWater);
  m_deepLoss = static_cast<float>(std::clamp(params.m_deepDarkening, 0, 100)) / 100;
  m_shadeLand = params.m_shadeLand != 0;
  m_shadeWater = params.m_shadeWater != 0;

  const double height = Within(params.m_lightHeight, 0.01, 1, 0.8);
  const double ambient = Within(params.m_ambient, 0, 1000, 0.3);
  const double diffuse = Within(params.m_diffuse, 0, 1000, 0.7);
  const double level = ambient + diffuse * height;
  const double share = level > 0 ? diffuse / level : 0;
  const double turn = std::isfinite(params.m_lightTurn) ? std::fmod(params.m_lightTurn, 360) : 0;
  const double azimuth = (turn - 45) * K7_DEG_TO_RAD;
  const double across = std::sqrt(1 - height * height) * share;
  m_toLight[0] = static_cast<float>(across * std::sin(azimuth));
  m_toLight[1] = static_cast<float>(across * std::cos(azimuth));
  m_toLight[2] = static_cast<float>(height * share);
  m_ambient = level > 0 ? static_cast<float>(ambient / level) : 1;
}

// The band of an elevation that is not below band `from`.
int Tints::BandAt(float elevation, int from) const {
  int next = from + 1;
  while (next < m_count && elevation + SAME_METRES >= m_limits[next]) ++next;
  return next - 1;
}

Tints::Paint Tints::Mix(float low, float high) const {
  const int first = BandAt(low, 0), last = BandAt(high, first);
  if (first == last) return m_paints[first];
  Paint mixed{0, 0, 0, 0};
  const float perMetre = 1 / (high - low);
  for (int i = first; i <= last; ++i) {
    const float from = i == first ? low : m_limits[i];
    const float to = i == last ? high : m_limits[i + 1];
    const float share = std::max(0.0F, to - from) * perMetre;
    mixed.red += share * m_paints[i].red;
    mixed.green += share * m_paints[i].green;
    mixed.blue += share * m_paints[i].blue;
    mixed.alpha += share * m_paints[i].alpha;
  }
  return mixed;
}

float Tints::WaterLight(float elevation) const {
  const float depth = m_seaLevel - elevation, deep = m_seaLevel - m_deepWater;
  return 1 - m_deepLoss * (depth < deep ? std::max(0.0F, depth / deep) : 1);
}

float Tints::LandLight(const Slope& ground) const {
  const float east = ground.east * m_exaggeration, north = ground.north * m_exaggeration;
  const float facing = (m_toLight[2] - east * m_toLight[0] - north * m_toLight[1]) /
                       std::sqrt(1 + east * east + north * north);
  return m_ambient + std::max(0.0F, facing);
}

uint32_t Tints::Pixel(const Slope& ground, double metres) const {
  if (m_count == 0 || !(ground.weight > 0.5F)) return 0;
  const float perWeight = 1 / ground.weight;
  const float elevation = ground.elevation * perWeight;
  const Slope slope{elevation, ground.east * perWeight, ground.north * perWeight, 1};
  const float range =
      std::min(static_cast<float>(metres) * (std::abs(slope.east) + std::abs(slope.north)), 20000.0F);
  const float low = elevation - range / 2, high = elevation + range / 2;
  const Paint paint = Mix(low, high);

  const float land = low + SAME_METRES >= m_seaLevel ? 1
                     : high < m_seaLevel             ? 0
                                         : (high - m_seaLevel) / std::max(high - low, SAME_METRES);
  const bool shaded = (m_shadeLand && land > 0) || (m_shadeWater && land < 1);
  const float relief = shaded ? LandLight(slope) : 1;
  float light = land * (m_shadeLand ? relief : 1);
  if (land < 1) light += (1 - land) * WaterLight(elevation) * (m_shadeWater ? relief : 1);

  if (!(paint.alpha >= 0.5F)) return 0;
  const float scale = light * 255 / paint.alpha;
  // A half more than what is to be rounded down: nothing here is negative. Held to a byte as a whole number,
  // which takes no jump: light ground goes over it here and there.
  const auto byte = [](float value) {
    const float up = value + 0.5F;
    return static_cast<uint32_t>(std::min(static_cast<int32_t>(up), 255));
  };
  return byte(paint.alpha) << 24 | byte(paint.red * scale) << 16 | byte(paint.green * scale) << 8 |
         byte(paint.blue * scale);
}

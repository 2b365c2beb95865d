#include "sheet/elevations.h"

#include "layers/terrain_files.h"

#include <k7/foundation/error_string.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>

#include <algorithm>

namespace {

bool HasRegions(const K7TerLevel& level) {
  for (int band = 0; band < K7TerLevel::BANDS; ++band)
    for (int column = 0; column < K7TerLevel::COLUMNS; ++column)
      if (level.Region(band, column)) return true;
  return false;
}

}  // namespace

std::string Elevations::Open(const std::string& folder) {
  // What a chart says of a folder with damaged files or none: the terrain itself leaves such out.
  if (std::string problem = WhyNoTerrain(folder); !problem.empty()) return problem;
  if (const int code = Read(folder.c_str()))
    return "cannot read the terrain '" + folder + "': " + K7ErrorString::ErrorString(code);
  return PostSpacing(0) > 0
             ? std::string()
             : "no region file in " + folder + " is called by its level and its cell, as 120_N30W150.ter";
}

int Elevations::Read(const char* folder) {
  K7TerrainK7* const terrain = K7TerrainK7::Inst();
  if (!terrain) return K7_ERR_MEMORY;
  if (const int code = terrain->Read(folder)) return code;
  for (int i = 0; i < K7TerrainK7::LEVELS; ++i) {
    K7TerLevel* const level = terrain->GetLevel(i);
    m_levels[i] = level && HasRegions(*level) ? level : nullptr;
  }
  return 0;
}

void Elevations::Clear() {
  for (K7TerLevel*& level : m_levels) level = nullptr;
  if (K7TerrainK7* const terrain = K7TerrainK7::Inst()) terrain->Clear();
}

int Elevations::GetElev(double lat, double lon, double resolution) { return Find(lat, lon, resolution).feet; }

Elevations::Answer Elevations::Find(double lat, double lon, double resolution) {
  // The north pole and 180 east lie in no cell.
  static const double NORTHERNMOST = 90 - 1e-9;
  const double inLat = std::min(lat, NORTHERNMOST), inLon = lon < 180 ? lon : lon - 360;
  for (int i = K7TerrainK7::GetLevelIndex(resolution); i >= 0; --i) {
    const K7TerRegion* const region = m_levels[i] ? m_levels[i]->RegionAt(inLat, inLon) : nullptr;
    if (!region || !region->GetChartRect().PtIn(inLat, inLon)) continue;
    const int feet = m_levels[i]->GetElev(inLat, inLon);
    if (feet != K7_NO_ELEV) return {feet, K7TerrainK7::LevelResolution(i)};
  }
  return {K7_NO_ELEV, 0};
}

double Elevations::PostSpacing(double resolution) const {
  for (int i = K7TerrainK7::GetLevelIndex(resolution); i >= 0; --i)
    if (m_levels[i]) return 3600.0 / K7TerrainK7::LevelResolution(i);
  return 0;
}

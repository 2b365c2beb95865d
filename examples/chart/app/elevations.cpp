#include "app/elevations.h"

#include "app/terrain_source.h"
#include "app_common/shared_data.h"

#include <k7/foundation/error_string.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/ter_tile.h>

#include <algorithm>

namespace {

constexpr double MOST_SECONDS = 3600;

std::string SetFolder(const char* text, TerrainOptions& options) {
  options.folder = text;
  return {};
}

std::string SetResolution(const char* text, TerrainOptions& options) {
  double seconds = 0;
  if (!ReadNumber(text, seconds) || seconds <= 0 || seconds > MOST_SECONDS)
    return "the resolution is arc-seconds between posts, above 0 and up to 3600, not " + Quoted(text);
  options.resolution = seconds;
  return {};
}

constexpr OptionRow<TerrainOptions> OPTIONS[] = {
    {"--terrain", "FOLDER",
     "region files, made by 'k7terrain build' (default: the sample of the Salish Sea, 48 to 50 north, 126 to "
     "122 west)",
     SetFolder},
    {"--resolution", "SECONDS",
     "arc-seconds between the posts of data that are fine enough, above 0 and up to 3600 (default: the "
     "finest "
     "that there are); where such data are missing, coarser ones answer",
     SetResolution},
};

bool HasRegions(const K7TerLevel& level) {
  for (int band = 0; band < K7TerLevel::BANDS; ++band)
    for (int column = 0; column < K7TerLevel::COLUMNS; ++column)
      if (level.Region(band, column)) return true;
  return false;
}

}  // namespace

TerrainOptions::TerrainOptions() : folder(SampleTerrain()) {}

void AddTerrainOptions(OptionTable& table, TerrainOptions& options) { table.Add(OPTIONS, options); }

std::string SampleTerrain() { return SharedData("sample") + "/terrain"; }

std::string Elevations::Open(const std::string& folder) {
  // What a chart says of a folder with damaged files or none: the terrain itself leaves such out.
  if (std::string problem = WhyNoTerrain(folder); !problem.empty()) return problem;
  if (const int code = Read(folder.c_str()))
    return "cannot read the terrain " + Quoted(folder) + ": " + K7ErrorString::ErrorString(code);
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

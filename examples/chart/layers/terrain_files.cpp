#include "layers/terrain_files.h"

#include <k7/foundation/error_string.h>
#include <k7/terrain/terrain.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>

namespace {

const int FINEST = K7TerrainK7::LevelResolution(K7TerrainK7::LEVELS - 1);

// "120_N30W150.ter" has 120 posts per degree; 0 for what is no region file.
int ResolutionOf(const std::filesystem::path& path) {
  int resolution = 0;
  const bool isRegion =
      path.extension() == ".ter" && std::sscanf(path.filename().string().c_str(), "%d_", &resolution) == 1;
  return isRegion && resolution > 0 && resolution <= FINEST ? resolution : 0;
}

}  // namespace

bool HasTerrain(const std::string& folder) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error))
    if (ResolutionOf(entry.path()) > 0) return true;
  return false;
}

std::string WhyNoTerrain(const std::string& folder) {
  NoProgress progress;
  TerrainFiles files;
  return files.Load(folder, progress);
}

std::string TerrainFiles::Load(const std::string& folder, Progress& progress) {
  if (folder.empty())
    return "no terrain: '--terrain FOLDER' names region files that 'k7terrain build' has made";
  progress.Step("reading terrain");
  m_regions.clear();
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    const int resolution = ResolutionOf(entry.path());
    if (resolution == 0) continue;
    auto region = std::make_unique<K7TerRegion>();
    if (const int code = region->Read(entry.path().string().c_str()); code != 0) {
      const char* const why = K7ErrorString::ErrorString(code);
      return "cannot read '" + entry.path().string() + "': " + (why ? why : "damaged");
    }
    m_regions.push_back({resolution, std::move(region)});
  }
  if (error) return "cannot read the terrain folder '" + folder + "': " + error.message();
  return m_regions.empty() ? "there are no region files (.ter) in '" + folder + "'" : "";
}

std::vector<int> TerrainFiles::Resolutions() const {
  std::vector<int> resolutions;
  for (const Region& region : m_regions) resolutions.push_back(region.resolution);
  std::sort(resolutions.begin(), resolutions.end(), std::greater<>());
  resolutions.erase(std::unique(resolutions.begin(), resolutions.end()), resolutions.end());
  return resolutions;
}

std::vector<K7TerTile*> TerrainFiles::TilesIn(int resolution, const K7ChartRect& area) const {
  std::vector<K7TerTile*> tiles;
  for (const Region& file : m_regions) {
    const K7TerRegion& region = *file.region;
    if (file.resolution != resolution || !area.AreaIn(region.GetChartRect())) continue;
    for (int row = 0; row < region.RowCount(); ++row)
      for (int column = 0; column < region.ColCount(); ++column) {
        K7TerTile* const tile = region.Tile(row, column);
        if (tile && area.AreaIn(tile->GetChartRect())) tiles.push_back(tile);
      }
  }
  return tiles;
}

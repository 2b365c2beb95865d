#include "region/region_survey.h"

#include "region/build_region.h"

#include <k7/terrain/ter_tile.h>

#include <algorithm>
#include <climits>

namespace {

void Count(const K7TerTile& tile, RegionSurvey& survey) {
  ++survey.tiles;
  survey.posts += static_cast<int64_t>(tile.RowCount()) * tile.ColCount();
  for (int row = 0; row < tile.RowCount(); ++row)
    for (int col = 0; col < tile.ColCount(); ++col) {
      const int metres = tile.GetMesh()[row][col];
      if (metres == K7_NO_ELEV) {
        ++survey.voids;
        continue;
      }
      survey.lowest = std::min(survey.lowest, metres);
      survey.highest = std::max(survey.highest, metres);
    }
}

}  // namespace

std::string SurveyRegion(const std::string& path, K7TerRegion& region, RegionSurvey& survey,
                         const std::function<void(double share)>& progress) {
  survey = RegionSurvey();
  survey.lowest = INT_MAX;
  survey.highest = INT_MIN;
  if (const int code = region.Read(path.c_str())) return path + ": " + Explain(code);
  for (int row = 0; row < region.RowCount(); ++row) {
    progress(static_cast<double>(row) / region.RowCount());
    for (int col = 0; col < region.ColCount(); ++col) {
      K7TerTile* const tile = region.Tile(row, col);
      if (!tile) continue;
      if (const int code = tile->Read())
        return path + ": tile " + std::to_string(row) + ", " + std::to_string(col) + ": " + Explain(code);
      Count(*tile, survey);
      tile->FreeMesh();
    }
  }
  return survey.tiles == region.TileCount() ? std::string() : path + ": has tiles that lie over each other";
}

// k7terrain info: what a region file holds.

#include "app_common/progress_bar.h"
#include "app_common/verb.h"
#include "region/region_survey.h"

#include <k7/terrain/ter_tile.h>

#include <cstdio>

namespace {

void PrintBounds(const char* what, const K7ChartRect& bounds) {
  std::printf("%s %.6f to %.6f north, %.6f to %.6f east\n", what, bounds.South(), bounds.North(),
              bounds.West(), bounds.East());
}

// The extent of the tiles that are there.
K7ChartRect TileExtent(const K7TerRegion& region) {
  K7ChartRect extent;
  for (int row = 0; row < region.RowCount(); ++row)
    for (int col = 0; col < region.ColCount(); ++col)
      if (const K7TerTile* const tile = region.Tile(row, col))
        extent.BoundingUnion(extent, tile->GetChartRect());
  return extent;
}

class Info : public Verb {
 public:
  std::string TakeArgument(const std::string& argument) override {
    if (!m_path.empty()) return Verb::TakeArgument(argument);
    m_path = argument;
    return {};
  }

  std::string Run() override {
    if (m_path.empty()) return "info needs a region file, as FILE.ter";
    K7TerRegion region;
    RegionSurvey survey;
    ProgressBar bar;
    std::string problem =
        SurveyRegion(m_path, region, survey, [&](double share) { bar.Show("reading " + m_path, share); });
    bar.Wipe();
    if (!problem.empty()) return problem;
    PrintBounds("bounds:", region.GetChartRect());
    if (survey.tiles > 0) PrintBounds("tiles: ", TileExtent(region));
    std::printf("matrix: %d rows, %d columns of %.6f by %.6f degrees; %d with tiles\n", region.RowCount(),
                region.ColCount(), region.TileHeight(), region.TileWidth(), survey.tiles);
    std::printf("words:  %d, %d\n", region.FirstWord(), region.SecondWord());
    std::printf("posts:  %lld, %lld without elevation\n", static_cast<long long>(survey.posts),
                static_cast<long long>(survey.voids));
    if (survey.voids < survey.posts) std::printf("metres: %d to %d\n", survey.lowest, survey.highest);
    return {};
  }

 private:
  std::string m_path;
};

}  // namespace

std::unique_ptr<Verb> MakeInfo() { return std::make_unique<Info>(); }

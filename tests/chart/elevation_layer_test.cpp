// Maximum elevation figures: beside the sample's own grid, peaks set by hand, and the published examples.

#include "layers/elevation_layer.h"
#include "chart/chart_fixture.h"
#include "chart/memory_store.h"
#include "terrain/region_file.h"

#include <k7/navdata/obstacle.h>

#include <cmath>
#include <cstdio>
#include <random>

namespace {

// FAA, Aeronautical Chart Users' Guide, Maximum Elevation Figures: an obstacle of 2424 ft, a peak of 13161
// ft.
TEST(ElevationFigure, PublishedExamples) {
  EXPECT_EQ(MaximumElevationFigure({2000, SOURCE_ERROR}, 2424), 2600);
  EXPECT_EQ(MaximumElevationFigure({13161, SOURCE_ERROR}, {}), 13500);
  EXPECT_EQ(MaximumElevationFigure({13161, SOURCE_ERROR}, 13300), 13500);
  EXPECT_EQ(FigureText(13500), "13\u2075");
  EXPECT_EQ(FigureText(800), "0\u2078");
}

TEST(ElevationFigure, IsNeverBelowTheGridThatTheSampleIsMadeOf) {
  NoProgress progress;
  TerrainFiles files;
  ASSERT_EQ(files.Load(K7_SAMPLE_DATA "/terrain", progress), "");
  std::vector<std::array<double, 3>> grid;  // latitude, longitude, feet
  std::FILE* const csv = std::fopen(K7_SAMPLE_DATA "/terrain/salish_sea.csv", "r");
  ASSERT_TRUE(csv);
  double lat, lon, metres;
  EXPECT_EQ(std::fscanf(csv, "%*[^\n]"), 0);
  while (std::fscanf(csv, "%lf,%lf,%lf", &lat, &lon, &metres) == 3)
    grid.push_back({lat, lon, metres / 0.3048});
  std::fclose(csv);
  ASSERT_EQ(grid.size(), 91u * 120u);
  const auto highest = [&](const GraticuleCell& cell, double beyond) {
    double feet = -1e9;
    for (const auto& [y, x, z] : grid)
      if (y > cell.south - beyond && y < cell.south + cell.height + beyond && x > cell.west - beyond &&
          x < cell.west + cell.width + beyond)
        feet = std::max(feet, z);
    return feet;
  };
  constexpr double MINUTES = 1 / 6.0;
  for (int row = 289; row < 299; ++row)
    for (int column = -755; column < -733; ++column) {
      const GraticuleCell cell{row * MINUTES, column * MINUTES, MINUTES, MINUTES};
      const std::optional<TerrainHeight> found = HighestTerrain(files, cell);
      ASSERT_TRUE(found) << cell.south << ' ' << cell.west;
      EXPECT_LE(found->feet, std::ceil(highest(cell, 0.06))) << cell.south << ' ' << cell.west;
      EXPECT_TRUE(found->feet <= 0 || found->feet + found->error >= highest(cell, 0) + 100)
          << cell.south << ' ' << cell.west;
    }
  for (const GraticuleCell& beyond :
       {GraticuleCell{49.5, -124, 0.75, 0.5}, GraticuleCell{49, -121.5, 0.5, 0.5},
        GraticuleCell{-90, 0, 1, 1}, GraticuleCell{90, 179, 1, 2}})
    EXPECT_FALSE(HighestTerrain(files, beyond)) << beyond.south;
}

// Peaks that rise from level ground drop by all their height both ways.
TEST(ElevationFigure, PeaksOfCellsAcrossTilesRegionsAnd180) {
  struct Peak {
    double lat, east;  // east of 178 east
    int metres;
  };
  std::mt19937 bits(12);
  constexpr int N = 120;
  std::vector<std::vector<int>> posts(2 * N, std::vector<int>(4 * N));
  std::vector<Peak> peaks;
  for (int i = 0; i < 60; ++i) {
    const int row = 2 * (static_cast<int>(bits()) & 0x3F) + 20,
              column = 2 * static_cast<int>(bits() % (2 * N));
    posts[static_cast<size_t>(row)][static_cast<size_t>(column)] = 100 + 10 * i;
    std::erase_if(
        peaks, [&](const Peak& p) { return p.lat == 30 + (row + 0.5) / N && p.east == (column + 0.5) / N; });
    peaks.push_back({30 + (row + 0.5) / N, (column + 0.5) / N, 100 + 10 * i});
  }
  constexpr int HOLE_ROW = 200, HOLE_COLUMN = 2 * N + 5;
  posts[HOLE_ROW][HOLE_COLUMN] = K7_NO_ELEV;
  TempFolder folder;
  for (const int side : {0, 1})
    folder.Write(side ? "120_N30W180.ter" : "120_N30E150.ter",
                 MadeRegion(30, side ? -180 : 178, 2, 2, N, [&](int row, int column) {
                   return posts[static_cast<size_t>(row)][static_cast<size_t>(column) + (side ? 2 * N : 0)];
                 }).Bytes());
  NoProgress progress;
  TerrainFiles files;
  ASSERT_EQ(files.Load(folder.Path(), progress), "");
  for (int i = 0; i < 200; ++i) {
    const double south = 30 + static_cast<double>(bits() % 90) / 60,
                 east = static_cast<double>(bits() % 210) / 60;
    const double height = static_cast<double>(1 + bits() % 30) / 60,
                 width = static_cast<double>(1 + bits() % 30) / 60;
    const auto meets = [](double at, double from, double length) {
      return at > from - 0.5 / N - 1e-9 && at < from + length + 0.5 / N + 1e-9;
    };
    int metres = 0;
    for (const Peak& peak : peaks)
      if (meets(peak.lat, south, height) && meets(peak.east, east, width))
        metres = std::max(metres, peak.metres);
    const bool isHoleBeside =
        meets(30 + (HOLE_ROW + 0.5) / N, south, height) && meets((HOLE_COLUMN + 0.5) / N, east, width);
    const bool isHoleWithin = HOLE_ROW > (south - 30) * N && HOLE_ROW + 1 < (south + height - 30) * N &&
                              HOLE_COLUMN > east * N && HOLE_COLUMN + 1 < (east + width) * N;
    const std::optional<TerrainHeight> found = HighestTerrain(files, {south, 178 + east, height, width});
    EXPECT_FALSE(isHoleWithin && found) << i;
    if (isHoleBeside) continue;
    ASSERT_TRUE(found) << i;
    const int feet = static_cast<int>(std::ceil(metres / 0.3048));
    EXPECT_EQ(found->feet, feet) << i << ": " << south << ' ' << east;
    EXPECT_EQ(found->error, feet + 100) << i;
  }
}

struct OneObstacle : MemoryStore {
  const K7NavRec* HighestObstacle(const K7ChartRect& area) override {
    return area.PtIn(48.9, -123.6) ? &obstacle : nullptr;
  }
  K7Obstacle obstacle;
};

TEST_F(ChartTest, FiguresStandInTheirCellsAtScalesOfSectionalCharts) {
  OneObstacle store;
  store.obstacle.elev = 8950;
  TerrainFiles files;
  ASSERT_EQ(files.Load(K7_SAMPLE_DATA "/terrain", progress), "");
  ElevationLayer elevations(files, &store, graticule);
  Chart withFigures({&earth, &graticule, &elevations}, theme, progress);
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 8, 8);
  cairo_t* const cairo = cairo_create(surface);
  const auto figures = [&](double range) {
    EXPECT_EQ(withFigures.Show({K7_PROJ_LAMBERT, {49, -123.5}, range, {}}, 1400, 900, 1), "");
    LabelPlan plan(cairo, {-60, -60, 1460, 960});
    withFigures.OfferLabels(12, plan);
    std::vector<Label> labels = plan.Labels();
    std::erase_if(labels, [](const Label& l) { return l.lettering.item != ThemeItem::Elevations; });
    return labels;
  };
  EXPECT_TRUE(figures(500).empty());
  const std::vector<Label> labels = figures(80);
  EXPECT_GE(labels.size(), 6u);
  int high = 0;
  for (const Label& label : labels) {
    double lat, lon;
    ASSERT_TRUE(withFigures.View()->FromDevice(label.x, label.y, lat, lon));
    const GraticuleCell* own = nullptr;
    const std::vector<GraticuleCell> cells = graticule.Cells();
    for (const GraticuleCell& cell : cells)
      if (lat > cell.south && lat < cell.south + cell.height && lon > cell.west &&
          lon < cell.west + cell.width)
        own = &cell;
    ASSERT_TRUE(own);
    const bool hasObstacle = 48.9 > own->south && 48.9 < own->south + own->height && -123.6 > own->west &&
                             -123.6 < own->west + own->width;
    EXPECT_EQ(label.text == "9\u00B9", hasObstacle) << label.text;
    high += hasObstacle;
  }
  EXPECT_EQ(high, 1);
  EXPECT_EQ(withFigures.Legend().at(0).text, "maximum elevation, 12,600 ft");
  // Figures without obstacles look the same: the legend tells.
  ElevationLayer ground(files, nullptr, graticule);
  Chart ofGround({&earth, &graticule, &ground}, theme, progress);
  ASSERT_EQ(ofGround.Show({K7_PROJ_LAMBERT, {49, -123.5}, 80, {}}, 1400, 900, 1), "");
  LabelPlan plan(cairo, {-60, -60, 1460, 960});
  ofGround.OfferLabels(12, plan);
  EXPECT_NE(ofGround.Legend().at(0).text.find("no obstacles"), std::string::npos);
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

}  // namespace

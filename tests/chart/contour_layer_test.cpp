// Contour lines: between posts that are lower and higher, in every projection, and smooth between posts.

#include "layers/contour_layer.h"

#include "chart/chart_fixture.h"
#include "layers/post_heights.h"
#include "layers/terrain_files.h"

#include <k7/projection.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

constexpr double FEET_PER_METRE = 1 / 0.3048;

std::unique_ptr<K7TerTileEX> Grid(const std::function<double(double lat, double lon)>& metres) {
  static const K7ChartRect BOUNDS(50, 49, -121, -123);
  static const int ROWS = 20, COLUMNS = 40;
  auto tile = std::make_unique<K7TerTileEX>();
  EXPECT_EQ(tile->Init(BOUNDS, ROWS, COLUMNS), 0);
  EXPECT_EQ(tile->AllocMesh(), 0);
  for (int row = 0; row < ROWS; ++row)
    for (int column = 0; column < COLUMNS; ++column)
      tile->GetMesh()[row][column] = static_cast<int16_t>(
          std::lround(metres(49 + (row + 0.5) / ROWS, -123 + 2 * (column + 0.5) / COLUMNS)));
  return tile;
}

TEST(PostHeights, AreThoseOfAPlaneAndNearlyThoseOfAHill) {
  const auto plane = [](double lat, double lon) { return (lat - 49) * 2000 - (lon + 123) * 1000; };
  const auto hill = [](double lat, double lon) {
    return 3000 * std::exp(-8 * (std::pow(lat - 49.5, 2) + std::pow(lon + 122, 2)));
  };
  for (const auto& [field, most] :
       {std::pair<std::function<double(double, double)>, double>{plane, 1e-9}, {hill, 6}}) {
    const std::unique_ptr<K7TerTileEX> tile = Grid(field);
    const PostHeights heights(*tile);
    for (double lat = 49.12; lat < 49.88; lat += 0.013)
      for (double lon = -122.87; lon < -121.13; lon += 0.017)
        ASSERT_NEAR(heights.At(lat, lon), field(lat, lon), most) << lat << " " << lon;
    EXPECT_TRUE(std::isnan(heights.At(49.5, -120.9)));
    tile->GetMesh()[10][20] = K7_NO_ELEV;
    EXPECT_TRUE(std::isnan(heights.At(49.51, -121.99)));
    EXPECT_NEAR(heights.At(49.6, -121.975), field(49.6, -121.975), most * 9 + 1e-9);
  }
}

class ContoursTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(files.Load(K7_SAMPLE_DATA "/terrain", progress), ""); }

  // Feet of the lowest and highest posts about a place, as the finest file has them.
  std::pair<double, double> About(double lat, double lon) const {
    static const double POST = 1.0 / 120;
    double low = INFINITY, high = -INFINITY;
    for (K7TerTile* const tile : files.TilesIn(120, K7ChartRect(lat + 0.1, lat - 0.1, lon + 0.1, lon - 0.1)))
      for (int north = -2; north <= 2; ++north)
        for (int east = -2; east <= 2; ++east) {
          const int metres = tile->GetElev(lat + north * POST, lon + east * POST, true, 0);
          if (metres == K7_NO_ELEV) continue;
          low = std::min(low, metres * FEET_PER_METRE);
          high = std::max(high, metres * FEET_PER_METRE);
        }
    return {low, high};
  }

  NoProgress progress;
  TerrainFiles files;
  Theme theme;
};

// The sanitizers would tell of a height that is counted from nothing.
TEST_F(ContoursTest, AreNotSoughtBesideTheData) {
  ContourLayer layer(files);
  Chart chart({&layer}, theme, progress);
  for (const double lon : {-121.996, -121.9, -120.6}) {
    ASSERT_EQ(chart.Show({K7_PROJ_RECTANGULAR, {48.5, lon}, 0.05, {}}, 300, 300, 1), "");
    EXPECT_TRUE(layer.Lines({*chart.View(), theme, 1, progress}).empty()) << lon;
  }
}

TEST_F(ContoursTest, RunBetweenLowerAndHigherPosts) {
  ContourLayer layer(files);
  Chart chart({&layer}, theme, progress);
  EXPECT_TRUE(chart.CanToggleTerrainContours());
  for (const K7ProjType type :
       {K7_PROJ_LAMBERT, K7_PROJ_MERCATOR, K7_PROJ_RECTANGULAR, K7_PROJ_ORTHOGRAPHIC, K7_PROJ_GNOMONIC}) {
    ASSERT_EQ(chart.Show({type, {49.5, -123.2}, 20, {}}, 700, 500, 1), "");
    const auto& lines = layer.Lines({*chart.View(), theme, 1, progress});
    int points = 0, wrong = 0;
    for (const ContourLayer::Contour& contour : lines) {
      ASSERT_EQ(contour.feet % 2500 == 0, contour.isIndex);
      for (size_t i = 0; i < contour.line.points.size(); i += 5) {
        double lat, lon;
        ASSERT_TRUE(chart.View()->FromDevice(contour.line.points[i].x, contour.line.points[i].y, lat, lon));
        const auto [low, high] = About(lat, lon);
        ++points;
        wrong += !(low <= contour.feet && contour.feet <= high);
      }
    }
    EXPECT_GT(points, 500) << type;
    EXPECT_EQ(wrong, 0) << type;
    // Hidden by day, and what is hidden is not picked.
    const DevicePoint on = lines.front().line.points.front();
    EXPECT_TRUE(chart.Pick(on.x, on.y).empty());
    chart.ToggleTerrainContours();
    EXPECT_FALSE(chart.Pick(on.x, on.y).empty());
    chart.ToggleTerrainContours();
  }
}

}  // namespace

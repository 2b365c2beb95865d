// Relief on a chart: where there is terrain and nowhere else, blue below the sea's level.

#include "layers/terrain_layer.h"
#include "chart/chart_fixture.h"
#include "layers/smooth_posts.h"

#include <k7/projection.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

struct ImageGrfx : K7GrfxK7 {
  ImageGrfx(int width, int height) : K7GrfxK7(width, height) {}
  void Image(const uint32_t* pixels, int w, int h, double left, double top, double right,
             double bottom) override {
    for (int y = 0; y < Height(); ++y)
      for (int x = 0; x < Width(); ++x) {
        const int column = static_cast<int>((x + 0.5 - left) / (right - left) * w);
        const int row = static_cast<int>((y + 0.5 - top) / (bottom - top) * h);
        if (x + 0.5 >= left && x + 0.5 < right && y + 0.5 >= top && y + 0.5 < bottom)
          seen.at(At(x, y)) = pixels[row * w + column];
      }
  }
  size_t At(int x, int y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(Width()) + static_cast<size_t>(x);
  }
  std::vector<uint32_t> seen = std::vector<uint32_t>(static_cast<size_t>(Width() * Height()));
};

TEST(TerrainLayer, ReliefStandsWhereItsDataAre) {
  NoProgress progress;
  TerrainFiles files;
  EXPECT_NE(files.Load(K7_SAMPLE_DATA "/nowhere", progress), "");
  EXPECT_NE(files.Load(K7_SAMPLE_DATA "/magnetic", progress), "");
  ASSERT_EQ(files.Load(K7_SAMPLE_DATA "/terrain", progress), "");
  TerrainLayer layer(files);
  K7MercatorProjection projection;
  K7MapView view(&projection, 400, 300);
  ASSERT_EQ(view.LookAt(49, -124, 120), 0);
  const Theme day;
  layer.Prepare({view, day, 1, progress});
  ImageGrfx g(400, 300);
  K7MapPath path(view);
  layer.DrawAreas({view, day, 1, progress}, path, g);
  const auto at = [&](double lat, double lon) {
    double x, y;
    EXPECT_TRUE(view.ToDevice(lat, lon, x, y));
    return g.seen.at(g.At(static_cast<int>(x), static_cast<int>(y)));
  };
  EXPECT_EQ(at(50.3, -124), 0u);  // the sample ends at 50 north
  EXPECT_EQ(at(49, -121.5), 0u);
  const uint32_t sea = at(48.7, -125.5), mountains = at(49.7, -123.2);
  EXPECT_GT(sea & 0xFF, sea >> 16 & 0xFF);
  EXPECT_LT(mountains & 0xFF, mountains >> 16 & 0xFF);
  EXPECT_EQ(sea >> 24, 255u);
  // Across the edge it comes up little by little.
  uint32_t last = 0, steps = 0;
  for (double lat = 50.1; lat > 49.6; lat -= 0.01) {
    const uint32_t alpha = at(lat, -124) >> 24;
    EXPECT_LE(alpha - last, 40u) << lat;
    steps += alpha != last;
    last = alpha;
  }
  EXPECT_EQ(last, 255u);
  EXPECT_GT(steps, 8u);

  // The grid has -1437 to 2202 m: -4715 to 7224 ft.
  std::vector<LegendEntry> legend;
  layer.AddToLegend({view, day, 1, progress}, legend);
  ASSERT_EQ(legend.size(), 1u);
  EXPECT_EQ(legend[0].marks.front().text, "-3,000");
  EXPECT_EQ(legend[0].marks.back().text, "7,000");

  ASSERT_EQ(view.LookAt(49, -124, 9000), 0);
  layer.Prepare({view, day, 1, progress});
  layer.DrawAreas({view, day, 1, progress}, path, g);
  legend.clear();
  layer.AddToLegend({view, day, 1, progress}, legend);
  EXPECT_TRUE(legend.empty());
}

TEST(SmoothPosts, TakesSquaresAndKeepsSlopesAndHoles) {
  constexpr int SIZE = 40;
  K7TerTileEX tile;
  ASSERT_EQ(tile.Init({50, 49, 10, 9}, SIZE, SIZE), 0);
  ASSERT_EQ(tile.AllocMesh(), 0);
  for (int row = 0; row < SIZE; ++row)
    for (int column = 0; column < SIZE; ++column)
      tile.GetMesh()[row][column] = static_cast<int16_t>(20 * row - 30 * column + (row + column) % 2 * 8);
  tile.GetMesh()[20][30] = K7_NO_ELEV;
  ASSERT_TRUE(SmoothTwice(tile, 4));
  for (int row = 10; row < SIZE - 10; ++row)
    for (int column = 10; column < 20; ++column)
      EXPECT_NEAR(tile.GetMesh()[row][column], 20 * row - 30 * column + 4, 2) << row << ' ' << column;
  EXPECT_EQ(tile.GetMesh()[20][30], K7_NO_ELEV);
}

}  // namespace

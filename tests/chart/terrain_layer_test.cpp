// Relief on a chart: where there is terrain and nowhere else, blue below the sea's level.

#include "layers/terrain_layer.h"
#include "chart/chart_fixture.h"

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
          seen[static_cast<size_t>(y * Width() + x)] = pixels[row * w + column];
      }
  }
  std::vector<uint32_t> seen = std::vector<uint32_t>(static_cast<size_t>(Width() * Height()));
};

TEST(TerrainLayer, ReliefStandsWhereItsDataAre) {
  Silent progress;
  EXPECT_NE(TerrainLayer(K7_SAMPLE_DATA "/nowhere").Load(progress), "");
  EXPECT_NE(TerrainLayer(K7_SAMPLE_DATA "/magnetic").Load(progress), "");
  TerrainLayer layer(K7_SAMPLE_DATA "/terrain");
  ASSERT_EQ(layer.Load(progress), "");
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
    return g.seen[static_cast<size_t>(static_cast<int>(y) * 400 + static_cast<int>(x))];
  };
  EXPECT_EQ(at(50.3, -124), 0u);  // the sample ends at 50 north
  EXPECT_EQ(at(49, -121.5), 0u);
  const uint32_t sea = at(48.3, -125.7), mountains = at(49.7, -123.2);
  EXPECT_GT(sea & 0xFF, sea >> 16 & 0xFF);
  EXPECT_LT(mountains & 0xFF, mountains >> 16 & 0xFF);
  EXPECT_EQ(sea >> 24, 255u);
}

}  // namespace

// Tiles of web maps: where their pixels lie, and that blocks drawn by different calls agree where they meet.
#include "app/chart_data.h"
#include "web/tile_painter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

// Seattle-Tacoma's threshold 16L, Seattle and Tatoosh VOR, the world's corners, both sides of 180 degrees.
constexpr struct {
  double lat, lon;
} PLACES[] = {{47.46380, -122.30775},
              {47.43538, -122.30961},
              {48.29995, -124.62707},
              {85.0511, -179.9999},
              {-85.0511, 179.9999},
              {51.88, 179.9999},
              {0, 0},
              {-77.85, 166.67}};

// J. P. Snyder, Map Projections - A Working Manual, 1987, equation 7-2a: the forward one of another form than
// the grid's.
double RowOf(int z, double lat) {
  const double sine = std::sin(lat * std::numbers::pi / 180);
  return std::ldexp(0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi), z);
}

TileId TileAt(int z, double lat, double lon) {
  return {z, static_cast<int>(std::ldexp((lon + 180) / 360, z)), static_cast<int>(RowOf(z, lat))};
}

// The library's own way to the pixel against the formula, at every level.
TEST(TileTest, PlacesLieOnTheirPixels) {
  for (int z = 0; z <= MOST_ZOOM; ++z)
    for (const auto& [lat, lon] : PLACES)
      for (const int ratio : {1, 2}) {
        const TileBlock block = BlockOf(TileAt(z, lat, lon));
        MapRequest request;
        ASSERT_EQ(BlockRequest(block, {.ratio = ratio}, request), "");
        const std::unique_ptr<K7Projection> mercator(
            K7MapView::CreateProjection(K7_PROJ_MERCATOR, 0, 0, 0, nullptr));
        K7MapView view(mercator.get(), request.width, request.height);
        const ChartRequest& chart = request.chart;
        ASSERT_EQ(view.LookAtZoom(chart.center.Lat(), chart.center.Lon(), chart.zoom), 0);
        double x, y;
        view.ToDevice(lat, lon, x, y);
        const int pixels = TILE_PIXELS * ratio;
        EXPECT_NEAR(x - chart.overhang, (std::ldexp((lon + 180) / 360, z) - block.x) * pixels, 0.01) << z;
        EXPECT_NEAR(y - chart.overhang, (RowOf(z, lat) - block.y) * pixels, 0.01) << z;
      }
}

}  // namespace

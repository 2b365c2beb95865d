// Tiles of web maps: where their pixels lie, and that blocks drawn by different calls agree where they meet.
#include "web/tile_painter.h"
#include "web_desk.h"

#include <cmath>
#include <cstring>
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

// A block with the window around it, all layers on.
struct Drawn {
  MapImage image;
  int overhang = 0, width = 0, height = 0;  // those of the block

  uint32_t At(int x, int y) const {
    const unsigned char* const rows = cairo_image_surface_get_data(image.get());
    uint32_t pixel;
    std::memcpy(&pixel, rows + ptrdiff_t{y} * cairo_image_surface_get_stride(image.get()) + ptrdiff_t{x} * 4,
                4);
    return pixel;
  }
};

Drawn DrawBlock(MapPainter& painter, const TileBlock& block, const TileLook& look) {
  Drawn drawn;
  MapRequest request;
  EXPECT_EQ(BlockRequest(block, look, request), "");
  request.shown = {"contours"};
  // Dashes that run along 180 degrees.
  if (block.z <= 2) request.hidden = {"isogonics"};
  EXPECT_EQ(painter.DrawImage(request, drawn.image), "");
  drawn.overhang = static_cast<int>(request.chart.overhang);
  drawn.width = request.width - 2 * drawn.overhang;
  drawn.height = request.height - 2 * drawn.overhang;
  return drawn;
}

bool IsAlike(uint32_t a, uint32_t b) {
  static const int NOISE = 24;
  for (int shift = 0; shift < 24; shift += 8)
    if (std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)) > NOISE)
      return false;
  return true;
}

// What either draws of the last pixels before the seam and the first behind it: all that crosses it.
int Differences(const Drawn& first, const Drawn& second, bool across) {
  int found = 0;
  const int width = across ? first.width : first.height, length = across ? first.height : first.width;
  for (const int at : {-1, 0})
    for (int along = first.overhang; along < first.overhang + length; ++along) {
      const int one = first.overhang + width + at, other = first.overhang + at;
      const bool alike = across ? IsAlike(first.At(one, along), second.At(other, along))
                                : IsAlike(first.At(along, one), second.At(along, other));
      if (!alike) ++found;
    }
  return found;
}

TEST(TileTest, BlocksAgreeWhereTheyMeet) {
  MapPainter painter(SampleDesk().Data());
  for (const char* const theme : {"day", "night"})
    for (const int z : {1, 2, 6, 8, 9, 10, 12})
      for (const double lon : {-123.2, -122.6, 179.0}) {
        if (lon > 0 && z > 2) continue;
        const TileLook look{.theme = theme, .ratio = z == 9 ? 2 : 1};
        const TileBlock block = BlockOf(TileAt(z, 48.4, lon));
        const Drawn middle = DrawBlock(painter, block, look);
        for (const bool across : {true, false}) {
          if (!across && z <= 2) continue;  // there is no other
          TileBlock next = block;
          (across ? next.x : next.y) += across ? block.columns : block.rows;
          next.x %= 1 << z;
          // Dashes begin where a line enters a window: a few pixels where an isogonic or a border crosses.
          static const int MOST = 10;
          EXPECT_LE(Differences(middle, DrawBlock(painter, next, look), across), MOST)
              << theme << " " << z << " " << lon << (across ? " across" : " down");
        }
      }
}

}  // namespace

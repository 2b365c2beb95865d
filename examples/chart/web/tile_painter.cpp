#include "web/tile_painter.h"

#include "sheet/png.h"

namespace {

// Tile pixels on each side of a block that are drawn and cut off. Relief fades towards the end of its data
// over fewer, and squares of pixels that relief is laid out in fall on the same places in all blocks.
constexpr int OVERHANG = 32;
constexpr int MOST_RATIO = 4;

// Web Mercator has so many pixels a degree of longitude.
double ZoomFor(int z, int ratio, double lat, double lon, int width, int height) {
  const std::unique_ptr<K7Projection> mercator(
      K7MapView::CreateProjection(K7_PROJ_MERCATOR, lat, lon, 0, nullptr));
  K7MapView view(mercator.get(), width, height);
  double left, right, y;
  if (view.LookAtZoom(lat, lon, 1) != 0) return 0;
  view.ToDevice(lat, lon - 45, left, y);
  view.ToDevice(lat, lon + 45, right, y);
  return std::ldexp(TILE_PIXELS * ratio, z) / 4 / (right - left);
}

const DataScale& ScaleOfLevel(int z) {
  static const double HALF_WINDOW = 500;  // ordinary pixels
  return ScaleFor(LevelNMPerPixel(z) * HALF_WINDOW);
}

}  // namespace

std::string BlockRequest(const TileBlock& block, const TileLook& look, MapRequest& request) {
  const bool isBlock = block.columns > 0 && block.columns <= BLOCK_TILES && block.rows > 0 &&
                       block.rows <= BLOCK_TILES && IsTile({block.z, block.x, block.y}) &&
                       IsTile({block.z, block.x + block.columns - 1, block.y + block.rows - 1});
  if (!isBlock || look.ratio < 1 || look.ratio > MOST_RATIO) return "there is no such tile";
  const int pixels = TILE_PIXELS * look.ratio, overhang = OVERHANG * look.ratio;
  request.width = block.columns * pixels + 2 * overhang;
  request.height = block.rows * pixels + 2 * overhang;
  const double lat = LatOfRow(block.z, block.y + block.rows / 2.0);
  const double lon = LonOfColumn(block.z, block.x + block.columns / 2.0);
  request.chart.type = K7_PROJ_MERCATOR;
  request.chart.center = K7LatLon(lat, lon);
  request.chart.zoom = ZoomFor(block.z, look.ratio, lat, lon, request.width, request.height);
  request.chart.overhang = overhang;
  request.chart.nmPerPixel = LevelNMPerPixel(block.z) / look.ratio;
  request.scale = look.ratio;
  request.theme = look.theme;
  request.data = &ScaleOfLevel(block.z);
  return {};
}

std::string TilePainter::Paint(const TileBlock& block, const TileLook& look, std::vector<std::string>& pngs) {
  pngs.clear();
  MapRequest request;
  if (std::string problem = BlockRequest(block, look, request); !problem.empty()) return problem;
  MapImage image;
  if (std::string problem = m_painter.DrawImage(request, image); !problem.empty()) return problem;
  cairo_surface_flush(image.get());
  const int pixels = TILE_PIXELS * look.ratio, overhang = OVERHANG * look.ratio;
  const int stride = cairo_image_surface_get_stride(image.get());
  NoProgress progress;
  std::vector<unsigned char> png;
  for (int row = 0; row < block.rows; ++row)
    for (int column = 0; column < block.columns; ++column) {
      unsigned char* const first = cairo_image_surface_get_data(image.get()) +
                                   ptrdiff_t{overhang + row * pixels} * stride +
                                   ptrdiff_t{overhang + column * pixels} * 4;
      const MapImage tile(
          cairo_image_surface_create_for_data(first, CAIRO_FORMAT_RGB24, pixels, pixels, stride));
      png.clear();
      if (!EncodePng(tile.get(), png, progress)) return "out of memory";
      pngs.emplace_back(png.begin(), png.end());
    }
  return {};
}

// What 'k7chart serve' draws, on one thread, from the sample's data about the Salish Sea.
//
//   View     a map of 1600 x 1000 pixels with all layers, each a fifth of its width beside the last, to the
//   PNG Copying  the same picture copied and written as PNG with libpng's fastest level: what is left when
//   drawing
//            costs nothing
//   Tiles    all layers of a level in blocks, to the PNGs
//   Lines    land, rivers and borders alone, which bench/tiles_peer.py draws with Mapnik
#include "app/chart_data.h"
#include "sheet/png.h"
#include "web/tile_painter.h"

#include <benchmark/benchmark.h>

#include <png.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int LEVEL = 8, WEST = 36, NORTH = 84, BLOCKS = 2;  // each way, over sea, coast and mountains

struct Sample {
  Sample() {
    LayerOptions options;
    options.folder = K7_SAMPLE_DATA;
    problem = data.Open(options);
  }
  ChartData data;
  MapPainter painter{data};
  std::string problem;
};

MapRequest ViewOf(double range, int shift) {
  MapRequest view;
  view.width = 1600;
  view.height = 1000;
  view.chart.type = K7_PROJ_LAMBERT;
  view.chart.center = K7LatLon(48.9, -123.3 + shift * range / 60);
  view.chart.rangeNM = range;
  return view;
}

void View(benchmark::State& state) {
  Sample sample;
  int shift = 0;
  size_t bytes = 0;  // of the picture that is copied too
  std::vector<unsigned char> png;
  for (auto _ : state) {
    png.clear();
    shift = (shift + 1) % 2;
    const MapRequest view = ViewOf(static_cast<double>(state.range(0)), shift);
    if (!sample.problem.empty() || !sample.painter.DrawPng(view, png).empty())
      return state.SkipWithError("no view");
    if (shift == 0) bytes = png.size();
  }
  state.counters["KB"] = static_cast<double>(bytes) / 1024;
}

void Copying(benchmark::State& state) {
  Sample sample;
  MapImage image;
  if (!sample.problem.empty() ||
      !sample.painter.DrawImage(ViewOf(static_cast<double>(state.range(0)), 0), image).empty())
    return state.SkipWithError("no view");
  cairo_surface_flush(image.get());
  png_image png = {};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(cairo_image_surface_get_width(image.get()));
  png.height = static_cast<png_uint_32>(cairo_image_surface_get_height(image.get()));
  png.format = PNG_FORMAT_BGR;
  png.flags = PNG_IMAGE_FLAG_FAST;
  std::vector<unsigned char> rows(size_t{png.width} * png.height * 3), file(rows.size() * 2);
  png_alloc_size_t size = 0;
  for (auto _ : state) {
    const unsigned char* const pixels = cairo_image_surface_get_data(image.get());
    for (size_t i = 0; i < rows.size() / 3; ++i) std::copy_n(pixels + 4 * i, 3, &rows[3 * i]);
    size = file.size();
    if (!png_image_write_to_memory(&png, file.data(), &size, 0, rows.data(), 0, nullptr))
      return state.SkipWithError("no file");
  }
  state.counters["KB"] = static_cast<double>(size) / 1024;
}

void CountTiles(benchmark::State& state) {
  const auto tiles = static_cast<double>(state.iterations() * BLOCKS * BLOCKS * BLOCK_TILES * BLOCK_TILES);
  state.counters["tiles/s"] = benchmark::Counter(tiles, benchmark::Counter::kIsRate);
}

TileBlock BlockAt(int i) {
  return {LEVEL, WEST + i % BLOCKS * BLOCK_TILES, NORTH + i / BLOCKS * BLOCK_TILES, BLOCK_TILES, BLOCK_TILES};
}

void Tiles(benchmark::State& state) {
  Sample sample;
  TilePainter painter(sample.painter);
  std::vector<std::string> pngs;
  for (auto _ : state)
    for (int i = 0; i < BLOCKS * BLOCKS; ++i)
      if (!sample.problem.empty() || !painter.Paint(BlockAt(i), {}, pngs).empty())
        return state.SkipWithError("no tiles");
  CountTiles(state);
}

bool PaintLines(MapPainter& painter, const TileBlock& block, std::vector<unsigned char>& png) {
  MapRequest request;
  MapImage image;
  if (!BlockRequest(block, {}, request).empty()) return false;
  request.only = {"land", "rivers", "borders"};
  if (!painter.DrawImage(request, image).empty()) return false;
  const int stride = cairo_image_surface_get_stride(image.get());
  const int overhang = (request.width - BLOCK_TILES * TILE_PIXELS) / 2;
  NoProgress progress;
  for (int tile = 0; tile < BLOCK_TILES * BLOCK_TILES; ++tile) {
    const int x = overhang + tile % BLOCK_TILES * TILE_PIXELS;
    const int y = overhang + tile / BLOCK_TILES * TILE_PIXELS;
    const MapImage part(cairo_image_surface_create_for_data(
        cairo_image_surface_get_data(image.get()) + ptrdiff_t{y} * stride + ptrdiff_t{x} * 4,
        CAIRO_FORMAT_RGB24, TILE_PIXELS, TILE_PIXELS, stride));
    png.clear();
    if (!EncodePng(part.get(), png, progress)) return false;
  }
  return true;
}

void Lines(benchmark::State& state) {
  Sample sample;
  std::vector<unsigned char> png;
  for (auto _ : state)
    for (int i = 0; i < BLOCKS * BLOCKS; ++i)
      if (!sample.problem.empty() || !PaintLines(sample.painter, BlockAt(i), png))
        return state.SkipWithError("no tiles");
  CountTiles(state);
}

BENCHMARK(View)->Arg(60)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(Copying)->Arg(60)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(Tiles)->Unit(benchmark::kMillisecond);
BENCHMARK(Lines)->Unit(benchmark::kMillisecond);

}  // namespace

// A chart drawn again: its layers are loaded, nothing of an earlier drawing is kept but the chart's own
// buffers.
//
//   redraw   frame, layers, labels and margin onto a Cairo surface, as k7chart does it
//   paths    the same lines and areas into a context that only counts points: what the library's paths cost
//   alone
//
//   all      the same with every layer that a data folder has, terrain and the sample of navigation data, 300
//   NM
//
//   enroute  the same with all layers of navigation data, 300 NM over central Europe, from the database that
//            K7_NAV_DATABASE names
//
// Sheets of 1600 x 1000 pixels about the Salish Sea. The 1:10m sets are those of libmagics++-data; rows for
// which they are missing are left out, as is the enroute chart without a database.
#include "ink/cairo_grfx.h"
#include "layers/earth_layer.h"
#include "layers/graticule_layer.h"
#include "layers/shape_layer.h"
#include "sheet/chart_sheet.h"
#include "sheet/gallery.h"

#include "app/drawing.h"
#include "app/nav_source.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>

namespace {

constexpr int WIDTH = 1600, HEIGHT = 1000;
const std::string FINE = "/usr/share/magics/10m/ne_10m_";

class Counter : public K7GrfxK7 {
 public:
  Counter() : K7GrfxK7(1, 1) {}
  void MoveTo(double, double) override { ++count; }
  void LineTo(double, double) override { ++count; }
  long count = 0;
};

struct Layers {
  explicit Layers(const std::string& start) {
    const struct {
      ThemeItem item;
      const char* set;
    } SETS[] = {{ThemeItem::Land, "land"}, {ThemeItem::Rivers, "rivers_lake_centerlines"}};
    layers.push_back(std::make_unique<EarthLayer>());
    for (const auto& set : SETS) {
      auto layer = std::make_unique<ShapeLayer>(set.item, start + set.set + ".shp");
      valid = valid && layer->Load(progress).empty();
      layers.push_back(std::move(layer));
    }
    layers.push_back(std::make_unique<GraticuleLayer>());
    for (const auto& layer : layers) pointers.push_back(layer.get());
  }
  bool valid = true;
  NoProgress progress;
  Theme theme;
  std::vector<std::unique_ptr<Layer>> layers;
  std::vector<Layer*> pointers;
};

void Redraw(benchmark::State& state, const std::string& start, double range) {
  Layers layers(start);
  if (!layers.valid) return state.SkipWithError("no data");
  Chart chart(layers.pointers, layers.theme, layers.progress);
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, WIDTH, HEIGHT);
  cairo_t* const cairo = cairo_create(surface);
  const ChartBox box = {0, 0, WIDTH, HEIGHT, 12.5};
  for (auto _ : state)
    if (!DrawChart(cairo, box, {K7_PROJ_LAMBERT, {48.5, -123.5}, range, {}}, layers.theme, chart).empty())
      state.SkipWithError("no chart");
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

void All(benchmark::State& state, const std::string& folder, int millions) {
  LayerOptions options;
  options.folder = folder;
  NoProgress progress;
  LayerStack stack;
  const auto scale = std::find_if(std::begin(DATA_SCALES), std::end(DATA_SCALES),
                                  [&](const DataScale& s) { return s.millions == millions; });
  if (std::string problem = stack.Load(options, *scale, true, progress); !problem.empty())
    return state.SkipWithError(problem.c_str());
  const Theme theme;
  Chart chart(stack.Layers(), theme, progress);
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, WIDTH, HEIGHT);
  cairo_t* const cairo = cairo_create(surface);
  const ChartBox box = {0, 0, WIDTH, HEIGHT, 12.5};
  for (auto _ : state)
    if (!DrawChart(cairo, box, {K7_PROJ_LAMBERT, {48.5, -123.5}, 300, {}}, theme, chart).empty())
      state.SkipWithError("no chart");
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

void Enroute(benchmark::State& state, const std::string& start, double range) {
  const char* const database = std::getenv("K7_NAV_DATABASE");
  Layers layers(start);
  if (!layers.valid || !database) return state.SkipWithError("no data");
  LayerOptions options;
  options.nav = database;
  options.magnetic = K7_SAMPLE_DATA "/magnetic/WMM.COF";
  NavSource nav;
  std::vector<std::unique_ptr<Layer>> own;
  for (const LayerRow& row : ::Layers()) {
    if (row.set) continue;
    std::string problem;
    own.push_back(nav.Make(row.item, options, problem));
    if (!own.back()) return state.SkipWithError(problem.c_str());
    layers.pointers.push_back(own.back().get());
  }
  Chart chart(layers.pointers, layers.theme, layers.progress);
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, WIDTH, HEIGHT);
  cairo_t* const cairo = cairo_create(surface);
  const ChartBox box = {0, 0, WIDTH, HEIGHT, 12.5};
  for (auto _ : state)
    if (!DrawChart(cairo, box, {K7_PROJ_LAMBERT, {49, 9}, range, {}}, layers.theme, chart).empty())
      state.SkipWithError("no chart");
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

void Gallery(benchmark::State& state, const std::string& start) {
  Layers layers(start);
  if (!layers.valid) return state.SkipWithError("no data");
  Chart chart(layers.pointers, layers.theme, layers.progress);
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, WIDTH, HEIGHT);
  cairo_t* const cairo = cairo_create(surface);
  for (auto _ : state)
    if (!DrawGallery(cairo, {}, WIDTH, HEIGHT, layers.theme, chart).empty()) state.SkipWithError("no chart");
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

void Paths(benchmark::State& state, const std::string& start, double range) {
  Layers layers(start);
  if (!layers.valid) return state.SkipWithError("no data");
  Chart chart(layers.pointers, layers.theme, layers.progress);
  if (!chart.Show({K7_PROJ_LAMBERT, {48.5, -123.5}, range, {}}, WIDTH, HEIGHT, 1).empty())
    return state.SkipWithError("no chart");
  Counter counter;
  for (auto _ : state) chart.Render(&counter);
  state.counters["points"] =
      benchmark::Counter(static_cast<double>(counter.count) / static_cast<double>(state.iterations()));
}

BENCHMARK_CAPTURE(Redraw, 50m_300NM, K7_SAMPLE_DATA "/ne_50m_", 300.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Paths, 50m_300NM, K7_SAMPLE_DATA "/ne_50m_", 300.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Redraw, 10m_300NM, FINE, 300.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Paths, 10m_300NM, FINE, 300.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Redraw, 10m_world, FINE, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Paths, 10m_world, FINE, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(All, sample, K7_SAMPLE_DATA, 50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(All, 10m, "/usr/share/magics/10m", 10)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(All, 110m, "/usr/share/magics/110m", 110)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Enroute, 50m_300NM, K7_SAMPLE_DATA "/ne_50m_", 300.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Enroute, 50m_100NM, K7_SAMPLE_DATA "/ne_50m_", 100.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Gallery, 10m, FINE)->Unit(benchmark::kMillisecond);

}  // namespace

// Elevations at random places, beside a read of one pixel from GDAL's dataset in memory and a bare array of
// the same posts; the first touch of a tile beside a bare inflate; charts; the memory of a full cache.
#include <benchmark/benchmark.h>
#include <gdal.h>
#include <k7/core.h>
#include <malloc.h>
#include <zlib.h>

#include "terrain/region_file.h"

#include <cmath>
#include <memory>
#include <random>

namespace {

constexpr int TILES = 3, POSTS = 1200, SIDE = TILES * POSTS;
constexpr int PLACES = 1 << 20;
constexpr double SOUTH = 47, WEST = -123;

int Height(int row, int column) {
  static std::minstd_rand random(1);
  return static_cast<int>(1200 + 700 * std::sin(row * 0.011) * std::cos(column * 0.007) +
                          90 * std::sin(row * 0.13 + column * 0.11) + static_cast<int>(random() % 5));
}

struct World {
  RegionPlan region = MadeRegion(SOUTH, WEST, TILES, TILES, POSTS, Height);
  TempFolder folder;
  std::vector<int16_t> posts = std::vector<int16_t>(SIDE * SIDE);
  std::vector<std::pair<double, double>> places;
  K7TerrainK7* terrain = K7TerrainK7::Inst();

  World() {
    K7Options::Inst()->SetOption("TerrainCacheSize", "100");
    folder.Write("1200_N30W150.ter", region.Bytes());
    terrain->Read(folder.Path().c_str());
    for (size_t t = 0; t < region.tiles.size(); ++t)
      for (int i = 0; i < POSTS * POSTS; ++i)
        posts[(t / TILES * POSTS + i / POSTS) * SIDE + t % TILES * POSTS + i % POSTS] =
            region.tiles[t].posts[i];
    std::minstd_rand random(2);
    std::uniform_real_distribution<double> degrees(0, TILES);
    for (int i = 0; i < PLACES; ++i) places.emplace_back(SOUTH + degrees(random), WEST + degrees(random));
    for (const auto& [lat, lon] : places) terrain->GetElev(lat, lon, 3);
  }
};

const World& Data() {
  static const World world;
  return world;
}

template <class Lookup>
void Ask(benchmark::State& state, Lookup lookup) {
  const World& world = Data();
  // Threads begin far from each other, lest one finds in the processor's cache what another has just read.
  size_t i = static_cast<size_t>(state.thread_index()) * PLACES / static_cast<size_t>(state.threads());
  int64_t sum = 0;  // or a bare array's post would never be loaded
  for (auto _ : state) {
    const auto& [lat, lon] = world.places[++i % PLACES];
    sum += lookup(lat, lon);
    benchmark::ClobberMemory();
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations());
}

void Lookup_K7Terrain(benchmark::State& state) {
  K7TerrainK7* const terrain = Data().terrain;
  Ask(state, [&](double lat, double lon) { return terrain->GetElev(lat, lon, 3); });
}
BENCHMARK(Lookup_K7Terrain)->UseRealTime();
BENCHMARK(Lookup_K7Terrain)->Threads(8)->UseRealTime();

void Lookup_Gdal1x1(benchmark::State& state) {
  GDALAllRegister();
  const GDALDatasetH dataset = GDALCreate(GDALGetDriverByName("MEM"), "", SIDE, SIDE, 1, GDT_Int16, nullptr);
  const GDALRasterBandH band = GDALGetRasterBand(dataset, 1);
  if (GDALRasterIO(band, GF_Write, 0, 0, SIDE, SIDE, const_cast<int16_t*>(Data().posts.data()), SIDE, SIDE,
                   GDT_Int16, 0, 0) != CE_None)
    return state.SkipWithError("no dataset");
  Ask(state, [&](double lat, double lon) {
    int16_t post = 0;
    const int row = static_cast<int>((lat - SOUTH) * POSTS), column = static_cast<int>((lon - WEST) * POSTS);
    return GDALRasterIO(band, GF_Read, column, row, 1, 1, &post, 1, 1, GDT_Int16, 0, 0) == CE_None ? post : 0;
  });
  GDALClose(dataset);
}
BENCHMARK(Lookup_Gdal1x1)->UseRealTime();

void Lookup_BareArray(benchmark::State& state) {
  const std::vector<int16_t>& posts = Data().posts;
  Ask(state, [&](double lat, double lon) {
    return posts[static_cast<int>((lat - SOUTH) * POSTS) * SIDE + static_cast<int>((lon - WEST) * POSTS)];
  });
}
BENCHMARK(Lookup_BareArray)->UseRealTime();

// A cache with room for three of the nine tiles; one look-up in 65,536 leaves the tile that the others are
// in.
void SmallCache(const benchmark::State&) {
  K7Options::Inst()->SetOption("TerrainCacheSize", "13");
  Data().terrain->Read(Data().folder.Path().c_str());
}
void FullCache(const benchmark::State&) {
  K7Options::Inst()->SetOption("TerrainCacheSize", "100");
  Data().terrain->Read(Data().folder.Path().c_str());
}

void Evicting_K7Terrain(benchmark::State& state) {
  K7TerrainK7* const terrain = Data().terrain;
  unsigned asked = static_cast<unsigned>(state.thread_index()) * 7919;
  Ask(state, [&](double lat, double lon) {
    if (++asked % 65536)
      return terrain->GetElev(SOUTH + (lat - SOUTH) / TILES, WEST + (lon - WEST) / TILES, 3);
    return terrain->GetElev(lat, lon, 3);
  });
}
BENCHMARK(Evicting_K7Terrain)->UseRealTime()->Setup(SmallCache)->Teardown(FullCache);
BENCHMARK(Evicting_K7Terrain)->Threads(8)->UseRealTime()->Setup(SmallCache)->Teardown(FullCache);

void FirstTouch_K7Terrain(benchmark::State& state) {
  K7TerrainK7* const terrain = Data().terrain;
  for (auto _ : state) {
    terrain->ClearCache();
    benchmark::DoNotOptimize(terrain->GetElev(SOUTH + 0.5, WEST + 0.5, 3));
  }
}
BENCHMARK(FirstTouch_K7Terrain)->Unit(benchmark::kMicrosecond);

void FirstTouch_BareInflate(benchmark::State& state) {
  const std::string stream = Packed(Data().region.tiles[0]);
  for (auto _ : state) {
    uLongf length = POSTS * POSTS * sizeof(int16_t);
    void* const out = std::malloc(length);
    uncompress(static_cast<Bytef*>(out), &length, reinterpret_cast<const Bytef*>(stream.data()),
               stream.size());
    benchmark::DoNotOptimize(static_cast<int16_t*>(out)[length / 4]);
    std::free(out);
  }
}
BENCHMARK(FirstTouch_BareInflate)->Unit(benchmark::kMicrosecond);

// A chart of all nine tiles, tinted and shaded: from files to pixels, and the pixels alone.
struct ChartScene {
  std::unique_ptr<K7Projection> projection;
  std::unique_ptr<K7MapView> view;
  K7TerParams params;

  ChartScene() {
    int error = 0;
    projection.reset(K7MapView::CreateProjection(K7_PROJ_LAMBERT, SOUTH + 1.5, WEST + 1.5, 75, &error));
    view = std::make_unique<K7MapView>(projection.get(), 1600, 1000);
    view->LookAt(SOUTH + 1.5, WEST + 1.5, 75);
    const int32_t limits[] = {-9999, 0, 300, 600, 1000, 1500};
    const K7Color colors[] = {K7Color(0xFF7AABCD), K7Color(0xFFCBDDBE), K7Color(0xFFEBEAC6),
                              K7Color(0xFFF2E4B8), K7Color(0xFFEBD3A3), K7Color(0xFFDEBE90)};
    params.ColorMap().Init(6, limits, colors);
  }
};

void Chart1600x1000_FromFiles(benchmark::State& state) {
  ChartScene scene;
  K7GrfxK7 canvas(1600, 1000);
  K7TerrainK7* const terrain = Data().terrain;
  for (auto _ : state) {
    terrain->ClearCache();
    if (terrain->Render(&canvas, *scene.view, scene.params) != 0) return state.SkipWithError("no chart");
  }
}
BENCHMARK(Chart1600x1000_FromFiles)->Unit(benchmark::kMillisecond);

void Chart1600x1000_Pixels(benchmark::State& state) {
  ChartScene scene;
  K7GrfxK7 canvas(1600, 1000);
  const K7TerRegion* const region = Data().terrain->GetLevel(4)->RegionAt(SOUTH, WEST);
  K7TerTileEX tile;
  tile.Init(K7ChartRect(), 0, 0);
  for (int i = 0; i < TILES * TILES; ++i) tile.AddTileForMerge(region->Tile(i / TILES, i % TILES));
  K7TerRelief relief;
  if (tile.MergeTiles() != 0 || relief.Init(tile, scene.params) != 0) return state.SkipWithError("no relief");
  for (auto _ : state) relief.Render(&canvas, *scene.view);
}
BENCHMARK(Chart1600x1000_Pixels)->Unit(benchmark::kMillisecond);

// What the heap has more of when a cache is full, over the cache's setting.
void FullCache_Memory(benchmark::State& state) {
  const auto inUse = [] {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
  };
  K7TerrainK7* const terrain = Data().terrain;
  double grids = 0;
  for (auto _ : state) {
    terrain->ClearCache();
    const double before = inUse();
    for (int i = 0; i < TILES * TILES; ++i)
      terrain->GetElev(SOUTH + i / TILES + 0.5, WEST + i % TILES + 0.5, 3);
    grids = inUse() - before;
  }
  state.counters["of_setting"] = grids / (13 << 20);
}
BENCHMARK(FullCache_Memory)
    ->Iterations(1)
    ->Setup(SmallCache)
    ->Teardown(FullCache)
    ->Unit(benchmark::kMillisecond);

}  // namespace

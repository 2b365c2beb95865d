// Elevations at random places, beside a read of one pixel from GDAL's dataset in memory and a bare array of
// the same posts; the first touch of a tile beside a bare inflate.
#include <benchmark/benchmark.h>
#include <gdal.h>
#include <k7/core.h>
#include <zlib.h>

#include "terrain/region_file.h"

#include <cmath>
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

}  // namespace

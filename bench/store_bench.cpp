// The example hosts' store of navigation records, with a made-up world of its real size. The peer of each
// query is what a chart or a search may take.

#include <benchmark/benchmark.h>
#include <k7/geodesy.h>
#include <k7/navdata.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "store/nav_store.h"
#include "store/nav_writer.h"

namespace {

constexpr uint32_t VORS = 13000, NDBS = 13000, FIXES = 120000, SEGMENTS = 70000, AIRPORTS = 27000,
                   RUNWAY_ENDS = 68000;

using Random = std::mt19937;

template <class Record>
std::unique_ptr<Record> Make(K7NavType type) {
  std::unique_ptr<Record> rec(static_cast<Record*>(K7NavData::CreateRecord(type)));
  rec->key = K7NavKey(0, type);
  return rec;
}

// Every third place is in Europe, and any in a band where people live.
K7LatLon Place(Random& random) {
  std::uniform_real_distribution<> part(0, 1);
  if (random() % 3 == 0) return {36 + 24 * part(random), -10 + 40 * part(random)};
  return {-50 + 120 * part(random), -180 + 360 * part(random)};
}

std::string Letters(uint32_t number, int count) {
  std::string letters;
  for (; count > 0; count--, number /= 26) letters += static_cast<char>('A' + number % 26);
  return letters;
}

template <class Record>
void AddFixes(NavWriter& writer, Random& random, K7NavType type, uint32_t count, int letters) {
  for (uint32_t i = 0; i < count; i++) {
    const auto fix = Make<Record>(type);
    const K7LatLon at = Place(random);
    fix->lat = K7NavData::DecDeg2FixPt(at.Lat());
    fix->lon = K7NavData::DecDeg2FixPt(at.Lon());
    // Some names are given several times.
    const std::string ident = Letters(i * 97 % (count * 4 / 5), letters);
    const std::string name = "NAME OF " + ident;
    ident.copy(fix->ident, 8);
    if constexpr (requires { fix->name; }) fix->name = name.c_str();
    if constexpr (requires { fix->airport; }) fix->airport = K7NavKey(i % AIRPORTS, K7NAV_AIRPORT);
    writer.Add(*fix);
  }
}

std::string WriteWorld() {
  const std::string path = std::filesystem::temp_directory_path() / "k7_store_bench.db";
  std::string problem;
  NavWriter writer;
  if (!writer.Open(path, problem)) std::fprintf(stderr, "%s\n", problem.c_str());
  Random random(1);
  AddFixes<K7Airport>(writer, random, K7NAV_AIRPORT, AIRPORTS, 4);
  AddFixes<K7Runway>(writer, random, K7NAV_RUNWAY, RUNWAY_ENDS, 3);
  AddFixes<K7VHFNavaid>(writer, random, K7NAV_VOR, VORS, 3);
  AddFixes<K7NDB>(writer, random, K7NAV_ENROUTE_NDB, NDBS, 3);
  AddFixes<K7Waypoint>(writer, random, K7NAV_ENROUTE_FIX, FIXES, 5);
  for (uint32_t i = 0; i < SEGMENTS; i++) {
    const auto seg = Make<K7AirwaySeg>(i % 2 ? K7NAV_HIGH_AIRWAY : K7NAV_LOW_AIRWAY);
    const K7LatLon from = Place(random);
    K7LatLon to;
    to.EndPoint(from, random() % 360, 20 + random() % 80);
    seg->fromLat = K7NavData::DecDeg2FixPt(from.Lat());
    seg->fromLon = K7NavData::DecDeg2FixPt(from.Lon());
    seg->toLat = K7NavData::DecDeg2FixPt(to.Lat());
    seg->toLon = K7NavData::DecDeg2FixPt(to.Lon());
    Letters(i / 20, 4).copy(seg->ident, 7);
    seg->header = K7NavKey(i / 20, K7NAV_AIRWAY_HEADER);
    seg->sequence = i % 20;
    seg->fromKey = K7NavKey(random() % FIXES, K7NAV_ENROUTE_FIX);
    seg->toKey = K7NavKey(random() % FIXES, K7NAV_ENROUTE_FIX);
    writer.Add(*seg);
  }
  if (!writer.Finish(problem)) std::fprintf(stderr, "%s\n", problem.c_str());
  return path;
}

NavStore& World() {
  static NavStore store;
  if (!store.IsOpen()) store.Open(WriteWorld().c_str());
  return store;
}

int Read(K7NavQueryResult* result) {
  const std::unique_ptr<K7NavQueryResult> owned(result);
  int count = 0;
  while (result && result->Next()) count++;
  return count;
}

void Write(benchmark::State& state) {
  for (auto _ : state)
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(WriteWorld())) / 1e6;
}

void ByKey(benchmark::State& state) {
  NavStore& store = World();
  Random random(2);
  for (auto _ : state) {
    benchmark::DoNotOptimize(store.GetRec(K7NavKey(random() % FIXES, K7NAV_ENROUTE_FIX)));
    // As a host does between drawings; what was read before is not kept.
    store.FreeRecs();
  }
}

void ByKeyAgain(benchmark::State& state) {
  NavStore& store = World();
  for (auto _ : state) benchmark::DoNotOptimize(store.GetRec(K7NavKey(77, K7NAV_ENROUTE_FIX)));
}

void ByIdent(benchmark::State& state) {
  NavStore& store = World();
  Random random(3);
  for (auto _ : state)
    benchmark::DoNotOptimize(Read(store.IdentQuery(K7NAV_ENROUTE_FIX, Letters(random() % FIXES, 5).c_str())));
}

void Similar(benchmark::State& state) {
  NavStore& store = World();
  for (auto _ : state) benchmark::DoNotOptimize(Read(store.SimilarIdentQuery(K7NAV_ENROUTE_FIX, "QJXZW", 5)));
}

// Two by two degrees over Europe, every type.
void ByArea(benchmark::State& state) {
  NavStore& store = World();
  Random random(4);
  int64_t records = 0;
  for (auto _ : state) {
    const double south = 40 + random() % 16, west = random() % 20;
    const K7ChartRect area(south + 2, south, west + 2, west);
    for (uint32_t type = 0; type < K7NAV_TYPE_COUNT; type++)
      records += Read(store.AreaQuery(static_cast<K7NavType>(type), area));
  }
  state.counters["records"] = static_cast<double>(records) / static_cast<double>(state.iterations());
}

void Nearest(benchmark::State& state) {
  NavStore& store = World();
  Random random(5);
  for (auto _ : state)
    benchmark::DoNotOptimize(Read(store.NearestQuery(K7NAV_AIRPORT, Place(random), 10, 500)));
}

void AlongLine(benchmark::State& state) {
  NavStore& store = World();
  const K7LatLon from(50, 8), to(47, -122);
  for (auto _ : state) benchmark::DoNotOptimize(Read(store.LineQuery(K7NAV_ENROUTE_FIX, from, to, 20)));
}

}  // namespace

BENCHMARK(Write)->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK(ByKey);
BENCHMARK(ByKeyAgain);
BENCHMARK(ByIdent);
BENCHMARK(Similar)->Unit(benchmark::kMillisecond);
BENCHMARK(ByArea)->Unit(benchmark::kMillisecond);
BENCHMARK(Nearest);
BENCHMARK(AlongLine)->Unit(benchmark::kMillisecond);

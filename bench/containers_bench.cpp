// The containers and the formatter beside those of the standard library.

#include <k7/foundation/array.h>
#include <k7/foundation/string.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Keys(int64_t count) {
  std::mt19937 random(7);
  std::vector<std::string> keys;
  for (int64_t i = 0; i < count; ++i) keys.push_back("KEY" + std::to_string(random()));
  return keys;
}

std::vector<int> Numbers(int64_t count) {
  std::mt19937 random(7);
  std::vector<int> numbers;
  for (int64_t i = 0; i < count; ++i) numbers.push_back(static_cast<int>(random()));
  return numbers;
}

int CompareInts(const void* a, const void* b) {
  const int x = *static_cast<const int*>(a);
  const int y = *static_cast<const int*>(b);
  return (x > y) - (x < y);
}

void InsertStrMap(benchmark::State& state) {
  const std::vector<std::string> keys = Keys(state.range(0));
  for (auto _ : state) {
    K7StrMap map;
    for (const std::string& key : keys) map.Insert(key.c_str(), &map);
    benchmark::DoNotOptimize(map.Count());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void InsertStdMap(benchmark::State& state) {
  const std::vector<std::string> keys = Keys(state.range(0));
  for (auto _ : state) {
    std::map<std::string, void*> map;
    for (const std::string& key : keys) map[key.c_str()] = &map;
    benchmark::DoNotOptimize(map.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void LookUpStrMap(benchmark::State& state) {
  const std::vector<std::string> keys = Keys(state.range(0));
  K7StrMap map;
  for (const std::string& key : keys) map.Insert(key.c_str(), &map);
  for (auto _ : state)
    for (const std::string& key : keys) benchmark::DoNotOptimize(map.Get(key.c_str()));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void LookUpStdMap(benchmark::State& state) {
  const std::vector<std::string> keys = Keys(state.range(0));
  std::map<std::string, void*, std::less<>> map;
  for (const std::string& key : keys) map[key] = &map;
  for (auto _ : state)
    for (const std::string& key : keys) benchmark::DoNotOptimize(map.find(key.c_str())->second);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// One sort of each iteration's own copy; `sort` receives a K7Array that holds it.
template <class Sort>
void SortCopies(benchmark::State& state, Sort sort) {
  const std::vector<int> numbers = Numbers(state.range(0));
  for (auto _ : state) {
    K7Array array(sizeof(int), 128, CompareInts);
    array.Insert(numbers.data(), -1, static_cast<int>(numbers.size()));
    sort(array);
    benchmark::DoNotOptimize(array.Data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void SortArray(benchmark::State& state) {
  SortCopies(state, [](K7Array& array) { array.QuickSort(); });
}
void SortQsort(benchmark::State& state) {
  SortCopies(state, [](K7Array& array) {
    std::qsort(array.Data(), static_cast<size_t>(array.Count()), sizeof(int), CompareInts);
  });
}
void SortStd(benchmark::State& state) {
  SortCopies(state, [](K7Array& array) {
    int* const first = static_cast<int*>(array.Data());
    std::sort(first, first + array.Count());
  });
}

constexpr char FORMAT[] = "%s: %d ft, %03d deg, %.4f";

void FormatK7String(benchmark::State& state) {
  K7String text;
  for (auto _ : state) benchmark::DoNotOptimize(text.Format(FORMAT, "KSEA", 433, 87, 122.3094));
}

void FormatSnprintf(benchmark::State& state) {
  char text[256];
  for (auto _ : state)
    benchmark::DoNotOptimize(std::snprintf(text, sizeof text, FORMAT, "KSEA", 433, 87, 122.3094));
}

// What a plain use of snprintf needs for a text of any length: measure, allocate, write.
void FormatSnprintfTwice(benchmark::State& state) {
  for (auto _ : state) {
    const int length = std::snprintf(nullptr, 0, FORMAT, "KSEA", 433, 87, 122.3094);
    std::string text(static_cast<size_t>(length), ' ');
    std::snprintf(text.data(), text.size() + 1, FORMAT, "KSEA", 433, 87, 122.3094);
    benchmark::DoNotOptimize(text.data());
  }
}

}  // namespace

BENCHMARK(InsertStrMap)->Arg(100)->Arg(10000);
BENCHMARK(InsertStdMap)->Arg(100)->Arg(10000);
BENCHMARK(LookUpStrMap)->Arg(100)->Arg(10000);
BENCHMARK(LookUpStdMap)->Arg(100)->Arg(10000);
BENCHMARK(SortArray)->Arg(100000);
BENCHMARK(SortQsort)->Arg(100000);
BENCHMARK(SortStd)->Arg(100000);
BENCHMARK(FormatK7String);
BENCHMARK(FormatSnprintf);
BENCHMARK(FormatSnprintfTwice);

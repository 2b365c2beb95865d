// The containers and the formatter beside those of the standard library.

#include <k7/foundation/array.h>
#include <k7/foundation/cache.h>
#include <k7/foundation/heap.h>
#include <k7/foundation/string.h>

#include <benchmark/benchmark.h>
#include <boost/heap/d_ary_heap.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <map>
#include <queue>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
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

// One number a text; the last row is of integers.
constexpr const char* NUMBER_FORMATS[] = {"%.6f", "%.17g", "%e", "%d"};

template <class Write>
void WriteNumbers(benchmark::State& state, Write write) {
  const char* const format = NUMBER_FORMATS[state.range(0)];
  std::mt19937_64 random(1);
  double values[1024];
  for (double& value : values) value = static_cast<double>(static_cast<int64_t>(random())) / 1e14;
  for (int i = 0; auto _ : state) {
    if (state.range(0) == 3)
      write(format, i++ & 0xFFFFF);
    else
      write(format, values[i++ % 1024]);
  }
  state.SetLabel(format);
}

void NumberK7String(benchmark::State& state) {
  K7String text;
  WriteNumbers(state,
               [&](const char* format, auto value) { benchmark::DoNotOptimize(text.Format(format, value)); });
}

void NumberSnprintf(benchmark::State& state) {
  char text[400];
  WriteNumbers(state, [&](const char* format, auto value) {
    benchmark::DoNotOptimize(std::snprintf(text, sizeof text, format, value));
  });
}

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

// Members of a heap, with and without a rank for it to keep.
struct Node : K7HeapObj {
  bool Precedes(const K7HeapObj& other) const override { return rank < static_cast<const Node&>(other).rank; }
  double rank = 0;
};
struct RankedNode : Node {
  double HeapRank() const override { return rank; }
};
struct Later {
  bool operator()(const Node* a, const Node* b) const { return b->rank < a->rank; }
};

template <class Member>
std::vector<Member> Members(int64_t count) {
  std::mt19937 random(7);
  std::vector<Member> members(static_cast<size_t>(count));
  for (Member& member : members) member.rank = random();
  return members;
}

// All members in, then out in their order; `makeHeap` gives an empty heap with push and pop.
template <class Member, class MakeHeap>
void Drain(benchmark::State& state, MakeHeap makeHeap) {
  std::vector<Member> members = Members<Member>(state.range(0));
  for (auto _ : state) {
    auto heap = makeHeap();
    for (Member& member : members) heap.push(&member);
    for (size_t i = 0; i < members.size(); ++i) heap.pop();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

struct OurHeap {
  K7Heap heap;
  explicit OurHeap(int d) : heap(K7_HEAP_MIN, d) {}
  void push(K7HeapObj* member) { heap.Insert(member); }
  void pop() { benchmark::DoNotOptimize(heap.PopTop()); }
};

// Ranks beside pointers and nothing else: no member learns its place, so that none can be taken out.
struct BareHeap {
  std::vector<std::pair<double, Node*>> slots;
  static bool Order(const std::pair<double, Node*>& a, const std::pair<double, Node*>& b) {
    return b.first < a.first;
  }
  void push(Node* member) {
    slots.emplace_back(member->rank, member);
    std::push_heap(slots.begin(), slots.end(), Order);
  }
  void pop() {
    std::pop_heap(slots.begin(), slots.end(), Order);
    slots.pop_back();
  }
};

void HeapRanked(benchmark::State& state) {
  Drain<RankedNode>(state, [&] { return OurHeap(static_cast<int>(state.range(1))); });
}
void HeapByPrecedes(benchmark::State& state) {
  Drain<Node>(state, [&] { return OurHeap(static_cast<int>(state.range(1))); });
}
void HeapStd(benchmark::State& state) {
  Drain<Node>(state, [] { return std::priority_queue<Node*, std::vector<Node*>, Later>(); });
}
template <int D>
void HeapBoost(benchmark::State& state) {
  Drain<Node>(state, [] {
    return boost::heap::d_ary_heap<Node*, boost::heap::arity<D>, boost::heap::mutable_<true>,
                                   boost::heap::compare<Later>>();
  });
}
void HeapBare(benchmark::State& state) {
  Drain<Node>(state, [] { return BareHeap(); });
}

// A cache of tiles that are looked at in random order, with room for a quarter of them.
struct Tile : K7CacheObj {
  int CacheSize() const override { return 64; }
  void FreeContents() override { loaded = false; }
  bool loaded = false;
};

void CacheTiles(benchmark::State& state) {
  std::vector<Tile> tiles(static_cast<size_t>(state.range(0)));
  K7Cache cache(static_cast<int>(state.range(0)) * 16);
  std::mt19937 random(7);
  for (auto _ : state) {
    Tile& tile = tiles[random() % tiles.size()];
    tile.loaded = true;
    cache.Insert(&tile);
  }
  cache.FreeAll();
  state.SetItemsProcessed(state.iterations());
}

// The usual list and map.
void CacheListAndMap(benchmark::State& state) {
  const size_t count = static_cast<size_t>(state.range(0));
  std::list<size_t> order;
  std::unordered_map<size_t, std::list<size_t>::iterator> places;
  std::mt19937 random(7);
  for (auto _ : state) {
    const size_t tile = random() % count;
    const auto place = places.find(tile);
    if (place != places.end()) {
      order.splice(order.end(), order, place->second);
      continue;
    }
    if (order.size() == count / 4) {
      places.erase(order.front());
      order.pop_front();
    }
    places[tile] = order.insert(order.end(), tile);
  }
  state.SetItemsProcessed(state.iterations());
}

constexpr char PIECE[] = "a piece of text, ";

// The interface fixes that a text does not store its length: an append walks over all that is there. The
// second row makes the text in pieces of a kilobyte, as a long one should be made.
void AppendK7String(benchmark::State& state) {
  for (auto _ : state) {
    K7String text;
    for (int64_t i = 0; i < state.range(0); ++i) text += PIECE;
    benchmark::DoNotOptimize(text.Len());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void AppendK7StringInPieces(benchmark::State& state) {
  for (auto _ : state) {
    K7String text;
    K7String part;
    for (int64_t i = 0; i < state.range(0); ++i) {
      part += PIECE;
      if (i % 64 == 63 || i + 1 == state.range(0)) {
        text += part;
        part.SetChar(0, 0);
      }
    }
    benchmark::DoNotOptimize(text.Len());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void AppendStdString(benchmark::State& state) {
  for (auto _ : state) {
    std::string text;
    for (int64_t i = 0; i < state.range(0); ++i) text += PIECE;
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(InsertStrMap)->Arg(100)->Arg(10000);
BENCHMARK(InsertStdMap)->Arg(100)->Arg(10000);
BENCHMARK(LookUpStrMap)->Arg(100)->Arg(10000);
BENCHMARK(LookUpStdMap)->Arg(100)->Arg(10000);
BENCHMARK(SortArray)->Arg(100000);
BENCHMARK(SortQsort)->Arg(100000);
BENCHMARK(SortStd)->Arg(100000);
BENCHMARK(NumberK7String)->DenseRange(0, 3);
BENCHMARK(NumberSnprintf)->DenseRange(0, 3);
BENCHMARK(FormatK7String);
BENCHMARK(FormatSnprintf);
BENCHMARK(FormatSnprintfTwice);
BENCHMARK(HeapRanked)->ArgsProduct({{1000, 1000000}, {2, 4}});
BENCHMARK(HeapByPrecedes)->ArgsProduct({{1000, 1000000}, {2, 4}});
BENCHMARK(HeapStd)->Arg(1000)->Arg(1000000);
BENCHMARK(HeapBoost<2>)->Arg(1000)->Arg(1000000);
BENCHMARK(HeapBoost<4>)->Arg(1000)->Arg(1000000);
BENCHMARK(HeapBare)->Arg(1000)->Arg(1000000);
BENCHMARK(CacheTiles)->Arg(100)->Arg(10000);
BENCHMARK(CacheListAndMap)->Arg(100)->Arg(10000);
BENCHMARK(AppendK7String)->Arg(100)->Arg(10000);
BENCHMARK(AppendK7StringInPieces)->Arg(100)->Arg(10000);
BENCHMARK(AppendStdString)->Arg(100)->Arg(10000);

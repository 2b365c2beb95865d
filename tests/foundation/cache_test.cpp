#include <k7/foundation.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <numeric>
#include <random>
#include <vector>

namespace {

struct Tile : K7CacheObj {
  int CacheSize() const override { return size; }
  void FreeContents() override { ++released; }
  bool CanFree() const override { return !pinned; }
  int size = 0, released = 0;
  bool pinned = false;
};

constexpr int BUDGET = 200;

// The rules on a plain list, oldest first.
struct Model {
  std::vector<Tile*> list, evicted;

  int Size() const {
    return std::accumulate(list.begin(), list.end(), 0, [](int sum, const Tile* t) { return sum + t->size; });
  }
  void Evict(int room) {
    for (size_t i = 0; i < list.size() && Size() + room > BUDGET;) {
      if (list[i]->pinned && ++i) continue;
      evicted.push_back(list[i]);
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  void Insert(Tile* tile) {
    if (std::erase(list, tile) == 0) Evict(tile->size);
    if (Size() + tile->size <= BUDGET) list.push_back(tile);
  }
};

}  // namespace

TEST(K7Cache, AgreesWithARestatement) {
  std::mt19937 random(7);
  std::deque<Tile> tiles(40);
  for (Tile& tile : tiles) tile.size = static_cast<int>(random() % 60);
  tiles[0].size = BUDGET + 1;
  tiles[1].size = 0;
  K7Cache cache;
  Tile forgotten;
  ASSERT_EQ(cache.Insert(&forgotten), 0);
  cache.Init(BUDGET);
  Model model;
  const auto agree = [&](int step) {
    EXPECT_EQ(cache.CurSize(), model.Size()) << step;
    for (Tile& each : tiles) {
      const auto place = std::find(model.list.begin(), model.list.end(), &each);
      const bool cached = place != model.list.end();
      EXPECT_EQ(each.CachePosition(), cached ? static_cast<int>(place - model.list.begin()) : -1) << step;
      EXPECT_EQ(each.released, std::count(model.evicted.begin(), model.evicted.end(), &each)) << step;
      each.released = 0;
    }
    model.evicted.clear();
  };
  for (int step = 0; step < 20000 && !testing::Test::HasFailure(); ++step) {
    Tile& tile = tiles[random() % tiles.size()];
    const auto edit = random() % 8;
    if (edit == 0) {
      const int code = cache.Remove(tile.CachePosition());
      ASSERT_EQ(code, std::erase(model.list, &tile) ? 0 : K7_ERR_BAD_ARGUMENT);
    } else if (edit == 1) {
      ASSERT_EQ(cache.Purge(), 0);
      ASSERT_EQ(cache.Insert(nullptr), 0);
      model.Evict(0);
    } else if (edit == 2) {
      tile.pinned = random() % 3 == 0;
    } else {
      ASSERT_EQ(cache.Insert(&tile), 0);
      model.Insert(&tile);
    }
    agree(step);
  }
  EXPECT_EQ(cache.FreeAll(), 0);
  model.evicted.swap(model.list);
  agree(-1);
}

#include "web/tile_cache.h"
#include "web/work_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

namespace {

std::shared_ptr<const std::string> File(size_t bytes) { return std::make_shared<std::string>(bytes, 'x'); }

}  // namespace

TEST(TileCache, KeepsWhatWasAskedForLast) {
  TileCache cache(10000);
  for (const char* const key : {"a", "b", "c"}) cache.Add(key, File(3000));
  EXPECT_TRUE(cache.Find("a"));
  const auto used = cache.Find("b");
  EXPECT_TRUE(cache.Find("a"));
  cache.Add("d", File(3000));  // in place of c
  EXPECT_FALSE(cache.Find("c"));
  cache.Add("e", File(3000));  // in place of b, which is in use
  EXPECT_FALSE(cache.Find("b"));
  EXPECT_EQ(used->size(), 3000U);
  EXPECT_TRUE(cache.Find("a") && cache.Find("d") && cache.Find("e"));
  cache.Add("d", File(10));
  EXPECT_EQ(cache.Find("d")->size(), 10U);
  cache.Add("f", File(20000));
  EXPECT_FALSE(cache.Find("f"));
  EXPECT_EQ(cache.Bytes(), 0U);
}

// Threads that add and ask at random: never more than the budget, and what is found is what was added.
TEST(TileCache, ServesManyThreads) {
  constexpr size_t BUDGET = 50000;
  TileCache cache(BUDGET);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (unsigned seed = 0; seed < 4; ++seed)
    threads.emplace_back([&, seed] {
      std::mt19937 random(seed);
      for (int i = 0; i < 5000; ++i) {
        const size_t size = 1 + random() % 300;
        const std::string key = std::to_string(size);
        if (random() % 2) cache.Add(key, File(size));
        const auto found = cache.Find(key);
        if ((found && found->size() != size) || cache.Bytes() > BUDGET) ++wrong;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST(WorkQueue, HoldsSoMuchAndKeepsTheOrder) {
  WorkQueue<int> queue(3);
  EXPECT_TRUE(queue.Push("a", 1) && queue.Push("a", 2) && queue.Push("", 3));
  EXPECT_FALSE(queue.Push("", 4));
  EXPECT_EQ(queue.Take()->work, 1);
  EXPECT_EQ(queue.Take()->work, 3);  // 2 waits for 1
  queue.Done("");
  EXPECT_TRUE(queue.Push("b", 5));
  EXPECT_EQ(queue.Take()->work, 5);
  queue.Done("a");
  EXPECT_EQ(queue.Take()->work, 2);
  EXPECT_TRUE(queue.Push("b", 6));
  EXPECT_EQ(queue.Close(), std::vector<int>{6});
  EXPECT_FALSE(queue.Take());
  EXPECT_FALSE(queue.Push("", 7));
}

TEST(WorkQueue, NeverDoesOneKeyTwiceAtOnce) {
  WorkQueue<int> queue(10000);
  for (int i = 0; i < 4000; ++i) queue.Push(std::to_string(i % 3), i);
  std::atomic<int> busy[3] = {}, twice{0}, done{0};
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int n = 0; n < 4; ++n)
    threads.emplace_back([&] {
      while (const auto taken = queue.Take()) {
        std::atomic<int>& key = busy[taken->work % 3];
        if (++key > 1) ++twice;
        --key;
        queue.Done(taken->key);
        if (++done == 4000) queue.Close();
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(twice, 0);
  EXPECT_EQ(done, 4000);
}

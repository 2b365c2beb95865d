#include <k7/navdata/nav_key.h>

#include <gtest/gtest.h>

namespace {

K7NavKey Key(uint32_t idx, uint32_t type) { return {idx, static_cast<K7NavType>(type)}; }

}  // namespace

TEST(K7NavKey, OrdersByWrappedDifferences) {
  const struct {
    K7NavKey a, b;
    int order, reverse;
  } rows[] = {{Key(7, 5), Key(7, 5), 0, 0},
              {Key(9, 4), Key(1, 5), -1, 1},
              {Key(0xFFFFFFFF, 5), Key(0, 5), -1, 1},
              {Key(0, 5), Key(0x80000001, 5), 1, -1},
              {Key(0, 5), Key(0x80000000, 5), -1, -1},
              {K7NavKey(), Key(0, 0), -1, 1}};
  for (const auto& [a, b, order, reverse] : rows) {
    EXPECT_EQ(K7NavKey::Comp(&a, &b), order) << a.Idx();
    EXPECT_EQ(K7NavKey::Comp(&b, &a), reverse) << a.Idx();
    EXPECT_EQ(a < b, order < 0) << a.Idx();
  }
}

TEST(K7NavKeyArray, SortsAndFindsKeys) {
  K7NavKeyArray keys;
  for (uint32_t i = 0; i < 20; ++i) EXPECT_EQ(keys += Key(i * 7 % 20, i % 3), 0);
  EXPECT_TRUE(keys.QuickSort());
  for (int i = 1; i < 20; ++i) EXPECT_TRUE(keys[i - 1] < keys[i]);
  const K7NavKey wanted = Key(14, 2);
  EXPECT_EQ(keys[keys.BinarySearch(&wanted)], wanted);
  // Outside: no record, which takes both words.
  for (const int i : {20, -1}) EXPECT_TRUE(keys[i].NoRecord());
  for (const K7NavKey& key : {Key(0xFFFFFFFF, 5), Key(5, 0xFFFFFFFF)}) EXPECT_FALSE(key.NoRecord());
  K7NavKey key = wanted;
  key.Reset();
  EXPECT_EQ(key, K7NavKey());
}

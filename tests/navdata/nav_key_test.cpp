#include <k7/navdata/nav_key.h>

#include <gtest/gtest.h>

namespace {

K7NavKey Key(uint32_t idx, uint32_t type) { return {idx, static_cast<K7NavType>(type)}; }
int Comp(const K7NavKey& a, const K7NavKey& b) { return K7NavKey::Comp(&a, &b); }

}  // namespace

TEST(K7NavKey, OrdersByWrappedDifferences) {
  EXPECT_EQ(Comp(Key(7, 5), Key(7, 5)), 0);
  EXPECT_EQ(Comp(Key(9, 4), Key(1, 5)), -1);
  EXPECT_EQ(Comp(Key(0xFFFFFFFF, 5), Key(0, 5)), -1);
  EXPECT_EQ(Comp(Key(0, 5), Key(0xFFFFFFFF, 5)), 1);
  EXPECT_EQ(Comp(Key(0, 5), Key(0x80000001, 5)), 1);
  EXPECT_EQ(Comp(Key(0, 5), Key(0x80000000, 5)) + Comp(Key(0x80000000, 5), Key(0, 5)), -2);
  EXPECT_TRUE(K7NavKey() < Key(0, 0) && !(Key(0, 0) < K7NavKey()));
}

TEST(K7NavKey, OnlyBothWordsMeanNoRecord) {
  EXPECT_TRUE(K7NavKey().NoRecord());
  EXPECT_FALSE(Key(0xFFFFFFFF, 5).NoRecord() || Key(5, 0xFFFFFFFF).NoRecord());
  K7NavKey key = Key(7, 5);
  EXPECT_TRUE(key.Idx() == 7 && key.NavType() == 5 && key != K7NavKey());
  key.Reset();
  EXPECT_EQ(key, K7NavKey());
}

TEST(K7NavKeyArray, SortsAndFindsKeys) {
  K7NavKeyArray keys;
  for (uint32_t i = 0; i < 20; ++i) EXPECT_EQ(keys += Key(i * 7 % 20, i % 3), 0);
  EXPECT_TRUE(keys.QuickSort());
  for (int i = 1; i < 20; ++i) EXPECT_TRUE(keys[i - 1] < keys[i]);
  const K7NavKey wanted = Key(14, 2);
  EXPECT_EQ(keys[keys.BinarySearch(&wanted)], wanted);
  EXPECT_TRUE(keys[20].NoRecord() && keys[-1].NoRecord());
}

#include <k7/foundation/array.h>
#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

// The key stands behind the payload, so that element and key addresses differ.
struct Item {
  int payload;
  int key;
  bool operator==(const Item&) const = default;
};

int CompareInts(const void* a, const void* b) {
  const int x = *static_cast<const int*>(a);
  const int y = *static_cast<const int*>(b);
  return (x > y) - (x < y);
}
int CompareItems(const void* a, const void* b) {
  return CompareInts(static_cast<const int*>(a) + 1, static_cast<const int*>(b) + 1);
}

std::vector<Item> Items(const K7Array& array) {
  const Item* const first = static_cast<const Item*>(array.Data());
  return {first, first + array.Count()};
}

// Payloads are positions, so that equal keys can be told apart.
std::vector<Item> RandomItems(std::mt19937& random, int count) {
  std::vector<Item> items;
  for (int i = 0; i < count; ++i) items.push_back({i, static_cast<int>(random() % 40)});
  return items;
}

int freed;
void CountFree(void* p) {
  ++freed;
  std::free(p);
}

}  // namespace

TEST(K7Array, EditsAgreeWithAVector) {
  std::mt19937 random(7);
  K7Array array(sizeof(Item), 3);
  std::vector<Item> model;
  for (int step = 0; step < 5000; ++step) {
    const int count = static_cast<int>(model.size());
    const int pos = static_cast<int>(random() % static_cast<unsigned>(count + 2)) - 1;
    const bool inside = pos >= 0 && pos < count;
    const auto place = inside ? model.begin() + pos : model.end();
    const std::vector<Item> added = RandomItems(random, static_cast<int>(random() % 4));
    const int n = static_cast<int>(added.size());
    const auto edit = random() % (count > 60 ? 3 : 5);
    if (edit == 0) {
      const int gone = inside ? std::min(n, count - pos) : 0;
      ASSERT_EQ(array.Remove(pos, n), gone);
      model.erase(place, place + gone);
    } else if (edit == 1) {
      const Item item{0, static_cast<int>(random() % 40)};
      const auto last = std::find(model.rbegin(), model.rend(), item);
      ASSERT_EQ(array.GetIndex(&item), static_cast<int>(model.rend() - last) - 1);
      ASSERT_EQ(array -= &item, last != model.rend());
      if (last != model.rend()) model.erase(std::next(last).base());
    } else if (edit == 2) {
      ASSERT_EQ(array.Swap(pos, 0), inside ? 0 : K7_ERR_BAD_ARGUMENT);
      if (inside) std::swap(*place, model[0]);
    } else if (edit == 3 && inside) {
      // From within itself: the source moves while the array grows.
      const std::vector<Item> own(place, place + std::min(2, count - pos));
      ASSERT_EQ(array.Insert(array.Get(pos), 0, static_cast<int>(own.size())), 0);
      model.insert(model.begin(), own.begin(), own.end());
    } else {
      ASSERT_EQ(array.Insert(added.data(), pos, n), 0);
      model.insert(place, added.begin(), added.end());
    }
    ASSERT_EQ(Items(array), model) << step;
  }
}

TEST(K7Array, FailuresLeaveTheArray) {
  K7DoubleArray array(8);
  array += 1.5;
  const double value = 2;
  for (const int code : {array.GrowTo(-1, true), array.Insert(nullptr, 0, 1), array.Insert(&value, 0, -1),
                         array.Put(0, nullptr)})
    EXPECT_EQ(code, K7_ERR_BAD_ARGUMENT);
  for (const int code : {array.Insert(&value, 2, 1), array.Put(1, &value)})
    EXPECT_EQ(code, K7_ERR_INVALID_DATA);
  EXPECT_EQ(array.GrowTo(INT_MAX, true), K7_ERR_MEMORY);
  EXPECT_EQ(array.Count(), 1);
  // Within one block of 8 the storage stays where it is; what the count is raised over is zero.
  const void* const block = array.Data();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(array += &value, 0);
  EXPECT_EQ(array.GrowTo(8, true), 0);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(array[i], i == 0 ? 1.5 : i < 5 ? 2 : 0) << i;
  array.Clear(true);
  EXPECT_EQ(array.Data(), block);
  EXPECT_EQ(array.Count(), 0);
  EXPECT_EQ(*static_cast<const double*>(block), 0);
}

TEST(K7Array, SortsAndSearchesAgreeWithTheStandardOnes) {
  std::mt19937 random(7);
  for (int count = 0; count < 120; ++count) {
    const std::vector<Item> items = RandomItems(random, count);
    std::vector<int> keys;
    for (const Item& item : items) keys.push_back(item.key);
    std::sort(keys.begin(), keys.end());

    K7Array shell(sizeof(Item), 16, CompareInts, offsetof(Item, key));
    shell.Insert(items.data(), -1, count);
    int* const order = shell.IndexSort();
    EXPECT_EQ(shell.ShellSort(), 0);
    K7Array quick(sizeof(Item), 16, CompareItems, offsetof(Item, key));
    quick.Insert(items.data(), -1, count);
    EXPECT_EQ(quick.QuickSort(), count > 0);
    ASSERT_NE(order, nullptr);
    for (int i = 0; i < count; ++i) {
      const size_t at = static_cast<size_t>(i);
      ASSERT_EQ(*static_cast<int*>(shell[i]), keys[at]);
      ASSERT_EQ(*static_cast<int*>(quick[i]), keys[at]);
      ASSERT_EQ(items[static_cast<size_t>(order[i])], Items(shell)[at]);
    }
    std::free(order);

    for (int key = -1; key <= 40; ++key) {
      const Item item{0, key};
      const auto [low, high] = std::equal_range(keys.begin(), keys.end(), key);
      const int lower = static_cast<int>(low - keys.begin());
      const int upper = static_cast<int>(high - keys.begin());
      int last = 99;
      ASSERT_EQ(quick.BinarySearch(&item, &last), lower < upper ? lower : -1);
      ASSERT_EQ(last, lower < upper ? upper - 1 : lower);
      ASSERT_EQ(quick.BinarySearchMinIndex(&item), lower == 0 && upper == 0 ? -1 : lower);
    }
    K7Array removed(sizeof(Item), 1);
    const int distinct = static_cast<int>(std::unique(keys.begin(), keys.end()) - keys.begin());
    EXPECT_EQ(quick.RemoveAdjDups(nullptr, &quick), K7_ERR_BAD_ARGUMENT);
    EXPECT_EQ(quick.RemoveAdjDups(nullptr, &removed), count - distinct);
    EXPECT_EQ(quick.Count(), distinct);
    EXPECT_EQ(removed.Count(), count - distinct);
  }
}

TEST(K7PtrArray, SharesPointersAndFreesThemOnDemand) {
  K7PtrArray array(4, nullptr, CountFree);
  for (int i = 0; i < 10; ++i) array += i == 5 ? nullptr : std::malloc(8);
  K7PtrArray copy(array);
  EXPECT_EQ(copy.DeepCopy(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(copy.DeepCopy(&copy), 0);
  EXPECT_EQ(copy -= array[3], 1);
  EXPECT_EQ(copy[3], array[4]);
  EXPECT_EQ(copy[9], nullptr);
  copy = array;
  freed = 0;
  copy.FreeElems();
  EXPECT_EQ(freed, 9);
  EXPECT_EQ(copy.Data(), nullptr);
}

template <class Array, class Elem>
constexpr bool TAKES = requires(Array array, Elem* elem) {
  array.GetIndexByPointer(elem);
};
static_assert(TAKES<K7PtrArray, void*> && !TAKES<K7PtrArray, Item>);

TEST(K7PtrArray, TakesAddressesOfPointersAsInherited) {
  int a, b, c;
  int* const pointers[] = {&a, &b, &a};
  K7PtrArray array;
  EXPECT_EQ(array.Insert(pointers, 0, 3), 0);
  EXPECT_EQ(array.GetIndex(&pointers[0]), 2);
  EXPECT_EQ(array.FindPtr(&b), 1);
  EXPECT_EQ(array.FindPtr(&c), -1);
  EXPECT_EQ(array.Put(0, &pointers[1]), 0);
  EXPECT_EQ(array[0], &b);
  EXPECT_EQ(array.PutPtr(1, &c), 0);
  EXPECT_EQ(array.InsertPtr(&c, 0), 0);
  EXPECT_EQ(array.FindPtr(&c), 2);
}

// Leaks and double frees show under the address sanitizer.
TEST(K7StrArray, OwnsItsTexts) {
  K7StrArray names(true, true, 1);
  for (const char* name : {"delta", "Bravo", "alpha", "CHARLIE", "bravo"}) EXPECT_EQ(names += name, 0);
  EXPECT_EQ(names += names[0], 0);
  EXPECT_EQ(names.Put(2, names[2] + 1), 0);
  EXPECT_EQ(names += nullptr, K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(names.Insert("x", 7), K7_ERR_INVALID_DATA);
  EXPECT_TRUE(names.QuickSort());
  int last = 0;
  EXPECT_EQ(names.Find("BRAVO", &last), 0);
  EXPECT_EQ(last, 1);
  EXPECT_EQ(names.Find("alpha", &last), -1);
  EXPECT_EQ(last, 0);
  EXPECT_EQ(names.Find(nullptr), -1);
  EXPECT_EQ(names.RemoveAdjDups(), 2);
  EXPECT_EQ(names -= names.Get(3), 1);
  EXPECT_EQ(names.Remove(2, 5), 1);
  EXPECT_STREQ(names[1], "CHARLIE");
  // By the addresses of text pointers: copies too, and none without all of them.
  const char* const more[] = {"x", "y", nullptr};
  EXPECT_EQ(names.Insert(more, 1, 3), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(names.Insert(more, 3, 2), K7_ERR_INVALID_DATA);
  EXPECT_EQ(names.Insert(more, 1, 2), 0);
  EXPECT_EQ(names.Put(0, &more[1]), 0);
  EXPECT_EQ(names += static_cast<const void*>(names.Get(3)), 0);
  std::string all;
  for (int i = 0; i < names.Count(); ++i) all += names[i];
  EXPECT_EQ(all, "yxyCHARLIECHARLIE");
  EXPECT_EQ(names.GrowTo(2, true), 0);
  EXPECT_EQ(names.Count(), 2);
  EXPECT_EQ(names.GrowTo(1, false), 0);
  EXPECT_STREQ(names[1], "x");
  names.Clear(true);
}

TEST(K7StrArray, OrdersNullAddressesFirst) {
  struct Opened : K7StrArray {
    using K7Array::Compare;
  };
  const char* const text = "a";
  const K7CompareFunc compare = Opened().Compare();
  EXPECT_LT(compare(nullptr, &text), 0);
  EXPECT_GT(compare(&text, nullptr), 0);
  EXPECT_EQ(compare(nullptr, nullptr), 0);
}

TEST(K7StrMap, AgreesWithAMap) {
  std::mt19937 random(7);
  K7StrMap map(CountFree);
  std::map<std::string, void*> model;  // null: absent
  for (int step = 0; step < 5000; ++step) {
    const std::string key = std::to_string(random() % 200) + (random() % 2 ? "\xB0" : "");
    void*& expected = model[key];
    void* const old = expected;
    ASSERT_EQ(map.Get(key.c_str()), old);
    int err = 0;
    expected = random() % 3 ? std::malloc(1) : nullptr;
    ASSERT_EQ(expected ? map.Insert(key.c_str(), expected, &err) : map.Remove(key.c_str()), old);
    ASSERT_EQ(err, 0);
    std::free(old);
  }
  std::erase_if(model, [](const auto& entry) { return !entry.second; });
  int i = 0;
  for (const auto& [key, value] : model) ASSERT_TRUE(map.GetKey(i) == key && map.Get(i++) == value);
  EXPECT_EQ(map.Count(), i);
  EXPECT_EQ(map.GetKey(i), nullptr);
  freed = 0;
  map.FreeElems();
  EXPECT_EQ(freed, i);
}

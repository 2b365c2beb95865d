#include <k7/foundation.h>

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

constexpr int BAD = K7_ERR_BAD_ARGUMENT, OUTSIDE = K7_ERR_INVALID_DATA, FULL = K7_ERR_MEMORY;

// The key stands behind the payload, so that element and key addresses differ.
struct Item {
  int payload, key;
  bool operator==(const Item&) const = default;
};

int CompareInts(const void* a, const void* b) {
  const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
  return (x > y) - (x < y);
}
int CompareItems(const void* a, const void* b) {
  return CompareInts(static_cast<const int*>(a) + 1, static_cast<const int*>(b) + 1);
}

std::vector<Item> Items(const K7Array& array) {
  const Item* const first = static_cast<const Item*>(array.Data());
  return {first, first + array.Count()};
}

std::mt19937 random_bits(7);
int Number(int below) { return static_cast<int>(random_bits() % static_cast<unsigned>(below)); }
// Payloads are positions, so that equal keys can be told apart.
std::vector<Item> RandomItems(int count) {
  std::vector<Item> items;
  for (int i = 0; i < count; ++i) items.push_back({i, Number(40)});
  return items;
}

int freed;
void CountFree(void* p) {
  ++freed;
  std::free(p);
}

struct Opened : K7StrArray {
  using K7Array::Compare;
};

template <class Array, class Elem>
constexpr bool TAKES = requires(Array array, Elem* elem) {
  array.GetIndexByPointer(elem);
};
static_assert(TAKES<K7PtrArray, void*> && !TAKES<K7PtrArray, Item>);

}  // namespace

TEST(K7Array, EditsAgreeWithAVector) {
  K7Array array(sizeof(Item), 3);
  std::vector<Item> model;
  for (int step = 0; step < 5000; ++step) {
    const int count = static_cast<int>(model.size()), n = Number(4), pos = Number(count + 2) - 1;
    const bool inside = pos >= 0 && pos < count;
    const auto place = inside ? model.begin() + pos : model.end();
    const Item item{0, Number(40)};
    const int edit = Number(count > 60 ? 3 : 5);
    if (edit == 0) {
      const int gone = inside ? std::min(n, count - pos) : 0;
      ASSERT_EQ(array.Remove(pos, n), gone);
      model.erase(place, place + gone);
    } else if (edit == 1) {
      const auto last = std::find(model.rbegin(), model.rend(), item);
      ASSERT_EQ(array.GetIndex(&item), static_cast<int>(model.rend() - last) - 1);
      ASSERT_EQ(array -= &item, last != model.rend());
      if (last != model.rend()) model.erase(std::next(last).base());
    } else if (edit == 2) {
      ASSERT_EQ(array.Swap(pos, 0), inside ? 0 : BAD);
      if (inside) std::swap(*place, model[0]);
      ASSERT_EQ(array.Put(pos, &item), inside ? 0 : OUTSIDE);
      if (inside) *place = item;
    } else {
      // Also from within itself: the source moves while the array grows.
      const bool own = edit == 3 && inside;
      const std::vector<Item> added = own ? std::vector(place, place + 1) : RandomItems(n);
      ASSERT_EQ(array.Insert(own ? array.Get(pos) : added.data(), pos, static_cast<int>(added.size())), 0);
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
                         array.Put(0, nullptr), array.ShellSort()})
    EXPECT_EQ(code, BAD);
  for (const int code : {array.Insert(&value, 2, 1), array.Insert(nullptr, 2, 0), array.Put(1, &value)})
    EXPECT_EQ(code, OUTSIDE);
  for (const int code : {array.GrowTo(INT_MAX, true), array.Insert(&value, 0, INT_MAX)})
    EXPECT_EQ(code, FULL);
  for (const int none : {array.Insert(nullptr, 1, 0), array.Remove(0, -1), array.RemoveAdjDups()})
    EXPECT_EQ(none, 0);
  EXPECT_FALSE(array.QuickSort());
  EXPECT_EQ(array.BinarySearch(&value), -1);
  EXPECT_EQ(array.IndexSort(), nullptr);
  EXPECT_EQ(array.Count(), 1);
  // Within one block of 8 the storage stays where it is; what the count is raised over is zero.
  const void* const block = array.Data();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(array += &value, 0);
  EXPECT_EQ(array.GrowTo(8, true), 0);
  for (int i = -1; i < 9; ++i) EXPECT_EQ(array[i], i == 0 ? 1.5 : i > 0 && i < 5 ? 2 : 0) << i;
  array.Clear(true);
  EXPECT_EQ(array.Data(), block);
  EXPECT_EQ(array.Count(), 0);
  EXPECT_EQ(*static_cast<const double*>(block), 0);
  // Sizes without meaning are taken for the nearest that have one.
  K7Array odd(0, 0, nullptr, -1);
  EXPECT_EQ(odd += "x", 0);
  EXPECT_EQ(odd.Width(), 1);
  EXPECT_EQ(odd.Offset(), 0);
}

TEST(K7Array, SortsAndSearchesAgreeWithTheStandardOnes) {
  for (int count = 0; count < 120; ++count) {
    const std::vector<Item> items = RandomItems(count);
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
    for (size_t i = 0; i < keys.size(); ++i) {
      ASSERT_EQ(Items(shell)[i], items[static_cast<size_t>(order[i])]);
      ASSERT_EQ(Items(shell)[i].key, keys[i]);
      ASSERT_EQ(Items(quick)[i].key, keys[i]);
    }
    std::free(order);

    for (int key = -1; key <= 40; ++key) {
      const Item item{0, key};
      const auto [low, high] = std::equal_range(keys.begin(), keys.end(), key);
      const int lower = static_cast<int>(low - keys.begin()), upper = static_cast<int>(high - keys.begin());
      int last = 99;
      ASSERT_EQ(quick.BinarySearch(&item, &last), lower < upper ? lower : -1);
      ASSERT_EQ(last, lower < upper ? upper - 1 : lower);
      ASSERT_EQ(quick.BinarySearchMinIndex(&item), lower == 0 && upper == 0 ? -1 : lower);
    }
    K7Array removed(sizeof(Item), 1), narrow(sizeof(int), 1);
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    for (K7Array* const refused : {&quick, &narrow}) EXPECT_EQ(quick.RemoveAdjDups(nullptr, refused), BAD);
    EXPECT_EQ(quick.RemoveAdjDups(nullptr, &removed), count - static_cast<int>(keys.size()));
    EXPECT_EQ(removed.Count(), count - static_cast<int>(keys.size()));
    ASSERT_EQ(Items(quick).size(), keys.size());
    for (size_t i = 0; i < keys.size(); ++i) ASSERT_EQ(Items(quick)[i].key, keys[i]);
  }
}

TEST(K7PtrArray, SharesPointersAndFreesThemOnDemand) {
  K7PtrArray array(4, nullptr, CountFree);
  for (int i = 0; i < 10; ++i) array += i == 5 ? nullptr : std::malloc(8);
  K7PtrArray copy(array);
  EXPECT_EQ(copy.DeepCopy(nullptr), BAD);
  EXPECT_EQ(copy.DeepCopy(&copy), 0);
  EXPECT_EQ(copy -= array[3], 1);
  EXPECT_EQ(copy[3], array[4]);
  EXPECT_EQ(copy[9], nullptr);
  copy = array;
  freed = 0;
  copy.FreeElems();
  EXPECT_EQ(freed, 9);
  EXPECT_EQ(copy.Data(), nullptr);
  // What it inherits takes the addresses of pointers.
  int a, b, c;
  int* const pointers[] = {&a, &b, &a};
  EXPECT_EQ(copy.Insert(pointers, 0, 3), 0);
  EXPECT_EQ(copy.GetIndex(&pointers[0]), 2);
  EXPECT_EQ(copy.Put(0, &pointers[1]), 0);
  for (const int code : {copy.PutPtr(1, &c), copy.InsertPtr(&c, 0)}) EXPECT_EQ(code, 0);
  void* const expected[] = {&c, &b, &c, &a};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(copy[i], expected[i]) << i;
  EXPECT_EQ(copy.FindPtr(&c), 2);
}

// Double frees show under the address sanitizer; leaks, where memory fails.
TEST(K7StrArray, OwnsItsTexts) {
  K7StrArray names(true, true, 1);
  for (const char* name : {"delta", "Bravo", "alpha", "CHARLIE", "bravo"}) EXPECT_EQ(names += name, 0);
  EXPECT_EQ(names += names[0], 0);
  EXPECT_EQ(names.Put(2, names[2] + 1), 0);
  EXPECT_TRUE(names.QuickSort());
  int last = 0;
  EXPECT_EQ(names.Find("BRAVO", &last), 0);
  EXPECT_EQ(last, 1);
  EXPECT_EQ(names.Find("alpha", &last), -1);
  EXPECT_EQ(last, 0);
  EXPECT_EQ(names.RemoveAdjDups(), 2);
  EXPECT_EQ(names -= names.Get(3), 1);
  EXPECT_EQ(names.Remove(2, 5), 1);
  EXPECT_STREQ(names[1], "CHARLIE");
  // By the addresses of text pointers: copies too, and none without all of them.
  const char* const more[] = {"x", "y", nullptr};
  const void* const none = nullptr;
  for (const int code : {names += nullptr, names.Put(0, nullptr), names.Put(0, none),
                         names.Insert(more, 1, 3), names.Insert(more, 1, -1), names.Insert(none, 1, 1)})
    EXPECT_EQ(code, BAD);
  for (const int code : {names.Put(2, "x"), names.Insert("x", 7), names.Insert(more, 3, 2)})
    EXPECT_EQ(code, OUTSIDE);
  for (const int code : {names.Insert(none, 1, 0), names.Insert(more, 1, 2), names.Put(0, &more[1]),
                         names += static_cast<const void*>(names.Get(3))})
    EXPECT_EQ(code, 0);
  const char* const all[] = {"y", "x", "y", "CHARLIE", "CHARLIE", nullptr};
  for (int i = 0; i < 6; ++i) EXPECT_STREQ(names[i], all[i]) << i;
  EXPECT_EQ(names.GrowTo(2, true), 0);
  EXPECT_EQ(names.Count(), 2);
  EXPECT_EQ(names.GrowTo(1, false), 0);
  EXPECT_STREQ(names[1], "x");
  names.Clear(true);
  EXPECT_NE(names.Data(), nullptr);
  names.Clear();
  EXPECT_EQ(names.Data(), nullptr);
}

TEST(K7StrArray, SharesTheTextsOfOthers) {
  const char* const texts[] = {"b", "b", "a"};
  K7StrArray array(false);
  for (const int code : {array += texts[0], array.Insert(texts, -1, 3), array.Put(0, texts[2])})
    EXPECT_EQ(code, 0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(array[i], texts[(i + 2) % 3]) << i;
  EXPECT_EQ(array.RemoveAdjDups(), 1);
  // A null address sorts before any other.
  const K7CompareFunc compare = Opened().Compare();
  EXPECT_LT(compare(nullptr, texts), 0);
  EXPECT_GT(compare(texts, nullptr), 0);
  EXPECT_EQ(compare(nullptr, nullptr), 0);
}

TEST(K7StrMap, AgreesWithAMap) {
  K7StrMap map(CountFree);
  std::map<std::string, void*> model;  // null: absent
  for (int step = 0; step < 5000; ++step) {
    const std::string key = (Number(99) ? std::to_string(Number(200)) : "") + (Number(2) ? "\xB0" : "");
    void*& expected = model[key];
    void* const old = expected;
    ASSERT_EQ(map.Get(key.empty() ? nullptr : key.c_str()), old);
    int err = 1;
    expected = Number(3) ? std::malloc(1) : nullptr;
    ASSERT_EQ(expected ? map.Insert(key.c_str(), expected, &err) : map.Remove(key.c_str()), old);
    ASSERT_EQ(err, !expected);
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
  EXPECT_EQ(map.Count(), 0);
}

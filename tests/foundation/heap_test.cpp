#include <k7/foundation.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

struct Node : K7HeapObj {
  bool Precedes(const K7HeapObj& other) const override { return rank < static_cast<const Node&>(other).rank; }
  double HeapRank() const override { return ranked ? rank : std::numeric_limits<double>::quiet_NaN(); }
  int rank = 0;
  bool ranked = false;
};

}  // namespace

TEST(K7Heap, AgreesWithASortedSet) {
  std::mt19937 random(7);
  for (const K7HeapType type : {K7_HEAP_MIN, K7_HEAP_MAX})
    for (int d = 1; d <= 5; ++d) {
      // Without ranks beside the members, with them, with some: the same member must come out each time.
      K7Heap heaps[] = {{type, d}, {type, d}, {type, d}};
      std::vector<Node> nodes[3];
      for (auto& each : nodes) each.resize(3000);
      std::set<std::pair<int, size_t>> model;
      for (int step = 0; step < 12000; ++step) {
        // Grows past the first 1024 slots, then empties.
        size_t i = random() % 3000;
        const bool in = model.count({nodes[0][i].rank, i}) > 0;
        const auto edit = step < 8000 && !in ? 0 : random() % 2 + 1;
        const int rank = static_cast<int>(random() % 500) - 250;
        for (size_t h = 0; h < 3; ++h) {
          if (edit == 1) {
            ASSERT_EQ(heaps[h] -= &nodes[h][i], in);
          } else if (edit == 2) {
            const K7HeapObj* const top = heaps[h].Top();
            ASSERT_EQ(heaps[h].PopTop(), top);
            ASSERT_EQ(top != nullptr, !model.empty());
            if (!top) continue;
            if (h == 0) i = static_cast<size_t>(static_cast<const Node*>(top) - nodes[0].data());
            ASSERT_EQ(top, &nodes[h][i]) << step;
            ASSERT_EQ(nodes[h][i].rank, type == K7_HEAP_MIN ? model.begin()->first : model.rbegin()->first);
          }
        }
        model.erase({nodes[0][i].rank, i});
        for (size_t h = 0; h < 3; ++h) {
          if (edit == 0) {
            nodes[h][i].rank = rank;
            nodes[h][i].ranked = h == 1 || (h == 2 && i % 2);
            ASSERT_EQ(heaps[h] += &nodes[h][i], 0);
          }
          ASSERT_EQ(heaps[h].Size(), static_cast<int>(model.size()) + (edit == 0));
        }
        if (edit == 0) model.insert({rank, i});
      }
    }
}

TEST(K7Heap, EqualRanksComeOutInTheStatedOrder) {
  // By hand for d = 2: the last slot refills the top and sinks past the first of two equal children.
  K7Heap heap(K7_HEAP_MIN, 2);
  Node nodes[4];
  for (const int i : {0, 1, 2, 3}) {
    nodes[i].rank = (i + 1) / 2;
    heap += &nodes[i];
  }
  for (Node& node : nodes) EXPECT_EQ(heap.PopTop(), &node);
}

TEST(K7Heap, RefusesAndKeepsItsFirstError) {
  Node a, b;
  K7Heap heap(K7_HEAP_MIN, 2);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(heap.Insert(&a), 0);
  EXPECT_EQ(heap.Size(), 1);
  Node copy = a;
  for (Node* const stranger : {&b, &copy, static_cast<Node*>(nullptr)}) EXPECT_FALSE(heap.Delete(stranger));
  EXPECT_TRUE(heap.IsValid());
  for (Node* const obj : {static_cast<Node*>(nullptr), &b}) EXPECT_EQ(heap.Insert(obj), K7_ERR_BAD_ARGUMENT);
  EXPECT_FALSE(heap.IsValid());
  EXPECT_EQ(heap.PopTop(), &a);
  EXPECT_EQ(heap.PopTop(), nullptr);
  EXPECT_EQ(K7Heap(K7_HEAP_MIN, 0).Insert(&a), K7_ERR_BAD_ARGUMENT);
}

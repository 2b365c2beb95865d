#include <k7/foundation/error_string.h>
#include <k7/foundation/heap.h>

#include <gtest/gtest.h>

#include <deque>
#include <iterator>
#include <random>
#include <set>

namespace {

struct Node : K7HeapObj {
  bool Precedes(const K7HeapObj& other) const override { return rank < static_cast<const Node&>(other).rank; }
  int rank = 0;
  bool in = false;
};

}  // namespace

TEST(K7Heap, AgreesWithASortedSet) {
  std::mt19937 random(7);
  for (const K7HeapType type : {K7_HEAP_MIN, K7_HEAP_MAX})
    for (int d = 1; d <= 5; ++d) {
      K7Heap heap(type, d);
      std::deque<Node> nodes(3000);
      std::multiset<int> ranks;
      for (int step = 0; step < 20000; ++step) {
        // Grows past the first 1024 slots, then empties.
        Node& node = nodes[random() % nodes.size()];
        if (step < 15000 && !node.in) {
          ranks.insert(node.rank = static_cast<int>(random() % 500));
          ASSERT_EQ(heap += &node, 0);
          node.in = true;
        } else if (random() % 2) {
          ASSERT_EQ(heap -= &node, node.in);
          if (node.in) ranks.erase(ranks.find(node.rank));
          node.in = false;
        } else if (Node* const top = static_cast<Node*>(heap.PopTop())) {
          const auto best = type == K7_HEAP_MIN ? ranks.begin() : std::prev(ranks.end());
          ASSERT_TRUE(top->in && top->rank == *best) << step;
          ranks.erase(best);
          top->in = false;
        }
        ASSERT_EQ(heap.Size(), static_cast<int>(ranks.size()));
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
  EXPECT_TRUE(heap.Insert(&a) == 0 && heap.Insert(&a) == 0 && heap.Size() == 1 && heap.IsValid());
  Node copy = a;
  EXPECT_FALSE(heap.Delete(&b) || heap.Delete(nullptr) || heap.Delete(&copy));
  EXPECT_EQ(heap.Insert(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(heap.Insert(&b), K7_ERR_BAD_ARGUMENT);
  EXPECT_TRUE(!heap.IsValid() && heap.PopTop() == &a && !heap.PopTop());
  EXPECT_EQ(K7Heap(K7_HEAP_MIN, 0).Insert(&a), K7_ERR_BAD_ARGUMENT);
}

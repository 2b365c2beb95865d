#include <k7/geometry/path_node.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr double FAR = 1e30;

// A node with a place in the plane and its own arcs.
struct Town : K7PathNode {
  double ArcCost(const K7PathNode& other) const override {
    const Town& to = static_cast<const Town&>(other);
    return std::hypot(to.x - x, to.y - y) * (1 + rough);
  }
  double Heuristic() const override { return goal ? std::hypot(goal->x - x, goal->y - y) : 0; }
  bool Stop() override { return this == goal; }
  void Expand() override { expanded++; }
  double x = 0, y = 0, rough = 0;
  const Town* goal = nullptr;
  int expanded = 0;
};

struct Graph {
  Graph(std::mt19937& random, int count, double reach) : towns(count) {
    std::uniform_real_distribution<> unit(0, 1);
    for (Town& t : towns) t.x = unit(random), t.y = unit(random), t.rough = unit(random);
    for (Town& a : towns) {
      for (Town& b : towns) {
        if (&a != &b && std::hypot(a.x - b.x, a.y - b.y) < reach && random() % 3) a.AddAdj(&b);
      }
    }
  }
  // Dijkstra's way, by looking at all.
  std::vector<double> Costs(int from) const {
    std::vector<double> cost(towns.size(), FAR);
    std::vector<bool> done(towns.size());
    cost[from] = 0;
    for (size_t round = 0; round < towns.size(); round++) {
      size_t best = towns.size();
      for (size_t i = 0; i < towns.size(); i++) {
        if (!done[i] && cost[i] < FAR && (best == towns.size() || cost[i] < cost[best])) best = i;
      }
      if (best == towns.size()) break;
      done[best] = true;
      for (int k = 0; k < towns[best].AdjCnt(); k++) {
        const Town& to = *static_cast<Town*>(towns[best].Adjacent(k));
        double& known = cost[&to - towns.data()];
        known = std::min(known, cost[best] + towns[best].ArcCost(to));
      }
    }
    return cost;
  }
  std::vector<Town> towns;
};

}  // namespace

TEST(PathNode, PathsAreTheCheapest) {
  std::mt19937 random(8);
  int found = 0;
  for (int round = 0; round < 60; round++) {
    Graph graph(random, 60, 0.1 + 0.005 * round);
    const std::vector<double> costs = graph.Costs(0);
    for (int goal = 1; goal < 60; goal += 7) {
      for (Town& town : graph.towns) {
        town.Reset();
        town.goal = &graph.towns[goal];
      }
      const K7PathNode* const reached = graph.towns[0].ShortestPath();
      ASSERT_EQ(reached != nullptr, costs[goal] < FAR);
      if (!reached) continue;
      found++;
      EXPECT_EQ(reached, &graph.towns[goal]);
      EXPECT_NEAR(reached->PathCost(), costs[goal], 1e-12);
      double along = 0;
      for (const K7PathNode* node = reached; node->Parent(); node = node->Parent())
        along += node->Parent()->ArcCost(*node);
      EXPECT_NEAR(along, costs[goal], 1e-12) << "the parents lead back";
    }
  }
  EXPECT_GT(found, 200);
}

TEST(PathNode, DefaultsCountHopsToADeadEnd) {
  K7PathNode a, b, c, d, end;
  a.AddAdj(&b);
  b.AddAdj(&c);
  c.AddAdj(&end);
  a.AddAdj(&d);
  d.AddAdj(&c);
  EXPECT_EQ(a.ShortestPath(), &end);
  EXPECT_EQ(end.PathCost(), 3);
  EXPECT_EQ(c.Parent(), &d) << "of equal ways the later";
  EXPECT_EQ(end.ShortestPath(), nullptr) << "a start is no goal";
  K7PathNode x, y;
  x.AddAdj(&y);
  y.AddAdj(&x);
  EXPECT_EQ(x.ShortestPath(), nullptr) << "a circle has no dead end";
  const K7PathNode copy(c);
  EXPECT_EQ(copy.Parent(), &d);
  EXPECT_EQ(copy.AdjCnt(), 0);
  EXPECT_EQ(copy.PathCost(), K7PathNode::UNREACHED);
}

TEST(PathNode, HooksEndASearch) {
  struct Node : K7PathNode {
    bool InitStartNode() override { return starts; }
    bool Show() override { return shows-- > 0; }
    bool starts = true;
    int shows = 100;
  };
  Node a, b, c;
  a.AddAdj(&b);
  b.AddAdj(&c);
  a.starts = false;
  EXPECT_EQ(a.ShortestPath(), nullptr);
  a.starts = true;
  b.shows = 0;
  EXPECT_EQ(a.ShortestPath(), nullptr) << "broken off behind the first expansion";
  for (Node* node : {&a, &b, &c}) node->Reset();
  b.shows = 1;
  EXPECT_EQ(a.ShortestPath(), &c);
  for (int i = 0; i < 9; i++) c.AddAdj(i % 2 ? &a : &b);
  for (int i = 0; i < 9; i++) EXPECT_EQ(c.Adjacent(i), i % 2 ? &a : &b);
}

// The cheapest way with a limited amount of fuel: ways to one place differ by cost and by fuel, and neither
// alone decides.
TEST(PathNode, ColocatedWaysCompareByMoreThanCost) {
  struct Arc {
    int to;
    double cost, fuel;
  };
  struct World {
    std::vector<std::vector<Arc>> arcs;
    std::vector<K7PathNode> heads;
    double limit;
    int goal, discarded = 0;
    std::vector<std::unique_ptr<K7PathNode>> made;
  };
  struct Way : K7PathNode {
    Way(World& w, int p, double c, double f) : world(w), place(p), arcCost(c), fuel(f) {}
    double ArcCost(const K7PathNode& other) const override {
      const Way& way = static_cast<const Way&>(other);
      return way.fuel > world.limit ? K7PathNode::UNREACHED : way.arcCost;
    }
    bool Stop() override { return place == world.goal; }
    void Expand() override {
      for (const Arc& arc : world.arcs[place]) {
        world.made.push_back(std::make_unique<Way>(world, arc.to, arc.cost, fuel + arc.fuel));
        AddAdj(world.made.back().get());
      }
    }
    bool BetterThan(const K7PathNode& other) const override {
      return PathCost() <= other.PathCost() && fuel <= static_cast<const Way&>(other).fuel;
    }
    K7PathNode* ColocHead() const override { return &world.heads[place]; }
    void DiscardNode() override { world.discarded++; }
    World& world;
    int place;
    double arcCost, fuel;
  };
  std::mt19937 random(4);
  std::uniform_real_distribution<> unit(1, 6);
  int solved = 0, discarded = 0;
  for (int round = 0; round < 300; round++) {
    const int places = 7;
    World world{std::vector<std::vector<Arc>>(places),
                std::vector<K7PathNode>(places),
                2.0 + round % 9,
                places - 1,
                0,
                {}};
    for (int a = 0; a < places; a++) {
      for (int b = 0; b < places; b++) {
        if (a != b && random() % 2)
          world.arcs[a].push_back({b, std::floor(unit(random)), std::floor(unit(random))});
      }
    }
    // All ways without circles, by trying.
    double best = FAR;
    std::vector<bool> used(places);
    const auto walk = [&](auto& self, int at, double cost, double fuel) -> void {
      if (fuel > world.limit) return;
      if (at == world.goal) best = std::min(best, cost);
      used[at] = true;
      for (const Arc& arc : world.arcs[at]) {
        if (!used[arc.to] && at != world.goal) self(self, arc.to, cost + arc.cost, fuel + arc.fuel);
      }
      used[at] = false;
    };
    walk(walk, 0, 0, 0);
    Way start(world, 0, 0, 0);
    start.Expand();  // the start's neighbours are taken as they are
    for (int i = 0; i < start.AdjCnt(); i++) {
      if (static_cast<Way*>(start.Adjacent(i))->fuel > world.limit)
        static_cast<Way*>(start.Adjacent(i))->arcCost = FAR;
    }
    const K7PathNode* const reached = start.ShortestPath();
    const bool isWay = reached && reached->PathCost() < FAR;
    ASSERT_EQ(isWay, best < FAR) << round;
    if (!isWay) continue;
    EXPECT_EQ(reached->PathCost(), best) << round;
    solved++;
    discarded += world.discarded;
  }
  EXPECT_GT(solved, 100);
  EXPECT_GT(discarded, 500);
}

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
        town.expanded = 0;
      }
      const K7PathNode* const reached = graph.towns[0].ShortestPath();
      ASSERT_EQ(reached != nullptr, costs[goal] < FAR);
      if (!reached) continue;
      found++;
      for (size_t i = 1; i < graph.towns.size(); i++) {
        const Town& town = graph.towns[i];
        ASSERT_LE(town.expanded, costs[i] + town.Heuristic() <= costs[goal] + 1e-12)
            << "beyond the goal, or twice";
      }
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

TEST(PathNode, AnOrderOfItsOwnIsFollowed) {
  struct Node : K7PathNode {
    bool operator<(const K7PathNode& other) const override {
      return favour > static_cast<const Node&>(other).favour;
    }
    int favour = 0;
  };
  Node start, ends[3];
  for (Node& end : ends) start.AddAdj(&end);
  ends[1].favour = 1;
  EXPECT_EQ(start.ShortestPath(), &ends[1]);
}

// The cheapest way with a limited amount of fuel: ways to one place differ by cost and by fuel, and neither
// alone decides.
TEST(PathNode, ColocatedWaysCompareByMoreThanCost) {
  struct Place;
  struct Leg {
    Place* to;
    double cost, fuel;
  };
  struct Place {
    std::vector<Leg> legs;
    K7PathNode head;
    std::vector<std::unique_ptr<K7PathNode>> ways;
  };
  static double full;
  static int discarded;
  static const Place* goal;
  struct Way : K7PathNode {
    Way(Place& p, double c, double f) : place(p), legCost(c), fuel(f) {}
    void Expand() override {
      EXPECT_FALSE(isDiscarded || isExpanded);
      isExpanded = true;
      for (const Leg& leg : place.legs) {
        leg.to->ways.push_back(std::make_unique<Way>(*leg.to, leg.cost, fuel + leg.fuel));
        AddAdj(leg.to->ways.back().get());
      }
    }
    bool InitStartNode() override { return Expand(), true; }
    double ArcCost(const K7PathNode& other) const override {
      const Way& to = static_cast<const Way&>(other);
      return to.fuel > full ? FAR : to.legCost;
    }
    bool Stop() override { return &place == goal; }
    K7PathNode* ColocHead() const override { return &place.head; }
    bool BetterThan(const K7PathNode& other) const override {
      return PathCost() <= other.PathCost() && fuel <= static_cast<const Way&>(other).fuel;
    }
    void DiscardNode() override {
      EXPECT_FALSE(isDiscarded || isExpanded);
      isDiscarded = true;
      discarded++;
    }
    Place& place;
    double legCost, fuel;
    bool isExpanded = false, isDiscarded = false;
  };
  std::mt19937 random(4);
  std::uniform_real_distribution<> unit(1, 6);
  int solved = 0;
  discarded = 0;
  for (int round = 0; round < 300; round++) {
    std::vector<Place> places(7);
    full = 2.0 + round % 9;
    goal = &places.back();
    for (Place& a : places) {
      for (Place& b : places) {
        if (&a != &b && random() % 2)
          a.legs.push_back({&b, std::floor(unit(random)), std::floor(unit(random))});
      }
    }
    // All ways without circles, by trying.
    double best = FAR;
    std::vector<const Place*> used;
    const auto walk = [&](auto& self, const Place& at, double cost, double fuel) -> void {
      if (fuel > full) return;
      if (&at == goal) best = std::min(best, cost);
      used.push_back(&at);
      for (const Leg& leg : at.legs) {
        if (&at != goal && std::find(used.begin(), used.end(), leg.to) == used.end())
          self(self, *leg.to, cost + leg.cost, fuel + leg.fuel);
      }
      used.pop_back();
    };
    walk(walk, places[0], 0, 0);
    Way start(places[0], 0, 0);
    K7PathNode* const reached = start.ShortestPath();
    const bool isWay = reached && reached->PathCost() < FAR;  // the start's neighbours are taken as they are
    ASSERT_EQ(isWay, best < FAR) << round;
    if (!isWay) continue;
    EXPECT_EQ(reached->PathCost(), best) << round;
    EXPECT_EQ(reached->Nearest()->PathCost(), best);
    if (reached->Parent() != &start) {
      EXPECT_EQ(places.back().head.Nearest(), reached);
    }
    solved++;
    // What is listed is what no other makes pointless.
    for (const Place& place : places) {
      for (const K7PathNode* a = place.head.Colocated(); a; a = a->Colocated()) {
        EXPECT_FALSE(static_cast<const Way*>(a)->isDiscarded);
        for (const K7PathNode* b = place.head.Colocated(); b; b = b->Colocated())
          EXPECT_TRUE(a == b || !a->BetterThan(*b));
      }
    }
  }
  EXPECT_GT(solved, 100);
  EXPECT_GT(discarded, 500);
}

#include "geodesy/sphere.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/cromley.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace {

// Departures of one span: from the chord's great circle, or from the point where both ends are.
class Departures {
 public:
  Departures() = default;
  Departures(const K7ECEF& from, const K7ECEF& to)
      : m_from(&from), m_to(&to), m_isRing(from == to), m_axis(from) {
    if (m_isRing) return;
    m_axis.CrossProduct(from, to);
    m_scale = std::fabs(m_axis.X()) + std::fabs(m_axis.Y()) + std::fabs(m_axis.Z());
  }

  // The chord's, or for a ring not used.
  K7ECEF Normal() const {
    K7ECEF normal;
    if (!m_isRing) normal.UnitNormal(*m_from, *m_to);
    return normal;
  }
  // As K7GrtCirc::OrthoDist measures it, to the last bit.
  double Of(const K7ECEF& p, const K7ECEF& normal) const {
    return k7geo::Distance(p, m_isRing ? *m_from : k7geo::Foot(p, normal));
  }

  // A number that grows with the departure: the sine of the distance from the great circle, times the length
  // of the axis; of the distance from a point its cosine, turned around.
  double Rank(const K7ECEF& p) const {
    const double along = m_axis.DotProduct(p);
    return m_isRing ? -along : std::fabs(along);
  }
  // No point within `half` of the box's centre ranks higher.
  double RankWithin(const K7ECEF& centre, const K7ECEF& half) const {
    return Rank(centre) + std::fabs(m_axis.X()) * half.X() + std::fabs(m_axis.Y()) * half.Y() +
           std::fabs(m_axis.Z()) * half.Z();
  }
  // Ranks of equal departures differ by rounding only: what lies so close below the best is measured.
  double Rounding() const { return 1e-14 * m_scale; }
  // False where ranks mean nothing: the ends are opposite one another, or no positions.
  bool HasRanks() const { return m_scale > 1e-150 && m_scale < 4; }

 private:
  const K7ECEF* m_from = nullptr;
  const K7ECEF* m_to = nullptr;
  bool m_isRing = false;
  K7ECEF m_axis;
  double m_scale = 1;
};

// Not a number has no rank, and what is no unit vector none that means anything.
bool IsPosition(const K7ECEF& p) { return std::fabs(p.DotProduct(p) - 1) < 1e-9; }

// The farthest point so far. Ranks are cheap and enough as long as one point is clearly the best; those that
// share the best rank but for rounding are measured.
class Search {
 public:
  Search(const Departures& departures, const K7ECEF* points) : m_departures(departures), m_points(points) {}

  // What ranks below is not the farthest.
  double Floor() const { return m_floor; }
  void Offer(int i, double rank) {
    if (rank < m_floor || std::isinf(rank)) return;
    RaiseFloor(rank);
    if (m_count == ROOM) Thin();
    m_near[m_count++] = {i, rank};
  }
  void RaiseFloor(double rank) { m_floor = std::max(m_floor, rank - m_departures.Rounding()); }
  void Measure(int i) {
    if (!m_hasNormal) m_normal = m_departures.Normal();
    m_hasNormal = true;
    const double measured = m_departures.Of(m_points[i], m_normal);
    if (measured > m_distance || (measured == m_distance && i > m_index)) {
      m_distance = measured;
      m_index = i;
    }
  }
  // Its index, -1 without one. The distance stays below 0 when it was not needed.
  int Index(double& distance) {
    DropLower();
    if (m_count == 1 && m_index < 0) return m_near[0].index;
    MeasureAll();
    distance = m_distance;
    return m_index;
  }

 private:
  static constexpr int ROOM = 16;
  struct Near {
    int index;
    double rank;
  };

  void DropLower() {
    int kept = 0;
    for (int i = 0; i < m_count; i++) {
      if (m_near[i].rank >= m_floor) m_near[kept++] = m_near[i];
    }
    m_count = kept;
  }
  void MeasureAll() {
    for (int i = 0; i < m_count; i++) Measure(m_near[i].index);
    m_count = 0;
  }
  void Thin() {
    DropLower();
    if (m_count == ROOM) MeasureAll();
  }

  const Departures& m_departures;
  const K7ECEF* m_points;
  double m_floor = -std::numeric_limits<double>::infinity();
  int m_count = 0;
  int m_index = -1;
  double m_distance = -1.0;
  K7ECEF m_normal;
  bool m_hasNormal = false;
  Near m_near[ROOM];
};

// Bounds of all groups of points: leaves of 16 points, and above them a binary tree in an array, the root
// at 1.
class Bounds {
 public:
  static constexpr int GROUP = 16;

  bool Build(int first, int last, const K7ECEF* points) {
    m_first = first;
    m_points = points;
    const int groups = (last - first) / GROUP + 1;
    while (m_leaves < groups) m_leaves *= 2;
    m_boxes.reset(new (std::nothrow) Box[2 * static_cast<size_t>(m_leaves)]);
    if (!m_boxes) return false;
    Box* const boxes = m_boxes.get();
    for (int p = first; p <= last; p++) {
      if (IsPosition(points[p])) {
        boxes[m_leaves + (p - first) / GROUP].Include(points[p], points[p]);
      } else {
        m_allPositions = false;
      }
    }
    for (int i = m_leaves - 1; i > 0; i--) {
      boxes[i] = boxes[2 * i];
      boxes[i].Include(boxes[2 * i + 1].low, boxes[2 * i + 1].high);
    }
    return true;
  }

  // The farthest of the points from..to, the last of equal ones; -1 when no departure is a number. Its
  // distance may be left for later, below 0.
  int Farthest(const Departures& departures, int from, int to, double& distance) const {
    if (from == to && m_allPositions) return from;
    Search search(departures, m_points);
    if (!departures.HasRanks()) {
      for (int i = from; i <= to; i++) search.Measure(i);
    } else if (to - from < 2 * GROUP) {
      Scan(search, departures, from, to);
    } else {
      // The smallest box that holds both.
      int low = m_leaves + (from - m_first) / GROUP, high = m_leaves + (to - m_first) / GROUP, size = GROUP;
      for (; low != high; size *= 2) {
        low /= 2;
        high /= 2;
      }
      const int start = from - (from - m_first) % size;
      Look({search, departures, from, to}, low, start, start + size - 1);
    }
    return search.Index(distance);
  }

 private:
  struct Box {
    K7ECEF low = K7ECEF(9, 9, 9);
    K7ECEF high = K7ECEF(-9, -9, -9);

    void Include(const K7ECEF& from, const K7ECEF& to) {
      low = K7ECEF(std::min(low.X(), from.X()), std::min(low.Y(), from.Y()), std::min(low.Z(), from.Z()));
      high = K7ECEF(std::max(high.X(), to.X()), std::max(high.Y(), to.Y()), std::max(high.Z(), to.Z()));
    }
    bool IsPoint() const { return low == high; }
  };

  struct Range {
    Search& search;
    const Departures& departures;
    int from, to;
  };

  // Ranks first and the greatest of them, without a branch, since most spans are short.
  void Scan(Search& search, const Departures& departures, int from, int to) const {
    double ranks[2 * GROUP];
    double best = -std::numeric_limits<double>::infinity();
    for (int i = from; i <= to; i++) {
      const double rank = m_allPositions || IsPosition(m_points[i])
                              ? departures.Rank(m_points[i])
                              : -std::numeric_limits<double>::infinity();
      ranks[i - from] = rank;
      best = std::max(best, rank);
    }
    search.RaiseFloor(best);
    for (int i = to; i >= from; i--) search.Offer(i, ranks[i - from]);
  }

  // Depth is the logarithm of the points. The later half first, since the last of equal points counts.
  void Look(const Range& range, int box, int from, int to) const {
    if (from > range.to || to < range.from) return;
    const Box& b = m_boxes.get()[box];
    const int last = std::min(to, range.to);
    if (b.IsPoint() && m_allPositions) {
      range.search.Offer(last, range.departures.Rank(m_points[last]));
      return;
    }
    const K7ECEF centre =
        K7ECEF((b.low.X() + b.high.X()) / 2, (b.low.Y() + b.high.Y()) / 2, (b.low.Z() + b.high.Z()) / 2);
    const K7ECEF half =
        K7ECEF((b.high.X() - b.low.X()) / 2, (b.high.Y() - b.low.Y()) / 2, (b.high.Z() - b.low.Z()) / 2);
    if (range.departures.RankWithin(centre, half) < range.search.Floor()) return;
    if (box >= m_leaves) {
      Scan(range.search, range.departures, std::max(from, range.from), last);
      return;
    }
    const int middle = from + (to - from) / 2;
    Look(range, 2 * box + 1, middle + 1, to);
    Look(range, 2 * box, from, middle);
  }

  int m_first = 0;
  int m_leaves = 1;
  bool m_allPositions = true;
  const K7ECEF* m_points = nullptr;
  std::unique_ptr<Box[]> m_boxes;
};

}  // namespace

// A tree is ranked span by span. What is to be measured waits until there is some of it: the measures do not
// depend on one another, so the processor has several of them in hand at a time.
class K7CromleyNode::Ranking {
 public:
  explicit Ranking(const K7ECEF* points) : m_points(points) {}
  ~Ranking() { Measure(); }

  bool Build(int first, int last) { return m_bounds.Build(first, last, m_points); }
  void Rank(K7CromleyNode& node, int first, int last) {
    const Departures departures(m_points[first], m_points[last]);
    node.m_index = m_bounds.Farthest(departures, first + 1, last - 1, node.m_distance);
    if (node.m_index < 0 || node.m_distance >= 0) return;
    if (m_count == ROOM) Measure();
    m_waiting[m_count++] = {&node, departures};
  }

 private:
  static constexpr int ROOM = 32;
  struct Waiting {
    K7CromleyNode* node;
    Departures departures;
  };

  void Measure() {
    for (int i = 0; i < m_count; i++) {
      K7CromleyNode& node = *m_waiting[i].node;
      const Departures& departures = m_waiting[i].departures;
      node.m_distance = departures.Of(m_points[node.m_index], departures.Normal());
    }
    m_count = 0;
  }

  const K7ECEF* m_points;
  Bounds m_bounds;
  int m_count = 0;
  Waiting m_waiting[ROOM];
};

K7CromleyNode::~K7CromleyNode() { DropChildren(); }

// All nodes below one that was ranked lie in one block, its children first: nobody else can rank, copy or
// delete them.
void K7CromleyNode::DropChildren() {
  std::free(m_left ? m_left : m_right);
  m_left = m_right = nullptr;
}

int K7CromleyNode::Generate(int first, int last, const K7ECEF* points) {
  if (!points) return K7_ERR_BAD_ARGUMENT;
  DropChildren();
  m_index = -1;
  m_distance = -1.0;
  if (last < 2 || first > last - 2) return 0;
  Ranking ranking(points);
  if (!ranking.Build(first, last)) return K7_ERR_MEMORY;
  ranking.Rank(*this, first, last);
  const size_t below = static_cast<size_t>(last - first) - 2;
  if (m_index < 0 || below == 0) return 0;
  // One node a point.
  auto* next = static_cast<K7CromleyNode*>(std::malloc(below * sizeof(K7CromleyNode)));
  if (!next) return K7_ERR_MEMORY;
  (m_index > first + 1 ? m_left : m_right) = next;  // for DropChildren, from now on

  struct Span {
    K7CromleyNode* node;
    int first, last;
  };
  // The longer half waits, so that no more spans wait than a length has bits.
  Span waiting[32];
  int count = 0;
  for (Span span = {this, first, last};;) {
    K7CromleyNode& node = *span.node;
    Span halves[2] = {{nullptr, span.first, node.m_index}, {nullptr, node.m_index, span.last}};
    if (node.m_index > span.first + 1) halves[0].node = node.m_left = new (next++) K7CromleyNode;
    if (node.m_index >= 0 && node.m_index < span.last - 1)
      halves[1].node = node.m_right = new (next++) K7CromleyNode;
    if (halves[0].last - halves[0].first < halves[1].last - halves[1].first) std::swap(halves[0], halves[1]);
    for (const Span& half : halves) {
      if (half.node) waiting[count++] = half;
    }
    if (count == 0) return 0;
    span = waiting[--count];
    span.node->m_distance = -1.0;
    ranking.Rank(*span.node, span.first, span.last);
  }
}

int K7CromleyNode::Traverse(double tolerance, const K7ECEF* points, K7IntArray& out) const {
  if (!points) return K7_ERR_BAD_ARGUMENT;
  // The nodes whose left side is being visited. A tree may be as deep as it has points.
  std::unique_ptr<const K7CromleyNode*[]> open;
  size_t count = 0, room = 0;
  for (const K7CromleyNode* node = this; node || count;) {
    if (node) {
      if (count == room) {
        const size_t grown = std::max<size_t>(64, 2 * room);
        std::unique_ptr<const K7CromleyNode*[]> copy(new (std::nothrow) const K7CromleyNode*[grown]);
        if (!copy) return K7_ERR_MEMORY;
        std::copy_n(open.get(), count, copy.get());
        open = std::move(copy);
        room = grown;
      }
      open[count++] = node;
      node = node->m_left;
      continue;
    }
    node = open[--count];
    if (node->m_index >= 0 && node->m_distance >= tolerance) {
      if (const int err = out += node->m_index; err < 0) return err;
    }
    node = node->m_right;
  }
  return 0;
}

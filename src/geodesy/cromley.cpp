#include "geodesy/sphere.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/cromley.h>
#include <k7/geodesy/grtcirc.h>

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
  Departures(const K7ECEF& from, const K7ECEF& to) : m_from(from), m_isRing(from == to) {
    if (m_isRing) return;
    m_chord.Init(from, to);
    m_axis.UnitNormal(from, to);
    m_hasAxis = std::fabs(m_axis.DotProduct(m_axis) - 1) < 1e-9;
  }

  double Of(const K7ECEF& p) const {
    if (m_isRing) return m_from.Distance(p);
    double cross, along;
    m_chord.OrthoDist(p, cross, along);
    return std::fabs(cross);
  }

  // A number that grows with the departure: the sine of the distance from the great circle; of the distance
  // from a point its cosine, turned around.
  double Rank(const K7ECEF& p) const {
    return m_isRing ? -m_from.DotProduct(p) : std::fabs(m_axis.DotProduct(p));
  }
  // No point within `half` of the box's centre ranks higher.
  double RankWithin(const K7ECEF& centre, const K7ECEF& half) const {
    const K7ECEF& axis = m_isRing ? m_from : m_axis;
    return Rank(centre) + std::fabs(axis.X()) * half.X() + std::fabs(axis.Y()) * half.Y() +
           std::fabs(axis.Z()) * half.Z();
  }
  // False where ranks mean nothing: the ends are opposite one another.
  bool HasRanks() const { return m_isRing || m_hasAxis; }

 private:
  K7ECEF m_from;
  K7GrtCirc m_chord;
  K7ECEF m_axis;
  bool m_isRing;
  bool m_hasAxis = false;
};

// Ranks of equal departures differ by rounding only: what lies so close below the best is measured.
constexpr double ROUNDING = 1e-14;

// Bounds of all groups of points: leaves of 16 points, and above them a binary tree in an array, the root
// at 1.
class Bounds {
 public:
  static constexpr int GROUP = 16;

  bool Build(int first, int last, const K7ECEF* points) {
    m_first = first;
    m_last = last;
    m_points = points;
    const int groups = (last - first) / GROUP + 1;
    while (m_leaves < groups) m_leaves *= 2;
    m_boxes.reset(new (std::nothrow) Box[2 * static_cast<size_t>(m_leaves)]);
    if (!m_boxes) return false;
    Box* const boxes = m_boxes.get();
    for (int i = 0; i < groups; i++) {
      const int from = first + i * GROUP, to = std::min(from + GROUP - 1, last);
      for (int p = from; p <= to; p++) boxes[m_leaves + i].Include(points[p], points[p]);
    }
    for (int i = m_leaves - 1; i > 0; i--) {
      boxes[i] = boxes[2 * i];
      boxes[i].Include(boxes[2 * i + 1].low, boxes[2 * i + 1].high);
    }
    return true;
  }

  // The farthest of the points from..to, the last of equal ones; -1 when no departure is a number.
  int Farthest(const Departures& departures, int from, int to, double& distance) const {
    Search search{departures, from, to, -1, -1.0, -std::numeric_limits<double>::infinity()};
    if (departures.HasRanks()) {
      Look(search, 1, m_first, m_first + m_leaves * GROUP - 1);
    } else {
      for (int i = from; i <= to; i++) search.Measure(m_points[i], i);
    }
    distance = search.distance;
    return search.index;
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

  struct Search {
    const Departures& departures;
    int from, to;
    int index;
    double distance;
    double rank;

    void Measure(const K7ECEF& p, int i) {
      const double measured = departures.Of(p);
      if (measured > distance || (measured == distance && i > index)) {
        distance = measured;
        index = i;
      }
      rank = std::max(rank, departures.Rank(p));
    }
  };

  // Depth is the logarithm of the points. The later half first, since the last of equal points counts.
  void Look(Search& search, int box, int from, int to) const {
    if (from > search.to || to < search.from) return;
    const Box& b = m_boxes.get()[box];
    const int last = std::min(to, search.to);
    if (b.IsPoint()) {
      if (last > search.index) search.Measure(m_points[last], last);
      return;
    }
    const K7ECEF centre =
        K7ECEF((b.low.X() + b.high.X()) / 2, (b.low.Y() + b.high.Y()) / 2, (b.low.Z() + b.high.Z()) / 2);
    const K7ECEF half =
        K7ECEF((b.high.X() - b.low.X()) / 2, (b.high.Y() - b.low.Y()) / 2, (b.high.Z() - b.low.Z()) / 2);
    if (search.departures.RankWithin(centre, half) < search.rank - ROUNDING) return;
    if (box >= m_leaves) {
      for (int i = last; i >= std::max(from, search.from); i--) {
        if (!(search.departures.Rank(m_points[i]) < search.rank - ROUNDING)) search.Measure(m_points[i], i);
      }
      return;
    }
    const int middle = from + (to - from) / 2;
    Look(search, 2 * box + 1, middle + 1, to);
    Look(search, 2 * box, from, middle);
  }

  int m_first = 0;
  int m_last = -1;
  int m_leaves = 1;
  const K7ECEF* m_points = nullptr;
  std::unique_ptr<Box[]> m_boxes;
};

}  // namespace

// Without recursion: a left subtree is hung under the rightmost path before its parent goes.
K7CromleyNode::~K7CromleyNode() {
  K7CromleyNode* next = std::exchange(m_left, nullptr);
  for (K7CromleyNode* rest = std::exchange(m_right, nullptr); next || rest;) {
    if (!next) next = std::exchange(rest, nullptr);
    if (K7CromleyNode* const left = next->m_left) {
      next->m_left = left->m_right;
      left->m_right = next;
      next = left;
      continue;
    }
    K7CromleyNode* const done = next;
    next = std::exchange(done->m_right, nullptr);
    delete done;
  }
}

int K7CromleyNode::Generate(int first, int last, const K7ECEF* points) {
  if (!points) return K7_ERR_BAD_ARGUMENT;
  delete std::exchange(m_left, nullptr);
  delete std::exchange(m_right, nullptr);
  m_index = -1;
  m_distance = -1.0;
  Bounds bounds;
  if (first + 1 < last && !bounds.Build(first, last, points)) return K7_ERR_MEMORY;

  struct Span {
    K7CromleyNode* node;
    int first, last;
  };
  // The longer half waits, so that no more spans wait than a length has bits.
  Span waiting[32];
  int count = 0, err = 0;
  Span span = {this, first, last};
  while (true) {
    K7CromleyNode& node = *span.node;
    node.m_distance = -1.0;
    if (span.first + 1 < span.last) {
      const Departures departures(points[span.first], points[span.last]);
      node.m_index = bounds.Farthest(departures, span.first + 1, span.last - 1, node.m_distance);
    }
    Span halves[2] = {{nullptr, span.first, node.m_index}, {nullptr, node.m_index, span.last}};
    if (node.m_index > span.first + 1) {
      halves[0].node = node.m_left = new (std::nothrow) K7CromleyNode;
      if (!node.m_left) err = K7_ERR_MEMORY;
    }
    if (node.m_index >= 0 && node.m_index < span.last - 1) {
      halves[1].node = node.m_right = new (std::nothrow) K7CromleyNode;
      if (!node.m_right) return K7_ERR_MEMORY;
    }
    if (halves[0].last - halves[0].first < halves[1].last - halves[1].first) std::swap(halves[0], halves[1]);
    for (const Span& half : halves) {
      if (half.node) waiting[count++] = half;
    }
    if (count == 0) return err;
    span = waiting[--count];
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

#include "geometry/bounds_tree.h"

#include <k7/foundation/error_string.h>

#include "foundation/alloc.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr int GRID_BITS = 16;

// How far along the Hilbert curve of a grid over the world a place lies.
uint32_t AlongCurve(double lat, double lon) {
  constexpr uint32_t SIDE = 1u << GRID_BITS;
  uint32_t x = static_cast<uint32_t>(std::clamp((lon + 180) / 360, 0.0, 1.0) * (SIDE - 1));
  uint32_t y = static_cast<uint32_t>(std::clamp((lat + 90) / 180, 0.0, 1.0) * (SIDE - 1));
  uint32_t along = 0;
  for (uint32_t s = SIDE / 2; s > 0; s /= 2) {
    const bool right = x & s, up = y & s;
    along += s * s * (right ? (up ? 2u : 3u) : (up ? 1u : 0u));
    if (up) continue;
    if (right) {
      x = SIDE - 1 - x;
      y = SIDE - 1 - y;
    }
    std::swap(x, y);
  }
  return along;
}

}  // namespace

void BoundsTree::Clear() {
  std::free(m_boxes);
  m_boxes = nullptr;
  m_root = -1;
  m_leaves = 0;
}

BoundsTree::Box BoundsTree::Over(int32_t first, int32_t count) const {
  Box over{-999, 999, -999, 999, first, count};
  for (int32_t i = first; i < first + count; ++i) {
    over.north = std::max(over.north, m_boxes[i].north);
    over.south = std::min(over.south, m_boxes[i].south);
    over.east = std::max(over.east, m_boxes[i].east);
    over.west = std::min(over.west, m_boxes[i].west);
  }
  return over;
}

int BoundsTree::Build(const K7ChartRect* boxes, int count) {
  Clear();
  if (count <= 0) return 0;
  // The levels above take a fifteenth of the leaves, and a box each.
  const int64_t room = int64_t{count} + count / (NODE - 1) + MAX_LEVELS;
  m_boxes = static_cast<Box*>(ReallocArray(nullptr, room, sizeof(Box)));
  if (!m_boxes) return K7_ERR_MEMORY;
  for (int32_t i = 0; i < count; ++i) {
    const K7ChartRect& box = boxes[i];
    if (box.IsEmpty()) continue;
    const double east = box.East() < box.West() ? box.East() + 360 : box.East();
    const uint32_t along = AlongCurve((box.North() + box.South()) / 2, (east + box.West()) / 2);
    // Until they are sorted the count holds their order.
    m_boxes[m_leaves++] = {box.North(), box.South(), east, box.West(), i, static_cast<int32_t>(along >> 1)};
  }
  std::sort(m_boxes, m_boxes + m_leaves, [](const Box& a, const Box& b) { return a.count < b.count; });
  int32_t first = 0, end = m_leaves;
  while (end - first > 1) {
    int32_t next = end;
    for (int32_t i = first; i < end; i += NODE) m_boxes[next++] = Over(i, std::min(NODE, end - i));
    first = std::exchange(end, next);
  }
  m_root = end - 1;
  return 0;
}

void BoundsTree::Find(const K7ChartRect& area, Buffer<int32_t>& found) const {
  if (m_root < 0 || area.IsEmpty()) return;
  const int before = found.Count();
  // Boxes across 180 reach on beyond it: the area is looked for where it stands and a turn to the east.
  const bool crosses = area.East() < area.West();
  FindWithin(area.North(), area.South(), area.East(), crosses ? area.West() - 360 : area.West(), found);
  FindWithin(area.North(), area.South(), area.East() + 360, crosses ? area.West() : area.West() + 360, found);
  std::sort(found.Data() + before, found.Data() + found.Count());
  const int32_t* const end = std::unique(found.Data() + before, found.Data() + found.Count());
  if (!found.Failed()) found.Truncate(static_cast<int>(end - found.Data()));
}

void BoundsTree::FindWithin(double north, double south, double east, double west,
                            Buffer<int32_t>& found) const {
  int32_t open[MAX_LEVELS * NODE];
  int depth = 0;
  open[depth++] = m_root;
  while (depth > 0) {
    const int32_t at = open[--depth];
    const Box& box = m_boxes[at];
    if (!(box.south <= north && south <= box.north && box.west <= east && west <= box.east)) continue;
    if (at < m_leaves)
      found.Add(box.item);
    else
      for (int32_t i = 0; i < box.count; ++i) open[depth++] = box.item + i;
  }
}

// Which of many boxes meet an area: a tree that is packed once and asked often.
#pragma once

#include "foundation/buffer.h"

#include <k7/projection/chart_rect.h>

#include <cstdint>

/// One box a record. Boxes and their parents lie in one block, level by level, each parent over NODE
/// neighbours along a Hilbert curve, so that an area meets few of them. (Kamel and Faloutsos, "On packing
/// R-trees", CIKM 1993.) Finished, it serves any number of threads.
class BoundsTree {
 public:
  BoundsTree() = default;
  BoundsTree(const BoundsTree&) = delete;
  BoundsTree& operator=(const BoundsTree&) = delete;
  ~BoundsTree() { Clear(); }

  /// `boxes` in degrees, numbers all; those that are empty are never found. 0 or K7_ERR_MEMORY.
  int Build(const K7ChartRect* boxes, int count);
  void Clear();
  /// Appends the numbers of those that meet an area, edges included, in rising order; an area whose east is
  /// below its west runs across 180. What memory runs out for, `found` tells.
  void Find(const K7ChartRect& area, Buffer<int32_t>& found) const;

 private:
  struct Box {
    double north, south, east, west;  // east never below west: beyond 180 where the box crosses it
    int32_t item;                     // of a leaf: the record; else the first box of the level below
    int32_t count;
  };
  static constexpr int NODE = 16;
  static constexpr int MAX_LEVELS = 9;  // 16^8 leaves and the root

  void FindWithin(double north, double south, double east, double west, Buffer<int32_t>& found) const;
  Box Over(int32_t first, int32_t count) const;

  Box* m_boxes = nullptr;
  int32_t m_root = -1;
  int32_t m_leaves = 0;
};

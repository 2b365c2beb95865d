// K7CromleyNode: the points of a line ranked once, for every tolerance. GenMinSpanCircle: the smallest circle
// around points.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/geodesy/ecef.h>

#include <cstdint>

/// Node of a binary tree over the points of a line: of the span from `first` to `last` it holds the point
/// that departs farthest from the great circle through the span's ends, and below it the spans on both sides.
/// A line is then simplified to any tolerance by `Traverse`, without ranking it again. (Cromley,
/// "Hierarchical methods of line simplification", Cartography and Geographic Information Systems 18, 1991;
/// the splitting is that of Douglas and Peucker.)
///
///     K7CromleyNode tree;
///     K7IntArray kept;
///     if (tree.Generate(0, count - 1, points) == 0 && tree.Traverse(0.5, points, kept) == 0) ...  // and
///     both ends
///
/// Depth and number of points are limited by memory alone. One thread generates; a finished tree may be
/// traversed by many.
class K7_API K7CromleyNode {
 public:
  K7CromleyNode() = default;
  K7CromleyNode(const K7CromleyNode&) = delete;
  K7CromleyNode& operator=(const K7CromleyNode&) = delete;
  ~K7CromleyNode();

  /// Builds the tree of a span of `points`, unit vectors; what the node held before is dropped. Departures
  /// are distances from the great circle between the span's ends, or from the first point where the ends are
  /// equal; of equal ones the last counts. 0, K7_ERR_BAD_ARGUMENT for null, K7_ERR_MEMORY with a part of the
  /// tree.
  ///
  /// Points are looked at in groups by their bounds, so that long lines, spirals and stacks of equal points
  /// cost n log n or little more; not so points that tie to the last bit span after span, as along the
  /// equator.
  int Generate(int first, int last, const K7ECEF* points);
  /// Appends the indexes of all points of the tree whose departure is at least `tolerance` NM, in increasing
  /// order. The ends of the line are never among them. A point stands for itself: one below the tolerance
  /// hides none of the points of its spans. 0, K7_ERR_BAD_ARGUMENT for null, or K7_ERR_MEMORY.
  int Traverse(double tolerance, const K7ECEF* points, K7IntArray& out) const;

  /// Index of the point of greatest departure, -1 without one; the departure in NM, -1 after a span without
  /// points between its ends.
  int Index() const { return m_index; }
  double Distance() const { return m_distance; }
  /// The trees of the spans up to the point, and from it on; null without points in between.
  const K7CromleyNode* Left() const { return m_left; }
  const K7CromleyNode* Right() const { return m_right; }

 private:
  class Ranking;

  void DropChildren();

  int32_t m_index = -1;
  double m_distance = 0;
  K7CromleyNode* m_left = nullptr;
  K7CromleyNode* m_right = nullptr;
};

/// The smallest circle on the sphere around points, an array of K7ECEF: its centre and its radius in NM. 0;
/// without points the outputs stay. Or K7_ERR_MEMORY, and they stay.
///
/// Points within a hemisphere have the circle that the smallest ball around them cuts from the sphere (Welzl,
/// "Smallest enclosing disks", 1991, in its form that moves to the front), in linear expected time. For
/// others it is what the largest circle without points leaves, the one about their convex hull's nearest
/// face, in n log n expected. Where several circles are the smallest, it is one of them.
K7_API int GenMinSpanCircle(K7Array& points, K7ECEF& centre, double& radius);

// Where the posts of a grid stand, along one of its sides.
#pragma once

#include <vector>

/// Posts in degrees, rising: from south to north, or from west to east.
class GridAxis {
 public:
  GridAxis() = default;
  GridAxis(double first, double step, int count) : m_first(first), m_step(step), m_count(count) {}
  /// At least two posts, rising, not evenly spaced (the rows of a Mercator grid).
  explicit GridAxis(std::vector<double> posts);

  int Count() const { return m_count; }
  double First() const { return m_first; }
  double Last() const;
  /// The mean distance between posts.
  double Spacing() const { return m_step; }
  /// The post at `degrees`, 2.5 halfway between posts 2 and 3; beyond the first and last post it goes on as
  /// between the two next to there. What rounding alone keeps from a post is that post.
  double IndexOf(double degrees) const;

 private:
  double m_first = 0;
  double m_step = 0;
  int m_count = 0;
  std::vector<double> m_posts;  // empty when they are evenly spaced
};

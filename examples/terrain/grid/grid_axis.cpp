#include "grid/grid_axis.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Of the distance between posts: text files state positions to five places and more.
constexpr double ROUNDING = 1e-4;

double Snapped(double index) {
  const double whole = std::round(index);
  return std::abs(index - whole) < ROUNDING ? whole : index;
}

}  // namespace

GridAxis::GridAxis(std::vector<double> posts)
    : m_first(posts.front()),
      m_step((posts.back() - posts.front()) / static_cast<double>(posts.size() - 1)),
      m_count(static_cast<int>(posts.size())),
      m_posts(std::move(posts)) {}

double GridAxis::Last() const { return m_posts.empty() ? m_first + m_step * (m_count - 1) : m_posts.back(); }

double GridAxis::IndexOf(double degrees) const {
  if (m_posts.empty()) return Snapped((degrees - m_first) / m_step);
  const auto above = std::upper_bound(m_posts.begin() + 1, m_posts.end() - 1, degrees);
  const double south = above[-1];
  return Snapped(static_cast<double>(above - m_posts.begin() - 1) + (degrees - south) / (*above - south));
}

#include "terrain/post_grid.h"

#include "foundation/buffer.h"

#include <algorithm>

namespace {

// Positions this close to a post, in posts, are the post: bounds in degrees do not divide exactly.
constexpr double SAME_POST = 1e-5;

// The source posts that make up one row or column of the target, where their weights lie, and the post in
// whose cell that is, or -1.
struct Taps {
  int first, count, weights, nearest;
};

Taps Tent(double at, int posts, int reach, Buffer<float>& weights) {
  const double whole = std::round(at);
  if (std::abs(at - whole) < SAME_POST) at = whole;
  const double held = std::clamp(at, 0.0, posts - 1.0);
  if (!(std::abs(at - held) < reach)) return {0, 0, 0, -1};
  const int first = std::max(0, static_cast<int>(std::floor(at - reach)) + 1);
  const int last = std::min(posts - 1, static_cast<int>(std::ceil(at + reach)) - 1);
  const bool isOn = std::abs(at - held) <= 0.5 + SAME_POST;
  const Taps taps{first, last - first + 1, weights.Count(), isOn ? static_cast<int>(std::round(held)) : -1};
  for (int i = first; i <= last; ++i) weights.Add(static_cast<float>(1 - std::abs(i - at) / reach));
  return taps;
}

// A mean that happens to be the number of the marker gives way by a metre: it is data.
int16_t Rounded(double value) {
  const auto metres = static_cast<int16_t>(std::floor(std::clamp(value, -32768.0, 32767.0) + 0.5));
  return metres == K7_NO_ELEV ? static_cast<int16_t>(metres + 1) : metres;
}

// Whole posts: only such a tent keeps a slope where it is.
int Reach(double targetStep, double sourceStep) {
  return static_cast<int>(std::clamp(targetStep / sourceStep + SAME_POST, 1.0, 32767.0));
}

// `all` is what the weights are together when no post is missing.
int16_t Weigh(const PostGrid& source, const Taps& row, const Taps& col, const float* weights, double all) {
  const bool isOn = row.nearest >= 0 && col.nearest >= 0;
  const int16_t nearest = isOn ? source.posts[row.nearest][col.nearest] : static_cast<int16_t>(K7_NO_ELEV);
  // What is copied is copied exactly, and most posts of most tiles are.
  if (isOn && row.count == 1 && col.count == 1) return nearest;
  double sum = 0, present = 0;
  for (int r = 0; r < row.count; ++r) {
    const int16_t* const posts = source.posts[row.first + r] + col.first;
    float rowSum = 0, rowPresent = 0;
    for (int c = 0; c < col.count; ++c) {
      const float w = posts[c] == K7_NO_ELEV ? 0 : weights[col.weights + c];
      rowPresent += w;
      rowSum += w * posts[c];
    }
    const double w = weights[row.weights + r];
    sum += w * static_cast<double>(rowSum);
    present += w * static_cast<double>(rowPresent);
  }
  const bool hasData = present > 0 && (nearest != K7_NO_ELEV || present > all / 2);
  return hasData ? Rounded(sum / present) : static_cast<int16_t>(K7_NO_ELEV);
}

}  // namespace

bool ResamplePosts(const PostGrid& source, double east, const PostGrid& target, int16_t* const* targetPosts) {
  Buffer<Taps> rows, cols;
  Buffer<float> weights;
  const int rowReach = Reach(target.RowStep(), source.RowStep());
  const int colReach = Reach(target.ColStep(), source.ColStep());
  for (int r = 0; r < target.rows; ++r)
    rows.Add(Tent(source.RowAt(target.Lat(r)), source.rows, rowReach, weights));
  for (int c = 0; c < target.cols; ++c) {
    const double at = ((c + 0.5) * target.ColStep() - east) / source.ColStep() - 0.5;
    cols.Add(Tent(at, source.cols, colReach, weights));
  }
  if (rows.Failed() || cols.Failed() || weights.Failed()) return false;
  const double all = static_cast<double>(rowReach) * colReach;
  for (int r = 0; r < target.rows; ++r) {
    if (rows[r].count == 0) continue;
    for (int c = 0; c < target.cols; ++c) {
      if (cols[c].count && targetPosts[r][c] == K7_NO_ELEV)
        targetPosts[r][c] = Weigh(source, rows[r], cols[c], weights.Data(), all);
    }
  }
  return true;
}

bool SmoothPosts(int rows, int cols, int16_t* const* posts) {
  Buffer<int16_t> memory;
  int16_t* const before = memory.Extend(2 * cols);
  if (!before) return false;
  int16_t* const here = before + cols;
  for (int r = 0; r < rows; ++r) {
    std::copy_n(posts[r], cols, here);
    const int rowReach = r > 0 && r < rows - 1;
    for (int c = 0; c < cols; ++c) {
      if (here[c] == K7_NO_ELEV) continue;
      const int colReach = c > 0 && c < cols - 1;
      int sum = 0, weight = 0;
      for (int dr = -rowReach; dr <= rowReach; ++dr) {
        const int16_t* const line = dr < 0 ? before : dr > 0 ? posts[r + 1] : here;
        for (int dc = -colReach; dc <= colReach; ++dc) {
          if (line[c + dc] == K7_NO_ELEV) continue;
          const int w = (dr ? 1 : 2) * (dc ? 1 : 2);
          sum += w * line[c + dc];
          weight += w;
        }
      }
      posts[r][c] = Rounded(static_cast<double>(sum) / weight);
    }
    std::copy_n(here, cols, before);
  }
  return true;
}

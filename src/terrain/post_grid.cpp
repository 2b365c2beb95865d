#include "terrain/post_grid.h"

#include "foundation/buffer.h"

#include <algorithm>

namespace {

// Positions this close to a post, in posts, are the post: bounds in degrees do not divide exactly.
constexpr double SAME_POST = 1e-6;

// The source posts that make up one row or column of the target, and where their weights lie.
struct Taps {
  int first, count, weights;
};

// The taps of a position `at` among `posts` posts with a tent of up to `reach` posts to either side. Only a
// tent of whole posts keeps a slope where it is.
Taps Tent(double at, int posts, double reach, Buffer<float>& weights) {
  const double whole = std::round(at);
  if (std::abs(at - whole) < SAME_POST) at = whole;
  const double room = std::min(at, posts - 1 - at);
  const double radius = std::max(1.0, std::floor(std::min(reach, room) + SAME_POST));
  const int first = std::max(0, static_cast<int>(std::floor(at - radius)) + 1);
  const int last = std::min(posts - 1, static_cast<int>(std::ceil(at + radius)) - 1);
  const Taps taps{first, last - first + 1, weights.Count()};
  for (int i = first; i <= last; ++i) weights.Add(static_cast<float>(1 - std::abs(i - at) / radius));
  return taps;
}

bool IsWithin(double at, int posts) { return at > -SAME_POST && at < posts - 1 + SAME_POST; }

// A mean that happens to be the number of the marker gives way by a metre: it is data.
int16_t Rounded(double value) {
  const auto metres = static_cast<int16_t>(std::floor(std::clamp(value, -32768.0, 32767.0) + 0.5));
  return metres == K7_NO_ELEV ? static_cast<int16_t>(metres + 1) : metres;
}

int16_t Weigh(const PostGrid& source, const Taps& row, const Taps& col, const float* weights) {
  // What is copied is copied exactly, and most posts of most tiles are.
  if (row.count == 1 && col.count == 1) return source.posts[row.first][col.first];
  double sum = 0, present = 0, all = 0;
  for (int r = 0; r < row.count; ++r) {
    const int16_t* const posts = source.posts[row.first + r] + col.first;
    float rowSum = 0, rowPresent = 0, rowAll = 0;
    for (int c = 0; c < col.count; ++c) {
      const float w = weights[col.weights + c];
      const float there = posts[c] == K7_NO_ELEV ? 0 : w;
      rowAll += w;
      rowPresent += there;
      rowSum += there * posts[c];
    }
    const double w = weights[row.weights + r];
    sum += w * rowSum;
    present += w * rowPresent;
    all += w * rowAll;
  }
  if (!(present > all / 2)) return K7_NO_ELEV;
  return Rounded(sum / present);
}

bool FindTaps(const PostGrid& source, const PostGrid& target, bool isRow, Buffer<Taps>& taps,
              Buffer<float>& weights) {
  const int count = isRow ? target.rows : target.cols;
  const int posts = isRow ? source.rows : source.cols;
  const double reach = isRow ? target.RowStep() / source.RowStep() : target.ColStep() / source.ColStep();
  for (int i = 0; i < count; ++i) {
    const double at = isRow ? source.RowAt(target.Lat(i)) : source.ColAt(target.Lon(i));
    const bool isOn =
        isRow ? target.Lat(i) >= source.south - 1e-9 && target.Lat(i) <= source.north + 1e-9
              : source.EastOf(target.Lon(i)) >= -1e-9 && source.EastOf(target.Lon(i)) <= source.width + 1e-9;
    taps.Add(isOn && IsWithin(at, posts) ? Tent(at, posts, reach, weights) : Taps{0, 0, 0});
  }
  return !taps.Failed() && !weights.Failed();
}

}  // namespace

bool ResamplePosts(const PostGrid& source, const PostGrid& target, int16_t* const* targetPosts) {
  Buffer<Taps> rows, cols;
  Buffer<float> weights;
  if (!FindTaps(source, target, true, rows, weights) || !FindTaps(source, target, false, cols, weights))
    return false;
  for (int r = 0; r < target.rows; ++r) {
    if (rows[r].count == 0) continue;
    for (int c = 0; c < target.cols; ++c) {
      if (cols[c].count && targetPosts[r][c] == K7_NO_ELEV)
        targetPosts[r][c] = Weigh(source, rows[r], cols[c], weights.Data());
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

#include "terrain/slopes.h"

#include <k7/geodesy/constants.h>

#include "foundation/alloc.h"
#include "foundation/buffer.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr double METRES_PER_DEGREE = K7_EARTH_RADIUS_NM * 1852 * K7_DEG_TO_RAD;
constexpr float NONE = std::numeric_limits<float>::quiet_NaN();

float Elevation(int16_t post) { return post == K7_NO_ELEV ? NONE : post; }

// Row `r` of the grid with a post without data on either side; so are rows outside.
void Load(const PostGrid& grid, int r, float* out) {
  out[0] = out[grid.cols + 1] = NONE;
  for (int c = 0; c < grid.cols; ++c)
    out[c + 1] = r >= 0 && r < grid.rows ? Elevation(grid.posts[r][c]) : NONE;
}

// What three posts in a line rise by from one to the next; not a number when they do not tell.
float Rise(float before, float here, float after) {
  const float across = (after - before) / 2;
  if (!std::isnan(across)) return across;
  const float on = after - here;
  return std::isnan(on) ? here - before : on;
}

// The mean with the weights 1 2 1 of what is there; 0 for nothing.
float Mean(float a, float b, float c) {
  float sum = 0, weight = 0;
  for (const auto& [value, w] : {std::pair{a, 1.0F}, std::pair{b, 2.0F}, std::pair{c, 1.0F}}) {
    if (std::isnan(value)) continue;
    sum += w * value;
    weight += w;
  }
  return weight > 0 ? sum / weight : 0;
}

Slope AtPost(const float* south, const float* here, const float* north, float perEast, float perNorth) {
  if (std::isnan(here[0])) return {0, 0, 0, 0};
  float east = (south[1] - south[-1] + 2 * (here[1] - here[-1]) + north[1] - north[-1]) / 8;
  float rise = (north[-1] - south[-1] + 2 * (north[0] - south[0]) + north[1] - south[1]) / 8;
  if (std::isnan(east + rise)) {
    east = Mean(Rise(south[-1], south[0], south[1]), Rise(here[-1], here[0], here[1]),
                Rise(north[-1], north[0], north[1]));
    rise = Mean(Rise(south[-1], here[-1], north[-1]), Rise(south[0], here[0], north[0]),
                Rise(south[1], here[1], north[1]));
  }
  return {here[0], east * perEast, rise * perNorth, 1};
}

}  // namespace

std::unique_ptr<Slope[]> FindSlopes(const PostGrid& grid) {
  std::unique_ptr<Slope[]> slopes(NewArray<Slope>(int64_t{grid.rows} * grid.cols));
  Buffer<float> memory;
  const int width = grid.cols + 2;
  float* south = memory.Extend(3 * width);
  if (!slopes || !south) return nullptr;
  float* here = south + width;
  float* north = here + width;
  Load(grid, -1, south);
  Load(grid, 0, here);
  const auto perNorth = static_cast<float>(1 / (METRES_PER_DEGREE * grid.RowStep()));
  for (int r = 0; r < grid.rows; ++r) {
    Load(grid, r + 1, north);
    // At a pole there is no east; what its posts differ by is not the ground's.
    const double narrowing = std::max(std::cos(grid.Lat(r) * K7_DEG_TO_RAD), 1e-6);
    const auto perEast = static_cast<float>(1 / (METRES_PER_DEGREE * grid.ColStep() * narrowing));
    Slope* const out = slopes.get() + static_cast<ptrdiff_t>(r) * grid.cols;
    for (int c = 0; c < grid.cols; ++c)
      out[c] = AtPost(south + c + 1, here + c + 1, north + c + 1, perEast, perNorth);
    std::swap(south, here);
    std::swap(here, north);
  }
  return slopes;
}

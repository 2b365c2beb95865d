#include "terrain/mosaic.h"

#include <k7/foundation/error_string.h>

#include "terrain/posts_block.h"
#include "terrain/tile_posts.h"

#include <algorithm>

namespace {

constexpr int64_t MAX_POSTS = int64_t{1} << 26;
// Posts of one lattice may miss it by this share of a spacing.
constexpr double SAME_LATTICE = 0.02;

bool IsWhole(double value) { return std::abs(value - std::round(value)) < SAME_LATTICE; }

// Posts in whole steps from the first post of the first tile. Columns count from the target's west.
struct Lattice {
  double rowStep, colStep;
  double south, east;  // of the cell of that post; the east in degrees from the target's western edge
  double lowRow, lowCol, highRow, highCol;  // what the target needs

  Lattice(const PostGrid& tile, const PostGrid& target)
      : rowStep(tile.RowStep()), colStep(tile.ColStep()), south(tile.south), east(target.EastOf(tile.west)) {
    const double rows = std::max(1.0, target.RowStep() / rowStep) + 2;
    const double cols = std::max(1.0, target.ColStep() / colStep) + 2;
    lowRow = std::floor((target.south - south) / rowStep - rows);
    highRow = std::ceil((target.north - south) / rowStep + rows);
    lowCol = std::floor(-east / colStep - cols);
    highCol = std::ceil((target.width - east) / colStep + cols);
  }
  double RowOf(const PostGrid& tile) const { return (tile.south - south) / rowStep; }
  double ColOf(const PostGrid& tile, const PostGrid& target) const {
    return (target.EastOf(tile.west) - east) / colStep;
  }
  bool Holds(const PostGrid& tile, const PostGrid& target) const {
    return std::abs(tile.RowStep() / rowStep - 1) * tile.rows < SAME_LATTICE &&
           std::abs(tile.ColStep() / colStep - 1) * tile.cols < SAME_LATTICE && IsWhole(RowOf(tile)) &&
           IsWhole(ColOf(tile, target));
  }
};

// Copies a tile into the block where that has no data; `row` and `col` are where the tile begins in it.
void Place(const PostGrid& tile, const int16_t* const* posts, int64_t row, int64_t col, int rows, int cols,
           int16_t* const* block) {
  const auto firstRow = static_cast<int>(std::clamp<int64_t>(-row, 0, tile.rows));
  const auto lastRow = static_cast<int>(std::clamp<int64_t>(rows - row, 0, tile.rows));
  const auto firstCol = static_cast<int>(std::clamp<int64_t>(-col, 0, tile.cols));
  const auto lastCol = static_cast<int>(std::clamp<int64_t>(cols - col, 0, tile.cols));
  for (int r = firstRow; r < lastRow; ++r) {
    for (int c = firstCol; c < lastCol; ++c) {
      int16_t& to = block[row + r][col + c];
      if (to == K7_NO_ELEV) to = posts[r][c];
    }
  }
}

// Marks those of the tiles, of which `first` is the first not yet done, that stand on its lattice, and merges
// them.
int MergeLattice(K7TerTile* const* tiles, int count, int first, bool* done, const PostGrid& target,
                 int16_t* const* posts) {
  PostGrid grid{};
  GridOf(*tiles[first], grid);
  const Lattice lattice(grid, target);
  const double rows = lattice.highRow - lattice.lowRow, cols = lattice.highCol - lattice.lowCol;
  if (!(rows * cols <= static_cast<double>(MAX_POSTS))) return K7_ERR_OUT_OF_RANGE;
  const auto turn = static_cast<int64_t>(std::round(360 / lattice.colStep));
  PostGrid all{0, 0, 0, cols * lattice.colStep, static_cast<int>(rows), static_cast<int>(cols), nullptr};
  all.south = lattice.south + lattice.lowRow * lattice.rowStep;
  all.north = all.south + rows * lattice.rowStep;
  PostsBlock block;
  if (!block.Make(all.rows, all.cols)) return K7_ERR_MEMORY;
  for (int i = first; i < count; ++i) {
    if (done[i] || !GridOf(*tiles[i], grid) || !lattice.Holds(grid, target)) continue;
    done[i] = true;
    const auto row = static_cast<int64_t>(std::round(lattice.RowOf(grid)) - lattice.lowRow);
    const auto col = static_cast<int64_t>(std::round(lattice.ColOf(grid, target)) - lattice.lowCol);
    if (row >= all.rows || row + grid.rows <= 0) continue;
    const K7TerMeshHold hold(*tiles[i]);
    // A target that goes around the earth meets a tile at both ends.
    for (int turns = -1; turns <= 1 && hold.Rows(); ++turns)
      Place(grid, hold.Rows(), row, col + turns * turn, all.rows, all.cols, block.Rows());
  }
  all.posts = block.Rows();
  const double east = lattice.east + lattice.lowCol * lattice.colStep;
  return ResamplePosts(all, east, target, posts) ? 0 : K7_ERR_MEMORY;
}

}  // namespace

int MergePosts(K7TerTile* const* tiles, int count, const PostGrid& target, int16_t* const* posts) {
  const std::unique_ptr<bool[]> done(new (std::nothrow) bool[static_cast<size_t>(count)]);
  if (!done) return K7_ERR_MEMORY;
  std::fill_n(done.get(), count, false);
  for (int i = 0; i < count; ++i) {
    PostGrid grid{};
    if (done[static_cast<size_t>(i)] || !GridOf(*tiles[i], grid)) continue;
    if (const int code = MergeLattice(tiles, count, i, done.get(), target, posts)) return code;
  }
  return 0;
}

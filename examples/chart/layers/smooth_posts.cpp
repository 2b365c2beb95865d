#include "layers/smooth_posts.h"

#include <vector>

namespace {

template <class Visit>
void VisitPosts(const K7TerTileEX& tile, Visit visit) {
  int16_t** const rows = tile.GetMesh();
  size_t i = 0;
  for (int row = 0; row < tile.RowCount(); ++row)
    for (int column = 0; column < tile.ColCount(); ++column, ++i)
      if (rows[row][column] != K7_NO_ELEV) visit(rows[row][column], i);
}

bool Smooth(K7TerTileEX& tile, int passes) {
  for (int i = 0; i < passes; ++i)
    if (tile.SmoothMesh() != 0) return false;
  return true;
}

}  // namespace

bool SmoothTwice(K7TerTileEX& tile, int passes) {
  if (passes < 1 || !tile.GetMesh()) return true;
  // What is left over has other posts around it than heights have.
  tile.FreeBoundary();
  std::vector<int16_t> heights(static_cast<size_t>(tile.RowCount()) * static_cast<size_t>(tile.ColCount()));
  std::vector<int16_t> smooth = heights;
  VisitPosts(tile, [&](int16_t& post, size_t i) { heights[i] = post; });
  if (!Smooth(tile, passes)) return false;
  VisitPosts(tile, [&](int16_t& post, size_t i) {
    smooth[i] = post;
    post = static_cast<int16_t>(heights[i] - post);
    if (post == K7_NO_ELEV) ++post;
  });
  const bool done = Smooth(tile, passes);
  VisitPosts(tile, [&](int16_t& post, size_t i) { post = static_cast<int16_t>(post + smooth[i]); });
  return done;
}

#include "layers/view_posts.h"

#include "layers/smooth_posts.h"

#include <algorithm>
#include <cmath>

std::unique_ptr<K7TerTileEX> PostsFor(const TerrainFiles& files, const K7MapView& view, double pixels,
                                      int leastPasses) {
  const double wanted = 60 / view.NMPerPixel() / pixels;
  int resolution = 0;
  for (const int finer : files.Resolutions())
    if (resolution == 0 || finer >= wanted) resolution = finer;
  auto posts = std::make_unique<K7TerTileEX>();
  for (K7TerTile* const tile : files.TilesIn(resolution, view.GetExtent())) posts->AddTileForMerge(tile);
  const double apart = 60.0 / resolution / view.NMPerPixel();
  const int passes = static_cast<int>(std::lround(std::min(apart / 4, 6.0)));
  if (posts->MergeCount() == 0 || posts->MergeTiles() != 0 ||
      !SmoothTwice(*posts, std::max(passes, leastPasses)))
    return nullptr;
  return posts;
}

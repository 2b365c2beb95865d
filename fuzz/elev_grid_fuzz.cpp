// Elevation grids from outside. The first byte picks the format; the grid is read whole and at posts of its
// own neighbourhood.

#include "grid/resample.h"

#include "support/temp_dir.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace {

void Look(ElevGrid& grid, double spacing) {
  std::vector<float> metres;
  const GridWindow all = {0, 0, grid.Lats().Count(), grid.Lons().Count()};
  if (!grid.Read(all, metres).empty()) return;
  for (const float post : metres)
    if (!std::isnan(post) && !IsPost(post)) std::abort();
  ElevGrid* const grids[] = {&grid};
  std::vector<int16_t> posts;
  const TargetPosts about = {grid.Lats().First() - spacing, grid.Lons().Last() - 3 * spacing, spacing, 9, 7};
  const bool isTooFine = spacing > 1000 * std::min(grid.Lats().Spacing(), grid.Lons().Spacing()) * (1 + 1e-9);
  const std::string problem = Resample(grids, about, posts);
  if (isTooFine ? problem.empty() : problem.empty() && posts.size() != 63) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  static const TempDir folder;
  static constexpr const char* NAMES[] = {"a.asc", "t.csv", "N48W123.hgt"};
  const std::string path = folder / NAMES[data[0] % std::size(NAMES)];
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data) + 1, static_cast<std::streamsize>(size - 1));
  std::unique_ptr<ElevGrid> grid;
  if (!OpenGrid(path, grid).empty()) return 0;
  Look(*grid, 1.0 / 120);
  Look(*grid, std::min(1.0, grid->Lats().Spacing() * 1.9));
  return 0;
}

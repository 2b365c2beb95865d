#include "region/region_plan.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int CELL = 30;
constexpr int RESOLUTIONS[] = {12, 40, 120, 400, 1200, 3600, 10800};
// A level counts as fine enough for a grid whose posts are closer by so much.
constexpr double CLOSE_ENOUGH = 1.25;

// `margin`: of the grid's posts, how far it reaches beyond the outermost.
bool Covers(const ElevGrid& grid, const K7ChartRect& area, int margin) {
  const double up = margin * grid.Lats().Spacing(), aside = margin * grid.Lons().Spacing();
  if (grid.Lats().First() - up >= area.North() || grid.Lats().Last() + up <= area.South()) return false;
  for (const int turn : {0, -360, 360})
    if (grid.Lons().First() - aside + turn < area.East() && grid.Lons().Last() + aside + turn > area.West())
      return true;
  return false;
}

}  // namespace

std::span<const int> LevelResolutions() { return RESOLUTIONS; }

int ResolutionFor(const ElevGrid& grid) {
  const double spacing = std::min(grid.Lats().Spacing(), grid.Lons().Spacing());
  for (const int resolution : RESOLUTIONS)
    if (1.0 / resolution <= spacing * CLOSE_ENOUGH) return resolution;
  return RESOLUTIONS[std::size(RESOLUTIONS) - 1];
}

std::string RegionPlan::Name() const {
  char name[32];
  std::snprintf(name, sizeof name, "%d_%c%02d%c%03d", resolution, south < 0 ? 'S' : 'N', std::abs(south),
                west < 0 ? 'W' : 'E', std::abs(west));
  return name;
}

int RegionPlan::PostsOf(int tile) const { return std::min(tilePosts, PostsAlong() - tile * tilePosts); }

K7ChartRect RegionPlan::Bounds() const {
  const double half = 0.5 / resolution;
  return {south + CELL + half, south - half, west + CELL + half, west - half};
}

K7ChartRect RegionPlan::TileBounds(int row, int col) const {
  const auto edge = [this](int corner, int posts) { return corner + (posts - 0.5) / resolution; };
  const int firstRow = row * tilePosts, firstCol = col * tilePosts;
  return {edge(south, firstRow + PostsOf(row)), edge(south, firstRow), edge(west, firstCol + PostsOf(col)),
          edge(west, firstCol)};
}

K7ChartRect RegionPlan::RowBounds(int row) const {
  const K7ChartRect tile = TileBounds(row, 0), all = Bounds();
  return {tile.North(), tile.South(), all.East(), all.West()};
}

std::vector<ElevGrid*> GridsIn(GridSpan grids, const K7ChartRect& area) {
  std::vector<ElevGrid*> in;
  for (ElevGrid* const grid : grids)
    if (Covers(*grid, area, 1)) in.push_back(grid);
  return in;
}

std::vector<RegionPlan> PlanRegions(GridSpan grids, int resolution, int tilePosts) {
  std::vector<RegionPlan> plans;
  for (int south = -90; south < 90; south += CELL)
    for (int west = -180; west < 180; west += CELL) {
      const K7ChartRect cell(south + CELL, south, west + CELL, west);
      const auto covers = [&cell](const ElevGrid* grid) { return Covers(*grid, cell, 0); };
      if (std::any_of(grids.begin(), grids.end(), covers))
        plans.push_back({resolution, south, west, tilePosts});
    }
  return plans;
}

// Which region files a set of grids makes.
#pragma once

#include "grid/elev_grid.h"

#include <k7/projection/chart_rect.h>

#include <span>
#include <string>
#include <vector>

/// The resolutions of terrain levels, in posts per degree, coarsest first.
std::span<const int> LevelResolutions();
/// That of the coarsest level whose posts stand no farther apart than those of the grid, by and large.
int ResolutionFor(const ElevGrid& grid);

/// A region file: a cell of 30 by 30 degrees at one resolution.
///
/// Its posts stand at whole fractions of a degree, where published grids have theirs, from the cell's south
/// and west edge to its north and east edge; tiles are cut between posts, so that what a lookup answers is
/// the nearest post. The bounds are those of the whole cell, as lookups of a position outside the bounds
/// answer 0 and do not go on to coarser levels; what has no elevations has no tiles.
struct RegionPlan {
  int resolution = 0;
  int south = 0;
  int west = 0;
  int tilePosts = 0;  ///< along each side of a tile, save those at the north and east edge

  /// "1200_N30W150".
  std::string Name() const;
  int PostsAlong() const { return 30 * resolution + 1; }
  int TilesAlong() const { return (PostsAlong() + tilePosts - 1) / tilePosts; }
  /// The posts of a tile of the row or column, along that side.
  int PostsOf(int tile) const;
  K7ChartRect Bounds() const;
  K7ChartRect TileBounds(int row, int col) const;
  K7ChartRect RowBounds(int row) const;
};

using GridSpan = std::span<ElevGrid* const>;

/// Those of the grids whose posts tell anything of a rectangle: they lie in it, or are the nearest outside.
std::vector<ElevGrid*> GridsIn(GridSpan grids, const K7ChartRect& area);

/// The regions of one resolution in which the grids have posts, not on the edges of the cell alone, from
/// south-west to north-east.
std::vector<RegionPlan> PlanRegions(GridSpan grids, int resolution, int tilePosts);

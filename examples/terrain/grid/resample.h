// Grids read at the posts of another one.
#pragma once

#include "grid/elev_grid.h"

#include <k7/terrain/ter_tile.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// The posts that are wanted: evenly spaced, `spacing` degrees either way.
struct TargetPosts {
  double south = 0;
  double west = 0;
  double spacing = 0;
  int rows = 0;
  int cols = 0;
};

/// Elevations at posts, row after row from the south, in whole metres. A post that a grid has at the same
/// place has its elevation; between posts it is interpolated bilinearly over those that have one, where these
/// have half the weight at least; posts much wider apart than the grids' have the mean of the grids about
/// them, of which half must be there. Where several grids lie, the first that has an elevation counts; across
/// the seam between two that meet it is interpolated as within one, and half a post beyond the outermost
/// posts these go on. A depth that would read as `K7_NO_ELEV` is a metre less deep. Empty, or what went
/// wrong, in one line.
std::string Resample(std::span<ElevGrid* const> grids, const TargetPosts& posts,
                     std::vector<int16_t>& metres);

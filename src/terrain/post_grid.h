// A grid of elevations and where it lies: what merging, smoothing, shading and meshes work on, whoever owns
// it.
#pragma once

#include <k7/terrain/ter_tile.h>

#include <cmath>
#include <cstdint>

/// Posts lie on the edges: the first row on the southern one, the last on the northern one, the columns
/// alike from west to east. Neighbours repeat the posts of their common edge.
struct PostGrid {
  double north, south, west, width;  // degrees; the width is above 0 whatever lies between
  int rows, cols;
  const int16_t* const* posts;  // rows from the south

  double RowStep() const { return rows > 1 ? (north - south) / (rows - 1) : north - south; }
  double ColStep() const { return cols > 1 ? width / (cols - 1) : width; }
  double Lat(int row) const { return row == rows - 1 ? north : south + row * RowStep(); }
  double Lon(int col) const { return west + (col == cols - 1 ? width : col * ColStep()); }
  /// Where a position lies, in posts from the south-western one; within the grid from 0 to rows - 1, cols
  /// - 1.
  double RowAt(double lat) const { return rows > 1 ? (lat - south) / RowStep() : 0; }
  double ColAt(double lon) const { return cols > 1 ? EastOf(lon) / ColStep() : 0; }
  /// Degrees east of the western edge; of what lies outside, the nearer side's: below 0 or above the width.
  double EastOf(double lon) const {
    const double turns = std::floor((lon - west) / 360);
    const double east = lon - west - 360 * turns;
    return east - width > 360 - east ? east - 360 : east;
  }
  bool IsOnGlobe() const {
    return north > south && south >= -90 && north <= 90 && width > 0 && width <= 360 && std::abs(west) <= 360;
  }
};

/// Fills the posts of `target` that have no data and lie on `source`, edges included. Posts that fall
/// together are copied; between posts the source is interpolated, and where it is finer than the target,
/// averaged with the weights of a tent as wide as the target's spacing. The tent narrows towards the edges of
/// the source, so that it stays level on both sides and nothing from beyond is needed: on an edge only the
/// edge's own posts count, and neighbours agree there. Posts without data are left out; where half of the
/// weight or more is missing, the target stays without data. False without memory.
bool ResamplePosts(const PostGrid& source, const PostGrid& target, int16_t* const* targetPosts);

/// Replaces every post by the mean of its neighbourhood with the weights 1 2 1 in both
/// directions. Edge posts are smoothed along the edge only, corners stay: so tiles that share an edge
/// still share it. Posts without data stay so and have no weight. False without memory.
bool SmoothPosts(int rows, int cols, int16_t* const* posts);

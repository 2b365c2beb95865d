// A grid of elevations and where it lies: what merging, smoothing, shading and meshes work on, whoever owns
// it.
#pragma once

#include <k7/terrain/ter_tile.h>

#include <cmath>
#include <cstdint>

/// Posts stand in the middle of their cells, which share the bounds evenly, as lookups take them.
struct PostGrid {
  double north, south, west, width;  // degrees; the width is above 0 whatever lies between
  int rows, cols;
  const int16_t* const* posts;  // rows from the south

  double RowStep() const { return (north - south) / rows; }
  double ColStep() const { return width / cols; }
  double Lat(int row) const { return south + (row + 0.5) * RowStep(); }
  double Lon(int col) const { return west + (col + 0.5) * ColStep(); }
  /// Where a position lies, in posts from the south-western one: -0.5 on the southern and western edge.
  double RowAt(double lat) const { return (lat - south) / RowStep() - 0.5; }
  double ColAt(double lon) const { return EastOf(lon) / ColStep() - 0.5; }
  /// Degrees east of the western edge; of what lies outside, the nearer side's: below 0 or above the width.
  double EastOf(double lon) const {
    const double east = lon - west - 360 * std::floor((lon - west) / 360);
    return east - width > 360 - east ? east - 360 : east;
  }
  /// Regions may reach half a post beyond a pole, so that posts stand on it.
  bool IsOnGlobe() const {
    return north > south && south >= -95 && north <= 95 && width > 0 && width <= 380 && std::abs(west) <= 380;
  }
  /// The grid with `posts` more on every side.
  PostGrid Grown(int more) const {
    const double row = more * RowStep(), col = more * ColStep();
    return {north + row, south - row, west - col, width + 2 * col, rows + 2 * more, cols + 2 * more, nullptr};
  }
};

/// Fills the posts of `target` that have no data from `source`, whose cells are told to begin `east` degrees
/// east of the target's western edge. Posts that fall together are copied; between posts the source is
/// interpolated, and where it is finer than the target, averaged with the weights of a tent as wide as the
/// target's spacing, of whole posts: so slopes stay what they are. Posts without data have no weight; a
/// target gets data where the nearest post has them or more than half of the weight. False without memory.
bool ResamplePosts(const PostGrid& source, double east, const PostGrid& target, int16_t* const* targetPosts);

/// Replaces every post by the mean of its neighbourhood with the weights 1 2 1 in both directions. Posts on
/// the rim are smoothed along it only, corners stay. Posts without data stay so and have no weight. False
/// without memory.
bool SmoothPosts(int rows, int cols, int16_t* const* posts);

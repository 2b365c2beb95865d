// Elevations with their slopes, post by post, from which pictures and meshes are made.
#pragma once

#include "terrain/post_grid.h"

#include <memory>

/// A post's elevation in metres and what it rises by in metres a metre to the east and to the north; all 0,
/// with `weight` 0 in place of 1, without data. Four numbers, so that four posts are weighed at a stroke.
struct Slope {
  float elevation, east, north, weight;
};

/// The slopes of all posts, row by row from the south; null without memory. They are those of B. K. P. Horn,
/// "Hill shading and the reflectance map", Proceedings of the IEEE 69 (1), 1981: the differences across a
/// post and its neighbours on either side, with the weights 1 2 1. Where a post is missing, what is left of
/// a difference serves, and where nothing is left, the other differences alone; so planes keep their
/// slope up to their edges. Metres are those of a sphere of 3437.74677 NM.
std::unique_ptr<Slope[]> FindSlopes(const PostGrid& grid);

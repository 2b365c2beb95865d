// Tiles of one spacing as one grid.
#pragma once

#include <k7/terrain/ter_tile.h>

#include "terrain/post_grid.h"

/// Fills the posts of `target` that have no data from tiles, in this order of precedence where they overlap.
/// Neighbours whose posts stand on one lattice are put together first, each post once, and the target's posts
/// are then interpolated across their edges as within them. Tiles whose grid cannot be had are left out.
/// Answers 0, K7_ERR_OUT_OF_RANGE when tiles have more than 2^26 posts on the target, or K7_ERR_MEMORY.
int MergePosts(K7TerTile* const* tiles, int count, const PostGrid& target, int16_t* const* posts);

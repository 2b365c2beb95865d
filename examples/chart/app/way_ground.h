// The ground under a way, taken from the region files of a folder.
#pragma once

#include "app/elevations.h"
#include "sheet/profile.h"

/// Fills the profile from the terrain; `posts`, where wanted, becomes the arc-seconds between the posts of
/// its finest data. Empty, or why there is none.
std::string MeasureGround(const TerrainOptions& options, Profile& profile, double* posts = nullptr);

// The ground under a way.
#pragma once

#include "sheet/elevations.h"
#include "sheet/profile.h"

/// Fills the profile from posts that lie `resolution` arc-seconds apart, or the finest. Empty, or why there
/// is none.
std::string MeasureGround(Elevations& terrain, double resolution, Profile& profile);

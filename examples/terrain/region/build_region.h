// Region files, made from grids.
#pragma once

#include "region/region_plan.h"

#include <functional>

/// Told before each row of tiles how far the work has come, 0 to 1.
using RegionProgress = std::function<void(double share)>;

/// Makes the file of a region in `folder`, and its checksum companion. Both are written beside their places
/// and take them when they are whole; until then what is there stays as it is, and no other process is in the
/// way. Without an elevation in the whole region there are 0 `tiles`, and no file is made. Empty, or what
/// went wrong, in one line.
std::string BuildRegion(GridSpan grids, const RegionPlan& plan, const std::string& folder,
                        const RegionProgress& progress, int& tiles);

/// What the library's code says, as people read it.
std::string Explain(int code);

// What a region file holds.
#pragma once

#include <k7/terrain/ter_region.h>

#include <cstdint>
#include <functional>
#include <string>

struct RegionSurvey {
  int tiles = 0;
  int64_t posts = 0;
  int64_t voids = 0;  ///< posts without elevation
  int lowest = 0;     ///< metres; of no meaning where all posts are voids
  int highest = 0;
};

/// Reads a region's file and every tile's grid, of which one at a time is kept. Empty, or what is wrong, in
/// one line.
std::string SurveyRegion(const std::string& path, K7TerRegion& region, RegionSurvey& survey,
                         const std::function<void(double share)>& progress);

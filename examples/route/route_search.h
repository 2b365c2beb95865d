// The search for the shortest way between two places over the airways, with a direct leg at either end.
#pragma once

#include <k7/geodesy/latlon.h>

#include <cstdint>
#include <optional>
#include <vector>

class AirwayGraph;

struct SearchRequest {
  K7LatLon from, to;
  double directNM = 0;      ///< each of both direct legs is no longer
  std::optional<int> feet;  ///< at which airways are flown; none: any
};

struct SearchResult {
  enum What {
    FOUND,
    NO_WAY_ON,     ///< no airway within reach of the start, or none that is flown at that altitude
    NO_WAY_THERE,  ///< airways lead away from the start and none comes near enough to the end
    NO_MEMORY
  };
  What what = NO_WAY_ON;
  /// The nodes of the graph along the way, without the ends; empty for a way that is one direct leg.
  std::vector<uint32_t> nodes;
  /// Of NO_WAY_THERE: the node reached that is nearest to the end, and how far off it is. Of NO_WAY_ON the
  /// node nearest to the start. NodeCount() when there is none.
  uint32_t nearest = 0;
  double nearestNM = 0;
};

/// The way of the least length by great circles; of equal ones any. Its cost is the ways' length and its
/// estimate the great circle to the end, which no way beats: the first way found is the shortest.
SearchResult SearchRoute(const AirwayGraph& graph, const SearchRequest& request);

// Where the data lie, for those who look at maps of them first.
#pragma once

#include "store/nav_store.h"

#include <string>

struct Home {
  double lat, lon, rangeNM;  // of the middle, and to the nearer edge
};

/// Of navigation data, or without any where charts lie unless they are told otherwise.
Home HomeOf(NavStore* store);
/// Who made them; empty for none. UTF-8.
std::string AttributionOf(NavStore* store);

// The two ends of a route: which of the places that an identifier stands for is meant.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/nav_key.h>

#include <string>

class NavStore;

struct RouteEnd {
  std::string ident;
  std::string what;  ///< "airport SEATTLE-TACOMA INTL", UTF-8
  K7NavKey key;
  K7LatLon place;
  std::string note;  ///< how it was chosen among several; empty for the only one
};

/// Of all pairs of places that the identifiers stand for, the nearest to each other. Empty, or what is wrong.
std::string FindEnds(NavStore& store, const std::string& from, const std::string& to, RouteEnd& first,
                     RouteEnd& second);

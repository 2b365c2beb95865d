#include "web/route_point.h"

#include "route/route_ends.h"

#include <k7/foundation/string.h>

std::string PointText(const K7LatLon& place) {
  return std::string(K7FmtString("%.5f,%.5f", place.Lat(), place.Lon()));
}

std::string PointText(const std::string& ident, const K7LatLon& place) {
  const bool isIdent = !ident.empty() && ident.find('@') == std::string::npos && MayBeIdent(ident);
  return (isIdent ? ident + "@" : std::string()) + PointText(place);
}

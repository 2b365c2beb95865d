// The two ends of a route: positions, and which of the places that an identifier stands for is meant.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/nav_key.h>

#include <string>
#include <vector>

class NavStore;

struct RouteEnd {
  std::string ident;
  std::string what;  ///< "airport SEATTLE-TACOMA INTL", UTF-8
  K7NavKey key;      ///< no record for a position
  K7LatLon place;
  std::string note;  ///< how it was chosen among several; empty for the only one
};

/// Of all pairs of places that two identifiers stand for, the nearest to each other; a text that is none, and
/// that `K7LatLon::ParsePosition` reads, is a position. Empty, or what is wrong.
std::string FindEnds(NavStore& store, const std::string& from, const std::string& to, RouteEnd& first,
                     RouteEnd& second);

/// The places of a way that is flown without airways: each text is an identifier, or a position. Of all pairs
/// of places that the first two stand for, the nearest to each other; then always the nearest to the one
/// before. "SEA@47.43,-122.31" is the place of that identifier that is nearest to a position; of a text alone
/// it is the first that there is. Empty, or what is wrong. The store need be open only for what `MayBeIdent`.
std::string FindPlaces(NavStore& store, const std::vector<std::string>& texts, std::vector<RouteEnd>& places);
/// No blank, point or other sign that identifiers lack and positions have, before an '@'.
bool MayBeIdent(const std::string& text);
/// "there is no airport, navaid or fix 'KSAE'; spelled like it are KSEA": for an identifier without a place.
std::string NoSuchPlace(NavStore& store, const std::string& ident);

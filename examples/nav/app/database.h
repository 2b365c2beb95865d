// The database that a verb asks, and how its records are told to a person.
#pragma once

#include "app_common/option_table.h"
#include "store/nav_store.h"

#include <k7/geodesy/latlon.h>

#include <span>
#include <string>
#include <vector>

struct DatabaseOptions {
  std::string path;  ///< empty: that of the sample
};
void AddDatabaseOptions(OptionTable& table, DatabaseOptions& options);

/// Opens it. Empty, or what went wrong, in one line.
std::string OpenDatabase(const DatabaseOptions& options, NavStore& store);

/// Reads a position as `K7LatLon::ParsePosition` does. Empty, or what is wrong.
std::string ReadPosition(const std::string& text, K7LatLon& position);

/// UTF-8 of the windows-1252 text of a record; "" of null. What a terminal would obey is replaced by "?".
std::string Utf8(const char* text);

/// Empty for records without one.
std::string IdentOf(const K7NavRec& rec);
/// "KSEA (SEATTLE-TACOMA INTL)", or what there is of a record without a description.
std::string Describe(NavStore& store, const K7NavRec& rec);
/// Where a record is: its own position, or the middle of its bounds. False for records without a place.
bool PlaceOf(const K7NavRec& rec, K7LatLon& at);
/// "N47 27.0 W122 18.7".
std::string PositionText(const K7LatLon& at);

/// Types that people look up by identifier, in the order in which they are listed.
std::span<const K7NavType> ListedTypes();

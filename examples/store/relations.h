// Which records belong to which: columns of keys, and those that have an index.
#pragma once

#include <string>
#include <vector>

#include "store/columns.h"

/// Records of `type` that name another in the column `key`, in the order of the columns `order` (their index
/// when it is empty).
struct Relation {
  K7NavType type;
  const char* key;
  const char* order;
};

inline constexpr Relation RUNWAYS_OF_AIRPORT = {K7NAV_RUNWAY, "airport_key", ""};
inline constexpr Relation COMMS_OF_AIRPORT = {K7NAV_AIRPORT_COMM, "airport_key", ""};
inline constexpr Relation LOCALIZERS_OF_AIRPORT = {K7NAV_LOCALIZER, "airport_key", ""};
inline constexpr Relation LOCALIZERS_OF_RUNWAY = {K7NAV_LOCALIZER, "runway_key", ""};
inline constexpr Relation MARKERS_OF_AIRPORT = {K7NAV_MARKER, "airport_key", ""};
inline constexpr Relation FLEETS_OF_AIRPORT = {K7NAV_FLEET_AIRPORT, "airport_key", ""};
inline constexpr Relation HOLDINGS_OF_FIX = {K7NAV_HOLDING, "fix_key", ""};
inline constexpr Relation CROSSING_ALTS_OF_FIX = {K7NAV_MIN_CROSSING_ALT, "fix_key", ""};
inline constexpr Relation RESTRICTIONS_OF_SEGMENT = {K7NAV_AIRWAY_RESTRICTION, "segment_key", ""};
inline constexpr Relation SEGMENTS_OF_AIRSPACE = {K7NAV_AIRSPACE_SEG, "airspace_key", "sequence,"};
inline constexpr Relation COMMS_OF_AIRSPACE = {K7NAV_ENROUTE_COMM, "fir_key", ""};
inline constexpr Relation LINKS_TO_RECORD = {K7NAV_SMART_NOTE_LINK, "navdata_key", ""};
inline constexpr Relation LINKS_OF_NOTE = {K7NAV_SMART_NOTE_LINK, "smartnote_key", ""};
inline constexpr Relation COMMS_OF_NOTE = {K7NAV_SMART_NOTE_COMM, "smartnote_key", ""};
inline constexpr Relation ALTITUDES_OF_NOTE = {K7NAV_SMART_NOTE_ALTITUDE, "smartnote_key", ""};

inline constexpr K7NavType AIRWAY_TYPES[] = {K7NAV_HIGH_AIRWAY, K7NAV_LOW_AIRWAY, K7NAV_HIGH_TACAN_AIRWAY,
                                             K7NAV_LOW_TACAN_AIRWAY};
constexpr Relation SegmentsOfAirway(K7NavType type) { return {type, "header_key", "sequence,"}; }
constexpr Relation SegmentsFrom(K7NavType type) { return {type, "from_key", ""}; }
constexpr Relation SegmentsTo(K7NavType type) { return {type, "to_key", ""}; }
constexpr Relation LegsOfAirport(K7NavType type) {
  return {type, "airport_key", "procedure_ident,transition_ident,sequence,"};
}

/// Columns of a type's table that have an index: the identifier and the keys by which others ask.
std::vector<std::string> IndexesOf(const TypeTable& table);

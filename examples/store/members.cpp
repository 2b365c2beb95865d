#include <k7/navdata/aerodrome.h>
#include <k7/navdata/airport.h>
#include <k7/navdata/airspace.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/comm.h>
#include <k7/navdata/navaid.h>
#include <k7/navdata/note.h>
#include <k7/navdata/obstacle.h>

#include <cstddef>
#include <initializer_list>
#include <span>
#include <type_traits>

#include "store/columns.h"

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif

namespace {

template <class T>
constexpr K7NavFieldStorage StorageOf() {
  if constexpr (std::is_same_v<T, K7NavKey>) return K7STORE_KEY;
  if constexpr (std::is_same_v<T, K7NavText>) return K7STORE_POINTER;
  if constexpr (std::is_same_v<T, char>) return K7STORE_CHAR;
  if constexpr (std::is_same_v<T, uint8_t>) return K7STORE_U8;
  if constexpr (std::is_same_v<T, uint16_t>) return K7STORE_U16;
  if constexpr (std::is_same_v<T, int16_t>) return K7STORE_I16;
  if constexpr (std::is_same_v<T, uint32_t>) return K7STORE_U32;
  if constexpr (std::is_same_v<T, int32_t>) return K7STORE_I32;
  if constexpr (std::is_same_v<T, float>) return K7STORE_FLOAT;
  if constexpr (std::is_array_v<T> && std::is_same_v<std::remove_extent_t<T>, char>) return K7STORE_TEXT;
  return K7STORE_BYTES;
}

template <class T>
constexpr uint16_t WidthOf() {
  return static_cast<uint16_t>(sizeof(T) - (StorageOf<T>() == K7STORE_TEXT ? 1 : 0));
}

#define AT(record, member) static_cast<uint16_t>(offsetof(record, member))
#define MEMBER(name, record, member) \
  { name, StorageOf<decltype(record::member)>(), AT(record, member), WidthOf<decltype(record::member)>() }
#define DEGREES(name, record, member) \
  { name, K7STORE_FIXED_DEGREES, AT(record, member), 4 }
#define PACKED(name, high, record, member) \
  {name, K7STORE_ALT_VALUE, AT(record, member), 4}, { name high, K7STORE_ALT_FLAG, AT(record, member), 4 }
#define ALT(name, record, member) PACKED(name, "_flag", record, member)
#define COURSE(name, record, member) PACKED(name, "_reference", record, member)
#define BOUNDS(record)                                                                             \
  DEGREES("north", record, north), DEGREES("south", record, south), DEGREES("east", record, east), \
      DEGREES("west", record, west)

constexpr Member FIX[] = {
    DEGREES("lat", K7NavFix, lat),
    DEGREES("lon", K7NavFix, lon),
    {"ident", K7STORE_TEXT, AT(K7NavFix, ident), 8},
    MEMBER("icao_region", K7NavFix, icao),
    MEMBER("elev", K7NavFix, elev),
    MEMBER("fir_key", K7NavFix, fir),
    MEMBER("uir_key", K7NavFix, uir),
    MEMBER("mag_var", K7NavFix, magVar),
};
constexpr Member VHFNAVAID[] = {MEMBER("range", K7VHFNavaid, range)};
constexpr Member NDB[] = {MEMBER("range", K7NDB, range)};
constexpr Member AIRPORT[] = {
    MEMBER("utc_offset", K7Airport, utcOffset),
    ALT("speed_limit_alt", K7Airport, speedLimitAlt),
    ALT("trans_alt", K7Airport, transAlt),
    ALT("trans_level", K7Airport, transLevel),
};
constexpr Member RUNWAY[] = {
    {"airport_ident", K7STORE_TEXT, AT(K7Runway, airportIdent), sizeof(K7Runway::airportIdent)},
    MEMBER("gradient", K7Runway, gradient),
};
constexpr Member LOCALIZER[] = {MEMBER("runway_key", K7LocalizerGlideslope, runway)};
constexpr Member MARKER[] = {
    MEMBER("mag_var", K7LocatorMarker, magVar),    MEMBER("airport_key", K7LocatorMarker, airport),
    MEMBER("runway_key", K7LocatorMarker, runway), MEMBER("flags", K7LocatorMarker, flags),
    MEMBER("freq", K7LocatorMarker, freq),         MEMBER("name", K7LocatorMarker, name),
    MEMBER("true_brg", K7LocatorMarker, trueBrg),  MEMBER("runway_ident", K7LocatorMarker, runwayIdent),
};
constexpr Member AIRWAY_SEG[] = {
    MEMBER("from_key", K7AirwaySeg, fromKey),
    MEMBER("to_key", K7AirwaySeg, toKey),
    MEMBER("from_ident", K7AirwaySeg, fromIdent),
    MEMBER("to_ident", K7AirwaySeg, toIdent),
    MEMBER("header_key", K7AirwaySeg, header),
    MEMBER("sequence", K7AirwaySeg, sequence),
    ALT("mea_opposite", K7AirwaySeg, meaOpposite),
    ALT("moca", K7AirwaySeg, moca),
    ALT("maa", K7AirwaySeg, maa),
    COURSE("course", K7AirwaySeg, course),
    COURSE("course_opposite", K7AirwaySeg, courseOpposite),
    MEMBER("distance", K7AirwaySeg, distance),
    MEMBER("fir_key", K7AirwaySeg, fir),
    MEMBER("cruise_table_key", K7AirwaySeg, cruiseTable),
    MEMBER("rnp", K7AirwaySeg, rnp),
    MEMBER("direction", K7AirwaySeg, direction),
};
constexpr Member ENROUTE_COMM[] = {
    MEMBER("flags", K7EnrouteComm, flags),
    MEMBER("comm_info", K7EnrouteComm, commInfo),
    DEGREES("lat", K7EnrouteComm, lat),
    DEGREES("lon", K7EnrouteComm, lon),
};
constexpr Member AREA[] = {
    MEMBER("name", K7NavArea, name),
    MEMBER("ident", K7NavArea, ident),
    MEMBER("icao_region", K7NavArea, icao),
    MEMBER("type", K7NavArea, type),
    MEMBER("flags", K7NavArea, flags),
    MEMBER("sector", K7NavArea, sector),
    BOUNDS(K7NavArea),
    MEMBER("first_seg", K7NavArea, firstSeg),
    MEMBER("seg_count", K7NavArea, segCount),
};
constexpr Member CTRL_AIRSPACE[] = {MEMBER("comm_key", K7CtrlAirspace, comm)};
constexpr Member HOLDING[] = {
    MEMBER("fix_key", K7HoldingPattern, fix),
    MEMBER("airport_key", K7HoldingPattern, airport),
    MEMBER("fix_ident", K7HoldingPattern, fixIdent),
    MEMBER("icao_region", K7HoldingPattern, icao),
    COURSE("inbound", K7HoldingPattern, inbound),
    ALT("min_alt", K7HoldingPattern, minAlt),
    ALT("max_alt", K7HoldingPattern, maxAlt),
    MEMBER("leg_time", K7HoldingPattern, legTime),
    MEMBER("leg_length", K7HoldingPattern, legLength),
    MEMBER("speed", K7HoldingPattern, speed),
    MEMBER("turn", K7HoldingPattern, turn),
    DEGREES("lat", K7HoldingPattern, lat),
    DEGREES("lon", K7HoldingPattern, lon),
};
constexpr Member MORA[] = {
    MEMBER("lat", K7Mora, lat),
    MEMBER("lon", K7Mora, lon),
    ALT("alt", K7Mora, alt),
};
constexpr Member CRUISE_TABLE[] = {
    MEMBER("english", K7CruiseTable, english),
    MEMBER("metric", K7CruiseTable, metric),
};
constexpr Member FORMATION[] = {
    MEMBER("bearing", K7Formation, bearing),
    MEMBER("distance", K7Formation, distance),
};
constexpr Member PROCEDURE[] = {
    {"airport_ident", K7STORE_TEXT, AT(K7ProcedureLeg, airportIdent), 8},
    {"procedure_ident", K7STORE_TEXT, AT(K7ProcedureLeg, procedureIdent), 7},
    {"transition_ident", K7STORE_TEXT, AT(K7ProcedureLeg, transitionIdent), 6},
    {"runway_ident", K7STORE_TEXT, AT(K7ProcedureLeg, runwayIdent), 7},
    MEMBER("fix_key", K7ProcedureLeg, fix),
    MEMBER("rccmndd_fix_key", K7ProcedureLeg, recommendedFix),
    MEMBER("arc_cntr_fix_key", K7ProcedureLeg, arcCenterFix),
    MEMBER("path_term", K7ProcedureLeg, pathTerm),
    MEMBER("theta", K7ProcedureLeg, theta),
    MEMBER("rho", K7ProcedureLeg, rho),
    MEMBER("mag_course", K7ProcedureLeg, magCourse),
    MEMBER("time_dist", K7ProcedureLeg, timeDist),
    MEMBER("turn", K7ProcedureLeg, turn),
    MEMBER("alt_description", K7ProcedureLeg, altDescription),
    MEMBER("route_type", K7ProcedureLeg, routeType),
    ALT("alt1", K7ProcedureLeg, alt1),
    ALT("alt2", K7ProcedureLeg, alt2),
    MEMBER("sequence", K7ProcedureLeg, sequence),
    MEMBER("speed_limit", K7ProcedureLeg, speedLimit),
    MEMBER("airport_key", K7ProcedureLeg, airport),
    MEMBER("flags", K7ProcedureLeg, flags),
    MEMBER("rnp", K7ProcedureLeg, rnp),
    MEMBER("vertical_angle", K7ProcedureLeg, verticalAngle),
    MEMBER("fix_ident", K7ProcedureLeg, fixIdent),
};
constexpr Member AIRSPACE_SEG[] = {
    MEMBER("airspace_key", K7AirspaceSeg, airspace),
    MEMBER("sequence", K7AirspaceSeg, sequence),
    MEMBER("via", K7AirspaceSeg, via),
    DEGREES("start_lat", K7AirspaceSeg, lat),
    DEGREES("start_lon", K7AirspaceSeg, lon),
    DEGREES("end_lat", K7AirspaceSeg, endLat),
    DEGREES("end_lon", K7AirspaceSeg, endLon),
    DEGREES("center_lat", K7AirspaceSeg, centerLat),
    DEGREES("center_lon", K7AirspaceSeg, centerLon),
    MEMBER("radius", K7AirspaceSeg, radius),
    MEMBER("start_brg", K7AirspaceSeg, startBrg),
    MEMBER("end_brg", K7AirspaceSeg, endBrg),
};
constexpr Member AIRWAY_RESTRICTION[] = {
    MEMBER("airway_ident", K7AirwayRestriction, airwayIdent),
    MEMBER("restriction_type", K7AirwayRestriction, restrictionType),
    MEMBER("start_ident", K7AirwayRestriction, startIdent),
    MEMBER("end_ident", K7AirwayRestriction, endIdent),
    ALT("alt1", K7AirwayRestriction, alt1),
    ALT("alt2", K7AirwayRestriction, alt2),
    MEMBER("flags", K7AirwayRestriction, flags),
};
constexpr Member AIRWAY_HEADER[] = {MEMBER("first_seg", K7AirwayHeader, firstSeg)};
constexpr Member TRANSIT_ROUTE[] = {
    MEMBER("ident", K7TransitRoute, ident),        MEMBER("remarks", K7TransitRoute, remarks),
    MEMBER("first_seg", K7TransitRoute, firstSeg), MEMBER("seg_count", K7TransitRoute, segCount),
    MEMBER("flags", K7TransitRoute, flags),
};
constexpr Member RESERVED_40[] = {MEMBER("contents", K7Reserved40, reserved)};
constexpr Member SPECIAL_ACTIVITY[] = {
    DEGREES("lat", K7SpecialActivityArea, lat),
    DEGREES("lon", K7SpecialActivityArea, lon),
    MEMBER("city", K7SpecialActivityArea, city),
    MEMBER("flags", K7SpecialActivityArea, flags),
};
constexpr Member FLEET_AIRPORT[] = {MEMBER("airport_key", K7FleetAirport, airport)};
constexpr Member SHORELINE[] = {
    MEMBER("flags", K7TailoredLine, flags),
    BOUNDS(K7TailoredLine),
    MEMBER("first_seg", K7TailoredLine, firstSeg),
    MEMBER("seg_count", K7TailoredLine, segCount),
};
constexpr Member TRANSIENT_POINT[] = {MEMBER("name", K7TransientPoint, name)};
constexpr Member COMPANY_COMM[] = {
    MEMBER("primary_freq_callsign", K7CompanyComm, primary.callsign),
    MEMBER("primary_freq_hours", K7CompanyComm, primary.hours),
    MEMBER("secondary_freq_callsign", K7CompanyComm, secondary.callsign),
    MEMBER("secondary_freq_hours", K7CompanyComm, secondary.hours),
    MEMBER("tertiary_freq_value", K7CompanyComm, tertiary.value),
    MEMBER("tertiary_freq_callsign", K7CompanyComm, tertiary.callsign),
    MEMBER("tertiary_freq_hours", K7CompanyComm, tertiary.hours),
};
constexpr Member AERODROME_AREA[] = {
    MEMBER("airport_key", K7AerodromeArea, airport),
    BOUNDS(K7AerodromeArea),
};
constexpr Member AERODROME_SURFACE[] = {
    MEMBER("feature_type", K7AerodromeSurface, featureType),
    MEMBER("airport_key", K7AerodromeSurface, airport),
};
constexpr Member AERODROME_SIGN[] = {MEMBER("airport_key", K7AerodromeSign, airport)};
constexpr Member SMART_NOTE[] = {BOUNDS(K7SmartNotes)};
constexpr Member SMART_NOTE_LINK[] = {
    MEMBER("area_code", K7SmartNoteLink, areaCode),
    MEMBER("coverage_code", K7SmartNoteLink, coverageCode),
    MEMBER("cardinal_direction", K7SmartNoteLink, cardinalDirection),
    MEMBER("dist_descrip", K7SmartNoteLink, distDescrip),
    MEMBER("units", K7SmartNoteLink, units),
    MEMBER("distance", K7SmartNoteLink, distance),
};
constexpr Member SMART_NOTE_COMM[] = {BOUNDS(K7SmartNoteComm)};
constexpr Member SMART_NOTE_ALTITUDE[] = {
    MEMBER("description", K7SmartNoteAltitude, description),
    MEMBER("type", K7SmartNoteAltitude, type),
    MEMBER("reference", K7SmartNoteAltitude, reference),
};
constexpr Member TRACK[] = {MEMBER("name", K7Track, name), MEMBER("ident", K7Track, ident)};

struct Group {
  std::initializer_list<int> types;
  std::span<const Member> members;
};
const Group GROUPS[] = {
    {{0, 1, 2, 3, 4, 5, 6, 7, 8, 20}, FIX},
    {{0}, VHFNAVAID},
    {{1, 2}, NDB},
    {{5}, AIRPORT},
    {{6}, RUNWAY},
    {{7}, LOCALIZER},
    {{8}, MARKER},
    {{9, 10, 52, 53}, AIRWAY_SEG},
    {{12}, ENROUTE_COMM},
    {{13, 14, 15, 16, 48, 50, 51, 57}, AREA},
    {{13}, CTRL_AIRSPACE},
    {{17}, HOLDING},
    {{18, 49}, MORA},
    {{19}, CRUISE_TABLE},
    {{21}, FORMATION},
    {{24, 25, 26}, PROCEDURE},
    {{27}, AIRSPACE_SEG},
    {{28}, AIRWAY_RESTRICTION},
    {{29}, AIRWAY_HEADER},
    {{39}, TRANSIT_ROUTE},
    {{40}, RESERVED_40},
    {{41}, SPECIAL_ACTIVITY},
    {{44}, FLEET_AIRPORT},
    {{46}, SHORELINE},
    {{47}, TRANSIENT_POINT},
    {{51}, COMPANY_COMM},
    {{58}, AERODROME_AREA},
    {{59, 60, 61}, AERODROME_SURFACE},
    {{67}, AERODROME_SIGN},
    {{68}, SMART_NOTE},
    {{69}, SMART_NOTE_LINK},
    {{70}, SMART_NOTE_COMM},
    {{71}, SMART_NOTE_ALTITUDE},
    {{72}, TRACK},
};

}  // namespace

std::vector<Member> MembersOf(K7NavType type) {
  std::vector<Member> members;
  for (const Group& group : GROUPS) {
    for (const int of : group.types) {
      if (static_cast<K7NavType>(of) == type)
        members.insert(members.end(), group.members.begin(), group.members.end());
    }
  }
  return members;
}

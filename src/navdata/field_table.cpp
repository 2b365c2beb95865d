#include "navdata/field_table.h"

#include <k7/navdata/aerodrome.h>
#include <k7/navdata/airport.h>
#include <k7/navdata/airspace.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/comm.h>
#include <k7/navdata/navaid.h>
#include <k7/navdata/note.h>
#include <k7/navdata/obstacle.h>

#include <cstddef>
#include <iterator>
#include <type_traits>

// The records derive from one another, where the language leaves offsetof to the compiler; all that we build
// with have it, and the layout is part of the data format.
#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif

namespace {

using Field = k7nav::Field;
using Type = k7nav::Type;

/// Bits that each storage takes, in the order of K7NavFieldStorage; text has its own.
constexpr int32_t BITS[] = {8, 0, 0, -1, 32, 8, 16, 32, 16, 32, 24, 8, 32, 64};

template <class Member>
constexpr bool Fits(K7NavFieldStorage storage) {
  if (storage == K7STORE_POINTER) return std::is_same_v<Member, K7NavText>;
  if (storage == K7STORE_ALT_VALUE || storage == K7STORE_ALT_FLAG) return std::is_same_v<Member, K7Alt>;
  if (storage == K7STORE_KEY) return std::is_same_v<Member, K7NavKey>;
  return static_cast<int>(sizeof(Member)) * 8 == BITS[storage];
}

template <class Member, K7NavFieldStorage STORAGE>
constexpr Field Make(const char* name, K7NavFieldDataType kind, size_t at, double scale = 1.0) {
  static_assert(Fits<Member>(STORAGE), "the member is not as wide as the field");
  return {name, kind, STORAGE, static_cast<uint16_t>(at), BITS[STORAGE], scale, ""};
}

template <class Member, int CHARACTERS>
constexpr Field MakeText(const char* name, size_t at, const char* note = "") {
  static_assert(sizeof(Member) >= CHARACTERS, "the member is shorter than the text");
  return {name, K7FIELD_STRING, K7STORE_TEXT, static_cast<uint16_t>(at), CHARACTERS * 8, 1.0, note};
}

// Positions come from the structures. OVER reads a field over a member of another width, on purpose; TEXT
// says how many characters there are.
#define AT(record, member) static_cast<uint16_t>(offsetof(record, member))
#define SCALED(name, kind, storage, record, member, scale) \
  Make<decltype(record::member), K7STORE_##storage>(name, K7FIELD_##kind, offsetof(record, member), scale)
#define FIELD(name, kind, storage, record, member) SCALED(name, kind, storage, record, member, 1.0)
#define OVER(name, kind, storage, record, member) \
  { name, K7FIELD_##kind, K7STORE_##storage, AT(record, member), BITS[K7STORE_##storage], 1.0, "" }
#define NOTED(name, record, member, characters, note) \
  MakeText<decltype(record::member), characters>(name, offsetof(record, member), note)
#define TEXT(name, record, member, characters) NOTED(name, record, member, characters, "")

constexpr Field VHFNAVAID[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7VHFNavaid, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7VHFNavaid, lon),
    TEXT("Ident", K7VHFNavaid, ident, 8),
    TEXT("ICAO Region", K7VHFNavaid, icao, 2),
    FIELD("Elev", INTEGER, I16, K7VHFNavaid, elev),
    FIELD("Flags", UNSIGNED, U32, K7VHFNavaid, flags),
    FIELD("Airport Key", KEY, KEY, K7VHFNavaid, airport),
    FIELD("Name", STRING, POINTER, K7VHFNavaid, name),
    FIELD("City", STRING, POINTER, K7VHFNavaid, city),
    TEXT("State", K7VHFNavaid, state, 4),
    TEXT("Country", K7VHFNavaid, country, 4),
    SCALED("Freq", REAL, U32, K7VHFNavaid, freq, 0.01),
    SCALED("Declin", REAL, I16, K7VHFNavaid, declination, 0.1),
    SCALED("Mag Var", REAL, I16, K7VHFNavaid, magVar, 0.1),
    FIELD("Freq Prot", INTEGER, I16, K7VHFNavaid, freqProt),
};

constexpr Field NDB[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7NDB, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7NDB, lon),
    TEXT("Ident", K7NDB, ident, 8),
    TEXT("ICAO Region", K7NDB, icao, 2),
    FIELD("Elev", INTEGER, I16, K7NDB, elev),
    FIELD("Flags", UNSIGNED, U32, K7NDB, flags),
    FIELD("Airport Key", KEY, KEY, K7NDB, airport),
    FIELD("Name", STRING, POINTER, K7NDB, name),
    FIELD("City", STRING, POINTER, K7NDB, city),
    TEXT("State", K7NDB, state, 4),
    TEXT("Country", K7NDB, country, 4),
    SCALED("Freq", REAL, U32, K7NDB, freq, 0.1),
    SCALED("Mag Var", REAL, I16, K7NDB, magVar, 0.1),
};

constexpr Field WAYPOINT[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7Waypoint, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7Waypoint, lon),
    TEXT("Ident", K7Waypoint, ident, 8),
    TEXT("ICAO Region", K7Waypoint, icao, 2),
    FIELD("Elev", INTEGER, I16, K7Waypoint, elev),
    FIELD("Flags", UNSIGNED, U32, K7Waypoint, flags),
    FIELD("Airport Key", KEY, KEY, K7Waypoint, airport),
    FIELD("Name", STRING, POINTER, K7Waypoint, name),
    SCALED("Mag Var", REAL, I16, K7Waypoint, magVar, 0.1),
    FIELD("MRA", INTEGER, ALT_VALUE, K7Waypoint, mra),
    FIELD("MRA Flag", UNSIGNED, ALT_FLAG, K7Waypoint, mra),
    FIELD("Flags2", UNSIGNED, U32, K7Waypoint, flags2),
};

constexpr Field AIRPORT[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7Airport, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7Airport, lon),
    TEXT("Ident", K7Airport, ident, 8),
    TEXT("ICAO Region", K7Airport, icao, 2),
    FIELD("Elev", INTEGER, I16, K7Airport, elev),
    TEXT("IATA", K7Airport, iata, 4),
    TEXT("State", K7Airport, state, 4),
    TEXT("Country", K7Airport, country, 4),
    FIELD("Name", STRING, POINTER, K7Airport, name),
    FIELD("City", STRING, POINTER, K7Airport, city),
    FIELD("Pattern Alt", INTEGER, U32, K7Airport, patternAlt),
    SCALED("Mag Var", REAL, I16, K7Airport, magVar, 0.1),
    OVER("Speed Limit Alt", INTEGER, I16, K7Airport, speedLimitAlt),
    FIELD("Speed Limit", INTEGER, I16, K7Airport, speedLimit),
    SCALED("Longest Runway", INTEGER, I16, K7Airport, longestRunway, 100),
    OVER("Trans Alt", INTEGER, I16, K7Airport, transAlt),
    OVER("Trans Level", INTEGER, I16, K7Airport, transLevel),
    FIELD("Flags", UNSIGNED, U32, K7Airport, flags),
    FIELD("Service Flags", UNSIGNED, U32, K7Airport, serviceFlags),
};

constexpr Field RUNWAY[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7Runway, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7Runway, lon),
    TEXT("Ident", K7Runway, ident, 8),
    TEXT("ICAO Region", K7Runway, icao, 2),
    FIELD("Elev", INTEGER, I16, K7Runway, elev),
    FIELD("Airport Key", KEY, KEY, K7Runway, airport),
    FIELD("Length", INTEGER, I16, K7Runway, length),
    FIELD("Width", INTEGER, I16, K7Runway, width),
    SCALED("Mag Brg", REAL, I16, K7Runway, magBrg, 0.1),
    SCALED("True Brg", REAL, I16, K7Runway, trueBrg, 0.1),
    FIELD("Surface", INTEGER, I16, K7Runway, surface),
    FIELD("Flags", UNSIGNED, U16, K7Runway, flags),
    FIELD("Touchdown Zone Elev", INTEGER, I16, K7Runway, tdzElev),
    FIELD("Displaced Threshold Dist", INTEGER, I16, K7Runway, displacedThreshold),
    FIELD("Stopway Dist", INTEGER, I16, K7Runway, stopway),
    FIELD("Landing Threshold Elev", INTEGER, I16, K7Runway, landingThresholdElev),
};

constexpr Field AIRWAYSEG[] = {
    TEXT("Ident", K7AirwaySeg, ident, 7),
    FIELD("ATC Advis Flag", STRING, CHAR, K7AirwaySeg, atcAdvisory),
    FIELD("From Lat", REAL, FIXED_DEGREES, K7AirwaySeg, fromLat),
    FIELD("From Lon", REAL, FIXED_DEGREES, K7AirwaySeg, fromLon),
    FIELD("To Lat", REAL, FIXED_DEGREES, K7AirwaySeg, toLat),
    FIELD("To Lon", REAL, FIXED_DEGREES, K7AirwaySeg, toLon),
    FIELD("Flags", UNSIGNED, U32, K7AirwaySeg, flags),
    FIELD("RouteType", STRING, CHAR, K7AirwaySeg, routeType),
    FIELD("MEA Primary Alt", INTEGER, ALT_VALUE, K7AirwaySeg, mea),
    FIELD("MEA Primary Alt Flag", INTEGER, ALT_FLAG, K7AirwaySeg, mea),
};

constexpr Field HOLDINGPATTERN[] = {
    FIELD("Flags", UNSIGNED, U32, K7HoldingPattern, flags),
};

constexpr Field CTRLAIRSPACE[] = {
    TEXT("ICAO Region", K7CtrlAirspace, icao, 2),
    FIELD("Type", INTEGER, U8, K7CtrlAirspace, type),
    FIELD("Sector", STRING, POINTER, K7CtrlAirspace, sector),
    FIELD("Flags", UNSIGNED, U32, K7CtrlAirspace, flags),
    FIELD("Name", STRING, POINTER, K7CtrlAirspace, name),
    FIELD("Ctrl Agency", STRING, POINTER, K7CtrlAirspace, agency),
    FIELD("Activity Notes", STRING, POINTER, K7CtrlAirspace, activity),
    FIELD("Time Notes", STRING, POINTER, K7CtrlAirspace, times),
    FIELD("Floor", INTEGER, ALT_VALUE, K7CtrlAirspace, floor),
    FIELD("Floor Flag", UNSIGNED, ALT_FLAG, K7CtrlAirspace, floor),
    FIELD("Ceiling", INTEGER, ALT_VALUE, K7CtrlAirspace, ceiling),
    FIELD("Ceiling Flag", UNSIGNED, ALT_FLAG, K7CtrlAirspace, ceiling),
    FIELD("RNP", REAL, FLOAT, K7CtrlAirspace, rnp),
    FIELD("Class", CHAR, CHAR, K7CtrlAirspace, airspaceClass),
    TEXT("CPDLC Login", K7CtrlAirspace, cpdlc, 4),
};

constexpr Field SUAIRSPACE[] = {
    FIELD("Ident", STRING, POINTER, K7SUAirspace, ident),
    TEXT("ICAO Region", K7SUAirspace, icao, 2),
    FIELD("Type", INTEGER, U8, K7SUAirspace, type),
    FIELD("Sector", STRING, POINTER, K7SUAirspace, sector),
    FIELD("Flags", UNSIGNED, U32, K7SUAirspace, flags),
    FIELD("Name", STRING, POINTER, K7SUAirspace, name),
    FIELD("Ctrl Agency", STRING, POINTER, K7SUAirspace, agency),
    FIELD("Activity Notes", STRING, POINTER, K7SUAirspace, activity),
    FIELD("Time Notes", STRING, POINTER, K7SUAirspace, times),
    FIELD("Floor", INTEGER, ALT_VALUE, K7SUAirspace, floor),
    FIELD("Floor Flag", UNSIGNED, ALT_FLAG, K7SUAirspace, floor),
    FIELD("Ceiling", INTEGER, ALT_VALUE, K7SUAirspace, ceiling),
    FIELD("Ceiling Flag", UNSIGNED, ALT_FLAG, K7SUAirspace, ceiling),
    FIELD("Level", CHAR, CHAR, K7SUAirspace, level),
};

constexpr Field FIR[] = {
    FIELD("Ident", STRING, POINTER, K7FIR, ident),
    TEXT("ICAO Region", K7FIR, icao, 2),
    FIELD("Type", INTEGER, U8, K7FIR, type),
    FIELD("Flags", UNSIGNED, U32, K7FIR, flags),
    FIELD("Address", STRING, POINTER, K7FIR, address),
    FIELD("Name", STRING, POINTER, K7FIR, name),
    FIELD("FIR Upper", INTEGER, ALT_VALUE, K7FIR, firUpper),
    FIELD("FIR Upper Flag", UNSIGNED, ALT_FLAG, K7FIR, firUpper),
    FIELD("UIR Lower", INTEGER, ALT_VALUE, K7FIR, uirLower),
    FIELD("UIR Lower Flag", UNSIGNED, ALT_FLAG, K7FIR, uirLower),
    FIELD("UIR Upper", INTEGER, ALT_VALUE, K7FIR, uirUpper),
    FIELD("UIR Upper Flag", UNSIGNED, ALT_FLAG, K7FIR, uirUpper),
    FIELD("Rep Units Speed", CHAR, CHAR, K7FIR, repUnitsSpeed),
    FIELD("Rep Units Alt", CHAR, CHAR, K7FIR, repUnitsAlt),
    FIELD("Entry Rep", CHAR, CHAR, K7FIR, entryRep),
    TEXT("CPDLC Login", K7FIR, cpdlc, 4),
};

constexpr Field AIRPORTCOMM[] = {
    FIELD("Airport Key", KEY, KEY, K7AirportComm, airport),
    FIELD("Callsign", STRING, POINTER, K7AirportComm, callsign),
    TEXT("Airport Ident", K7AirportComm, airportIdent, 6),
    FIELD("Comm Type", INTEGER, I16, K7AirportComm, commType),
    FIELD("Dist", INTEGER, I32, K7AirportComm, distance),
    FIELD("Freq", INTEGER, I32, K7AirportComm, freq),
    FIELD("Flags", UNSIGNED, U32, K7AirportComm, flags),
    FIELD("Service Flags", UNSIGNED, U32, K7AirportComm, serviceFlags),
    FIELD("Comm Info", INTEGER, I32, K7AirportComm, commInfo),
    FIELD("Start Sector", INTEGER, I16, K7AirportComm, startSector),
    FIELD("End Sector", INTEGER, I16, K7AirportComm, endSector),
    FIELD("Alt1", INTEGER, ALT_VALUE, K7AirportComm, alt1),
    FIELD("Alt1 Flag", UNSIGNED, ALT_FLAG, K7AirportComm, alt1),
    FIELD("Alt2", INTEGER, ALT_VALUE, K7AirportComm, alt2),
    FIELD("Alt2 Flag", UNSIGNED, ALT_FLAG, K7AirportComm, alt2),
    FIELD("Mag Var", INTEGER, I32, K7AirportComm, magVar),
};

constexpr Field ENROUTECOMM[] = {
    TEXT("FIR Ident", K7EnrouteComm, firIdent, 5),
    FIELD("Service Flags", UNSIGNED, U32, K7EnrouteComm, serviceFlags),
    FIELD("Remote Name", STRING, POINTER, K7EnrouteComm, remoteName),
    FIELD("Comm Type", UNSIGNED, U16, K7EnrouteComm, commType),
    FIELD("FIR Key", KEY, KEY, K7EnrouteComm, fir),
    FIELD("Alt1", INTEGER, ALT_VALUE, K7EnrouteComm, alt1),
    FIELD("Alt1 Flag", UNSIGNED, ALT_FLAG, K7EnrouteComm, alt1),
    FIELD("Alt2", INTEGER, ALT_VALUE, K7EnrouteComm, alt2),
    FIELD("Alt2 Flag", UNSIGNED, ALT_FLAG, K7EnrouteComm, alt2),
    SCALED("Freq", REAL, U32, K7EnrouteComm, freq, 0.01),
    FIELD("Callsign", STRING, POINTER, K7EnrouteComm, callsign),
};

constexpr Field CRUISETABLE[] = {
    TEXT("Ident", K7CruiseTable, ident, 4),
    FIELD("English Body Count", INTEGER, I16, K7CruiseTable, englishCount),
    FIELD("Metric Body Count", INTEGER, I16, K7CruiseTable, metricCount),
    FIELD("Notes", STRING, POINTER, K7CruiseTable, tableNotes),
    FIELD("True Course", INTEGER, I32, K7CruiseTable, trueCourse),
};

constexpr Field FORMATION[] = {
    FIELD("Ref Lat", REAL, FIXED_DEGREES, K7Formation, refLat),
    FIELD("Ref Lon", REAL, FIXED_DEGREES, K7Formation, refLon),
    FIELD("Ref Key", KEY, KEY, K7Formation, refKey),
    FIELD("Fix Key", KEY, KEY, K7Formation, fixKey),
    FIELD("Usage", CHAR, CHAR, K7Formation, usage),
};

constexpr Field LOCALIZERGLIDESLOPE[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7LocalizerGlideslope, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7LocalizerGlideslope, lon),
    TEXT("Ident", K7LocalizerGlideslope, ident, 8),
    TEXT("ICAO Region", K7LocalizerGlideslope, icao, 2),
    FIELD("Elev", INTEGER, I16, K7LocalizerGlideslope, elev),
    FIELD("Flags", UNSIGNED, U32, K7LocalizerGlideslope, flags),
    FIELD("Airport Key", KEY, KEY, K7LocalizerGlideslope, airport),
    FIELD("Runway Key", KEY, KEY, K7LocalizerGlideslope, airport),
    SCALED("Mag Var", REAL, I16, K7LocalizerGlideslope, magVar, 0.1),
    SCALED("Freq", REAL, U32, K7LocalizerGlideslope, freq, 0.01),
    FIELD("GS Lat", REAL, FIXED_DEGREES, K7LocalizerGlideslope, gsLat),
    FIELD("GS Lon", REAL, FIXED_DEGREES, K7LocalizerGlideslope, gsLon),
    SCALED("Loc Brg", REAL, I16, K7LocalizerGlideslope, locBrg, 0.1),
    SCALED("Loc True Brg", REAL, I16, K7LocalizerGlideslope, locTrueBrg, 0.1),
    FIELD("GS Beam", INTEGER, I16, K7LocalizerGlideslope, gsBeam),
    FIELD("Loc Offset", INTEGER, I16, K7LocalizerGlideslope, locOffset),
    FIELD("GS Offset", INTEGER, I16, K7LocalizerGlideslope, gsOffset),
    FIELD("Loc Width", INTEGER, I16, K7LocalizerGlideslope, locWidth),
    FIELD("GS Angle", INTEGER, I16, K7LocalizerGlideslope, gsAngle),
    FIELD("Thresh Xing Ht", INTEGER, I16, K7LocalizerGlideslope, threshXingHt),
    SCALED("Declin", REAL, I32, K7LocalizerGlideslope, declination, 0.1),
    FIELD("GS Elev", INTEGER, I32, K7LocalizerGlideslope, gsElev),
};

constexpr Field MINCROSSINGALT[] = {
    FIELD("Fix Key", KEY, KEY, K7MinCrossingAlt, fix),
    TEXT("Airway Ident", K7MinCrossingAlt, airwayIdent, 8),
    TEXT("Airway Direction", K7MinCrossingAlt, airwayDirection, 2),
    FIELD("Flags", UNSIGNED, U16, K7MinCrossingAlt, flags),
    FIELD("Alt", INTEGER, ALT_VALUE, K7MinCrossingAlt, alt),
    FIELD("Alt Flags", INTEGER, ALT_FLAG, K7MinCrossingAlt, alt),
};

constexpr Field LOWUSEAIRPORT[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7LowUseAirport, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7LowUseAirport, lon),
    TEXT("Ident", K7LowUseAirport, ident, 8),
    TEXT("Tars Ident", K7LowUseAirport, tarsIdent, 5),
    FIELD("Elev", INTEGER, I16, K7LowUseAirport, elev),
    FIELD("County", STRING, POINTER, K7LowUseAirport, county),
    TEXT("State", K7LowUseAirport, state, 3),
    FIELD("City", STRING, POINTER, K7LowUseAirport, city),
    FIELD("Name", STRING, POINTER, K7LowUseAirport, name),
    FIELD("Owner", INTEGER, U16, K7LowUseAirport, owner),
    FIELD("Use", INTEGER, U16, K7LowUseAirport, use),
    FIELD("Pattern Alt", INTEGER, I16, K7LowUseAirport, patternAlt),
    SCALED("Mag Var", REAL, I16, K7LowUseAirport, magVar, 0.1),
    FIELD("Sectional", STRING, POINTER, K7LowUseAirport, sectional),
    TEXT("City Direction", K7LowUseAirport, cityDirection, 4),
    FIELD("City Distance", INTEGER, U16, K7LowUseAirport, cityDistance),
    FIELD("Flags", UNSIGNED, U16, K7LowUseAirport, flags),
    TEXT("Effective Date", K7LowUseAirport, effectiveDate, 10),
    SCALED("Longest Runway", INTEGER, I16, K7LowUseAirport, longestRunway, 100),
};

constexpr Field PROCEDURELEG[] = {
    TEXT("Airport Ident", K7ProcedureLeg, airportIdent, 8),
    TEXT("Procedure Ident", K7ProcedureLeg, procedureIdent, 7),
    TEXT("Transition Ident", K7ProcedureLeg, transitionIdent, 6),
    TEXT("Runway Ident", K7ProcedureLeg, runwayIdent, 7),
    FIELD("Fix Key", KEY, KEY, K7ProcedureLeg, fix),
    FIELD("Rccmndd Fix Key", KEY, KEY, K7ProcedureLeg, recommendedFix),
    FIELD("Arc Cntr Fix Key", KEY, KEY, K7ProcedureLeg, arcCenterFix),
    FIELD("Path Term", INTEGER, U16, K7ProcedureLeg, pathTerm),
    FIELD("Theta", INTEGER, I16, K7ProcedureLeg, theta),
    FIELD("Rho", INTEGER, I16, K7ProcedureLeg, rho),
    FIELD("Mag Course", INTEGER, I16, K7ProcedureLeg, magCourse),
    FIELD("Time/Dist", INTEGER, I16, K7ProcedureLeg, timeDist),
};

constexpr Field OBSTACLE[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7Obstacle, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7Obstacle, lon),
    FIELD("Elev", INTEGER, I16, K7Obstacle, elev),
    FIELD("Height", INTEGER, I16, K7Obstacle, height),
    FIELD("Type Code", UNSIGNED, U8, K7Obstacle, typeCode),
    FIELD("Light Code", UNSIGNED, U8, K7Obstacle, lightCode),
    FIELD("Horz Accuracy", UNSIGNED, U16, K7Obstacle, horzAccuracy),
    FIELD("Vert Accuracy", UNSIGNED, U16, K7Obstacle, vertAccuracy),
};

constexpr Field AIRWAYHEADER[] = {
    TEXT("Ident", K7AirwayHeader, ident, 7),
    FIELD("Region", CHAR, CHAR, K7AirwayHeader, region),
    FIELD("From Key", KEY, KEY, K7AirwayHeader, fromKey),
    FIELD("To Key", KEY, KEY, K7AirwayHeader, toKey),
    FIELD("Flags", UNSIGNED, U16, K7AirwayHeader, flags),
    FIELD("Seg Count", INTEGER, U16, K7AirwayHeader, segCount),
};

constexpr Field AIRWAYRESTRICTION[] = {
    FIELD("Start Key", KEY, KEY, K7AirwayRestriction, startKey),
    FIELD("End Key", KEY, KEY, K7AirwayRestriction, endKey),
    FIELD("Note", STRING, POINTER, K7AirwayRestriction, note),
    FIELD("Segment Key", KEY, KEY, K7AirwayRestriction, segment),
};

constexpr Field REGIONALNOTE[] = {
    FIELD("URI", STRING, POINTER, K7RegionalNote, uri),
    FIELD("Mime Type", STRING, POINTER, K7RegionalNote, mimeType),
    FIELD("Display Mode", UNSIGNED, U32, K7RegionalNote, displayMode),
    FIELD("Content", STRING, POINTER, K7RegionalNote, content),
    FIELD("Language", STRING, POINTER, K7RegionalNote, language),
    FIELD("Title", STRING, POINTER, K7RegionalNote, title),
    FIELD("Content Type", STRING, POINTER, K7RegionalNote, contentType),
    FIELD("Altitude", STRING, POINTER, K7RegionalNote, altitude),
    FIELD("Note Type", STRING, POINTER, K7RegionalNote, noteType),
    FIELD("Rev Date", STRING, POINTER, K7RegionalNote, revDate),
};

constexpr Field NOTEINDEX[] = {
    FIELD("URI", STRING, POINTER, K7NoteIndex, uri),
    FIELD("Offset", STRING, POINTER, K7NoteIndex, offset),
    FIELD("Category", STRING, POINTER, K7NoteIndex, category),
    FIELD("Value", STRING, POINTER, K7NoteIndex, value),
};

constexpr Field TRANSITROUTE[] = {
    FIELD("Name", STRING, POINTER, K7TransitRoute, name),
    FIELD("Country", STRING, POINTER, K7TransitRoute, country),
    FIELD("North", REAL, FIXED_DEGREES, K7TransitRoute, north),
    FIELD("South", REAL, FIXED_DEGREES, K7TransitRoute, south),
    FIELD("East", REAL, FIXED_DEGREES, K7TransitRoute, east),
    FIELD("West", REAL, FIXED_DEGREES, K7TransitRoute, west),
    FIELD("Type", UNSIGNED, U16, K7TransitRoute, type),
    FIELD("Vert Limit", STRING, POINTER, K7TransitRoute, vertLimit),
    FIELD("Designator", STRING, POINTER, K7TransitRoute, designator),
    FIELD("Designator2", STRING, POINTER, K7TransitRoute, designator2),
    FIELD("Direction", INTEGER, I16, K7TransitRoute, direction),
};

constexpr Field SPECIALACTIVITYAREA[] = {
    FIELD("Name", STRING, POINTER, K7SpecialActivityArea, name),
    FIELD("Ident", STRING, POINTER, K7SpecialActivityArea, ident),
    FIELD("Country", STRING, POINTER, K7SpecialActivityArea, country),
    FIELD("Type", UNSIGNED, U16, K7SpecialActivityArea, type),
};

constexpr Field COMPANYAIRPORT[] = {
    TEXT("Ident", K7CompanyAirport, ident, 6),
    TEXT("ICAO", K7CompanyAirport, icao, 3),
    FIELD("Frequencies", STRING, POINTER, K7CompanyAirport, frequencies),
    FIELD("Telephones", STRING, POINTER, K7CompanyAirport, telephones),
    FIELD("Flags", UNSIGNED, U8, K7CompanyAirport, flags),
};

constexpr Field FLEETAIRPORT[] = {
    NOTED("Aircraft Type", K7FleetAirport, fleet, 20, "Same as Fleet"),
    TEXT("Fleet", K7FleetAirport, fleet, 20),
    TEXT("Ident", K7FleetAirport, ident, 6),
    FIELD("Airport Type", INTEGER, I16, K7FleetAirport, airportType),
    FIELD("Flags", UNSIGNED, U8, K7FleetAirport, flags),
};

constexpr Field FLEET[] = {
    NOTED("Acft Type", K7Fleet, fleet, 2, "Same as Fleet"),
    TEXT("Fleet", K7Fleet, fleet, 2),
};

constexpr Field TAILOREDENDPOINT[] = {
    FIELD("Lat", REAL, FIXED_DEGREES, K7TailoredEndpoint, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7TailoredEndpoint, lon),
    FIELD("Ident", STRING, POINTER, K7TailoredEndpoint, ident),
    FIELD("Fleet", STRING, POINTER, K7TailoredEndpoint, fleet),
    FIELD("Flags", UNSIGNED, U8, K7TailoredEndpoint, flags),
    FIELD("Type", INTEGER, U8, K7TailoredEndpoint, type),
};

constexpr Field TAILOREDLINE[] = {
    FIELD("Name", STRING, POINTER, K7TailoredLine, name),
    FIELD("Ident", STRING, POINTER, K7TailoredLine, ident),
    TEXT("ICAO Region", K7TailoredLine, icao, 2),
    FIELD("Fleet", STRING, POINTER, K7TailoredLine, fleet),
    OVER("Flags", UNSIGNED, U32, K7TailoredLine, flags),
    FIELD("Floor", INTEGER, ALT_VALUE, K7TailoredLine, floor),
    FIELD("Floor Flag", UNSIGNED, ALT_FLAG, K7TailoredLine, floor),
    FIELD("Ceiling", INTEGER, ALT_VALUE, K7TailoredLine, ceiling),
    FIELD("Ceiling Flag", UNSIGNED, ALT_FLAG, K7TailoredLine, ceiling),
};

constexpr Field TRANSIENTPOINT[] = {
    FIELD("Ident", STRING, POINTER, K7TransientPoint, ident),
    FIELD("Lat", REAL, FIXED_DEGREES, K7TransientPoint, lat),
    FIELD("Lon", REAL, FIXED_DEGREES, K7TransientPoint, lon),
    FIELD("Type", UNSIGNED, U32, K7TransientPoint, type),
    FIELD("Arpt1", STRING, POINTER, K7TransientPoint, airport1),
    FIELD("Arpt2", STRING, POINTER, K7TransientPoint, airport2),
};

constexpr Field TAILOREDAIRSPACE[] = {
    FIELD("Ident", STRING, POINTER, K7TailoredAirspace, ident),
    TEXT("ICAO Region", K7TailoredAirspace, icao, 2),
    FIELD("Type", INTEGER, U8, K7TailoredAirspace, type),
    FIELD("Sector", STRING, POINTER, K7TailoredAirspace, sector),
    FIELD("Flags", UNSIGNED, U32, K7TailoredAirspace, flags),
    FIELD("Name", STRING, POINTER, K7TailoredAirspace, name),
    FIELD("Floor", INTEGER, ALT_VALUE, K7TailoredAirspace, floor),
    FIELD("Floor Flag", UNSIGNED, ALT_FLAG, K7TailoredAirspace, floor),
    FIELD("Ceiling", INTEGER, ALT_VALUE, K7TailoredAirspace, ceiling),
    FIELD("Ceiling Flag", UNSIGNED, ALT_FLAG, K7TailoredAirspace, ceiling),
    FIELD("Fleet", STRING, POINTER, K7TailoredAirspace, fleet),
};

constexpr Field ETOPS[] = {
    FIELD("Ident", STRING, POINTER, K7ETOPS, ident),
    FIELD("Aircraft Type", STRING, POINTER, K7ETOPS, aircraftType),
    FIELD("Minutes", INTEGER, I32, K7ETOPS, minutes),
    FIELD("Distance", INTEGER, I32, K7ETOPS, distance),
};

constexpr Field COMPANYCOMM[] = {
    FIELD("Name", STRING, POINTER, K7CompanyComm, name),
    TEXT("ICAO Region", K7CompanyComm, icao, 2),
    FIELD("Freq Count", INTEGER, I32, K7CompanyComm, freqCount),
    FIELD("Primary Freq Value", STRING, POINTER, K7CompanyComm, primary.value),
    FIELD("Secondary Freq Value", STRING, POINTER, K7CompanyComm, secondary.value),
};

constexpr Field AERODROMEAREA[] = {
    FIELD("Surface Type", INTEGER, I32, K7AerodromeArea, surfaceType),
    FIELD("Feature Type", INTEGER, I32, K7AerodromeArea, featureType),
    TEXT("Id Apron", K7AerodromeArea, idApron, 27),
};

constexpr Field AERODROMESURFACE[] = {
    FIELD("Surface Type", INTEGER, I32, K7AerodromeSurface, surfaceType),
};

constexpr Field APRON[] = {
    FIELD("Surface Type", INTEGER, I32, K7Apron, surfaceType),
    TEXT("Id Apron", K7Apron, idApron, 27),
};

constexpr Field RUNWAYSURFACE[] = {
    FIELD("Surface Type", INTEGER, I32, K7RunwaySurface, surfaceType),
    FIELD("Runway length mt", INTEGER, I32, K7RunwaySurface, lengthM),
    FIELD("Runway length ft", INTEGER, I32, K7RunwaySurface, lengthFt),
};

constexpr Field RUNWAYLENGTH[] = {
    FIELD("Runway length mt", INTEGER, I32, K7RunwayLength, lengthM),
    FIELD("Runway length ft", INTEGER, I32, K7RunwayLength, lengthFt),
};

constexpr Field RUNWAYTHRESHOLD[] = {
    TEXT("Runway Id", K7RunwayThreshold, runwayId, 3),
    FIELD("Bearing True", REAL, FIXED_DEGREES, K7RunwayThreshold, trueBrg),
    FIELD("Flags", UNSIGNED, U8, K7RunwayThreshold, flags),
};

constexpr Field AERODROMEPOINT[] = {
    FIELD("Type", INTEGER, I32, K7AerodromePoint, type),
    TEXT("Id", K7AerodromePoint, id, 19),
};

constexpr Field AERODROMELINE[] = {
    FIELD("Category", INTEGER, I32, K7AerodromeLine, category),
    FIELD("Type", INTEGER, I32, K7AerodromeLine, type),
    TEXT("Id", K7AerodromeLine, id, 19),
};

constexpr Field AERODROMENAME[] = {
    // Of integer kind although it is text: listed, and not readable.
    {"Name", K7FIELD_INTEGER, K7STORE_TEXT, AT(K7AerodromeName, name), 56, 1.0, ""},
};

constexpr Field AERODROMESIGN[] = {
    FIELD("Type", INTEGER, I32, K7AerodromeSign, type),
    TEXT("Id", K7AerodromeSign, id, 11),
};

constexpr Field SMARTNOTES[] = {
    TEXT("Ident", K7SmartNotes, ident, 12),
    TEXT("Text", K7SmartNotes, text, 4096),
    FIELD("Element Type", INTEGER, I16, K7SmartNotes, elementType),
    FIELD("Category", INTEGER, I16, K7SmartNotes, category),
    FIELD("Sub Category", INTEGER, I16, K7SmartNotes, subcategory),
    FIELD("Phase of Flight", INTEGER, I16, K7SmartNotes, phaseOfFlight),
    FIELD("Flight Rules", INTEGER, I16, K7SmartNotes, flightRules),
    FIELD("SmartNote Key", KEY, KEY, K7SmartNotes, key),
};

constexpr Field SMARTNOTELINK[] = {
    TEXT("Ident", K7SmartNoteLink, ident, 12),
    FIELD("SmartNote Key", KEY, KEY, K7SmartNoteLink, smartNote),
    FIELD("NavData Key", KEY, KEY, K7SmartNoteLink, navData),
    FIELD("FromFix Key", KEY, KEY, K7SmartNoteLink, fromFix),
    FIELD("ToFix Key", KEY, KEY, K7SmartNoteLink, toFix),
    FIELD("RadiusBasis Key", KEY, KEY, K7SmartNoteLink, radiusBasis),
};

constexpr Field SMARTNOTECOMM[] = {
    FIELD("SmartNote Key", KEY, KEY, K7SmartNoteComm, smartNote),
    FIELD("NavData Key", KEY, KEY, K7SmartNoteComm, navData),
    FIELD("CommRec Key", KEY, KEY, K7SmartNoteComm, commRec),
};

constexpr Field SMARTNOTEALTITUDE[] = {
    FIELD("Altitude", REAL, FLOAT, K7SmartNoteAltitude, altitude),
    FIELD("SmartNote Key", KEY, KEY, K7SmartNoteAltitude, smartNote),
    FIELD("Altitude Unit", INTEGER, I16, K7SmartNoteAltitude, unit),
};

constexpr Field TRACK[] = {
    FIELD("Track Type", UNSIGNED, U8, K7Track, trackType),
    TEXT("Transition Name", K7Track, transitionName, 20),
    TEXT("Transition Ident", K7Track, transitionIdent, 20),
    FIELD("Geodetic Length", REAL, FLOAT, K7Track, geodeticLength),
};

constexpr Field BEARING[] = {
    FIELD("Bearing", REAL, FLOAT, K7Bearing, bearing),
    FIELD("Distance", REAL, FLOAT, K7Bearing, distance),
};

template <class Record, int BYTES>
constexpr Type MakeType(const char* name, const Field* fields, int count) {
  static_assert(sizeof(Record) == (BYTES + 7) / 8 * 8, "the structure is not as large as its record");
  return {name, []() -> K7NavRec* { return new (std::nothrow) Record; }, fields, BYTES, count};
}

#define TYPE(name, bytes, record, fields) MakeType<record, bytes>(name, fields, std::ssize(fields))
#define BARE(name, bytes, record) MakeType<record, bytes>(name, nullptr, 0)
#define NONE(name) \
  { name, nullptr, nullptr, 0, 0 }

// By type, from 0. What several types share they share here too.
constexpr Type TYPES[] = {
    TYPE("VOR", 104, K7VHFNavaid, VHFNAVAID),
    TYPE("Terminal NDB", 104, K7NDB, NDB),
    TYPE("Enroute NDB", 104, K7NDB, NDB),
    TYPE("Terminal Fix", 88, K7Waypoint, WAYPOINT),
    TYPE("Enroute Fix", 88, K7Waypoint, WAYPOINT),
    TYPE("Airport", 120, K7Airport, AIRPORT),
    TYPE("Runway", 100, K7Runway, RUNWAY),
    TYPE("Localizer/Glideslope", 112, K7LocalizerGlideslope, LOCALIZERGLIDESLOPE),
    BARE("Locator/Marker", 96, K7LocatorMarker),
    TYPE("High Airway Segment", 184, K7AirwaySeg, AIRWAYSEG),
    TYPE("Low Airway Segment", 184, K7AirwaySeg, AIRWAYSEG),
    TYPE("Airport Comm", 80, K7AirportComm, AIRPORTCOMM),
    TYPE("Enroute Comm", 96, K7EnrouteComm, ENROUTECOMM),
    TYPE("Controlled Airspace", 200, K7CtrlAirspace, CTRLAIRSPACE),
    TYPE("Special Use Airspace", 192, K7SUAirspace, SUAIRSPACE),
    TYPE("FIR/Comm Sector", 168, K7FIR, FIR),
    TYPE("Comm Sector", 168, K7FIR, FIR),
    TYPE("Holding Pattern", 96, K7HoldingPattern, HOLDINGPATTERN),
    BARE("MORA", 24, K7Mora),
    TYPE("Cruise Table", 1192, K7CruiseTable, CRUISETABLE),
    TYPE("Low Use Airport", 128, K7LowUseAirport, LOWUSEAIRPORT),
    TYPE("Formation", 48, K7Formation, FORMATION),
    TYPE("Obstacle", 40, K7Obstacle, OBSTACLE),
    NONE("Line Obstacle"),
    TYPE("SID Waypoint", 120, K7ProcedureLeg, PROCEDURELEG),
    TYPE("STAR Waypoint", 120, K7ProcedureLeg, PROCEDURELEG),
    BARE("Approach", 120, K7ProcedureLeg),
    BARE("Airspace Segment", 80, K7AirspaceSeg),
    TYPE("Airway Restriction", 224, K7AirwayRestriction, AIRWAYRESTRICTION),
    TYPE("Airway Header", 48, K7AirwayHeader, AIRWAYHEADER),
    TYPE("Minimum Crossing Altitude", 40, K7MinCrossingAlt, MINCROSSINGALT),
    NONE("Generic Airport"),
    NONE("Generic Type 0"),
    NONE("Generic Type 1"),
    NONE("Generic Type 2"),
    NONE("Generic Type 3"),
    NONE("Generic Type 4"),
    TYPE("Regional/Reference Notes", 96, K7RegionalNote, REGIONALNOTE),
    TYPE("Unknown", 48, K7NoteIndex, NOTEINDEX),
    TYPE("Transit Route", 112, K7TransitRoute, TRANSITROUTE),
    BARE("Unknown", 32, K7Reserved40),
    TYPE("Special Activity Area", 64, K7SpecialActivityArea, SPECIALACTIVITYAREA),
    TYPE("Company Airport", 48, K7CompanyAirport, COMPANYAIRPORT),
    TYPE("Fleet", 40, K7Fleet, FLEET),
    TYPE("Fleet Airport", 64, K7FleetAirport, FLEETAIRPORT),
    TYPE("Tailored Boundary Endpoint", 48, K7TailoredEndpoint, TAILOREDENDPOINT),
    TYPE("Distance from Shoreline", 80, K7TailoredLine, TAILOREDLINE),
    TYPE("Transient Point", 64, K7TransientPoint, TRANSIENTPOINT),
    TYPE("Tailored Boundary", 104, K7TailoredAirspace, TAILOREDAIRSPACE),
    BARE("MORA Tailored", 24, K7Mora),
    TYPE("ETOPS", 88, K7ETOPS, ETOPS),
    TYPE("Company Frequencies", 168, K7CompanyComm, COMPANYCOMM),
    TYPE("High TACAN Airway Segment", 184, K7AirwaySeg, AIRWAYSEG),
    TYPE("Low TACAN Airway Segment", 184, K7AirwaySeg, AIRWAYSEG),
    TYPE("Obstacle", 40, K7Obstacle, OBSTACLE),
    TYPE("Obstacle", 40, K7Obstacle, OBSTACLE),
    TYPE("Obstacle", 40, K7Obstacle, OBSTACLE),
    TYPE("FIR", 168, K7FIR, FIR),
    TYPE("Unknown", 96, K7AerodromeArea, AERODROMEAREA),
    TYPE("Unknown", 40, K7AerodromeSurface, AERODROMESURFACE),
    TYPE("Unknown", 68, K7Apron, APRON),
    TYPE("Unknown", 48, K7RunwaySurface, RUNWAYSURFACE),
    TYPE("Unknown", 24, K7RunwayLength, RUNWAYLENGTH),
    TYPE("Unknown", 28, K7RunwayThreshold, RUNWAYTHRESHOLD),
    TYPE("Unknown", 40, K7AerodromePoint, AERODROMEPOINT),
    TYPE("Unknown", 44, K7AerodromeLine, AERODROMELINE),
    TYPE("Unknown", 24, K7AerodromeName, AERODROMENAME),
    TYPE("Unknown", 40, K7AerodromeSign, AERODROMESIGN),
    TYPE("Smart Note", 4192, K7SmartNotes, SMARTNOTES),
    TYPE("Smart Note Link", 324, K7SmartNoteLink, SMARTNOTELINK),
    TYPE("Smart Note Comm", 64, K7SmartNoteComm, SMARTNOTECOMM),
    TYPE("Smart Note Altitude", 36, K7SmartNoteAltitude, SMARTNOTEALTITUDE),
    TYPE("Unknown", 264, K7Track, TRACK),
    // Listed and sized, and never created.
    {"Unknown", nullptr, BEARING, 24, std::ssize(BEARING)},
};
static_assert(std::size(TYPES) == K7NAV_TYPE_COUNT);

}  // namespace

const k7nav::Type* k7nav::FindType(uint32_t type) { return type < K7NAV_TYPE_COUNT ? &TYPES[type] : nullptr; }

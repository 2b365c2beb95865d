// Rows of airspaces, their boundaries, and the boundaries that operators draw.

#include "navdata/lookup.h"
#include "navdata/nav_xml_forms.h"

#include <k7/navdata/airspace.h>

namespace k7nav {
namespace {

const char* Level(int c) {
  switch (c) {
    case 'H':
      return "High";
    case 'L':
      return "Low";
    default:
      return c == 'B' ? "High and Low" : nullptr;
  }
}

// A code that is a digit counts from '1'.
template <const auto& WORDS>
const char* Digit(int c) {
  return WordOf(WORDS, c - '1');
}
constexpr const char* SPEED_UNITS[] = {"Knots", "Mach", "Kilometers per Hour"};
constexpr const char* ALT_UNITS[] = {"Flight Levels", "Meters", "Feet"};

const char* Required(int c) { return c == 'Y' ? "Required" : c == 'N' ? "Not Required" : nullptr; }

// What several structures have, each at a place of its own.
#define K7ROWS_LIMITS(record)                          \
  K7ROW("Floor", "Floor", ALWAYS, record, floor, Alt), \
      K7ROW("Ceiling", "Ceiling", ALWAYS, record, ceiling, Alt)
#define K7ROWS_CONTROLLED(record)                                                                        \
  K7ROWS_LIMITS(record), K7ROW("ControllingAgency", "Controlling Agency", ALWAYS, record, agency, Text), \
      K7ROW("Times", "Times", ALWAYS, record, times, Text),                                              \
      K7ROW("Activity", "Activity", ALWAYS, record, activity, Text)

constexpr Row AREA_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7NavArea, ident, Text),
    K7ROW("Name", "Name", ALWAYS, K7NavArea, name, Text),
    K7ROW("ICAOCODE", "ICAO Code", ALWAYS, K7NavArea, icao, Text),
    K7ROW("Sector", "Sector", ALWAYS, K7NavArea, sector, Text),
};

constexpr Row CTRL_ROWS[] = {
    K7ROW_CODE("AirspaceType", "Airspace Type", K7CtrlAirspace, type, K7CtrlAirspace::TypeString),
    K7ROW("Class", "Class", ALWAYS, K7CtrlAirspace, airspaceClass, Character),
    K7ROWS_CONTROLLED(K7CtrlAirspace),
    K7ROW("RNP", "Required Navigation Performance", ALWAYS, K7CtrlAirspace, rnp, RealMiles),
    K7ROW("CPDLCLogon", "CPDLC Logon", ALWAYS, K7CtrlAirspace, cpdlc, Text),
    K7ROW_KEY("CommKey", K7CtrlAirspace, comm),
    K7ROW_RELATED("CommRecord", AirspaceComms, AS_FOUND),
};

constexpr Row SPECIAL_USE_ROWS[] = {
    K7ROW_CODE("AirspaceType", "Airspace Type", K7SUAirspace, type, K7SUAirspace::TypeString),
    K7ROW_CODE("Level", "Level", K7SUAirspace, level, Level),
    K7ROWS_CONTROLLED(K7SUAirspace),
    K7ROW_RELATED("CommRecord", AirspaceComms, AS_FOUND),
};

constexpr Bit REGIONS[] = {{K7FIR::IS_FIR, "FIR"}, {K7FIR::IS_UIR, "UIR"}};

bool Oceanic(Rendering& r, const void* record) {
  r.text.Append("Yes", 3);
  return As<K7FIR>(record).IsOceanic();
}

constexpr Row FIR_ROWS[] = {
    K7ROW_BITS("Region", "Region", K7FIR, flags, REGIONS),
    K7ROW_RECORD("Oceanic", "Oceanic", ALWAYS, Oceanic),
    K7ROW("Address", "Address", ALWAYS, K7FIR, address, Text),
    K7ROW("FIRUpper", "FIR Upper Limit", ALWAYS, K7FIR, firUpper, Alt),
    K7ROW("UIRLower", "UIR Lower Limit", ALWAYS, K7FIR, uirLower, Alt),
    K7ROW("UIRUpper", "UIR Upper Limit", ALWAYS, K7FIR, uirUpper, Alt),
    K7ROW_CODE("ReportingSpeed", "Reporting Units of Speed", K7FIR, repUnitsSpeed, Digit<SPEED_UNITS>),
    K7ROW_CODE("ReportingAltitude", "Reporting Units of Altitude", K7FIR, repUnitsAlt, Digit<ALT_UNITS>),
    K7ROW_CODE("EntryReport", "Entry Report", K7FIR, entryRep, Required),
    K7ROW("CPDLCLogon", "CPDLC Logon", ALWAYS, K7FIR, cpdlc, Text),
    K7ROW_RELATED("CommRecord", AirspaceComms, AS_FOUND),
};

const char* Via(int c) { return K7AirspaceSeg::ViaString(static_cast<char>(c)); }

// Bearings from a centre say something where there is an arc.
template <class M>
bool ArcBearing(Rendering& r, const void* member) {
  return As<M>(member) > 0 && RealDegrees<M>(r, member);
}

constexpr Row SEGMENT_ROWS[] = {
    K7ROW_KEY("AirspaceKey", K7AirspaceSeg, airspace),
    K7ROW("Sequence", "Sequence", ALWAYS, K7AirspaceSeg, sequence, Count),
    K7ROW_CODE("Via", "Via", K7AirspaceSeg, via, Via),
    K7ROWS_POSITION("Start", "Start ", K7AirspaceSeg, lat),
    K7ROWS_KNOWN_POSITION("End", "End ", K7AirspaceSeg, endLat),
    K7ROWS_KNOWN_POSITION("Center", "Center ", K7AirspaceSeg, centerLat),
    K7ROW("Radius", "Radius", ALWAYS, K7AirspaceSeg, radius, RealMiles),
    K7ROW("StartBearing", "Start Bearing", ALWAYS, K7AirspaceSeg, startBrg, ArcBearing),
    K7ROW("EndBearing", "End Bearing", ALWAYS, K7AirspaceSeg, endBrg, ArcBearing),
};

constexpr Row ACTIVITY_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7SpecialActivityArea, ident, Text),
    K7ROW("Name", "Name", ALWAYS, K7SpecialActivityArea, name, Text),
    K7ROW_CODE("ActivityType", "Activity", K7SpecialActivityArea, type, K7SpecialActivityArea::TypeString),
    K7ROWS_POSITION("", "", K7SpecialActivityArea, lat),
    K7ROW("City", "City", ALWAYS, K7SpecialActivityArea, city, Text),
    K7ROW("Country", "Country", ALWAYS, K7SpecialActivityArea, country, Text),
};

constexpr Row ENDPOINT_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7TailoredEndpoint, ident, Text),
    K7ROW("Fleet", "Fleet", ALWAYS, K7TailoredEndpoint, fleet, Text),
    K7ROWS_POSITION("", "", K7TailoredEndpoint, lat),
};

constexpr Row SHORELINE_ROWS[] = {
    K7ROW("Name", "Name", ALWAYS, K7TailoredLine, name, Text),
    K7ROW("Ident", "Ident", ALWAYS, K7TailoredLine, ident, Text),
    K7ROW("ICAOCODE", "ICAO Code", ALWAYS, K7TailoredLine, icao, Text),
    K7ROW("Fleet", "Fleet", ALWAYS, K7TailoredLine, fleet, Text),
    K7ROWS_LIMITS(K7TailoredLine),
};

constexpr Row BOUNDARY_ROWS[] = {
    K7ROW("Fleet", "Fleet", ALWAYS, K7TailoredAirspace, fleet, Text),
    K7ROWS_LIMITS(K7TailoredAirspace),
};

constexpr Row ETOPS_ROWS[] = {
    K7ROW("AircraftType", "Aircraft Type", ALWAYS, K7ETOPS, aircraftType, Text),
    K7ROW("Minutes", "Diversion Time", ALWAYS, K7ETOPS, minutes, Minutes),
    K7ROW("Distance", "Diversion Distance", ALWAYS, K7ETOPS, distance, Miles),
};

}  // namespace

constinit const Rows rows::AREA = AREA_ROWS;
constinit const Rows rows::CTRL_AIRSPACE = CTRL_ROWS;
constinit const Rows rows::SPECIAL_USE = SPECIAL_USE_ROWS;
constinit const Rows rows::FIR = FIR_ROWS;
constinit const Rows rows::AIRSPACE_SEG = SEGMENT_ROWS;
constinit const Rows rows::SPECIAL_ACTIVITY = ACTIVITY_ROWS;
constinit const Rows rows::ENDPOINT = ENDPOINT_ROWS;
constinit const Rows rows::SHORELINE = SHORELINE_ROWS;
constinit const Rows rows::BOUNDARY = BOUNDARY_ROWS;
constinit const Rows rows::ETOPS = ETOPS_ROWS;

}  // namespace k7nav

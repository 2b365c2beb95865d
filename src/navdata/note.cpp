#include "navdata/lookup.h"

#include <k7/navdata/nav_data.h>
#include <k7/navdata/note.h>

#include <algorithm>
#include <iterator>

using k7nav::WordOf;

namespace {

// Codes count from 0 in every table. Slashes are doubled where the text shows them to a reader of templates.
constexpr const char* CATEGORIES[] = {"Contingency", "Operational", "Reference"};
constexpr const char* FLIGHT_RULES[] = {"Both", "IFR", "VFR"};
constexpr const char* PHASES[] = {"Airport", "Enroute", "SID//STAR//Approach"};
constexpr const char* SUBCATEGORIES[] = {"Air Traffic",
                                         "Communication",
                                         "Contingency",
                                         "Equipment",
                                         "Flight Planning Restriction",
                                         "Prior Notification",
                                         "Restriction",
                                         "Route Restriction",
                                         "Speed",
                                         "Track System",
                                         "Warning",
                                         "Weather"};
constexpr const char* ELEMENT_TYPES[] = {"Airspace Activation",
                                         "Airspace Activity",
                                         "Airspace Class",
                                         "Altitude Exclusion",
                                         "Airspace Altitudes",
                                         "Altimeter",
                                         "Airspace Penetration",
                                         "Airspace Restriction",
                                         "Airspace Speed",
                                         "Boundary Report",
                                         "Cruising Levels",
                                         "Contingency Procedures",
                                         "Communication Procedures",
                                         "Cruise Table Restriction",
                                         "DME//DME//IRU",
                                         "Emergency Comms",
                                         "Flight Planning Route",
                                         "Flight Planning Time",
                                         "Flight Rules",
                                         "GPS//GNSS",
                                         "HF Comms",
                                         "Holding Pattern Restriction",
                                         "Holding Pattern Speed",
                                         "IFR Operations",
                                         "Lost Comms",
                                         "MNPS",
                                         "Navaid",
                                         "Navigation Equipment",
                                         "Note Restriction",
                                         "Noise Sensitive Area",
                                         "Flight Planning Altitude",
                                         "Flight Planning Direction",
                                         "Position Reports",
                                         "Radiation",
                                         "RNAV",
                                         "RNP",
                                         "Reporting Procedures",
                                         "RVSM",
                                         "Seasonal Closure",
                                         "Terrain Avoidance",
                                         "Transponder",
                                         "Time Restriction",
                                         "Track System Procedures",
                                         "VHF Comms",
                                         "VFR Operations",
                                         "VHF//LF",
                                         "Weather Communications",
                                         "Weather Information",
                                         "Waypoint",
                                         "Waypoint Report",
                                         "Weather Restrictions"};
static_assert(std::size(ELEMENT_TYPES) == 51);

constexpr const char* AREA_CODES[] = {"Airport",     "Airspace", "Airway", "Country", "FIR",      "Fix",
                                      "ICAO Region", "Navaid",   "Route",  "UIR",     "Worldwide"};
constexpr const char* COVERAGES[] = {"Entire", "Portion",  "Within", "Outside",
                                     "Along",  "North of", "Radius", "Between"};
constexpr const char* DIRECTIONS[] = {"All", "N",   "NNE", "NE",  "ENE", "E",   "ESE", "SE", "SSE",
                                      "S",   "SSW", "SW",  "WSW", "W",   "WNW", "NW",  "NNW"};
constexpr const char* DISTANCES[] = {"At", "Within", "Beyond", "Before", "After"};
constexpr const char* UNITS[] = {"NM", "km", "Statute Miles", "Feet", "Meters", "Minutes", "Degrees"};
constexpr const char* ALT_DESCRIPTIONS[] = {"At", "At or above", "At or below", "Above", "Below", "Between"};
constexpr const char* ALT_TYPES[] = {"Altitude", "Flight Level", "Height", "Ground", "Unlimited"};
constexpr const char* ALT_REFERENCES[] = {"MSL", "AGL", "Standard"};
constexpr const char* ALT_UNITS[] = {"Feet", "Meters", "Flight Level"};

template <size_t N>
int Write(const char* const (&texts)[N], int code, K7String& out) {
  return std::min(out.Create(WordOf(texts, code, "")), 0);
}

}  // namespace

double K7SmartNotes::North() const { return K7NavData::FixPt2DecDeg(north); }
double K7SmartNotes::South() const { return K7NavData::FixPt2DecDeg(south); }
double K7SmartNotes::East() const { return K7NavData::FixPt2DecDeg(east); }
double K7SmartNotes::West() const { return K7NavData::FixPt2DecDeg(west); }

const char* K7SmartNotes::GetCategoryStr() const { return WordOf(CATEGORIES, category, "Unknown"); }
const char* K7SmartNotes::GetElementTypeStr() const { return WordOf(ELEMENT_TYPES, elementType, "Unknown"); }
const char* K7SmartNotes::GetFlightRulesStr() const { return WordOf(FLIGHT_RULES, flightRules, "Unknown"); }
const char* K7SmartNotes::GetPhaseOfFlightStr() const { return WordOf(PHASES, phaseOfFlight, "Unknown"); }
const char* K7SmartNotes::GetSubcategoryStr() const { return WordOf(SUBCATEGORIES, subcategory, "Unknown"); }

int K7SmartNoteLink::GetAreaCodeString(K7String& out) const { return Write(AREA_CODES, areaCode, out); }
int K7SmartNoteLink::GetCardinalDirectionString(K7String& out) const {
  return Write(DIRECTIONS, cardinalDirection, out);
}
int K7SmartNoteLink::GetCoverageCodeString(K7String& out) const {
  return Write(COVERAGES, coverageCode, out);
}
int K7SmartNoteLink::GetDistDescripString(K7String& out) const { return Write(DISTANCES, distDescrip, out); }
int K7SmartNoteLink::GetUnitsString(K7String& out) const { return Write(UNITS, units, out); }

double K7SmartNoteComm::North() const { return K7NavData::FixPt2DecDeg(north); }
double K7SmartNoteComm::South() const { return K7NavData::FixPt2DecDeg(south); }
double K7SmartNoteComm::East() const { return K7NavData::FixPt2DecDeg(east); }
double K7SmartNoteComm::West() const { return K7NavData::FixPt2DecDeg(west); }

int K7SmartNoteAltitude::GetAltitudeDescriptionString(K7String& out) const {
  return Write(ALT_DESCRIPTIONS, description, out);
}
int K7SmartNoteAltitude::GetAltitudeTypeString(K7String& out) const { return Write(ALT_TYPES, type, out); }
int K7SmartNoteAltitude::GetAltitudeReferenceString(K7String& out) const {
  return Write(ALT_REFERENCES, reference, out);
}
int K7SmartNoteAltitude::GetAltitudeUnitString(K7String& out) const { return Write(ALT_UNITS, unit, out); }

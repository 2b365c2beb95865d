// Rows of communications, obstacles, what operators keep of airports, and smart notes.

#include "navdata/nav_xml_forms.h"

#include <k7/navdata/airport.h>
#include <k7/navdata/comm.h>
#include <k7/navdata/note.h>
#include <k7/navdata/obstacle.h>

#include <iterator>

namespace k7nav {
namespace {

bool PutFrequency(Rendering& r, uint32_t freq, uint32_t units, uint32_t flags) {
  r.scratch.Clear();
  const int result = K7EnrouteComm::FormatCommFrequency(static_cast<int>(freq), static_cast<int>(units),
                                                        static_cast<int>(flags), r.scratch, true);
  if (freq != 0 && Kept(r, result)) r.text.Append(r.scratch);
  return r.text.Size() > 0;
}

bool AirportFrequency(Rendering& r, const void* record) {
  const K7AirportComm& comm = As<K7AirportComm>(record);
  return PutFrequency(r, static_cast<uint32_t>(comm.freq), static_cast<uint32_t>(comm.commInfo), comm.flags);
}

// Where the record does not name its unit, it is that of the field table.
bool EnrouteFrequency(Rendering& r, const void* record) {
  static constexpr uint32_t HUNDREDTH_MEGAHERTZ = 1;
  const K7EnrouteComm& comm = As<K7EnrouteComm>(record);
  return PutFrequency(r, comm.freq, comm.commInfo ? comm.commInfo : HUNDREDTH_MEGAHERTZ, comm.flags);
}

template <class M>
bool Services(Rendering& r, const void* member) {
  if (Kept(r, K7EnrouteComm::ServiceIndicatorString(As<M>(member), r.scratch))) {
    r.scratch.Trim(", ");
    r.text.Append(r.scratch);
  }
  return r.text.Size() > 0;
}

bool Sector(Rendering& r, const void* record) {
  const K7AirportComm& comm = As<K7AirportComm>(record);
  if (comm.startSector == 0 && comm.endSector == 0) return false;
  PutNumber(r.text, comm.startSector);
  PutDegreeSign(r.text);
  r.text.Append(" - ", 3);
  PutNumber(r.text, comm.endSector);
  PutDegreeSign(r.text);
  return true;
}

// The variation of the sector's bearings, where there are any.
bool SectorVariation(Rendering& r, const void* record) {
  const K7AirportComm& comm = As<K7AirportComm>(record);
  return (comm.startSector != 0 || comm.endSector != 0) && Variation<int32_t>(r, &comm.magVar);
}

constexpr Row AIRPORT_COMM_ROWS[] = {
    K7ROW_KEY("AirportKey", K7AirportComm, airport),
    K7ROW("AirportIdent", "Airport Ident", ALWAYS, K7AirportComm, airportIdent, Text),
    K7ROW_CODE("CommType", "Communication Type", K7AirportComm, commType, K7AirportComm::TypeString),
    K7ROW("Callsign", "Callsign", ALWAYS, K7AirportComm, callsign, Text),
    K7ROW_RECORD("Frequency", "Frequency", ALWAYS, AirportFrequency),
    K7ROW("Services", "Services", ALWAYS, K7AirportComm, serviceFlags, Services),
    K7ROW_RECORD("Sector", "Sector", ALWAYS, Sector),
    K7ROW_RECORD("MagVar", "Magnetic Variation", ALWAYS, SectorVariation),
    K7ROW("Distance", "Distance", ALWAYS, K7AirportComm, distance, Miles),
    K7ROW("Altitude1", "First Altitude", ALWAYS, K7AirportComm, alt1, Alt),
    K7ROW("Altitude2", "Second Altitude", ALWAYS, K7AirportComm, alt2, Alt),
};

constexpr Row ENROUTE_COMM_ROWS[] = {
    K7ROW_KEY("FirKey", K7EnrouteComm, fir),
    K7ROW("FIRIdent", "FIR", ALWAYS, K7EnrouteComm, firIdent, Text),
    K7ROW_CODE("CommType", "Communication Type", K7EnrouteComm, commType, K7EnrouteComm::CommTypeString),
    K7ROW("Callsign", "Callsign", ALWAYS, K7EnrouteComm, callsign, Text),
    K7ROW("RemoteName", "Remote Site", ALWAYS, K7EnrouteComm, remoteName, Text),
    K7ROWS_KNOWN_POSITION("", "", K7EnrouteComm, lat),
    K7ROW_RECORD("Frequency", "Frequency", ALWAYS, EnrouteFrequency),
    K7ROW("Services", "Services", ALWAYS, K7EnrouteComm, serviceFlags, Services),
    K7ROW("Altitude1", "First Altitude", ALWAYS, K7EnrouteComm, alt1, Alt),
    K7ROW("Altitude2", "Second Altitude", ALWAYS, K7EnrouteComm, alt2, Alt),
};

// NOLINTBEGIN(bugprone-macro-parentheses): texts are joined with it.
#define K7ROWS_COMPANY_FREQ(rank, member)                                                     \
  K7ROW(rank "Frequency", rank " Frequency", ALWAYS, K7CompanyComm, member.value, Text),      \
      K7ROW(rank "Callsign", rank " Callsign", ALWAYS, K7CompanyComm, member.callsign, Text), \
      K7ROW(rank "Hours", rank " Hours", ALWAYS, K7CompanyComm, member.hours, Text)
// NOLINTEND(bugprone-macro-parentheses)

constexpr Row COMPANY_COMM_ROWS[] = {
    K7ROW("FrequencyCount", "Frequencies", ALWAYS, K7CompanyComm, freqCount, Count),
    K7ROWS_COMPANY_FREQ("Primary", primary),
    K7ROWS_COMPANY_FREQ("Secondary", secondary),
    K7ROWS_COMPANY_FREQ("Tertiary", tertiary),
};

constexpr Row FORMATION_ROWS[] = {
    K7ROWS_FIX_KEY("Ref", "Reference", K7Formation, refKey),
    K7ROWS_POSITION("Ref", "Reference ", K7Formation, refLat),
    K7ROWS_FIX_KEY("Fix", "Fix", K7Formation, fixKey),
    K7ROW("Bearing", "Bearing", ALWAYS, K7Formation, bearing, Bearing),
    K7ROW("Distance", "Distance", ALWAYS, K7Formation, distance, TenthMiles),
    K7ROW("Usage", "Usage", ALWAYS, K7Formation, usage, Character),
};

constexpr Row OBSTACLE_ROWS[] = {
    K7ROW_CODE("ObstacleType", "Obstacle Type", K7Obstacle, typeCode, K7Obstacle::TypeString),
    K7ROWS_POSITION("", "", K7Obstacle, lat),
    K7ROW("Elevation", "Elevation", ALWAYS, K7Obstacle, elev, KnownFeet),
    K7ROW("Height", "Height", ALWAYS, K7Obstacle, height, FeetAboveGround),
    K7ROW_CODE("Lighting", "Lighting", K7Obstacle, lightCode, K7Obstacle::LightString),
    K7ROW("HorizontalAccuracy", "Horizontal Accuracy", ALWAYS, K7Obstacle, horzAccuracy, Feet),
    K7ROW("VerticalAccuracy", "Vertical Accuracy", ALWAYS, K7Obstacle, vertAccuracy, Feet),
};

constexpr Row COMPANY_AIRPORT_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7CompanyAirport, ident, Text),
    K7ROW("ICAO", "ICAO", ALWAYS, K7CompanyAirport, icao, Text),
    K7ROW("Frequencies", "Frequencies", ALWAYS, K7CompanyAirport, frequencies, Text),
    K7ROW("Telephones", "Telephones", ALWAYS, K7CompanyAirport, telephones, Text),
};

constexpr Row FLEET_AIRPORT_ROWS[] = {
    K7ROW_KEY("AirportKey", K7FleetAirport, airport),
    K7ROW("Ident", "Ident", ALWAYS, K7FleetAirport, ident, Text),
    K7ROW("Fleet", "Fleet", ALWAYS, K7FleetAirport, fleet, Text),
    K7ROW_CODE("AirportType", "Airport Type", K7FleetAirport, airportType, K7FleetAirport::TypeString),
};

// What the codes of smart notes say is asked of the record.
template <class Record, const char* (Record::*WORD)() const>
bool Word(Rendering& r, const void* record) {
  r.text.Append((As<Record>(record).*WORD)());
  return true;
}
template <class Record, int (Record::*WORD)(K7String&) const>
bool Word(Rendering& r, const void* record) {
  if (Kept(r, (As<Record>(record).*WORD)(r.scratch))) r.text.Append(r.scratch);
  return r.text.Size() > 0;
}
#define K7ROW_WORD(element, label, record, decoder) \
  { element, label, When::ALWAYS, 0, &Word<record, &record::decoder> }

constexpr Row SMART_NOTE_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7SmartNotes, ident, Text),
    K7ROW_WORD("Category", "Category", K7SmartNotes, GetCategoryStr),
    K7ROW_WORD("Subcategory", "Subcategory", K7SmartNotes, GetSubcategoryStr),
    K7ROW_WORD("ElementType", "Element Type", K7SmartNotes, GetElementTypeStr),
    K7ROW_WORD("PhaseOfFlight", "Phase of Flight", K7SmartNotes, GetPhaseOfFlightStr),
    K7ROW_WORD("FlightRules", "Flight Rules", K7SmartNotes, GetFlightRulesStr),
    K7ROW("Text", "Text", ALWAYS, K7SmartNotes, text, Text),
    K7ROW_RELATED("SmartNoteLink", NoteLinks, AS_FOUND),
    K7ROW_RELATED("SmartNoteComm", NoteComms, AS_FOUND),
    K7ROW_RELATED("SmartNoteAltitude", NoteAltitudes, AS_FOUND),
};

// A number and its unit, which the scratch text holds when `result` is 0.
bool PutWithUnit(Rendering& r, float value, int decimals, int result) {
  PutReal(r.text, static_cast<double>(value), decimals);
  if (Kept(r, result) && !r.scratch.IsEmpty()) {
    r.text.Append(" ", 1);
    r.text.Append(r.scratch);
  }
  return true;
}

bool LinkDistance(Rendering& r, const void* record) {
  const K7SmartNoteLink& link = As<K7SmartNoteLink>(record);
  return link.distance > 0 && PutWithUnit(r, link.distance, 1, link.GetUnitsString(r.scratch));
}

constexpr Row NOTE_LINK_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7SmartNoteLink, ident, Text),
    K7ROW_WORD("Area", "Area", K7SmartNoteLink, GetAreaCodeString),
    K7ROW_WORD("Coverage", "Coverage", K7SmartNoteLink, GetCoverageCodeString),
    K7ROW_WORD("Direction", "Direction", K7SmartNoteLink, GetCardinalDirectionString),
    K7ROW_WORD("DistanceDescription", "Distance Description", K7SmartNoteLink, GetDistDescripString),
    K7ROW_RECORD("Distance", "Distance", ALWAYS, LinkDistance),
    K7ROW_KEY("NavDataKey", K7SmartNoteLink, navData),
    K7ROWS_FIX_KEY("FromFix", "From", K7SmartNoteLink, fromFix),
    K7ROWS_FIX_KEY("ToFix", "To", K7SmartNoteLink, toFix),
    K7ROWS_FIX_KEY("RadiusBasis", "Radius about", K7SmartNoteLink, radiusBasis),
};

constexpr Row NOTE_COMM_ROWS[] = {
    K7ROW_KEY("NavDataKey", K7SmartNoteComm, navData),
    K7ROW("Ident", "Ident", ALWAYS, K7SmartNoteComm, navData, IdentOf),
    K7ROW_KEY("CommKey", K7SmartNoteComm, commRec),
};

bool NoteAltitude(Rendering& r, const void* record) {
  const K7SmartNoteAltitude& note = As<K7SmartNoteAltitude>(record);
  return PutWithUnit(r, note.altitude, 0, note.GetAltitudeUnitString(r.scratch));
}

constexpr Row NOTE_ALTITUDE_ROWS[] = {
    K7ROW_WORD("Description", "Altitude Description", K7SmartNoteAltitude, GetAltitudeDescriptionString),
    K7ROW_RECORD("Altitude", "Altitude", ALWAYS, NoteAltitude),
    K7ROW_WORD("AltitudeType", "Altitude Type", K7SmartNoteAltitude, GetAltitudeTypeString),
    K7ROW_WORD("Reference", "Reference", K7SmartNoteAltitude, GetAltitudeReferenceString),
};

}  // namespace

constinit const Rows rows::AIRPORT_COMM = AIRPORT_COMM_ROWS;
constinit const Rows rows::ENROUTE_COMM = ENROUTE_COMM_ROWS;
constinit const Rows rows::COMPANY_COMM = COMPANY_COMM_ROWS;
constinit const Rows rows::FORMATION = FORMATION_ROWS;
constinit const Rows rows::OBSTACLE = OBSTACLE_ROWS;
constinit const Rows rows::COMPANY_AIRPORT = COMPANY_AIRPORT_ROWS;
constinit const Rows rows::FLEET_AIRPORT = FLEET_AIRPORT_ROWS;
constinit const Rows rows::SMART_NOTE = SMART_NOTE_ROWS;
constinit const Rows rows::NOTE_LINK = NOTE_LINK_ROWS;
constinit const Rows rows::NOTE_COMM = NOTE_COMM_ROWS;
constinit const Rows rows::NOTE_ALTITUDE = NOTE_ALTITUDE_ROWS;

}  // namespace k7nav

// Rows of airways, holdings, procedures and off-route altitudes.

#include "navdata/lookup.h"
#include "navdata/nav_xml_forms.h"

#include <k7/navdata/airway.h>

namespace k7nav {
namespace {

const char* AirwayDirection(int c) {
  switch (c) {
    case K7AirwaySeg::FORWARD:
      return "Forward Only";
    case K7AirwaySeg::BACKWARD:
      return "Backward Only";
    default:
      return c == K7AirwaySeg::BOTH_WAYS ? "Both Ways" : nullptr;
  }
}

const char* Turn(int c) { return c == 'L' ? "Left" : c == 'R' ? "Right" : nullptr; }

constexpr Row AIRWAY_SEG_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7AirwaySeg, ident, Text),
    K7ROW("RouteType", "Route Type", ALWAYS, K7AirwaySeg, routeType, Character),
    K7ROW("Sequence", "Sequence", FULL, K7AirwaySeg, sequence, Count),
    K7ROW_KEY("FromKey", K7AirwaySeg, fromKey),
    K7ROW("FromIdent", "From", ALWAYS, K7AirwaySeg, fromIdent, Text),
    K7ROWS_POSITION("From", "From ", K7AirwaySeg, fromLat),
    K7ROW_KEY("ToKey", K7AirwaySeg, toKey),
    K7ROW("ToIdent", "To", ALWAYS, K7AirwaySeg, toIdent, Text),
    K7ROWS_POSITION("To", "To ", K7AirwaySeg, toLat),
    K7ROW_CODE("Direction", "Direction", K7AirwaySeg, direction, AirwayDirection),
    K7ROW("Course", "Course", ALWAYS, K7AirwaySeg, course, Course),
    K7ROW("CourseOpposite", "Opposite Course", ALWAYS, K7AirwaySeg, courseOpposite, Course),
    K7ROW("Distance", "Distance", ALWAYS, K7AirwaySeg, distance, HundredthMiles),
    K7ROW("MEA", "Minimum Enroute Altitude", ALWAYS, K7AirwaySeg, mea, Alt),
    K7ROW("MEAOpposite", "Opposite Minimum Enroute Altitude", ALWAYS, K7AirwaySeg, meaOpposite, Alt),
    K7ROW("MOCA", "Minimum Obstacle Clearance Altitude", ALWAYS, K7AirwaySeg, moca, Alt),
    K7ROW("MAA", "Maximum Authorized Altitude", ALWAYS, K7AirwaySeg, maa, Alt),
    K7ROW("RNP", "Required Navigation Performance", ALWAYS, K7AirwaySeg, rnp, RealMiles),
    K7ROW("ATCAdvisory", "ATC Advisory", ALWAYS, K7AirwaySeg, atcAdvisory, Character),
    K7ROW_KEY("FirKey", K7AirwaySeg, fir),
    K7ROW_KEY("AirwayKey", K7AirwaySeg, header),
    K7ROW_KEY("CruiseTableKey", K7AirwaySeg, cruiseTable),
    K7ROW_RELATED("Restriction", SegmentRestrictions, AS_FOUND),
};

constexpr Row HEADER_ROWS[] = {
    K7ROW("Ident", "Ident", ALWAYS, K7AirwayHeader, ident, Text),
    K7ROW("Region", "Region", ALWAYS, K7AirwayHeader, region, Character),
    K7ROWS_FIX_KEY("From", "From", K7AirwayHeader, fromKey),
    K7ROWS_FIX_KEY("To", "To", K7AirwayHeader, toKey),
    K7ROW("SegmentCount", "Segments", ALWAYS, K7AirwayHeader, segCount, Count),
};

constexpr Row RESTRICTION_ROWS[] = {
    K7ROW("AirwayIdent", "Airway", ALWAYS, K7AirwayRestriction, airwayIdent, Text),
    K7ROW("RestrictionType", "Restriction Type", ALWAYS, K7AirwayRestriction, restrictionType, Character),
    K7ROW_KEY("StartKey", K7AirwayRestriction, startKey),
    K7ROW("StartIdent", "From", ALWAYS, K7AirwayRestriction, startIdent, Text),
    K7ROW_KEY("EndKey", K7AirwayRestriction, endKey),
    K7ROW("EndIdent", "To", ALWAYS, K7AirwayRestriction, endIdent, Text),
    K7ROW("Altitude1", "First Altitude", ALWAYS, K7AirwayRestriction, alt1, Alt),
    K7ROW("Altitude2", "Second Altitude", ALWAYS, K7AirwayRestriction, alt2, Alt),
    K7ROW("Note", "Note", ALWAYS, K7AirwayRestriction, note, Text),
    K7ROW_KEY("SegmentKey", K7AirwayRestriction, segment),
};

constexpr Row MIN_CROSSING_ROWS[] = {
    K7ROWS_FIX_KEY("Fix", "Fix", K7MinCrossingAlt, fix),
    K7ROW("AirwayIdent", "Airway", ALWAYS, K7MinCrossingAlt, airwayIdent, Text),
    K7ROW("AirwayDirection", "Direction", ALWAYS, K7MinCrossingAlt, airwayDirection, Text),
    K7ROW("Altitude", "Minimum Crossing Altitude", ALWAYS, K7MinCrossingAlt, alt, Alt),
};

constexpr Row HOLDING_ROWS[] = {
    K7ROW_KEY("FixKey", K7HoldingPattern, fix),
    K7ROW("FixIdent", "Fix", ALWAYS, K7HoldingPattern, fixIdent, Text),
    K7ROW("ICAOCODE", "ICAO Code", ALWAYS, K7HoldingPattern, icao, Text),
    K7ROWS_POSITION("", "", K7HoldingPattern, lat),
    K7ROWS_FIX_KEY("Airport", "Airport Ident", K7HoldingPattern, airport),
    K7ROW("InboundCourse", "Inbound Course", ALWAYS, K7HoldingPattern, inbound, Course),
    K7ROW_CODE("Turn", "Turns", K7HoldingPattern, turn, Turn),
    K7ROW("LegTime", "Leg Time", ALWAYS, K7HoldingPattern, legTime, TenthMinutes),
    K7ROW("LegLength", "Leg Length", ALWAYS, K7HoldingPattern, legLength, TenthMiles),
    K7ROW("MinAltitude", "Minimum Altitude", ALWAYS, K7HoldingPattern, minAlt, Alt),
    K7ROW("MaxAltitude", "Maximum Altitude", ALWAYS, K7HoldingPattern, maxAlt, Alt),
    K7ROW("Speed", "Maximum Speed", ALWAYS, K7HoldingPattern, speed, Knots),
};

const char* AltDescription(int c) {
  switch (c) {
    case '+':
      return "At or above";
    case '-':
      return "At or below";
    case 'B':
      return "Between";
    default:
      return nullptr;
  }
}

// The legs of holdings, HA, HF and HM, are flown by time.
bool TimeOrDistance(Rendering& r, const void* record) {
  const K7ProcedureLeg& leg = As<K7ProcedureLeg>(record);
  const bool byTime = K7ProcedureLeg::PathTermString(leg.pathTerm)[0] == 'H';
  return byTime ? TenthMinutes<int16_t>(r, &leg.timeDist) : TenthMiles<int16_t>(r, &leg.timeDist);
}

constexpr Row LEG_ROWS[] = {
    K7ROW_KEY("AirportKey", K7ProcedureLeg, airport),
    K7ROW("AirportIdent", "Airport Ident", ALWAYS, K7ProcedureLeg, airportIdent, Text),
    K7ROW("ProcedureIdent", "Procedure", ALWAYS, K7ProcedureLeg, procedureIdent, Text),
    K7ROW("RouteType", "Route Type", ALWAYS, K7ProcedureLeg, routeType, Character),
    K7ROW("TransitionIdent", "Transition", ALWAYS, K7ProcedureLeg, transitionIdent, Text),
    K7ROW("RunwayIdent", "Runway", ALWAYS, K7ProcedureLeg, runwayIdent, Text),
    K7ROW("Sequence", "Sequence", ALWAYS, K7ProcedureLeg, sequence, Count),
    K7ROW_CODE("PathTerminator", "Path Terminator", K7ProcedureLeg, pathTerm, K7ProcedureLeg::PathTermString),
    K7ROW_KEY("FixKey", K7ProcedureLeg, fix),
    K7ROW("FixIdent", "Fix", ALWAYS, K7ProcedureLeg, fixIdent, Text),
    K7ROW_CODE("Turn", "Turn", K7ProcedureLeg, turn, Turn),
    K7ROW("MagneticCourse", "Magnetic Course", ALWAYS, K7ProcedureLeg, magCourse, KnownBearing),
    K7ROW_RECORD("TimeDistance", "Time/Distance", ALWAYS, TimeOrDistance),
    K7ROW_CODE("AltitudeDescription", "Altitude Description", K7ProcedureLeg, altDescription, AltDescription),
    K7ROW("Altitude1", "First Altitude", ALWAYS, K7ProcedureLeg, alt1, Alt),
    K7ROW("Altitude2", "Second Altitude", ALWAYS, K7ProcedureLeg, alt2, Alt),
    K7ROW("SpeedLimit", "Speed Limit", ALWAYS, K7ProcedureLeg, speedLimit, Knots),
    K7ROW("VerticalAngle", "Vertical Angle", ALWAYS, K7ProcedureLeg, verticalAngle, HundredthDegrees),
    K7ROW("RNP", "Required Navigation Performance", ALWAYS, K7ProcedureLeg, rnp, HundredthMiles),
    K7ROWS_FIX_KEY("RecommendedFix", "Recommended Navaid", K7ProcedureLeg, recommendedFix),
    K7ROW("Theta", "Bearing from Navaid", ALWAYS, K7ProcedureLeg, theta, KnownBearing),
    K7ROW("Rho", "Distance from Navaid", ALWAYS, K7ProcedureLeg, rho, TenthMiles),
    K7ROWS_FIX_KEY("ArcCenterFix", "Arc Center", K7ProcedureLeg, arcCenterFix),
};

// A cell's corner is whole degrees.
template <class M>
bool CornerLatitude(Rendering& r, const void* member) {
  PutLatitude(r, As<M>(member));
  return true;
}
template <class M>
bool CornerLongitude(Rendering& r, const void* member) {
  PutLongitude(r, (&As<M>(member))[1]);
  return true;
}
template <class M>
bool CornerLatLong(Rendering& r, const void* member) {
  CornerLatitude<M>(r, member);
  r.text.Append("   ", 3);
  return CornerLongitude<M>(r, member);
}

constexpr Row MORA_ROWS[] = {
    K7ROWS_AT("", "", K7Mora, lat, Corner),
    K7ROW("Altitude", "Minimum Off-Route Altitude", ALWAYS, K7Mora, alt, Alt),
};

const char* RouteDirection(int code) {
  static constexpr const char* WORDS[] = {"Both Ways", "Forward Only", "Backward Only"};
  return WordOf(WORDS, code);
}

constexpr Row TRANSIT_ROUTE_ROWS[] = {
    K7ROW("Name", "Name", ALWAYS, K7TransitRoute, name, Text),
    K7ROW("Ident", "Ident", ALWAYS, K7TransitRoute, ident, Text),
    K7ROW("Designator", "Designator", ALWAYS, K7TransitRoute, designator, Text),
    K7ROW("Designator2", "Second Designator", ALWAYS, K7TransitRoute, designator2, Text),
    K7ROW("Country", "Country", ALWAYS, K7TransitRoute, country, Text),
    K7ROW_CODE("Direction", "Direction", K7TransitRoute, direction, RouteDirection),
    K7ROW("VerticalLimit", "Vertical Limit", ALWAYS, K7TransitRoute, vertLimit, Text),
    K7ROW("Remarks", "Remarks", ALWAYS, K7TransitRoute, remarks, Text),
};

}  // namespace

constinit const Rows rows::AIRWAY_SEG = AIRWAY_SEG_ROWS;
constinit const Rows rows::AIRWAY_HEADER = HEADER_ROWS;
constinit const Rows rows::RESTRICTION = RESTRICTION_ROWS;
constinit const Rows rows::MIN_CROSSING = MIN_CROSSING_ROWS;
constinit const Rows rows::HOLDING = HOLDING_ROWS;
constinit const Rows rows::LEG = LEG_ROWS;
constinit const Rows rows::MORA = MORA_ROWS;
constinit const Rows rows::TRANSIT_ROUTE = TRANSIT_ROUTE_ROWS;

}  // namespace k7nav

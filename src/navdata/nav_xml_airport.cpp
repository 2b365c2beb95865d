// Rows of fixes, navaids, airports and runways.

#include "navdata/lookup.h"
#include "navdata/nav_xml_forms.h"

#include <k7/navdata/airport.h>
#include <k7/navdata/navaid.h>

#include <cmath>
#include <cstdlib>

namespace k7nav {
namespace {

// An airport's and a runway's elements are those that hosts look for by name: an element without text is
// there, too, unless something else is said.

constexpr Row FIX_ROWS[] = {
    K7ROWS_POSITION("", "", K7NavFix, lat),
    K7ROW("Ident", "Ident", ALWAYS, K7NavFix, ident, AnyText),
    K7ROW("ICAOCODE", "ICAO Code", ALWAYS, K7NavFix, icao, AnyText),
    K7ROW("Elevation", "Elevation", ALWAYS, K7NavFix, elev, Elevation),
    K7ROW("MagVar", "Magnetic Variation", ALWAYS, K7NavFix, magVar, Variation),
    K7ROW_KEY("FirKey", K7NavFix, fir),
    K7ROW_KEY("UirKey", K7NavFix, uir),
};

bool DetailedType(Rendering& r, const void* record) {
  r.text.Append(As<K7VHFNavaid>(record).DetailedType());
  return true;
}

constexpr Row VOR_ROWS[] = {
    K7ROW_RECORD("DetailedType", "Type", ALWAYS, DetailedType),
    K7ROW("Name", "Name", ALWAYS, K7VHFNavaid, name, AnyText),
    K7ROW_RECORD("Location", "Location", ALWAYS, LocationOf),
    K7ROW("City", "City", ALWAYS, K7VHFNavaid, city, AnyText),
    K7ROW("State", "State", ALWAYS, K7VHFNavaid, state, AnyText),
    K7ROW("Country", "Country", ALWAYS, K7VHFNavaid, country, AnyText),
    K7ROW("Frequency", "Frequency", ALWAYS, K7VHFNavaid, freq, Megahertz),
    K7ROW_RECORD("MorseCode", "Morse Code", ALWAYS, MorseOfFix),
    K7ROW("Declination", "Declination", ALWAYS, K7VHFNavaid, declination, Declination),
    K7ROW("Range", "Range", ALWAYS, K7VHFNavaid, range, AnyMiles),
};

constexpr Row NDB_ROWS[] = {
    K7ROW("Name", "Name", ALWAYS, K7NDB, name, Text),
    K7ROW_RECORD("Location", "Location", ALWAYS, LocationOf),
    K7ROW("City", "City", ALWAYS, K7NDB, city, Text),
    K7ROW("State", "State", ALWAYS, K7NDB, state, Text),
    K7ROW("Country", "Country", ALWAYS, K7NDB, country, Text),
    K7ROW("Frequency", "Frequency", ALWAYS, K7NDB, freq, Kilohertz),
    K7ROW_RECORD("MorseCode", "Morse Code", ALWAYS, MorseOfFix),
    K7ROW("Range", "Range", ALWAYS, K7NDB, range, Miles),
    K7ROWS_FIX_KEY("Airport", "Airport Ident", K7NDB, airport),
};

constexpr Row WAYPOINT_ROWS[] = {
    K7ROW("Name", "Name", ALWAYS, K7Waypoint, name, Text),
    K7ROW("MRA", "Minimum Reception Altitude", ALWAYS, K7Waypoint, mra, Alt),
    K7ROWS_FIX_KEY("Airport", "Airport Ident", K7Waypoint, airport),
};

constexpr Bit LOCALIZER_PARTS[] = {{K7LocalizerGlideslope::GLIDESLOPE, "Glideslope"},
                                   {K7LocalizerGlideslope::DME, "DME"},
                                   {K7LocalizerGlideslope::BACK_COURSE, "Back Course"}};

constexpr Row LOCALIZER_ROWS[] = {
    K7ROWS_FIX_KEY("Airport", "Airport Ident", K7LocalizerGlideslope, airport),
    K7ROWS_FIX_KEY("Runway", "Runway Ident", K7LocalizerGlideslope, runway),
    K7ROW("Frequency", "Frequency", ALWAYS, K7LocalizerGlideslope, freq, Megahertz),
    K7ROW_RECORD("MorseCode", "Morse Code", ALWAYS, MorseOfFix),
    K7ROW_BITS("Components", "Components", K7LocalizerGlideslope, flags, LOCALIZER_PARTS),
    K7ROW("MagneticBearing", "Magnetic Bearing", ALWAYS, K7LocalizerGlideslope, locBrg, Bearing),
    K7ROW("TrueBearing", "True Bearing", ALWAYS, K7LocalizerGlideslope, locTrueBrg, BearingTrue),
    K7ROW("Declination", "Declination", ALWAYS, K7LocalizerGlideslope, declination, Declination),
    K7ROW("LocalizerWidth", "Localizer Width", ALWAYS, K7LocalizerGlideslope, locWidth, HundredthDegrees),
    K7ROW("LocalizerOffset", "Localizer Offset", ALWAYS, K7LocalizerGlideslope, locOffset, Feet),
    K7ROWS_KNOWN_POSITION("Glideslope", "Glideslope ", K7LocalizerGlideslope, gsLat),
    K7ROW("GlideslopeAngle", "Glideslope Angle", ALWAYS, K7LocalizerGlideslope, gsAngle, HundredthDegrees),
    K7ROW("GlideslopeBeam", "Glideslope Beam Width", ALWAYS, K7LocalizerGlideslope, gsBeam, HundredthDegrees),
    K7ROW("GlideslopeOffset", "Glideslope Offset", ALWAYS, K7LocalizerGlideslope, gsOffset, Feet),
    K7ROW("GlideslopeElevation", "Glideslope Elevation", ALWAYS, K7LocalizerGlideslope, gsElev, NonZeroFeet),
    K7ROW("ThresholdCrossingHeight", "Threshold Crossing Height", ALWAYS, K7LocalizerGlideslope, threshXingHt,
          Feet),
};

constexpr Bit MARKER_KINDS[] = {{K7LocatorMarker::OUTER, "Outer"},
                                {K7LocatorMarker::MIDDLE, "Middle"},
                                {K7LocatorMarker::INNER, "Inner"},
                                {K7LocatorMarker::LOCATOR, "Locator"}};

constexpr Row MARKER_ROWS[] = {
    K7ROW_BITS("MarkerType", "Marker Type", K7LocatorMarker, flags, MARKER_KINDS),
    K7ROW("Name", "Name", ALWAYS, K7LocatorMarker, name, Text),
    K7ROWS_FIX_KEY("Airport", "Airport Ident", K7LocatorMarker, airport),
    K7ROW_KEY("RunwayKey", K7LocatorMarker, runway),
    K7ROW("RunwayIdent", "Runway Ident", ALWAYS, K7LocatorMarker, runwayIdent, Text),
    K7ROW("Frequency", "Frequency", ALWAYS, K7LocatorMarker, freq, Kilohertz),
    K7ROW_RECORD("MorseCode", "Morse Code", ALWAYS, MorseOfFix),
    K7ROW("TrueBearing", "True Bearing", ALWAYS, K7LocatorMarker, trueBrg, BearingTrue),
};

bool CodesTogether(Rendering& r, const void* record) {
  const K7Airport& airport = As<K7Airport>(record);
  const bool icao = airport.ident[0], iata = airport.iata[0];
  AnyText<decltype(airport.ident)>(r, airport.ident);
  if (icao && iata) r.text.Append(" / ", 3);
  AnyText<decltype(airport.iata)>(r, airport.iata);
  const char* name = icao ? "ICAO" : "IATA";
  if (icao && iata) r.out.Add("ICAOIATA", "ICAO/IATA", r.text.Text());
  if (icao != iata) r.out.Add(name, name, r.text.Text());
  return false;
}

template <class M>
bool UtcConversion(Rendering& r, const void* member) {
  const int offset = As<M>(member), minutes = std::abs(offset);
  r.text.Append(offset < 0 ? "-" : "+", 1);
  PutNumber(r.text, minutes / 60);
  r.text.Append(minutes % 60 < 10 ? ":0" : ":");
  PutNumber(r.text, minutes % 60);
  r.text.Append(" = UTC");
  return true;
}

bool PutPatternAlt(Rendering& r, int64_t elev, int64_t height) {
  if (height <= 0) return false;
  PutNumber(r.text, elev + height);
  r.text.Append(" ft (");
  PutNumber(r.text, height);
  r.text.Append(" ft AGL)");
  return true;
}

template <class Airport>
bool PatternAlt(Rendering& r, const void* record) {
  return PutPatternAlt(r, As<Airport>(record).elev, As<Airport>(record).patternAlt);
}

template <class M>
bool Usage(Rendering& r, const void* member) {
  const uint32_t flags = As<M>(member), joint = K7Airport::PUBLIC | K7Airport::MILITARY;
  r.text.Append((flags & joint) == joint        ? "Joint-Use"
                : (flags & K7Airport::PUBLIC)   ? "Public"
                : (flags & K7Airport::MILITARY) ? "Military"
                : (flags & K7Airport::PRIVATE)  ? "Private"
                                                : "");
  return r.text.Size() > 0;
}

template <class M>
bool DaylightSaving(Rendering& r, const void* member) {
  r.text.Append(As<M>(member) & K7Airport::DAYLIGHT_SAVING ? "Observed" : "Not Observed");
  return true;
}

constexpr Row AIRPORT_ROWS[] = {
    K7ROW("Name", "Name", ALWAYS, K7Airport, name, AnyText),
    K7ROW("Ident", "Ident", NOT_DISPLAY, K7Airport, ident, AnyText),
    K7ROW("ICAOCODE", "ICAO Code", ALWAYS, K7Airport, icao, AnyText),
    K7ROW("IATA", "IATA", ALWAYS, K7Airport, iata, AnyText),
    K7ROW("City", "City", ALWAYS, K7Airport, city, AnyText),
    K7ROW("State", "State", ALWAYS, K7Airport, state, AnyText),
    K7ROW("Country", "Country", ALWAYS, K7Airport, country, AnyText),
    K7ROW_RECORD(nullptr, nullptr, DISPLAY, CodesTogether),
    K7ROW_RECORD("Location", "Location", ALWAYS, LocationOf),
    K7ROW("Timezone", "UTC Conversion", ALWAYS, K7Airport, utcOffset, UtcConversion),
    K7ROW_RECORD("PatternAlt", "Traffic Pattern Altitude", ALWAYS, PatternAlt<K7Airport>),
    K7ROW("SpeedLimitAlt", "Speed Limit Altitude", FULL, K7Airport, speedLimitAlt, AnyAlt),
    K7ROW("SpeedLimit", "Speed Limit", ALWAYS, K7Airport, speedLimit, AnySpeed),
    K7ROW("LongestRunway", "Longest Runway", ALWAYS, K7Airport, longestRunway, AnyHundredFeet),
    K7ROW("TransitionAlt", "Transition Altitude", ALWAYS, K7Airport, transAlt, AnyAlt),
    K7ROW("TransitionLevel", "Transition Level", ALWAYS, K7Airport, transLevel, AnyAlt),
    K7ROW("Usage", "Airport Use", DISPLAY, K7Airport, flags, Usage),
    K7ROW("DaylightSavings", "Daylight Savings", DISPLAY, K7Airport, flags, DaylightSaving),
    K7ROW_RELATED("Runway", AirportRunways, BY_IDENT),
    K7ROW_RELATED("CommRecord", AirportComms, BACKWARD),
    K7ROW_RELATED("CompanyAirport", CompanyAirports, AS_FOUND),
    K7ROW_RELATED("FleetAirport", FleetAirports, AS_FOUND),
};

void PutExtent(K7XmlText& text, int feet, bool metres) {
  if (feet <= 0) return text.Append("Unknown");
  PutNumber(text, metres ? std::lround(feet * 0.3048) : feet);
  text.Append(metres ? " m" : " ft");
}

template <class M>
bool Extent(Rendering& r, const void* member) {
  PutExtent(r.text, As<M>(member), false);
  return true;
}

bool LengthWidth(Rendering& r, const void* record) {
  const K7Runway& runway = As<K7Runway>(record);
  PutExtent(r.text, runway.length, false);
  r.text.Append(" x ");
  PutExtent(r.text, runway.width, false);
  r.text.Append(" (");
  PutExtent(r.text, runway.length, true);
  r.text.Append(" x ");
  PutExtent(r.text, runway.width, true);
  r.text.Append(")");
  return true;
}

constexpr Bit LIGHTS[] = {
    {K7Runway::EDGE_LIGHTS, "Edge"},
    {K7Runway::APPROACH_LIGHTS, "Approach"},
    {K7Runway::CENTERLINE_LIGHTS, "Centerline"},
    {K7Runway::REIL, "REIL"},
    {K7Runway::TOUCHDOWN_LIGHTS, "Touchdown"},
    {K7Runway::PART_TIME_LIGHTS, "Part Time"},
    {K7Runway::PILOT_CONTROLLED_LIGHTS, "Pilot Controlled"},
    {K7Runway::PRIOR_REQ_REIL, "Prior Req REIL"},
    {K7Runway::PRIOR_REQ_CENTERLINE, "Prior Req Centerline"},
    {K7Runway::PRIOR_REQ_TOUCHDOWN, "Prior Req Touchdown"},
};
constexpr Bit USES[] = {{K7Runway::EMERGENCY_ONLY, "Emergency Use Only"},
                        {K7Runway::GLIDER_ONLY, "Glider Use Only"},
                        {K7Runway::ULTRALIGHT_ONLY, "Ultralight Use Only"}};

template <class M>
bool Lighting(Rendering& r, const void* member) {
  PutBits(r.text, LIGHTS, As<M>(member), true);
  return true;
}

template <class M>
bool Restrictions(Rendering& r, const void* member) {
  const M flags = As<M>(member);
  PutBits(r.text, USES, flags & K7Runway::UNRESTRICTED ? 0 : flags, true);
  return true;
}

template <class M>
bool Gradient(Rendering& r, const void* member) {
  PutReal(r.text, static_cast<double>(As<M>(member)), 3);
  r.text.Append(As<M>(member) > 0 ? " Up" : " Down");
  return true;
}

constexpr Row RUNWAY_ROWS[] = {
    K7ROW("AirportKey", nullptr, FULL, K7Runway, airport, AnyKey),
    K7ROW("AirportIdent", "Airport Ident", ALWAYS, K7Runway, airportIdent, AnyText),
    K7ROW("Length", "Length", NOT_DISPLAY, K7Runway, length, Extent),
    K7ROW("Width", "Width", NOT_DISPLAY, K7Runway, width, Extent),
    K7ROW_RECORD("LengthWidth", "Length x Width", DISPLAY, LengthWidth),
    K7ROW("MagneticBearing", "Magnetic Bearing", ALWAYS, K7Runway, magBrg, Bearing),
    K7ROW("TrueBearing", "True Bearing", ALWAYS, K7Runway, trueBrg, BearingTrue),
    K7ROW_CODE("Surface", "Surface Type", K7Runway, surface, K7Runway::SurfaceString),
    K7ROW("Lighting", "Lighting", ALWAYS, K7Runway, flags, Lighting),
    K7ROW("Restrictions", "Restrictions", ALWAYS, K7Runway, flags, Restrictions),
    K7ROW("TDZElev", "TDZ-Elev", ALWAYS, K7Runway, tdzElev, KnownFeet),
    K7ROW("LandingThresholdElevation", "Landing Threshold Elevation", ALWAYS, K7Runway, landingThresholdElev,
          KnownFeet),
    K7ROW("DisplacedThreshold", "Displaced Threshold", ALWAYS, K7Runway, displacedThreshold, Feet),
    K7ROW("StopwayDistance", "Stopway Distance", ALWAYS, K7Runway, stopway, Feet),
    K7ROW("RunwayGradient", "Runway Gradient", ALWAYS, K7Runway, gradient, Gradient),
};

bool CityDirection(Rendering& r, const void* record) {
  const K7LowUseAirport& airport = As<K7LowUseAirport>(record);
  if (!Miles<uint16_t>(r, &airport.cityDistance)) return false;
  if (airport.cityDirection[0]) r.text.Append(" ", 1);
  return AnyText<decltype(airport.cityDirection)>(r, airport.cityDirection);
}

const char* Owner(int code) {
  static constexpr const char* WORDS[] = {nullptr, "Public", "Private", "Air Force", "Navy", "Army"};
  return WordOf(WORDS, code);
}
const char* Use(int code) { return code == 1 ? "Public" : code == 2 ? "Private" : nullptr; }

constexpr Row LOW_USE_ROWS[] = {
    K7ROW("Name", "Name", ALWAYS, K7LowUseAirport, name, Text),
    K7ROW("TARSIdent", "TARS Ident", ALWAYS, K7LowUseAirport, tarsIdent, Text),
    K7ROW("City", "City", ALWAYS, K7LowUseAirport, city, Text),
    K7ROW_RECORD("CityDistance", "From City", ALWAYS, CityDirection),
    K7ROW("County", "County", ALWAYS, K7LowUseAirport, county, Text),
    K7ROW("State", "State", ALWAYS, K7LowUseAirport, state, Text),
    K7ROW_CODE("Owner", "Owner", K7LowUseAirport, owner, Owner),
    K7ROW_CODE("Usage", "Airport Use", K7LowUseAirport, use, Use),
    K7ROW_RECORD("PatternAlt", "Traffic Pattern Altitude", ALWAYS, PatternAlt<K7LowUseAirport>),
    K7ROW("LongestRunway", "Longest Runway", ALWAYS, K7LowUseAirport, longestRunway, HundredFeet),
    K7ROW("Sectional", "Sectional Chart", ALWAYS, K7LowUseAirport, sectional, Text),
    K7ROW("EffectiveDate", "Effective Date", ALWAYS, K7LowUseAirport, effectiveDate, Text),
};

}  // namespace

constinit const Rows rows::FIX = FIX_ROWS;
constinit const Rows rows::VOR = VOR_ROWS;
constinit const Rows rows::NDB = NDB_ROWS;
constinit const Rows rows::WAYPOINT = WAYPOINT_ROWS;
constinit const Rows rows::LOCALIZER = LOCALIZER_ROWS;
constinit const Rows rows::MARKER = MARKER_ROWS;
constinit const Rows rows::AIRPORT = AIRPORT_ROWS;
constinit const Rows rows::RUNWAY = RUNWAY_ROWS;
constinit const Rows rows::LOW_USE_AIRPORT = LOW_USE_ROWS;

}  // namespace k7nav

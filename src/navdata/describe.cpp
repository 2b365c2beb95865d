// One line about each record, and the words of the codes that need no more than a table.

#include "navdata/lookup.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/latlon.h>
#include <k7/navdata/airport.h>
#include <k7/navdata/airspace.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/comm.h>
#include <k7/navdata/nav_data.h>
#include <k7/navdata/navaid.h>
#include <k7/navdata/obstacle.h>

#include <algorithm>
#include <cstring>
#include <iterator>

using k7nav::FindFix;
using k7nav::WordOf;

namespace {

// A text of a record with its length at most: one in the record may have no NUL.
struct Part {
  template <int N>
  Part(const char (&text)[N]) : at(text), room(N) {}  // NOLINT(google-explicit-constructor)
  Part(const K7NavText& text)                         // NOLINT(google-explicit-constructor)
      : at(text ? static_cast<const char*>(text) : ""), room(INT32_MAX) {}

  bool IsEmpty() const { return !*at; }
  bool operator==(const Part& other) const {
    const size_t length = strnlen(at, static_cast<size_t>(room));
    return length == strnlen(other.at, static_cast<size_t>(other.room)) && !std::memcmp(at, other.at, length);
  }

  const char* at;
  int room;
};

int Write(K7String& out, const Part& text) { return std::min(out.Copy(text.at, text.room), 0); }

// Both texts in `format`, which has "%.*s" for each.
int Write(K7String& out, const char* format, const Part& a, const Part& b) {
  return std::min(out.Format(format, a.room, a.at, b.room, b.at), 0);
}

// "first (second)".
int WriteWith(K7String& out, const Part& first, const Part& second) {
  return Write(out, "%.*s (%.*s)", first, second);
}
int WriteWithAny(K7String& out, const Part& first, const Part& second) {
  return second.IsEmpty() ? Write(out, first) : WriteWith(out, first, second);
}

template <class Record>
int Describe(const K7NavRec& rec, K7NavData* data, K7String& out) {
  return static_cast<const Record&>(rec).GetDescription(data, out);
}

}  // namespace

const char* K7VHFNavaid::DetailedType() const {
  if (flags & ILS) return flags & TACAN ? "ILSTACAN" : "ILSDME";
  if (flags & VOR) return flags & TACAN ? "VORTAC" : flags & DME ? "VORDME" : "VOR";
  return flags & TACAN ? "TACAN" : flags & DME ? "DME" : "";
}
int K7VHFNavaid::GetDescription(K7NavData*, K7String& out) const { return WriteWith(out, ident, name); }
int K7NDB::GetDescription(K7NavData*, K7String& out) const { return WriteWith(out, ident, name); }
int K7Waypoint::GetDescription(K7NavData*, K7String& out) const {
  return Part(name) == Part(ident) ? Write(out, ident) : WriteWithAny(out, ident, name);
}
int K7LocalizerGlideslope::GetDescription(K7NavData*, K7String& out) const {
  return Write(out, "%.*s %.*s", ident, flags & GLIDESLOPE ? Part("ILS") : Part("Localizer"));
}

int K7Airport::GetDescription(K7NavData*, K7String& out) const { return WriteWith(out, ident, name); }
int K7LowUseAirport::GetDescription(K7NavData*, K7String& out) const { return WriteWith(out, ident, name); }

const char* K7Runway::SurfaceString(int code) {
  static constexpr const char* SURFACES[] = {
      "Clay",    "Coral",   "Dirt",    "Grass", "Gravel",   "Ice",     "Laterite", "Mats",  "Planking",
      "Sand",    "Sealed",  "Shale",   "Silt",  "Snow",     "Soil",    "Treated",  "Turf",  "Unknown",
      "Unpaved", "Asphalt", "Bitumen", "Brick", "Concrete", "Macadam", "Paved",    "Tarmac"};
  static_assert(std::size(SURFACES) == 26);
  return WordOf(SURFACES, code, "Unknown");
}
int K7Runway::GetDescription(K7NavData* data, K7String& out) const {
  const K7NavFix* const found = airportIdent[0] ? nullptr : FindFix(data, airport);
  return Write(out, "%.*s Runway %.*s", found ? Part(found->ident) : Part(airportIdent), ident);
}

const char* K7FleetAirport::TypeString(int code) {
  static constexpr const char* TYPES[] = {nullptr, "Regular", "Alternate", "Refuel", "Emergency"};
  return WordOf(TYPES, code);
}

const char* K7CtrlAirspace::TypeString(int type) {
  static constexpr const char* TYPES[] = {"Class A",       "Class B",    "Class C",     "Control Area",
                                          "Terminal Area", "Radar Zone", "Control Zone"};
  return WordOf(TYPES, type, "Unknown");
}
int K7CtrlAirspace::GetDescription(K7NavData*, K7String& out) const {
  const Part first(name.IsEmpty() ? ident : name);
  if (airspaceClass > ' ')
    return std::min(out.Format("%.*s Class %c", first.room, first.at, airspaceClass), 0);
  return std::min(out.Format("%.*s %s", first.room, first.at, TypeString(type)), 0);
}

const char* K7SUAirspace::TypeString(int type) {
  static constexpr const char* TYPES[] = {"Alert",      "Caution",  "Danger",  "Military", "Prohibited",
                                          "Restricted", "Training", "Warning", "Unknown",  "Glider"};
  return WordOf(TYPES, type, "Unknown");
}
int K7SUAirspace::GetDescription(K7NavData*, K7String& out) const { return WriteWithAny(out, ident, name); }

bool K7FIR::IsOceanic() const {
  static constexpr char WORD[] = "OCEANIC";
  if (flags & OCEANIC || (!ident.IsEmpty() && K7String::IComp(ident, "ZOZ") == 0)) return true;
  for (const char* at = name; at && *at; ++at) {
    if (K7String::IComp(at, WORD, sizeof WORD - 1) == 0) return true;
  }
  return false;
}
int K7FIR::GetDescription(K7NavData*, K7String& out) const {
  if (flags & IS_FIR) return Write(out, "%.*s %.*s", ident, "FIR");
  if (flags & IS_UIR) return Write(out, "%.*s %.*s", ident, "UIR");
  return Write(out, ident);
}

const char* K7AirspaceSeg::ViaString(char via) {
  switch (via) {
    case GREAT_CIRCLE:
      return "Great Circle";
    case RHUMB_LINE:
      return "Rhumb Line";
    case CLOCKWISE_ARC:
      return "Clockwise Arc";
    case COUNTER_ARC:
      return "Counter-Clockwise Arc";
    case CIRCLE:
      return "Circle";
    default:
      return "Unknown";
  }
}

const char* K7SpecialActivityArea::TypeString(int code) {
  static constexpr const char* TYPES[] = {nullptr,      "Parachuting",       "Gliding",   "Model Flying",
                                          "Ballooning", "Ultralight Flying", "Aerobatics"};
  return WordOf(TYPES, code, "Unknown");
}
int K7SpecialActivityArea::GetDescription(K7NavData*, K7String& out) const {
  return WriteWithAny(out, ident, name);
}

int K7TailoredEndpoint::GetDescription(K7NavData*, K7String& out) const { return Write(out, ident); }
int K7TailoredLine::GetDescription(K7NavData*, K7String& out) const {
  return Write(out, name.IsEmpty() ? ident : name);
}
int K7TailoredAirspace::GetDescription(K7NavData*, K7String& out) const {
  return Write(out, name.IsEmpty() ? ident : name);
}
int K7ETOPS::GetDescription(K7NavData*, K7String& out) const {
  const Part first(ident);
  return std::min(out.Format("%.*s (%d min)", first.room, first.at, minutes), 0);
}

int K7AirwaySeg::GetDescription(K7NavData*, K7String& out) const {
  const Part name(ident), from(fromIdent), to(toIdent);
  return std::min(out.Format("%.*s %.*s - %.*s", name.room, name.at, from.room, from.at, to.room, to.at), 0);
}
int K7HoldingPattern::GetDescription(K7NavData*, K7String& out) const {
  return Write(out, "%.*s %.*s", "Holding at", fixIdent);
}

const char* K7ProcedureLeg::PathTermString(int code) {
  static constexpr const char* TERMS[] = {"AF", "CA", "CD", "CF", "CI", "CR", "DF", "FA",
                                          "FC", "FD", "FM", "HA", "HF", "HM", "IF", "PI",
                                          "RF", "TF", "VA", "VD", "VI", "VM", "VR"};
  static_assert(std::size(TERMS) == 23);
  return WordOf(TERMS, code, "Unknown");
}

int K7TransitRoute::VertLimitStr(K7String& out) const { return Write(out, vertLimit); }
int K7TransitRoute::GetDescription(K7NavData*, K7String& out) const {
  return WriteWithAny(out, name, designator);
}

int K7EnrouteComm::GetDescription(K7NavData*, K7String& out) const {
  const char* service = CommTypeString(commType);
  if (std::strcmp(service, "Unknown") == 0) service = "Enroute Comm";
  const Part who(callsign);
  return std::min(out.Format(who.IsEmpty() ? "%s" : "%s (%.*s)", service, who.room, who.at), 0);
}
int K7CompanyComm::GetDescription(K7NavData*, K7String& out) const { return Write(out, name); }

const char* K7Obstacle::TypeString(int code) {
  static constexpr const char* TYPES[] = {nullptr,         "Antenna",
                                          "Bridge",        "Building",
                                          "Catenary",      "Chimney",
                                          "Cooling Tower", "Crane",
                                          "Dam",           "Dome",
                                          "Elevator",      "Lighthouse",
                                          "Mast",          "Monument",
                                          "Pole",          "Rig",
                                          "Sign",          "Spire",
                                          "Stack",         "Tank",
                                          "Tower",         "Transmission Line",
                                          "Tree",          "Wind Turbine"};
  return WordOf(TYPES, code, "Obstacle");
}
const char* K7Obstacle::LightString(int code) {
  static constexpr const char* LIGHTS[] = {nullptr,        "None",          "Lighted", "Red",
                                           "White Strobe", "Red and White", "Flood"};
  return WordOf(LIGHTS, code, "Unknown");
}
int K7Obstacle::GetDescription(K7NavData*, K7String& out) const {
  const char* what = TypeString(typeCode);
  if (elev < K7NavFix::LOWEST_ELEV) return std::min(out.Format("%s", what), 0);
  if (height <= 0) return std::min(out.Format("%s %d ft", what, elev), 0);
  return std::min(out.Format("%s %d ft (%d ft AGL)", what, elev, height), 0);
}

int K7Formation::GetDescription(K7NavData* data, K7String& out) const {
  if (const K7NavFix* const fix = FindFix(data, refKey))
    return Write(out, "%.*s %.*s", "Formation at", fix->ident);
  const K7LatLon at(K7NavData::FixPt2DecDeg(refLat), K7NavData::FixPt2DecDeg(refLon));
  K7String lat, lon;
  if (!at.FormatLat("%H%02d %04.1M", lat) || !at.FormatLon("%H%03d %04.1M", lon)) return K7_ERR_MEMORY;
  return std::min(
      out.Format("Formation at %s %s", static_cast<const char*>(lat), static_cast<const char*>(lon)), 0);
}

namespace {

constexpr struct {
  K7NavType type;
  int (*describe)(const K7NavRec& rec, K7NavData* data, K7String& out);
} DESCRIBED[] = {
    {K7NAV_VOR, Describe<K7VHFNavaid>},
    {K7NAV_TERMINAL_NDB, Describe<K7NDB>},
    {K7NAV_ENROUTE_NDB, Describe<K7NDB>},
    {K7NAV_TERMINAL_FIX, Describe<K7Waypoint>},
    {K7NAV_ENROUTE_FIX, Describe<K7Waypoint>},
    {K7NAV_AIRPORT, Describe<K7Airport>},
    {K7NAV_RUNWAY, Describe<K7Runway>},
    {K7NAV_LOCALIZER, Describe<K7LocalizerGlideslope>},
    {K7NAV_HIGH_AIRWAY, Describe<K7AirwaySeg>},
    {K7NAV_LOW_AIRWAY, Describe<K7AirwaySeg>},
    {K7NAV_HIGH_TACAN_AIRWAY, Describe<K7AirwaySeg>},
    {K7NAV_LOW_TACAN_AIRWAY, Describe<K7AirwaySeg>},
    {K7NAV_ENROUTE_COMM, Describe<K7EnrouteComm>},
    {K7NAV_CTRL_AIRSPACE, Describe<K7CtrlAirspace>},
    {K7NAV_SPECIAL_USE_AIRSPACE, Describe<K7SUAirspace>},
    {K7NAV_FIR_SECTOR, Describe<K7FIR>},
    {K7NAV_COMM_SECTOR, Describe<K7FIR>},
    {K7NAV_FIR, Describe<K7FIR>},
    {K7NAV_HOLDING, Describe<K7HoldingPattern>},
    {K7NAV_LOW_USE_AIRPORT, Describe<K7LowUseAirport>},
    {K7NAV_FORMATION, Describe<K7Formation>},
    {K7NAV_OBSTACLE, Describe<K7Obstacle>},
    {K7NAV_OBSTACLE_54, Describe<K7Obstacle>},
    {K7NAV_OBSTACLE_55, Describe<K7Obstacle>},
    {K7NAV_OBSTACLE_56, Describe<K7Obstacle>},
    {K7NAV_TRANSIT_ROUTE, Describe<K7TransitRoute>},
    {K7NAV_SPECIAL_ACTIVITY, Describe<K7SpecialActivityArea>},
    {K7NAV_TAILORED_ENDPOINT, Describe<K7TailoredEndpoint>},
    {K7NAV_SHORELINE_DISTANCE, Describe<K7TailoredLine>},
    {K7NAV_TAILORED_BOUNDARY, Describe<K7TailoredAirspace>},
    {K7NAV_ETOPS, Describe<K7ETOPS>},
    {K7NAV_COMPANY_COMM, Describe<K7CompanyComm>},
};

}  // namespace

int K7NavData::GetDescriptionByKey(K7NavKey key, K7String& out) {
  if (key.NavType() == K7NAV_NO_TYPE) return K7_ERR_BAD_ARGUMENT;
  const K7NavRec* const rec = GetRec(key);
  if (!rec) return K7_ERR_INVALID_DATA;
  for (const auto& row : DESCRIBED) {
    if (row.type == rec->Type()) return row.describe(*rec, this, out);
  }
  return K7_ERR_NOT_IMPLEMENTED;
}

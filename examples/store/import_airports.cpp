// Airports with their runways and frequencies.

#include "store/import_fields.h"
#include "store/import_rows.h"
#include "store/import_run.h"

#include <k7/geodesy/ecef.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr double FEET_PER_METRE = 1 / 0.3048;
constexpr int16_t NO_ELEVATION = K7NavFix::LOWEST_ELEV - 1;

struct Surface {
  int code;
  int16_t ours;  // of K7Runway::SurfaceString
};
constexpr Surface SURFACES[] = {
    {1, 19},  // asphalt
    {2, 22},  // concrete
    {3, 16},  // turf
    {4, 2},   // dirt
    {5, 4},   // gravel
    {12, 0},  // a dry lake's clay
    {14, 13}  // snow
};

int16_t SurfaceOf(int code) {
  for (const Surface& surface : SURFACES)
    if (surface.code == code) return surface.ours;
  return K7Runway::SURFACE_UNKNOWN;
}

struct CommKind {
  int code;
  int16_t type;
};
constexpr CommKind COMM_KINDS[] = {
    {CommRow::WEATHER, K7AirportComm::ATIS},        {CommRow::UNICOM, K7AirportComm::UNICOM},
    {CommRow::CLEARANCE, K7AirportComm::CLEARANCE}, {CommRow::GROUND, K7AirportComm::GROUND},
    {CommRow::TOWER, K7AirportComm::TOWER},         {CommRow::APPROACH, K7AirportComm::APPROACH},
    {CommRow::DEPARTURE, K7AirportComm::DEPARTURE}};
constexpr int16_t FLIGHT_SERVICE = 19;

// Weather has one code, whoever tells it.
int16_t CommType(const CommRow& row) {
  const bool weather = row.code == CommRow::WEATHER;
  const auto says = [&](const char* word) { return row.name.find(word) != std::string_view::npos; };
  if (weather && (says("AWOS") || says("ASOS"))) return K7AirportComm::AWOS;
  if (weather && says("FSS")) return FLIGHT_SERVICE;
  for (const CommKind& kind : COMM_KINDS)
    if (kind.code == row.code) return kind.type;
  return K7AirportComm::UNICOM;
}

// Metres between two places on the WGS 84 ellipsoid: of the chord, which over a runway is the length to a
// millimetre.
double Metres(const K7LatLon& a, const K7LatLon& b) {
  static constexpr double AXIS = 6378137, E2 = 6.69437999014e-3, RADIAN = 3.14159265358979323846 / 180;
  const auto place = [](const K7LatLon& at) {
    const double lat = at.Lat() * RADIAN, lon = at.Lon() * RADIAN;
    const double n = AXIS / std::sqrt(1 - E2 * std::sin(lat) * std::sin(lat));
    return K7ECEF(n * std::cos(lat) * std::cos(lon), n * std::cos(lat) * std::sin(lon),
                  n * (1 - E2) * std::sin(lat));
  };
  const K7ECEF from = place(a), to = place(b);
  return K7ECEF(to.X() - from.X(), to.Y() - from.Y(), to.Z() - from.Z()).Magnitude();
}

// The rows of one airport, until the next begins.
class AirportRows {
 public:
  explicit AirportRows(ImportRun& run) : m_run(run) {}

  std::string Take(std::string_view line);
  /// Writes the airport that is complete now. What is wrong with it, if anything.
  std::string Finish();

 private:
  std::string Begin(std::string_view line);
  std::string TakeRunway(std::string_view line);
  std::string TakeHelipad(std::string_view line);
  std::string TakeComm(std::string_view line);
  bool Centre(K7LatLon& at) const;
  void AddRunways(AirportIndex::Airport& known);

  ImportRun& m_run;
  bool m_open = false;
  bool m_skip = false;  // its header was not readable
  K7Airport m_airport;
  std::string m_name;
  double m_elev = 0;
  std::vector<K7Runway> m_runways;
  std::vector<K7LatLon> m_ends;
  std::vector<K7LatLon> m_pads;
  struct Comm {
    K7AirportComm rec;
    std::string callsign;
  };
  std::vector<Comm> m_comms;
};

std::string AirportRows::Take(std::string_view line) {
  const int code = RowCode(line);
  switch (code) {
    case AirportRow::LAND:
    case AirportRow::SEAPLANE_BASE:
    case AirportRow::HELIPORT: {
      const std::string former = Finish(), problem = Begin(line);
      return former.empty() ? problem : problem.empty() ? former : former + "; " + problem;
    }
    case RunwayRow::LAND:
    case RunwayRow::WATER:
      return TakeRunway(line);
    case 102:
      return TakeHelipad(line);
    default:
      if (code >= CommRow::WEATHER && code <= CommRow::DEPARTURE) return TakeComm(line);
      return code < 0 ? "the line begins with no code" : "there are no rows of code " + std::to_string(code);
  }
}

std::string AirportRows::Begin(std::string_view line) {
  AirportRow row;
  std::string problem = ReadAirportRow(line, row);
  m_skip = !problem.empty();
  if (m_skip) return problem + ": what belongs to this airport is left out";
  m_open = true;
  m_airport = K7Airport();
  m_name = row.name;
  // Remarks of those who keep the file: "[S] Bartlett Cove", "Vandel [MIL]".
  uint32_t flags = 0;
  if (m_name.find("[MIL]") != std::string::npos) flags |= K7Airport::MILITARY;
  for (const char* remark : {"[S]", "[H]", "[MIL]"})
    if (const size_t at = m_name.find(remark); at != std::string::npos) m_name.erase(at, std::strlen(remark));
  m_name = Trimmed(m_name);
  if (row.tower) flags |= K7Airport::TOWER;
  if (row.code == AirportRow::HELIPORT) flags |= K7Airport::HELIPORT;
  if (row.code == AirportRow::SEAPLANE_BASE) flags |= K7Airport::SEAPLANE_BASE;
  m_airport.flags = flags;
  m_elev = row.elev;
  CopyText(m_airport.ident, row.ident);
  return {};
}

std::string AirportRows::TakeRunway(std::string_view line) {
  if (m_skip) return {};
  RunwayRow row;
  if (std::string problem = ReadRunwayRow(line, row); !problem.empty()) return problem;
  if (!m_open) return "the runway belongs to no airport";
  const double length = Metres(row.ends[0].at, row.ends[1].at) * FEET_PER_METRE;
  for (const RunwayRow::End& end : row.ends) {
    const RunwayRow::End& other = row.ends[&end == row.ends];
    K7Runway runway;
    SetPlace(runway, K7NAV_RUNWAY, end.at, RunwayNumber(end.number), NO_ELEVATION, m_run.variation);
    const double bearing = end.at.InitCourse(other.at);
    double variation = 0;
    m_run.variation.At(end.at, variation);
    runway.trueBrg = TenthsOf(bearing);
    runway.magBrg = TenthsOf(bearing - variation);
    runway.length = Short(std::round(length));
    runway.width = Short(std::round(row.width * FEET_PER_METRE));
    runway.surface = SurfaceOf(row.surface);
    runway.tdzElev = runway.landingThresholdElev = NO_ELEVATION;
    runway.displacedThreshold = Short(std::round(end.displaced * FEET_PER_METRE));
    runway.stopway = Short(std::round(end.overrun * FEET_PER_METRE));
    const auto flag = [](bool on, uint16_t bit) { return on ? bit : uint16_t{0}; };
    runway.flags = static_cast<uint16_t>(
        K7Runway::UNRESTRICTED | flag(row.edgeLights, K7Runway::EDGE_LIGHTS) |
        flag(row.centerLights, K7Runway::CENTERLINE_LIGHTS) |
        flag(end.approachLights, K7Runway::APPROACH_LIGHTS) |
        flag(end.touchdownLights, K7Runway::TOUCHDOWN_LIGHTS) | flag(end.identifierLights, K7Runway::REIL));
    m_runways.push_back(runway);
    m_ends.push_back(end.at);
  }
  m_airport.longestRunway = std::max(m_airport.longestRunway, Short(std::floor(length / 100)));
  return {};
}

// A place to land with a direction and a size, as the end of a runway is; it has no other end.
std::string AirportRows::TakeHelipad(std::string_view line) {
  if (m_skip) return {};
  HelipadRow row;
  if (std::string problem = ReadHelipadRow(line, row); !problem.empty()) return problem;
  if (!m_open) return "the helipad belongs to no airport";
  K7Runway pad;
  SetPlace(pad, K7NAV_RUNWAY, row.at, row.name, NO_ELEVATION, m_run.variation);
  double variation = 0;
  m_run.variation.At(row.at, variation);
  pad.trueBrg = TenthsOf(row.heading);
  pad.magBrg = TenthsOf(row.heading - variation);
  pad.length = Short(std::round(row.length * FEET_PER_METRE));
  pad.width = Short(std::round(row.width * FEET_PER_METRE));
  pad.surface = SurfaceOf(row.surface);
  pad.tdzElev = pad.landingThresholdElev = NO_ELEVATION;
  pad.flags = K7Runway::UNRESTRICTED;
  m_runways.push_back(pad);
  m_pads.push_back(row.at);
  return {};
}

std::string AirportRows::TakeComm(std::string_view line) {
  if (m_skip) return {};
  CommRow row;
  if (std::string problem = ReadCommRow(line, row); !problem.empty()) return problem;
  if (!m_open) return "the frequency belongs to no airport";
  static constexpr int KHZ_THREE_DECIMALS = 2;  // of K7EnrouteComm::FormatCommFrequency
  Comm comm{{}, std::string(row.name)};
  comm.rec.key = K7NavKey(0, K7NAV_AIRPORT_COMM);
  comm.rec.commType = CommType(row);
  comm.rec.freq = row.freq;
  comm.rec.commInfo = KHZ_THREE_DECIMALS;
  m_comms.push_back(std::move(comm));
  return {};
}

// The middle of its runways' ends, else of its helipads.
bool AirportRows::Centre(K7LatLon& at) const {
  const std::vector<K7LatLon>& places = m_ends.empty() ? m_pads : m_ends;
  double x = 0, y = 0, z = 0;
  for (const K7LatLon& place : places) {
    const K7ECEF v(place.Lat(), place.Lon());
    x += v.X();
    y += v.Y();
    z += v.Z();
  }
  K7ECEF middle(x, y, z);
  if (!middle.Normalize()) return false;
  double lat, lon;
  middle.GetLatLon(lat, lon);
  at.Init(lat, lon);
  return true;
}

void AirportRows::AddRunways(AirportIndex::Airport& known) {
  for (K7Runway& runway : m_runways) {
    runway.airport = m_airport.key;
    CopyText(runway.airportIdent, m_airport.ident);
    known.runways.push_back({runway.ident, m_run.sink.Add(runway)});
  }
}

std::string AirportRows::Finish() {
  std::string problem;
  K7LatLon at;
  if (m_open && !Centre(at)) {
    problem = "the airport " + std::string(m_airport.ident) + " above has no runway or helipad, so no place";
  } else if (m_open) {
    const std::string ident = m_airport.ident;
    SetPlace(m_airport, K7NAV_AIRPORT, at, ident, m_elev, m_run.variation);
    m_airport.name = m_name.c_str();
    AirportIndex::Airport known{m_run.sink.Add(m_airport), {}};
    AddRunways(known);
    for (Comm& comm : m_comms) {
      comm.rec.airport = m_airport.key;
      comm.rec.callsign = comm.callsign.c_str();
      comm.rec.magVar = m_airport.magVar;
      CopyText(comm.rec.airportIdent, ident);
      m_run.sink.Add(comm.rec);
    }
    m_run.airports.airports.emplace(ident, std::move(known));
  }
  m_open = m_skip = false;
  m_runways.clear();
  m_ends.clear();
  m_pads.clear();
  m_comms.clear();
  return problem;
}

}  // namespace

std::string ImportAirports(ByteSource& source, const std::string& name, ImportRun& run) {
  AirportRows rows(run);
  std::string refused =
      ReadRows(source, name, 1000, run, [&](std::string_view line) { return rows.Take(line); });
  rows.Finish();
  return refused;
}

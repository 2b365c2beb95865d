// Navaids: what the file lists part by part, put together again.

#include "store/import_rows.h"
#include "store/import_run.h"

#include <deque>

namespace {

constexpr double DME_NEAR_VOR = 5;  // NM
constexpr double LOCATOR_AT_MARKER = 0.5;

struct Kind {
  std::string_view name;
  uint32_t flags;
};
constexpr Kind KINDS[] = {{"VOR", K7VHFNavaid::VOR},
                          {"VOR-DME", K7VHFNavaid::VOR | K7VHFNavaid::DME},
                          {"VORTAC", K7VHFNavaid::VOR | K7VHFNavaid::TACAN},
                          {"TACAN", K7VHFNavaid::TACAN},
                          {"DME-ILS", K7VHFNavaid::DME | 0x40}};

uint32_t FlagsOf(std::string_view kind) {
  for (const Kind& row : KINDS)
    if (row.name == kind) return row.flags;
  return K7VHFNavaid::DME;
}

class Navaids {
 public:
  explicit Navaids(ImportRun& run) : m_run(run) {}

  std::string Take(std::string_view line);
  void Write();

 private:
  struct Part {
    std::string line;
    NavRow row;
    bool used = false;
  };
  using Parts = std::unordered_multimap<std::string_view, Part*>;

  static std::string SystemOf(const NavRow& row);
  Part* PairedDme(const NavRow& vor);
  const NavRow* LocatorAt(const NavRow& marker) const;
  K7NavKey AirportOf(const NavRow& row, K7NavKey* runway) const;
  void AddVHF(const NavRow& row, uint32_t flags, const NavRow* dme);
  void AddNDB(const NavRow& row);
  void AddLocalizer(const NavRow& row);
  void AddMarker(const NavRow& row);

  ImportRun& m_run;
  std::deque<Part> m_parts;  // which keep their places, as rows point into their lines
  Parts m_dmes;              // by identifier
  // Of an ILS, by its identifier, airport and runway.
  std::unordered_map<std::string, Part*> m_glideslopes, m_systemDmes;
  std::unordered_multimap<int, const Part*> m_ndbs;        // by the degree of latitude
  std::unordered_map<const NavRow*, K7NavKey> m_locators;  // NDBs at markers, with the airport
};

std::string Navaids::SystemOf(const NavRow& row) {
  return std::string(row.ident) + " " + std::string(row.airport) + " " + RunwayNumber(row.runway);
}

std::string Navaids::Take(std::string_view line) {
  Part& part = m_parts.emplace_back();
  part.line = line;
  std::string problem = ReadNavRow(part.line, part.row);
  if (!problem.empty()) {
    m_parts.pop_back();
    return problem;
  }
  const NavRow& row = part.row;
  if (row.code == NavRow::GLIDESLOPE)
    m_glideslopes.emplace(SystemOf(row), &part);
  else if (row.code == NavRow::PAIRED_DME && !row.airport.empty())
    m_systemDmes.emplace(SystemOf(row), &part);
  else if (row.code == NavRow::PAIRED_DME)
    m_dmes.emplace(row.ident, &part);
  else if (row.code == NavRow::NDB)
    m_ndbs.emplace(static_cast<int>(std::floor(row.at.Lat())), &part);
  return {};
}

Navaids::Part* Navaids::PairedDme(const NavRow& vor) {
  Part* nearest = nullptr;
  double distance = DME_NEAR_VOR;
  const auto [first, last] = m_dmes.equal_range(vor.ident);
  for (auto dme = first; dme != last; ++dme) {
    const double away = vor.at.Distance(dme->second->row.at);
    if (dme->second->used || away > distance) continue;
    nearest = dme->second;
    distance = away;
  }
  return nearest;
}

const NavRow* Navaids::LocatorAt(const NavRow& marker) const {
  const int degree = static_cast<int>(std::floor(marker.at.Lat()));
  for (int lat = degree - 1; lat <= degree + 1; ++lat) {
    const auto [first, last] = m_ndbs.equal_range(lat);
    for (auto ndb = first; ndb != last; ++ndb)
      if (std::fabs(ndb->second->row.at.Lat() - marker.at.Lat()) * 60 <= LOCATOR_AT_MARKER &&
          marker.at.Distance(ndb->second->row.at) <= LOCATOR_AT_MARKER)
        return &ndb->second->row;
  }
  return nullptr;
}

K7NavKey Navaids::AirportOf(const NavRow& row, K7NavKey* runway) const {
  const AirportIndex::Airport* airport = m_run.airports.Find(row.airport);
  if (runway && airport) *runway = airport->RunwayKey(row.runway);
  return airport ? airport->key : K7NavKey();
}

void Navaids::AddVHF(const NavRow& row, uint32_t flags, const NavRow* dme) {
  K7VHFNavaid navaid;
  // Where the height of the one part is not known it is given as 0.
  const int elev = row.elev == 0 && dme ? dme->elev : row.elev;
  SetPlace(navaid, K7NAV_VOR, row.at, row.ident, elev, m_run.variation);
  const std::string name(row.name);
  navaid.name = name.c_str();
  navaid.airport = AirportOf(row, nullptr);
  navaid.freq = static_cast<uint32_t>(row.freq);
  navaid.declination =
      flags & K7VHFNavaid::VOR ? Short(std::round(row.declination * 10)) : K7NavFix::UNKNOWN_VARIATION;
  navaid.flags = flags;
  navaid.range = Short(row.range);
  m_run.sink.Add(navaid);
  m_run.places.Add(navaid);
}

void Navaids::AddNDB(const NavRow& row) {
  const auto locator = m_locators.find(&row);
  const bool terminal = locator != m_locators.end() || row.kind == "LOM" || row.kind == "LMM";
  K7NDB ndb;
  SetPlace(ndb, terminal ? K7NAV_TERMINAL_NDB : K7NAV_ENROUTE_NDB, row.at, row.ident, row.elev,
           m_run.variation);
  const std::string name(row.name);
  ndb.name = name.c_str();
  ndb.freq = static_cast<uint32_t>(row.freq);
  ndb.range = Short(row.range);
  if (locator != m_locators.end()) ndb.airport = locator->second;
  m_run.sink.Add(ndb);
  m_run.places.Add(ndb);
}

void Navaids::AddLocalizer(const NavRow& row) {
  K7LocalizerGlideslope localizer;
  SetPlace(localizer, K7NAV_LOCALIZER, row.at, row.ident, row.elev, m_run.variation);
  localizer.airport = AirportOf(row, &localizer.runway);
  localizer.freq = static_cast<uint32_t>(row.freq);
  double variation = 0;
  m_run.variation.At(row.at, variation);
  localizer.locTrueBrg = TenthsOf(row.bearing);
  localizer.locBrg = TenthsOf(row.bearing - variation);
  localizer.declination = localizer.magVar;
  if (const auto slope = m_glideslopes.find(SystemOf(row)); slope != m_glideslopes.end()) {
    const NavRow& part = slope->second->row;
    localizer.flags |= K7LocalizerGlideslope::GLIDESLOPE;
    localizer.gsLat = K7NavData::DecDeg2FixPt(part.at.Lat());
    localizer.gsLon = K7NavData::DecDeg2FixPt(part.at.Lon());
    localizer.gsAngle = Short(std::round(part.angle * 100));
    localizer.gsElev = part.elev;
    slope->second->used = true;
  }
  if (const auto dme = m_systemDmes.find(SystemOf(row)); dme != m_systemDmes.end()) {
    localizer.flags |= K7LocalizerGlideslope::DME;
    dme->second->used = true;
  }
  m_run.sink.Add(localizer);
}

void Navaids::AddMarker(const NavRow& row) {
  static constexpr uint32_t FLAGS[] = {K7LocatorMarker::OUTER, K7LocatorMarker::MIDDLE,
                                       K7LocatorMarker::INNER};
  K7LocatorMarker marker;
  const NavRow* const locator = LocatorAt(row);
  SetPlace(marker, K7NAV_MARKER, row.at, locator ? locator->ident : std::string_view(), row.elev,
           m_run.variation);
  marker.airport = AirportOf(row, &marker.runway);
  marker.flags = FLAGS[row.code - NavRow::OUTER_MARKER];
  marker.trueBrg = TenthsOf(row.bearing);
  CopyText(marker.runwayIdent, RunwayNumber(row.runway));
  const std::string name(locator ? locator->name : std::string_view());
  if (locator) {
    marker.flags |= K7LocatorMarker::LOCATOR;
    marker.freq = static_cast<uint32_t>(locator->freq);
    marker.name = name.c_str();
    m_locators.emplace(locator, marker.airport);
  }
  m_run.sink.Add(marker);
}

void Navaids::Write() {
  for (Part& part : m_parts) {
    const NavRow& row = part.row;
    if (row.code == NavRow::VOR) {
      Part* const dme = PairedDme(row);
      if (dme) dme->used = true;
      AddVHF(row, FlagsOf(row.kind) | (dme ? FlagsOf(dme->row.kind) : 0) | K7VHFNavaid::VOR,
             dme ? &dme->row : nullptr);
    } else if (row.code == NavRow::ILS_LOCALIZER || row.code == NavRow::LOCALIZER) {
      AddLocalizer(row);
    } else if (row.code >= NavRow::OUTER_MARKER && row.code <= NavRow::INNER_MARKER) {
      AddMarker(row);
    }
  }
  // Which NDBs belong to a marker, and which distances to nothing else, is known now.
  for (const Part& part : m_parts) {
    const NavRow& row = part.row;
    if (row.code == NavRow::NDB)
      AddNDB(row);
    else if (row.code == NavRow::DME || (row.code == NavRow::PAIRED_DME && !part.used))
      AddVHF(row, FlagsOf(row.kind) & ~K7VHFNavaid::VOR, nullptr);
  }
}

}  // namespace

std::string ImportNavaids(ByteSource& source, const std::string& name, ImportRun& run) {
  Navaids navaids(run);
  std::string refused =
      ReadRows(source, name, 810, run, [&](std::string_view line) { return navaids.Take(line); });
  if (!refused.empty()) return refused;
  run.progress("putting navaids together", 0);
  navaids.Write();
  return {};
}

std::string ImportFixes(ByteSource& source, const std::string& name, ImportRun& run) {
  return ReadRows(source, name, 600, run, [&](std::string_view line) {
    FixRow row;
    std::string problem = ReadFixRow(line, row);
    if (!problem.empty()) return problem;
    K7Waypoint fix;
    SetPlace(fix, K7NAV_ENROUTE_FIX, row.at, row.ident, K7NavFix::LOWEST_ELEV - 1, run.variation);
    run.sink.Add(fix);
    run.places.Add(fix);
    return problem;
  });
}

// Records by the records that they belong to.
#include <k7/foundation/error_string.h>
#include <k7/navdata/airport.h>
#include <k7/navdata/note.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "store/nav_store.h"
#include "store/store_file.h"

namespace {

K7NavQueryResult* Related(StoreFile* file, const Relation& relation, const K7NavKey& key) {
  return file ? ResultOf(*file, file->Related(relation, key)) : nullptr;
}

// Those of all kinds of airways, one kind after the other.
template <class MakeRelation>
K7NavQueryResult* OfAirways(StoreFile* file, const MakeRelation& relation, const K7NavKey& key) {
  if (!file) return nullptr;
  std::vector<K7NavKey> all;
  for (const K7NavType type : AIRWAY_TYPES) {
    const Keys keys = file->Related(relation(type), key);
    if (!keys) return nullptr;
    all.insert(all.end(), keys->begin(), keys->end());
  }
  return ResultOf(*file, std::move(all));
}

// "16L" for "34R", "S" for "N", with what stands before the number; empty when there is no such thing.
std::string OppositeDesignator(const std::string& ident) {
  static constexpr const char* COMPASS[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
  const size_t digits = ident.find_first_of("0123456789");
  if (digits == std::string::npos) {
    const auto* found = std::find(std::begin(COMPASS), std::end(COMPASS), ident);
    return found == std::end(COMPASS) ? "" : COMPASS[(found - COMPASS + 4) % 8];
  }
  const size_t behind = std::min(ident.find_first_not_of("0123456789", digits), ident.size());
  const size_t length = behind - digits;
  const int number = length <= 2 ? std::atoi(ident.c_str() + digits) : 0;
  if (number < 1 || number > 36) return "";
  std::string opposite = std::to_string((number + 17) % 36 + 1);
  if (opposite.size() < length) opposite = "0" + opposite;
  std::string side = ident.substr(behind);
  if (!side.empty() && (side[0] == 'L' || side[0] == 'R')) side[0] = side[0] == 'L' ? 'R' : 'L';
  return ident.substr(0, digits) + opposite + side;
}

std::string IdentOf(const K7NavFix& fix) { return {fix.ident, strnlen(fix.ident, sizeof fix.ident)}; }

}  // namespace

K7NavQueryResult* NavStore::AirportRunways(const K7NavKey& airport) {
  return Related(m_file.get(), RUNWAYS_OF_AIRPORT, airport);
}
K7NavQueryResult* NavStore::AirportComms(const K7NavKey& airport) {
  return Related(m_file.get(), COMMS_OF_AIRPORT, airport);
}
K7NavQueryResult* NavStore::AirportLocalizers(const K7NavKey& airport) {
  return Related(m_file.get(), LOCALIZERS_OF_AIRPORT, airport);
}
K7NavQueryResult* NavStore::AirportMarkers(const K7NavKey& airport) {
  return Related(m_file.get(), MARKERS_OF_AIRPORT, airport);
}
K7NavQueryResult* NavStore::AirportProcedures(const K7NavKey& airport, K7NavType type) {
  const bool procedure = type == K7NAV_SID || type == K7NAV_STAR || type == K7NAV_APPROACH;
  return procedure ? Related(m_file.get(), LegsOfAirport(type), airport) : nullptr;
}
K7NavQueryResult* NavStore::FleetAirports(const K7NavKey& airport) {
  return Related(m_file.get(), FLEETS_OF_AIRPORT, airport);
}

K7NavQueryResult* NavStore::CompanyAirports(const K7NavKey& airport) {
  if (!m_file) return nullptr;
  const K7NavRec* rec = airport.NavType() == K7NAV_AIRPORT ? GetRec(airport) : nullptr;
  if (!rec) return ResultOf(*m_file, Keys(std::in_place));
  return IdentQuery(K7NAV_COMPANY_AIRPORT, IdentOf(*static_cast<const K7Airport*>(rec)).c_str());
}

const K7NavRec* NavStore::RunwayLocalizer(const K7NavKey& runway) {
  const Keys keys = m_file ? m_file->Related(LOCALIZERS_OF_RUNWAY, runway) : Keys();
  return keys && !keys->empty() ? m_file->Keep(keys->front()) : nullptr;
}

const K7NavRec* NavStore::OppositeRunway(const K7NavKey& runway) {
  const K7NavRec* rec = m_file && runway.NavType() == K7NAV_RUNWAY ? GetRec(runway) : nullptr;
  if (!rec) return nullptr;
  const auto& end = *static_cast<const K7Runway*>(rec);
  const std::string opposite = OppositeDesignator(IdentOf(end));
  if (opposite.empty()) return nullptr;
  const Keys keys = m_file->Select(K7NAV_RUNWAY, "WHERE t.airport_key=? AND +t.ident=? ORDER BY t.idx",
                                   KeyNumber(end.airport), std::string_view(opposite));
  return keys && !keys->empty() ? m_file->Keep(keys->front()) : nullptr;
}

int NavStore::GetLocation(const K7NavRec& rec, K7String& out) {
  out.Clear();
  if (!m_file) return K7_ERR_NOT_INITIALIZED;
  const auto box = BoundsOf(TableOf(rec.Type()), rec);
  if (!box) return K7_OK;
  double lat, lon;
  box->Degrees().Center(lat, lon);
  const K7LatLon place(lat, lon);
  const std::unique_ptr<K7NavQueryResult> near(NearestQuery(K7NAV_AIRPORT, place, 2, 50));
  if (!near) return K7_ERR_INVALID_DATA;
  const K7NavRec* found = near->Next();
  if (found && found->key == rec.key) found = near->Next();
  if (!found) return K7_OK;
  const auto& airport = *static_cast<const K7Airport*>(found);
  const K7LatLon at(K7NavData::FixPt2DecDeg(airport.lat), K7NavData::FixPt2DecDeg(airport.lon));
  const std::string ident = IdentOf(airport);
  const char* name = !airport.city.IsEmpty()   ? airport.city
                     : !airport.name.IsEmpty() ? airport.name
                                               : ident.c_str();
  const int distance = static_cast<int>(std::lround(at.Distance(place)));
  if (distance == 0) return out += name;
  K7String direction;
  const int tenths = static_cast<int>(std::lround(at.InitCourse(place) * 10));
  if (const int code = K7Course(static_cast<uint32_t>(tenths)).GetCardinalDir(direction)) return code;
  const int written = out.Format("%d NM %s of %s", distance, static_cast<const char*>(direction), name);
  return written < 0 ? written : K7_OK;
}

K7NavQueryResult* NavStore::AirwaySegments(const K7NavKey& header) {
  return OfAirways(m_file.get(), SegmentsOfAirway, header);
}

K7NavQueryResult* NavStore::FixAirways(const K7NavKey& fix) {
  if (!m_file) return nullptr;
  std::vector<K7NavKey> all;
  for (const K7NavType type : AIRWAY_TYPES) {
    for (const Relation& relation : {SegmentsFrom(type), SegmentsTo(type)}) {
      const Keys keys = m_file->Related(relation, fix);
      if (!keys) return nullptr;
      all.insert(all.end(), keys->begin(), keys->end());
    }
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return ResultOf(*m_file, std::move(all));
}

K7NavQueryResult* NavStore::FixHoldings(const K7NavKey& fix) {
  return Related(m_file.get(), HOLDINGS_OF_FIX, fix);
}
K7NavQueryResult* NavStore::FixCrossingAlts(const K7NavKey& fix) {
  return Related(m_file.get(), CROSSING_ALTS_OF_FIX, fix);
}
K7NavQueryResult* NavStore::SegmentRestrictions(const K7NavKey& segment) {
  return Related(m_file.get(), RESTRICTIONS_OF_SEGMENT, segment);
}
K7NavQueryResult* NavStore::AirspaceSegments(const K7NavKey& airspace) {
  return Related(m_file.get(), SEGMENTS_OF_AIRSPACE, airspace);
}
K7NavQueryResult* NavStore::AirspaceComms(const K7NavKey& airspace) {
  return Related(m_file.get(), COMMS_OF_AIRSPACE, airspace);
}

K7NavQueryResult* NavStore::RecordNotes(const K7NavKey& key) {
  const Keys links = m_file ? m_file->Related(LINKS_TO_RECORD, key) : Keys();
  if (!links) return nullptr;
  std::vector<K7NavKey> notes;
  Arena arena;
  for (const K7NavKey& link : *links) {
    const K7NavRec* rec = m_file->Read(link, arena);
    if (!rec) continue;
    const K7NavKey note = static_cast<const K7SmartNoteLink*>(rec)->smartNote;
    if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
  }
  return ResultOf(*m_file, std::move(notes));
}

K7NavQueryResult* NavStore::NoteLinks(const K7NavKey& note) {
  return Related(m_file.get(), LINKS_OF_NOTE, note);
}
K7NavQueryResult* NavStore::NoteComms(const K7NavKey& note) {
  return Related(m_file.get(), COMMS_OF_NOTE, note);
}
K7NavQueryResult* NavStore::NoteAltitudes(const K7NavKey& note) {
  return Related(m_file.get(), ALTITUDES_OF_NOTE, note);
}

K7NavQueryResult* NavStore::RegionalNotes(const char* icao) {
  if (!m_file || !icao) return nullptr;
  if (!m_file->Has(K7NAV_NOTE_INDEX)) return ResultOf(*m_file, Keys(std::in_place));
  const std::string entries =
      "SELECT uri FROM \"" + TableOf(K7NAV_NOTE_INDEX).name + "\" WHERE value=? COLLATE NOCASE";
  return ResultOf(*m_file,
                  m_file->Select(K7NAV_REGIONAL_NOTE, "WHERE t.uri IN(" + entries + ") ORDER BY t.idx",
                                 std::string_view(icao)));
}

// A store of a few records in memory, which answers the look-ups that records themselves make. Its answers
// need no memory, and one lives at a time.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata.h>
#include <k7/projection/chart_rect.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>

class SmallStore : public K7NavData {
 public:
  static constexpr int MAX_RECS = 64;

  ~SmallStore() override {
    for (int i = 0; i < m_count; i++) delete m_recs[i];
  }
  /// A new record of the store's, with the next key of its type.
  template <class Record>
  Record& Add(K7NavType type) {
    K7NavRec* const rec = CreateRecord(type);
    rec->key = K7NavKey(static_cast<uint32_t>(m_count), type);
    return static_cast<Record&>(*(m_recs[m_count++] = rec));
  }

  int GetCount(K7NavType) override { return m_count; }
  const K7NavRec* GetRec(const K7NavKey& key) override {
    for (int i = 0; i < m_count; i++) {
      if (m_recs[i]->key == key) return m_recs[i];
    }
    return nullptr;
  }
  K7NavQueryResult* IdentQuery(K7NavType type, const char* ident) override {
    return Query([=](const K7NavRec& rec) {
      return rec.Type() == type && K7IsFix(type) &&
             std::strcmp(static_cast<const K7NavFix&>(rec).ident, ident) == 0;
    });
  }
  K7NavQueryResult* AirportRunways(const K7NavKey& key) override {
    return Of<K7Runway, &K7Runway::airport>(K7NAV_RUNWAY, key);
  }
  K7NavQueryResult* AirportComms(const K7NavKey& key) override {
    return Of<K7AirportComm, &K7AirportComm::airport>(K7NAV_AIRPORT_COMM, key);
  }
  K7NavQueryResult* FleetAirports(const K7NavKey& key) override {
    return Of<K7FleetAirport, &K7FleetAirport::airport>(K7NAV_FLEET_AIRPORT, key);
  }
  K7NavQueryResult* NoteLinks(const K7NavKey& key) override {
    return Of<K7SmartNoteLink, &K7SmartNoteLink::smartNote>(K7NAV_SMART_NOTE_LINK, key);
  }
  K7NavQueryResult* NoteComms(const K7NavKey& key) override {
    return Of<K7SmartNoteComm, &K7SmartNoteComm::smartNote>(K7NAV_SMART_NOTE_COMM, key);
  }
  K7NavQueryResult* NoteAltitudes(const K7NavKey& key) override {
    return Of<K7SmartNoteAltitude, &K7SmartNoteAltitude::smartNote>(K7NAV_SMART_NOTE_ALTITUDE, key);
  }
  int GetLocation(const K7NavRec&, K7String& out) override {
    const int result = out.Create("5 NM S of Town");
    return result < 0 ? result : 0;
  }

  int Open(const char*) override { return 0; }
  void Close() override {}
  bool IsOpen() const override { return true; }
  K7NavQueryResult* IdentPrefixQuery(K7NavType, const char*) override { return nullptr; }
  K7NavQueryResult* SimilarIdentQuery(K7NavType, const char*, int) override { return nullptr; }
  K7NavQueryResult* NameQuery(K7NavType, const char*) override { return nullptr; }
  K7NavQueryResult* RegionQuery(K7NavType, const char*) override { return nullptr; }
  K7NavQueryResult* AreaQuery(K7NavType, const K7ChartRect&) override { return nullptr; }
  K7NavQueryResult* LineQuery(K7NavType, const K7LatLon&, const K7LatLon&, double) override {
    return nullptr;
  }
  K7NavQueryResult* NearestQuery(K7NavType, const K7LatLon&, int, double) override { return nullptr; }
  K7NavQueryResult* AirspacesAt(K7NavType, const K7LatLon&) override { return nullptr; }
  K7NavQueryResult* AirportLocalizers(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* AirportMarkers(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* AirportProcedures(const K7NavKey&, K7NavType) override { return nullptr; }
  K7NavQueryResult* CompanyAirports(const K7NavKey&) override { return nullptr; }
  const K7NavRec* RunwayLocalizer(const K7NavKey&) override { return nullptr; }
  const K7NavRec* OppositeRunway(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* KeyQuery(const K7NavKeyArray&) override { return nullptr; }
  void FreeRecs() override {}
  K7NavQueryResult* AirwayQuery(const char*) override { return nullptr; }
  K7NavQueryResult* AirwaySegments(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* FixAirways(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* FixHoldings(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* FixCrossingAlts(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* SegmentRestrictions(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* AirspaceSegments(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* AirspaceComms(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* AirportsByRunway(const K7ChartRect&, int) override { return nullptr; }
  const K7NavRec* HighestObstacle(const K7ChartRect&) override { return nullptr; }
  K7NavQueryResult* RecordNotes(const K7NavKey&) override { return nullptr; }
  K7NavQueryResult* RegionalNotes(const char*) override { return nullptr; }
  const K7NavRec* MoraAt(const K7LatLon&) override { return nullptr; }
  K7ChartRect GetExtent() override { return {}; }
  int GetSource(K7String&) override { return 0; }

 private:
  class Result : public K7NavQueryResult {
   public:
    static void* operator new(size_t, std::byte* room) { return room; }
    static void operator delete(void*) {}
    static void operator delete(void*, std::byte*) {}
    const K7NavRec* Next() override { return at < count ? recs[at++] : nullptr; }
    bool Rewind() override {
      at = 0;
      return true;
    }
    const K7NavRec* recs[MAX_RECS] = {};
    int count = 0;
    int at = 0;
  };

  template <class Wanted>
  K7NavQueryResult* Query(Wanted wanted) {
    auto* const result = new (m_answer) Result;
    for (int i = 0; i < m_count; i++) {
      if (wanted(*m_recs[i])) result->recs[result->count++] = m_recs[i];
    }
    return result;
  }
  template <class Record, K7NavKey Record::*WHOSE>
  K7NavQueryResult* Of(K7NavType type, const K7NavKey& key) {
    return Query([=](const K7NavRec& rec) {
      return rec.Type() == type && static_cast<const Record&>(rec).*WHOSE == key;
    });
  }

  K7NavRec* m_recs[MAX_RECS] = {};
  int m_count = 0;
  alignas(Result) std::byte m_answer[sizeof(Result)];
};

/// An airport with four runways and six frequencies, as a large one has them.
inline K7Airport& AddBusyAirport(SmallStore& store) {
  K7Airport& airport = store.Add<K7Airport>(K7NAV_AIRPORT);
  const auto copy = [](auto& to, const char* from) { std::memcpy(to, from, std::strlen(from)); };
  copy(airport.ident, "KSEA");
  copy(airport.icao, "K1");
  copy(airport.iata, "SEA");
  copy(airport.state, "WA");
  copy(airport.country, "USA");
  airport.name = "SEATTLE-TACOMA INTL";
  airport.city = "SEATTLE";
  airport.notes = "Noise abatement in effect. CPDLC: KUSA";
  airport.lat = K7NavData::DecDeg2FixPt(47.45);
  airport.lon = K7NavData::DecDeg2FixPt(-122.3117);
  airport.elev = 432;
  airport.magVar = 155;
  airport.patternAlt = 1000;
  airport.utcOffset = 480;
  airport.speedLimit = 250;
  airport.longestRunway = 119;
  airport.transAlt = K7Alt(18000);
  airport.transLevel = K7Alt(18000, K7Alt::FLIGHT_LEVEL);
  airport.flags = K7Airport::PUBLIC | K7Airport::DAYLIGHT_SAVING;
  for (const char* ident : {"34R", "16L", "34L", "16R"}) {
    K7Runway& runway = store.Add<K7Runway>(K7NAV_RUNWAY);
    copy(runway.ident, ident);
    copy(runway.icao, "K1");
    copy(runway.airportIdent, "KSEA");
    runway.airport = airport.key;
    runway.lat = airport.lat + 8000;
    runway.lon = airport.lon + 900;
    runway.elev = 429;
    runway.magVar = 155;
    runway.length = 11901;
    runway.width = 150;
    runway.magBrg = 1642;
    runway.trueBrg = 1797;
    runway.surface = 22;
    runway.flags = K7Runway::UNRESTRICTED | K7Runway::EDGE_LIGHTS | K7Runway::CENTERLINE_LIGHTS;
    runway.tdzElev = 431;
    runway.landingThresholdElev = 429;
    runway.displacedThreshold = 490;
    runway.gradient = -0.61F;
  }
  int freq = 118000;
  for (const int16_t type : {K7AirportComm::ATIS, K7AirportComm::CLEARANCE, K7AirportComm::GROUND,
                             K7AirportComm::TOWER, K7AirportComm::APPROACH, K7AirportComm::DEPARTURE}) {
    K7AirportComm& comm = store.Add<K7AirportComm>(K7NAV_AIRPORT_COMM);
    comm.airport = airport.key;
    copy(comm.airportIdent, "KSEA");
    comm.commType = type;
    comm.callsign = "SEATTLE";
    comm.freq = freq += 1125;
    comm.serviceFlags = K7EnrouteComm::AIR_GROUND;
  }
  return airport;
}

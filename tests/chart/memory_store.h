// A store of navigation records in memory, which answers what the layers of a chart ask.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/airport.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/nav_data.h>
#include <k7/navdata/navaid.h>
#include <k7/projection/chart_rect.h>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

class MemoryStore : public K7NavData {
 public:
  /// Adds a record of a type; it stays the store's.
  template <class Record>
  Record& Add(K7NavType type) {
    Record* const record = static_cast<Record*>(K7NavData::CreateRecord(type));
    record->key = {static_cast<uint32_t>(m_records.size()), type};
    m_records.emplace_back(record);
    return *record;
  }
  template <class Record>
  Record& AddFix(K7NavType type, const char* ident, double lat, double lon) {
    Record& fix = Add<Record>(type);
    for (size_t i = 0; ident[i] && i + 1 < sizeof fix.ident; ++i) fix.ident[i] = ident[i];
    fix.lat = DecDeg2FixPt(lat);
    fix.lon = DecDeg2FixPt(lon);
    return fix;
  }

  K7NavQueryResult* AreaQuery(K7NavType type, const K7ChartRect& area) override {
    return Where([&](const K7NavRec& r) { return r.Type() == type && In(r, area); });
  }
  K7NavQueryResult* AirportRunways(const K7NavKey& airport) override {
    return Where([&](const K7NavRec& r) {
      return r.Type() == K7NAV_RUNWAY && static_cast<const K7Runway&>(r).airport == airport;
    });
  }
  K7NavQueryResult* AirportsByRunway(const K7ChartRect& area, int minFeet) override {
    return Where([&](const K7NavRec& r) {
      return r.Type() == K7NAV_AIRPORT && In(r, area) &&
             static_cast<const K7Airport&>(r).longestRunway * 100 >= minFeet;
    });
  }

 private:
  struct Result : K7NavQueryResult {
    const K7NavRec* Next() override { return next < found.size() ? found[next++] : nullptr; }
    bool Rewind() override { return next = 0, true; }
    std::vector<const K7NavRec*> found;
    size_t next = 0;
  };
  static bool In(const K7NavRec& r, const K7ChartRect& area) {
    if (!K7IsFix(r.Type())) return true;
    const K7NavFix& fix = static_cast<const K7NavFix&>(r);
    return area.PtIn(FixPt2DecDeg(fix.lat), FixPt2DecDeg(fix.lon));
  }
  template <class Wanted>
  K7NavQueryResult* Where(Wanted wanted) {
    Result* const result = new Result;
    for (const auto& record : m_records)
      if (wanted(*record)) result->found.push_back(record.get());
    return result;
  }
  std::deque<std::unique_ptr<K7NavRec>> m_records;

  // What no layer asks.
#define NOT_ASKED(type, operation) \
  type operation override { return {}; }
  NOT_ASKED(int, Open(const char*)) void Close() override {}
  NOT_ASKED(bool, IsOpen() const) NOT_ASKED(int, GetCount(K7NavType)) using Q = K7NavQueryResult*;
  using Key = const K7NavKey&;
  using Rec = const K7NavRec*;
  NOT_ASKED(Q, IdentQuery(K7NavType, const char*))
  NOT_ASKED(Q, IdentPrefixQuery(K7NavType, const char*)) NOT_ASKED(
      Q, SimilarIdentQuery(K7NavType, const char*, int)) NOT_ASKED(Q, NameQuery(K7NavType, const char*))
      NOT_ASKED(Q, RegionQuery(K7NavType, const char*)) NOT_ASKED(Q, AirspacesAt(K7NavType, const K7LatLon&))
          NOT_ASKED(Q, LineQuery(K7NavType, const K7LatLon&, const K7LatLon&,
                                 double)) NOT_ASKED(Q, NearestQuery(K7NavType, const K7LatLon&, int, double))
              NOT_ASKED(Q, AirportComms(Key)) NOT_ASKED(Q, AirportLocalizers(Key))
                  NOT_ASKED(Q, AirportMarkers(Key)) NOT_ASKED(Q, AirportProcedures(Key, K7NavType))
                      NOT_ASKED(Q, CompanyAirports(Key)) NOT_ASKED(Q, FleetAirports(Key))
                          NOT_ASKED(Rec, RunwayLocalizer(Key)) NOT_ASKED(Rec, OppositeRunway(Key))
                              NOT_ASKED(int, GetLocation(const K7NavRec&, K7String&))
                                  NOT_ASKED(Rec, GetRec(Key))
                                      NOT_ASKED(Q, KeyQuery(const K7NavKeyArray&)) void FreeRecs() override {}
  NOT_ASKED(Q, AirwayQuery(const char*))
  NOT_ASKED(Q, AirwaySegments(Key)) NOT_ASKED(Q, FixAirways(Key)) NOT_ASKED(Q, FixHoldings(Key))
      NOT_ASKED(Q, FixCrossingAlts(Key)) NOT_ASKED(Q, SegmentRestrictions(Key))
          NOT_ASKED(Q, AirspaceSegments(Key)) NOT_ASKED(Q, AirspaceComms(Key))
              NOT_ASKED(Rec, HighestObstacle(const K7ChartRect&)) NOT_ASKED(Q, RecordNotes(Key))
                  NOT_ASKED(Q, NoteLinks(Key)) NOT_ASKED(Q, NoteComms(Key)) NOT_ASKED(Q, NoteAltitudes(Key))
                      NOT_ASKED(Q, RegionalNotes(const char*)) NOT_ASKED(Rec, MoraAt(const K7LatLon&))
                          NOT_ASKED(K7ChartRect, GetExtent()) NOT_ASKED(int, GetSource(K7String&))
#undef NOT_ASKED
};

// A store of any number of records in memory, which answers what the layers of a chart ask.
#pragma once

#include "support/small_store.h"

#include <deque>
#include <functional>
#include <memory>
#include <vector>

class MemoryStore : public SmallStore {
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

  K7AirwaySeg& AddAirway(const char* name, const K7LatLon& from, const K7LatLon& to) {
    K7AirwaySeg& leg = Add<K7AirwaySeg>(K7NAV_LOW_AIRWAY);
    std::snprintf(leg.ident, sizeof leg.ident, "%s", name);
    leg.fromLat = DecDeg2FixPt(from.Lat());
    leg.fromLon = DecDeg2FixPt(from.Lon());
    leg.toLat = DecDeg2FixPt(to.Lat());
    leg.toLon = DecDeg2FixPt(to.Lon());
    leg.mea = K7Alt(4000);
    return leg;
  }

  const K7NavRec* GetRec(const K7NavKey& key) override {
    for (const auto& record : m_records)
      if (record->key == key) return record.get();
    return nullptr;
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
};

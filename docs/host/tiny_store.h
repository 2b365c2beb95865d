// The smallest store of navigation records: airports in memory, found by key, identifier and area.
#pragma once

#include <k7/core.h>

#include <cstring>
#include <memory>
#include <vector>

class TinyStore : public K7NavData {
 public:
  /// Adds an airport, whose name the caller keeps. Answers whether there was memory and the text fits.
  bool Add(const char* ident, const char* name, double lat, double lon) {
    std::unique_ptr<K7NavRec> rec(CreateRecord(K7NAV_AIRPORT));
    auto* const airport = static_cast<K7Airport*>(rec.get());
    if (!airport || std::strlen(ident) >= sizeof airport->ident) return false;
    airport->key = K7NavKey(static_cast<uint32_t>(m_recs.size()), K7NAV_AIRPORT);
    std::memcpy(airport->ident, ident, std::strlen(ident) + 1);
    airport->name = name;
    airport->lat = DecDeg2FixPt(lat);
    airport->lon = DecDeg2FixPt(lon);
    m_recs.push_back(std::move(rec));
    return true;
  }

  int Open(const char*) override { return 0; }
  void Close() override { m_recs.clear(); }
  bool IsOpen() const override { return true; }

  int GetCount(K7NavType type) override {
    return type == K7NAV_AIRPORT ? static_cast<int>(m_recs.size()) : 0;
  }
  const K7NavRec* GetRec(const K7NavKey& key) override {
    for (const auto& rec : m_recs) {
      if (rec->key == key) return rec.get();
    }
    return nullptr;
  }
  K7NavQueryResult* IdentQuery(K7NavType type, const char* ident) override {
    return Find([=](const K7Airport& airport) {
      return airport.Type() == type && K7String::IComp(airport.ident, ident) == 0;
    });
  }
  K7NavQueryResult* AreaQuery(K7NavType type, const K7ChartRect& area) override {
    return Find([=](const K7Airport& airport) {
      return airport.Type() == type && area.PtIn(FixPt2DecDeg(airport.lat), FixPt2DecDeg(airport.lon));
    });
  }
  void FreeRecs() override {}  // all records live until the store closes

  // What this store has nothing of: an empty result, no record.
  K7NavQueryResult* IdentPrefixQuery(K7NavType, const char*) override { return None(); }
  K7NavQueryResult* SimilarIdentQuery(K7NavType, const char*, int) override { return None(); }
  K7NavQueryResult* NameQuery(K7NavType, const char*) override { return None(); }
  K7NavQueryResult* RegionQuery(K7NavType, const char*) override { return None(); }
  K7NavQueryResult* LineQuery(K7NavType, const K7LatLon&, const K7LatLon&, double) override { return None(); }
  K7NavQueryResult* NearestQuery(K7NavType, const K7LatLon&, int, double) override { return None(); }
  K7NavQueryResult* AirspacesAt(K7NavType, const K7LatLon&) override { return None(); }
  K7NavQueryResult* AirportRunways(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirportComms(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirportLocalizers(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirportMarkers(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirportProcedures(const K7NavKey&, K7NavType) override { return None(); }
  K7NavQueryResult* CompanyAirports(const K7NavKey&) override { return None(); }
  K7NavQueryResult* FleetAirports(const K7NavKey&) override { return None(); }
  const K7NavRec* RunwayLocalizer(const K7NavKey&) override { return nullptr; }
  const K7NavRec* OppositeRunway(const K7NavKey&) override { return nullptr; }
  int GetLocation(const K7NavRec&, K7String& out) override { return Say("", out); }
  K7NavQueryResult* KeyQuery(const K7NavKeyArray&) override { return None(); }
  K7NavQueryResult* AirwayQuery(const char*) override { return None(); }
  K7NavQueryResult* AirwaySegments(const K7NavKey&) override { return None(); }
  K7NavQueryResult* FixAirways(const K7NavKey&) override { return None(); }
  K7NavQueryResult* FixHoldings(const K7NavKey&) override { return None(); }
  K7NavQueryResult* FixCrossingAlts(const K7NavKey&) override { return None(); }
  K7NavQueryResult* SegmentRestrictions(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirspaceSegments(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirspaceComms(const K7NavKey&) override { return None(); }
  K7NavQueryResult* AirportsByRunway(const K7ChartRect&, int) override { return None(); }
  const K7NavRec* HighestObstacle(const K7ChartRect&) override { return nullptr; }
  K7NavQueryResult* RecordNotes(const K7NavKey&) override { return None(); }
  K7NavQueryResult* NoteLinks(const K7NavKey&) override { return None(); }
  K7NavQueryResult* NoteComms(const K7NavKey&) override { return None(); }
  K7NavQueryResult* NoteAltitudes(const K7NavKey&) override { return None(); }
  K7NavQueryResult* RegionalNotes(const char*) override { return None(); }
  const K7NavRec* MoraAt(const K7LatLon&) override { return nullptr; }
  K7ChartRect GetExtent() override {
    K7ChartRect extent;
    for (const auto& rec : m_recs) {
      const auto& airport = static_cast<const K7Airport&>(*rec);
      extent.Include(FixPt2DecDeg(airport.lat), FixPt2DecDeg(airport.lon));
    }
    return extent;
  }
  int GetSource(K7String& out) override { return Say("two airports, typed in", out); }

 private:
  class Result : public K7NavQueryResult {
   public:
    const K7NavRec* Next() override { return m_at < m_found.size() ? m_found[m_at++] : nullptr; }
    bool Rewind() override {
      m_at = 0;
      return true;
    }
    void AddRec(K7NavRec* rec) override { m_found.push_back(rec); }

   private:
    std::vector<const K7NavRec*> m_found;
    size_t m_at = 0;
  };

  template <class Wanted>
  K7NavQueryResult* Find(Wanted wanted) const {
    auto result = std::make_unique<Result>();
    for (const auto& rec : m_recs) {
      if (wanted(static_cast<const K7Airport&>(*rec))) result->AddRec(rec.get());
    }
    return result.release();
  }
  static K7NavQueryResult* None() { return new Result; }
  static int Say(const char* text, K7String& out) {
    const int code = out.Create(text);
    return code < 0 ? code : 0;
  }

  std::vector<std::unique_ptr<K7NavRec>> m_recs;
};

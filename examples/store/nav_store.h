// NavStore: navigation records in one SQLite file.
#pragma once

#include <k7/navdata/nav_data.h>
#include <k7/projection/chart_rect.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class StoreFile;
struct K7AirwaySeg;

/// Store over a database that `NavWriter` made: one table a record type, a column for every field and member.
///
/// The file is opened for reading only, once a store, and may be replaced by a new one meanwhile: an open
/// store goes on with the old. Every value that comes from it is checked against the place that it goes to,
/// so a damaged file costs records, never more: a query that meets damage answers null.
///
/// Records of `GetRec`, and of the operations that say so, belong to the store and live until `FreeRecs`,
/// `Close` or the next `Open`; asking again for a key gives the same record. Records of a result live until
/// the next call of it. Results are the caller's to delete, before the store closes; they hold the keys of
/// what was found and read a record when it is asked for. Texts are windows-1252.
///
/// Used by one thread at a time. Several stores may have the same file open.
class NavStore : public K7NavData {
 public:
  NavStore();
  ~NavStore() override;
  NavStore(const NavStore&) = delete;
  NavStore& operator=(const NavStore&) = delete;

  int Open(const char* path) override;
  void Close() override;
  bool IsOpen() const override;

  K7NavQueryResult* AllQuery(K7NavType type) override;
  /// Fields by their names in the field table; numbers compare as they are written, "116.8". Null when none
  /// of the names is a field of the type.
  K7NavQueryResult* AllQuery(K7NavType type, const char* text, const char** fields,
                             K7TextSearchFlags flags) override;

  int GetCount(K7NavType type) override;
  K7NavQueryResult* IdentQuery(K7NavType type, const char* ident) override;  ///< in the order of their keys
  K7NavQueryResult* IdentPrefixQuery(K7NavType type, const char* prefix) override;
  /// By the number of letters to change, add, leave out, or exchange with the next, at most half of them.
  K7NavQueryResult* SimilarIdentQuery(K7NavType type, const char* ident, int maxCount) override;
  K7NavQueryResult* NameQuery(K7NavType type, const char* name) override;
  K7NavQueryResult* RegionQuery(K7NavType type, const char* icao) override;
  K7NavQueryResult* AreaQuery(K7NavType type, const K7ChartRect& area) override;
  /// Areas by their bounds, to the piece of the line that comes first.
  K7NavQueryResult* LineQuery(K7NavType type, const K7LatLon& from, const K7LatLon& to,
                              double width) override;
  /// To lines the distance of their nearest point; to areas that of their bounds.
  K7NavQueryResult* NearestQuery(K7NavType type, const K7LatLon& at, int maxCount,
                                 double maxDistance) override;
  /// Great circles, rhumb lines and circles as such; arcs by chords of half a degree.
  K7NavQueryResult* AirspacesAt(K7NavType type, const K7LatLon& at) override;

  K7NavQueryResult* AirportRunways(const K7NavKey& airport) override;
  K7NavQueryResult* AirportComms(const K7NavKey& airport) override;
  K7NavQueryResult* AirportLocalizers(const K7NavKey& airport) override;
  K7NavQueryResult* AirportMarkers(const K7NavKey& airport) override;
  K7NavQueryResult* AirportProcedures(const K7NavKey& airport, K7NavType type) override;
  K7NavQueryResult* CompanyAirports(const K7NavKey& airport) override;
  K7NavQueryResult* FleetAirports(const K7NavKey& airport) override;
  const K7NavRec* RunwayLocalizer(const K7NavKey& runway) override;
  /// By the designators: "16L" and "34R", "N" and "S".
  const K7NavRec* OppositeRunway(const K7NavKey& runway) override;
  /// From the nearest airport within 50 NM, by its city or else its name.
  int GetLocation(const K7NavRec& rec, K7String& out) override;

  const K7NavRec* GetRec(const K7NavKey& key) override;
  K7NavQueryResult* KeyQuery(const K7NavKeyArray& keys) override;
  void FreeRecs() override;

  K7NavQueryResult* AirwayQuery(const char* ident) override;
  K7NavQueryResult* AirwaySegments(const K7NavKey& header) override;
  K7NavQueryResult* FixAirways(const K7NavKey& fix) override;
  /// Calls `visit` with every segment of all airways in the order of type and key, filled only as far as a
  /// network of them needs: key, the ends' positions, direction, minimum and maximum altitudes. Many times
  /// as fast as `AllQuery`, save in a database that an older writer made. False when the store is closed or
  /// the database fails.
  bool VisitAirwayNetwork(const std::function<void(const K7AirwaySeg&)>& visit);
  K7NavQueryResult* FixHoldings(const K7NavKey& fix) override;
  K7NavQueryResult* FixCrossingAlts(const K7NavKey& fix) override;
  K7NavQueryResult* SegmentRestrictions(const K7NavKey& segment) override;
  K7NavQueryResult* AirspaceSegments(const K7NavKey& airspace) override;
  K7NavQueryResult* AirspaceComms(const K7NavKey& airspace) override;
  K7NavQueryResult* AirportsByRunway(const K7ChartRect& area, int minFeet) override;
  /// Of all four types of obstacles.
  const K7NavRec* HighestObstacle(const K7ChartRect& area) override;

  /// @name One store of navigation data, number 0; none of the other kinds
  /// @{
  int GetEffectivity(StoreType_t type, int store, unsigned* from, unsigned* until,
                     const char* region) override;
  int GetActiveStore(StoreType_t type, int* store) override;
  int GetNumStores(StoreType_t type, int* count, const char* region) override;
  int SetActiveStore(StoreType_t type, int store) override;
  int GetDataCycle(StoreType_t type, int store, int* cycle, int* revision) override;
  /// @}
  K7NavRec* CopyRec(K7NavRec* rec) override;

  K7NavQueryResult* RecordNotes(const K7NavKey& key) override;
  K7NavQueryResult* NoteLinks(const K7NavKey& note) override;
  K7NavQueryResult* NoteComms(const K7NavKey& note) override;
  K7NavQueryResult* NoteAltitudes(const K7NavKey& note) override;
  /// Those whose URI an entry of the notes' index (type 38) has beside the region as its value.
  K7NavQueryResult* RegionalNotes(const char* icao) override;
  const K7NavRec* MoraAt(const K7LatLon& at) override;
  K7ChartRect GetExtent() override;
  int GetSource(K7String& out) override;

 private:
  std::unique_ptr<StoreFile> m_file;  // null when closed
};

// K7NavData: the abstract store of navigation records, and what can be done with records without a store.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>
#include <k7/navdata/nav_fields.h>
#include <k7/navdata/nav_rec.h>

class K7ChartRect;
class K7LatLon;
struct K7Airport;

/// Result of a query, one record after the other. The caller deletes it, before the store closes.
class K7_API K7NavQueryResult {
 public:
  virtual ~K7NavQueryResult();
  /// The next record; null at the end. It and its texts live until the next call, the end of the result or
  /// the closing of the store, whichever comes first: `K7NavData::CopyRec` makes one that lives longer.
  virtual const K7NavRec* Next() = 0;
  /// Starts again before the first record. False when the query cannot be repeated.
  virtual bool Rewind() = 0;
  /// Adds a record behind the others, which the result does not own; the default does nothing.
  virtual void AddRec(K7NavRec* rec);

 protected:
  K7NavQueryResult() = default;
  K7NavQueryResult(const K7NavQueryResult&) = default;
  K7NavQueryResult& operator=(const K7NavQueryResult&) = default;
};

/// Abstract store of navigation records, which a host implements over its data; `examples/store` is one.
///
/// Queries answer null when they fail and an empty result when there is nothing. Keys that the store does not
/// know are no failure. Distances are NM, positions degrees, texts windows-1252; identifiers and names
/// compare without regard to case. A store is used by one thread at a time unless it says otherwise.
class K7_API K7NavData {
 public:
  /// Size of the buffer with which a store reads its files, and the value that marks a size as not set.
  static constexpr int DEFAULT_NAV_FILE_BUF_SIZE = 262144;
  static constexpr int INVALID_NAV_FILE_BUF_SIZE = -999;

  /// Where data may come from: several stores of one kind may be there, one of them active.
  enum StoreType_t : int { STORE_NAVDATA = 0, STORE_TAILORED = 1, STORE_NOTES = 2 };
  /// How `AllQuery` compares a text with fields.
  enum K7TextSearchFlags : int { SEARCH_WHOLE = 0, SEARCH_PREFIX = 1, SEARCH_ANYWHERE = 2 };

  virtual ~K7NavData();

  /// @name The store as a whole
  /// @{
  /// Opens the data at `path` for reading; what was open before is closed. 0, K7_ERR_BAD_ARGUMENT for null,
  /// K7_ERR_FILE_IO when it does not open, K7_ERR_INVALID_DATA when it is no store.
  virtual int Open(const char* path) = 0;
  /// Closes it. Every record and result of it ends before.
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;
  /// @}

  /// @name Whole types
  /// The defaults have no records.
  /// @{
  /// All records of a type, in the order of their keys.
  virtual K7NavQueryResult* AllQuery(K7NavType type);
  /// Those of which one of `fields` (names of the field table, ended by null) matches `text`.
  virtual K7NavQueryResult* AllQuery(K7NavType type, const char* text, const char** fields,
                                     K7TextSearchFlags flags);
  /// @}

  /// @name Looking up
  /// @{
  /// Number of records of a type.
  virtual int GetCount(K7NavType type) = 0;
  /// The records of an identifier.
  virtual K7NavQueryResult* IdentQuery(K7NavType type, const char* ident) = 0;
  /// The records whose identifier begins so, in alphabetical order.
  virtual K7NavQueryResult* IdentPrefixQuery(K7NavType type, const char* prefix) = 0;
  /// Up to `maxCount` records whose identifiers are spelled most like `ident`, best first.
  virtual K7NavQueryResult* SimilarIdentQuery(K7NavType type, const char* ident, int maxCount) = 0;
  /// The records whose name holds the text.
  virtual K7NavQueryResult* NameQuery(K7NavType type, const char* name) = 0;
  /// The records of an ICAO region.
  virtual K7NavQueryResult* RegionQuery(K7NavType type, const char* icao) = 0;
  /// The records that an area holds or, for lines and areas, whose bounds it meets. It may cross 180.
  virtual K7NavQueryResult* AreaQuery(K7NavType type, const K7ChartRect& area) = 0;
  /// The records within `width` of the great circle from `from` to `to`, in order along it.
  virtual K7NavQueryResult* LineQuery(K7NavType type, const K7LatLon& from, const K7LatLon& to,
                                      double width) = 0;
  /// Up to `maxCount` records within `maxDistance` of a position, nearest first.
  virtual K7NavQueryResult* NearestQuery(K7NavType type, const K7LatLon& at, int maxCount,
                                         double maxDistance) = 0;
  /// The airspaces of a type whose boundary holds the position.
  virtual K7NavQueryResult* AirspacesAt(K7NavType type, const K7LatLon& at) = 0;
  /// @}

  /// @name Of an airport
  /// @{
  virtual K7NavQueryResult* AirportRunways(const K7NavKey& airport) = 0;
  virtual K7NavQueryResult* AirportComms(const K7NavKey& airport) = 0;
  virtual K7NavQueryResult* AirportLocalizers(const K7NavKey& airport) = 0;
  virtual K7NavQueryResult* AirportMarkers(const K7NavKey& airport) = 0;
  /// The legs of its procedures of a type (24, 25 or 26), by procedure, transition and sequence.
  virtual K7NavQueryResult* AirportProcedures(const K7NavKey& airport, K7NavType type) = 0;
  /// What operators (type 42) and fleets (type 44) keep of it.
  virtual K7NavQueryResult* CompanyAirports(const K7NavKey& airport) = 0;
  virtual K7NavQueryResult* FleetAirports(const K7NavKey& airport) = 0;
  /// The localizer of a runway's end; null without one. Lives as a record of `GetRec`.
  virtual const K7NavRec* RunwayLocalizer(const K7NavKey& runway) = 0;
  /// The runway at the other end; null when unknown. Lives as a record of `GetRec`.
  virtual const K7NavRec* OppositeRunway(const K7NavKey& runway) = 0;
  /// Where a record's place lies, in words ("5 NM SE of Seattle"). 0 with `out` empty when the store does not
  /// know, or a code.
  virtual int GetLocation(const K7NavRec& rec, K7String& out) = 0;
  /// @}

  /// @name By key
  /// @{
  /// The record of a key; null when the store has none. It and its texts live until `FreeRecs` or the closing
  /// of the store.
  virtual const K7NavRec* GetRec(const K7NavKey& key) = 0;
  /// The records of several keys, in their order, those that are not there left out.
  virtual K7NavQueryResult* KeyQuery(const K7NavKeyArray& keys) = 0;
  /// Releases the records that `GetRec` gave out. A host calls it when it keeps none, say between drawings.
  virtual void FreeRecs() = 0;
  /// @}

  /// @name Airways, airspaces, holdings, and what an area holds
  /// @{
  /// The airways of an identifier (type 29); one name may stand for several, far apart.
  virtual K7NavQueryResult* AirwayQuery(const char* ident) = 0;
  /// The segments of an airway, by its header, in order.
  virtual K7NavQueryResult* AirwaySegments(const K7NavKey& header) = 0;
  /// The segments of all airways that begin or end at a fix.
  virtual K7NavQueryResult* FixAirways(const K7NavKey& fix) = 0;
  virtual K7NavQueryResult* FixHoldings(const K7NavKey& fix) = 0;
  virtual K7NavQueryResult* FixCrossingAlts(const K7NavKey& fix) = 0;
  /// The restrictions (type 28) of an airway's segment.
  virtual K7NavQueryResult* SegmentRestrictions(const K7NavKey& segment) = 0;
  /// The pieces of an airspace's boundary (type 27), in order.
  virtual K7NavQueryResult* AirspaceSegments(const K7NavKey& airspace) = 0;
  /// The frequencies of an FIR or sector (type 12).
  virtual K7NavQueryResult* AirspaceComms(const K7NavKey& airspace) = 0;
  /// The airports (type 5) of an area whose longest runway has at least so many feet.
  virtual K7NavQueryResult* AirportsByRunway(const K7ChartRect& area, int minFeet) = 0;
  /// The highest obstacle of an area; null without one. Lives as a record of `GetRec`.
  virtual const K7NavRec* HighestObstacle(const K7ChartRect& area) = 0;
  /// @}

  /// @name Several stores
  /// The defaults do nothing and answer 0.
  /// @{
  /// Days since 1970 from and until when a store's data hold, `until` not included; `region` null for all.
  virtual int GetEffectivity(StoreType_t type, int store, unsigned* from, unsigned* until,
                             const char* region);
  virtual int GetActiveStore(StoreType_t type, int* store);
  virtual int GetNumStores(StoreType_t type, int* count, const char* region);
  virtual int SetActiveStore(StoreType_t type, int store);
  /// Number of the data's cycle, and of its revision.
  virtual int GetDataCycle(StoreType_t type, int store, int* cycle, int* revision);
  /// A copy that the caller deletes, with the texts of its own that the store keeps until it closes; null by
  /// default and without memory.
  virtual K7NavRec* CopyRec(K7NavRec* rec);
  /// @}

  /// @name Notes and what comes with records
  /// @{
  /// The smart notes (type 68) of a record.
  virtual K7NavQueryResult* RecordNotes(const K7NavKey& key) = 0;
  /// What a smart note applies to (type 69), its frequencies (type 70) and altitudes (type 71).
  virtual K7NavQueryResult* NoteLinks(const K7NavKey& note) = 0;
  virtual K7NavQueryResult* NoteComms(const K7NavKey& note) = 0;
  virtual K7NavQueryResult* NoteAltitudes(const K7NavKey& note) = 0;
  /// The regional notes (type 37) of an ICAO region.
  virtual K7NavQueryResult* RegionalNotes(const char* icao) = 0;
  /// The cell of minimum off-route altitude (type 18) that holds the position; null without one. Lives as a
  /// record of `GetRec`.
  virtual const K7NavRec* MoraAt(const K7LatLon& at) = 0;
  /// Bounds of what the store holds; empty without records.
  virtual K7ChartRect GetExtent() = 0;
  /// What the data are and whose, for a margin or an about box. 0 or a code.
  virtual int GetSource(K7String& out) = 0;
  /// @}

  /// @name Records
  /// @{
  /// A new record of a type's structure, which the caller deletes: keys are the no-record key, its own
  /// included, texts null, numbers 0. Null for types without a structure and without memory.
  static K7NavRec* CreateRecord(K7NavType type);
  /// Bytes of a type's record; 0 for a type without a structure.
  static int GetRecSize(K7NavType type);
  /// Display name of a type; "Unknown" for a type without one.
  static const char* TypeName(K7NavType type);
  /// One line about the record of a key: "SEA (SEATTLE)". K7_ERR_BAD_ARGUMENT for the no-record type,
  /// K7_ERR_INVALID_DATA when the store has no such record, K7_ERR_NOT_IMPLEMENTED for a type without
  /// descriptions or above 57, K7_ERR_MEMORY.
  int GetDescriptionByKey(K7NavKey key, K7String& out);
  /// The fix of that type and identifier that is nearest to the position; of equally near ones the one of the
  /// lower key. Null when there is none, and for types without a place. Lives as a record of `GetRec`.
  const K7NavRec* GetFixByIdent(K7NavType type, const char* ident, double lat, double lon);
  /// Replaces `out` with the record as an XML document of what a person reads about it. Related records come
  /// from this store: an airport's runways by identifier, its frequencies from the last to the first. What is
  /// not known is left out, but for the elements of fixes, VORs, airports and runways that hosts count on.
  /// Types 19, 38, 40, 43, 47, 58 to 67 and from 69 on show the elements that all types share; a regional
  /// note (type 37) is no XML: its text for K7XML_DOCUMENT, else empty. Type 23 is read as an obstacle.
  ///
  /// 0 for null, with `out` untouched; K7_ERR_MEMORY, with `out` empty. For types 42, 44, 45, 46, 48, 49, 50,
  /// 51 and 68 always 0.
  int ToXML(K7NavRec* rec, K7XmlOutputType_t type, K7String& out);
  /// @}

  /// @name Fields
  /// Numbers are those of a type's fields, from 0. Any number of threads may call these.
  /// @{
  static int GetFieldCount(K7NavType type);
  /// False, with the outputs untouched, for a type without fields and a number beyond them. The texts live
  /// forever; `note` is empty for most.
  static bool GetFieldInfo(K7NavType type, int index, K7NavFieldDataType& kind, const char*& name,
                           const char*& note);
  /// How the field lies in the record. False as above.
  static bool GetFieldLayout(K7NavType type, int index, K7NavFieldLayout& layout);
  /// Number of the first field of that display name (case matters); -1 when there is none.
  static int GetFieldIndex(K7NavType type, const char* name);
  /// Reads a field into the member of its kind, scaled to the caller's unit; integers are truncated toward
  /// zero. False, for null and where there is no such field; also, with `out` cleared, for a field whose kind
  /// and storage do not fit together, which is listed but not readable.
  static bool GetField(const K7NavRec* rec, int index, K7NavField* out);
  /// Writes a field, the inverse of `GetField`: numbers are divided by the scale, rounded and limited to what
  /// the storage holds, a text in the record is cut to its room and never reaches the next field, of an
  /// altitude the other part stays. A text held by pointer is not copied. False where `GetField` is.
  static bool SetField(K7NavRec* rec, int index, const K7NavField& value);
  /// Degrees of 2^-23 degree units, and back, truncated toward zero. Not-a-number is 0; what is beyond the
  /// units is limited to them.
  static double FixPt2DecDeg(int fixed) { return fixed * 1.1920928955078125e-7; }
  static int DecDeg2FixPt(double degrees);
  /// @}

 protected:
  K7NavData() = default;
  K7NavData(const K7NavData&) = default;
  K7NavData& operator=(const K7NavData&) = default;
};

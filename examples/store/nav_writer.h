// NavWriter: makes the database that NavStore reads.
#pragma once

#include <k7/navdata/nav_rec.h>

#include <memory>
#include <string>

/// Writes a new database beside the one that is to be replaced, and puts it in its place when it is whole.
/// Until then, and however the process ends, the old one stays as it was. What a process that died left
/// beside it, the next writer removes.
///
///     NavWriter writer;
///     if (!writer.Open(path, problem)) return Fail(problem);
///     const std::unique_ptr<K7Airport> airport(
///         static_cast<K7Airport*>(K7NavData::CreateRecord(K7NAV_AIRPORT)));
///     airport->key = K7NavKey(0, K7NAV_AIRPORT);
///     ...
///     const K7NavKey key = writer.Add(*airport);
///     if (!writer.Finish(problem)) return Fail(problem);
///
/// Records and their texts stay the caller's and are copied. Keys in a record may name records that come
/// later: `Update` puts them in. Used by one thread.
///
/// The store finds points by their position, lines by their ends, areas by their bounds (all four 0 when
/// there are none) and what belongs together by its keys, in the order of `sequence` where there is one: a
/// writer fills these, and boundaries (type 27) with the key of their airspace. Positions off the globe are
/// kept and not found.
class NavWriter {
 public:
  NavWriter();
  /// Removes what was written unless it was finished.
  ~NavWriter();
  NavWriter(const NavWriter&) = delete;
  NavWriter& operator=(const NavWriter&) = delete;

  /// Begins a database that will take the place of `path`. False, with `problem` in words, when there is no
  /// room to write in, or another process is writing that database.
  bool Open(const std::string& path, std::string& problem);
  /// Writes a record of the type that its key names and gives it the next index of that type, from 0: into
  /// its key, which is also answered. The no-record key for a type without records and when writing fails;
  /// `Finish` then says why.
  K7NavKey Add(K7NavRec& rec);
  /// Writes the record again, under its key. False when no such record was added, or when writing fails.
  bool Update(const K7NavRec& rec);
  /// The number of records of a type so far.
  uint32_t Count(K7NavType type) const;

  /// What the data are and whose (windows-1252), their cycle and its revision, and the days since 1970 from
  /// and until when they hold (`until` not included; both 0 when not stated).
  void SetSource(const std::string& text, int cycle, int revision = 0, unsigned from = 0, unsigned until = 0);

  /// Builds the indexes and puts the database in its place. False, with `problem` in words and the old one as
  /// it was, when anything failed since `Open`.
  bool Finish(std::string& problem);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

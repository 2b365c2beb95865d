// StoreFile: the open database behind a NavStore, and how its records are found and read.
#pragma once

#include <k7/navdata/nav_data.h>

#include <array>
#include <optional>
#include <unordered_map>

#include "store/arena.h"
#include "store/columns.h"
#include "store/database.h"
#include "store/place.h"
#include "store/relations.h"
#include "store/row.h"

/// What a query found; nothing when the database failed.
using Keys = std::optional<std::vector<K7NavKey>>;

/// A record whose bounds meet a window. Of one across 180 there are two, each with a half.
struct Hit {
  uint32_t idx = 0;
  Box box;
  double distance = 0;  ///< for whoever sorts by one
};
using Hits = std::optional<std::vector<Hit>>;

class StoreFile {
 public:
  /// Null, with a code, for what is no store.
  static std::unique_ptr<StoreFile> Open(const char* path, int& code);

  /// True when there are records of the type.
  bool Has(K7NavType type) const { return type < K7NAV_TYPE_COUNT && m_has[type]; }
  /// -1 when the database fails.
  int Count(K7NavType type);
  /// The record of a key in an arena; null when there is none, and for what cannot be read.
  K7NavRec* Read(const K7NavKey& key, Arena& arena);
  /// The record of a key, kept until `Free`.
  const K7NavRec* Keep(const K7NavKey& key);
  void Free();
  K7NavRec* Copy(const K7NavRec& rec);

  /// Records of a type by the rest of a SELECT behind its table, "WHERE ... ORDER BY ...", with its
  /// parameters.
  template <class... Values>
  Keys Select(K7NavType type, const std::string& rest, const Values&... values);
  Keys Related(const Relation& relation, const K7NavKey& key);
  /// Points within an area, by the rest of a WHERE about the table `t`; across 180 one side after the other.
  template <class... Values>
  Keys SelectWithin(K7NavType type, const K7ChartRect& area, const std::string& rest,
                    const Values&... values);
  Hits Find(K7NavType type, const std::vector<Window>& windows);
  /// Calls `row` with every row of "SELECT `columns`" of a type. False when the database failed.
  template <class Row>
  bool Scan(K7NavType type, const std::string& columns, const Row& row);

  /// A fact about the data; empty when it is not stated.
  std::string Text(const char* fact);
  double Number(const char* fact, double otherwise);

  Database& Connection() { return m_database; }

 private:
  /// Refuses to gather more, which only a database that runs in circles has.
  static constexpr size_t MAX_FOUND = size_t(1) << 24;

  bool HasColumns();
  Keys Gather(Query& query, K7NavType type);

  Database m_database;
  std::array<bool, K7NAV_TYPE_COUNT> m_has = {};
  std::array<sqlite3_stmt*, K7NAV_TYPE_COUNT> m_byKey = {};
  std::array<int, K7NAV_TYPE_COUNT> m_counts;
  Arena m_arena;
  std::unordered_map<int64_t, const K7NavRec*> m_kept;
  Arena m_copies;  // texts of copied records
};

/// The result of keys that are read when they are asked for; null for no keys.
K7NavQueryResult* ResultOf(StoreFile& file, Keys keys);

template <class... Values>
Keys StoreFile::Select(K7NavType type, const std::string& rest, const Values&... values) {
  if (!Has(type)) return Keys(std::in_place);
  Query query(m_database.Prepare("SELECT t.idx FROM \"" + TableOf(type).name + "\" t " + rest));
  if (!query.IsGood()) return {};
  (query.Bind(values), ...);
  return Gather(query, type);
}

template <class... Values>
Keys StoreFile::SelectWithin(K7NavType type, const K7ChartRect& area, const std::string& rest,
                             const Values&... values) {
  Keys keys(std::in_place);
  if (!Has(type) || TableOf(type).place == Place::NONE) return keys;
  const TypeTable& table = TableOf(type);
  const std::string sql = "SELECT t.idx FROM \"" + table.AreaName() + "\" a CROSS JOIN \"" + table.name +
                          "\" t ON t.idx=a.id&4294967295"
                          " WHERE a.west<=? AND a.east>=? AND a.south<=? AND a.north>=? AND " +
                          rest;
  for (const Window& window : WindowsOf(area)) {
    Query query(m_database.Prepare(sql));
    if (!query.IsGood()) return {};
    constexpr double UNITS = 1 << 23;
    for (const double side : {window.east, window.west, window.north, window.south}) query.Bind(side * UNITS);
    (query.Bind(values), ...);
    const Keys part = Gather(query, type);
    if (!part) return {};
    keys->insert(keys->end(), part->begin(), part->end());
  }
  return keys;
}

template <class Row>
bool StoreFile::Scan(K7NavType type, const std::string& columns, const Row& row) {
  if (!Has(type)) return true;
  Query query(m_database.Prepare("SELECT " + columns + " FROM \"" + TableOf(type).name + "\""));
  size_t rows = 0;
  while (query.Next()) {
    if (++rows > MAX_FOUND) return false;
    row(query);
  }
  return query.IsGood();
}

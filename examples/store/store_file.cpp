#include "store/store_file.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <set>

namespace {

class KeyResult : public K7NavQueryResult {
 public:
  KeyResult(StoreFile& file, std::vector<K7NavKey> keys) : m_file(file), m_keys(std::move(keys)) {}

  const K7NavRec* Next() override {
    m_arena.Clear();
    while (m_next < m_keys.size()) {
      if (const K7NavRec* rec = m_file.Read(m_keys[m_next++], m_arena)) return rec;
    }
    const size_t added = m_next - m_keys.size();
    return added < m_added.size() ? (m_next++, m_added[added]) : nullptr;
  }
  bool Rewind() override {
    m_next = 0;
    return true;
  }
  void AddRec(K7NavRec* rec) override { m_added.push_back(rec); }

 private:
  StoreFile& m_file;
  std::vector<K7NavKey> m_keys;
  std::vector<K7NavRec*> m_added;
  size_t m_next = 0;
  Arena m_arena;
};

bool IsIndex(int64_t number) { return number >= 0 && number <= 0xFFFFFFFF; }

}  // namespace

K7NavQueryResult* ResultOf(StoreFile& file, Keys keys) {
  return keys ? new KeyResult(file, std::move(*keys)) : nullptr;
}

std::unique_ptr<StoreFile> StoreFile::Open(const char* path, int& code) {
  auto file = std::make_unique<StoreFile>();
  file->m_counts.fill(-1);
  code = K7_ERR_FILE_IO;
  // A store is used by one thread at a time, and a lock a value takes longer than the value.
  if (!file->m_database.Open(path, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX)) return nullptr;
  file->m_database.Run("PRAGMA cache_size=-32768; PRAGMA cell_size_check=ON; PRAGMA query_only=ON");
  // One transaction as long as the file is open: it never changes in place, and locking it for every record
  // takes longer than reading it.
  file->m_database.Run("BEGIN");
  const auto number = [&](const char* sql) -> int64_t {
    Query query(file->m_database.Prepare(sql));
    return query.Next() ? query.Integer(0) : -1;
  };
  const bool ours =
      number("PRAGMA application_id") == APPLICATION_ID && number("PRAGMA user_version") == STORE_VERSION;
  const int state = sqlite3_errcode(file->m_database.Handle());
  if (state == SQLITE_CANTOPEN || state == SQLITE_IOERR || state == SQLITE_BUSY) return nullptr;
  code = ours && file->HasColumns() ? K7_OK : K7_ERR_INVALID_DATA;
  return code ? nullptr : std::move(file);
}

// A table without the columns that we know is another program's, or damaged.
bool StoreFile::HasColumns() {
  std::set<std::string, std::less<>> names;
  Query query(m_database.Prepare("SELECT name FROM sqlite_master WHERE type='table'"));
  while (query.Next()) names.emplace(query.Text(0));
  if (!query.IsGood()) return false;
  for (uint32_t i = 0; i < K7NAV_TYPE_COUNT; i++) {
    const TypeTable& table = TableOf(static_cast<K7NavType>(i));
    if (table.name.empty() || !names.contains(table.name)) continue;
    m_byKey[i] =
        m_database.Prepare("SELECT " + table.ColumnList() + " FROM \"" + table.name + "\" WHERE idx=?");
    if (!m_byKey[i]) return false;
    m_has[i] = true;
  }
  return true;
}

int StoreFile::Count(K7NavType type) {
  if (!Has(type)) return 0;
  int& count = m_counts[type];
  if (count >= 0) return count;
  Query query(m_database.Prepare("SELECT count(*) FROM \"" + TableOf(type).name + "\""));
  if (query.Next())
    count = static_cast<int>(std::clamp<int64_t>(query.Integer(0), 0, std::numeric_limits<int>::max()));
  return count;
}

K7NavRec* StoreFile::Read(const K7NavKey& key, Arena& arena) {
  if (!Has(key.NavType())) return nullptr;
  Query query(m_byKey[key.NavType()]);
  if (!query.Bind(static_cast<int64_t>(key.Idx())).Next()) return nullptr;
  return ReadRow(TableOf(key.NavType()), key.Idx(), query.Row(), 0, arena);
}

const K7NavRec* StoreFile::Keep(const K7NavKey& key) {
  const auto kept = m_kept.find(KeyNumber(key));
  if (kept != m_kept.end()) return kept->second;
  const K7NavRec* rec = Read(key, m_arena);
  if (rec) m_kept.emplace(KeyNumber(key), rec);
  return rec;
}

void StoreFile::Free() {
  m_kept.clear();
  m_arena.Clear();
}

K7NavRec* StoreFile::Copy(const K7NavRec& rec) {
  const TypeTable& table = TableOf(rec.Type());
  K7NavRec* copy = K7NavData::CreateRecord(rec.Type());
  if (!copy) return nullptr;
  char* bytes = reinterpret_cast<char*>(copy);
  std::memcpy(bytes, static_cast<const void*>(&rec), table.bytes);
  const auto keep = [&](const char* text) -> const char* {
    if (!text) return nullptr;
    const size_t size = std::strlen(text) + 1;
    return static_cast<const char*>(std::memcpy(m_copies.Take(size), text, size));
  };
  copy->notes = keep(rec.notes);
  for (const Column& column : table.columns) {
    if (column.storage != K7STORE_POINTER) continue;
    const char* text;
    std::memcpy(&text, bytes + column.at, sizeof text);
    text = keep(text);
    std::memcpy(bytes + column.at, &text, sizeof text);
  }
  return copy;
}

Keys StoreFile::Gather(Query& query, K7NavType type) {
  std::vector<K7NavKey> keys;
  while (query.Next()) {
    const int64_t idx = query.Integer(0);
    if (keys.size() >= MAX_FOUND) return {};
    if (IsIndex(idx)) keys.emplace_back(static_cast<uint32_t>(idx), type);
  }
  return query.IsGood() ? Keys(std::move(keys)) : Keys();
}

Keys StoreFile::Related(const Relation& relation, const K7NavKey& key) {
  return Select(relation.type,
                "WHERE t.\"" + std::string(relation.key) + "\"=? ORDER BY " + relation.order + "t.idx",
                KeyNumber(key));
}

Hits StoreFile::Find(K7NavType type, const std::vector<Window>& windows) {
  std::vector<Hit> hits;
  if (!Has(type) || TableOf(type).place == Place::NONE) return hits;
  const std::string sql = "SELECT id,west,east,south,north FROM \"" + TableOf(type).AreaName() +
                          "\" WHERE west<=? AND east>=? AND south<=? AND north>=?";
  for (const Window& window : windows) {
    Query query(m_database.Prepare(sql));
    if (!query.IsGood()) return {};
    constexpr double UNITS = 1 << 23;
    for (const double side : {window.east, window.west, window.north, window.south}) query.Bind(side * UNITS);
    const auto coordinate = [&](int column) { return static_cast<int32_t>(query.Integer(column)); };
    while (query.Next()) {
      if (hits.size() >= MAX_FOUND) return {};
      hits.push_back({static_cast<uint32_t>(query.Integer(0)),
                      {coordinate(1), coordinate(2), coordinate(3), coordinate(4)}});
    }
    if (!query.IsGood()) return {};
  }
  return hits;
}

std::string StoreFile::Text(const char* fact) {
  Query query(m_database.Prepare("SELECT value FROM store WHERE name=?"));
  return query.IsGood() && query.Bind(std::string_view(fact)).Next() ? std::string(query.Text(0))
                                                                     : std::string();
}

double StoreFile::Number(const char* fact, double otherwise) {
  Query query(m_database.Prepare("SELECT value FROM store WHERE name=?"));
  if (!query.IsGood() || !query.Bind(std::string_view(fact)).Next()) return otherwise;
  const int type = sqlite3_column_type(query.Row(), 0);
  return type == SQLITE_INTEGER || type == SQLITE_FLOAT ? sqlite3_column_double(query.Row(), 0) : otherwise;
}

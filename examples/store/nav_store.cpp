// The store as a whole, whole types, and records by key.
#include "store/nav_store.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <limits>

#include "store/store_file.h"
#include "store/text_1252.h"

namespace {

bool Matches(const std::string& folded, const std::string& text, K7NavData::K7TextSearchFlags flags) {
  switch (flags) {
    case K7NavData::SEARCH_PREFIX:
      return folded.starts_with(text);
    case K7NavData::SEARCH_ANYWHERE:
      return folded.find(text) != std::string::npos;
    default:
      return folded == text;
  }
}

// The column of a field: by its name, or by its place where several fields share one.
const Column* ColumnOf(const TypeTable& table, const char* field) {
  const int index = K7NavData::GetFieldIndex(table.type, field);
  K7NavFieldLayout layout;
  if (!K7NavData::GetFieldLayout(table.type, index, layout)) return nullptr;
  if (const Column* named = table.Find(SnakeCase(field))) return named;
  for (const Column& column : table.columns) {
    if (column.at == layout.at && column.storage == layout.storage) return &column;
  }
  return nullptr;
}

// A fact that is a whole number.
template <class T>
T Whole(StoreFile& file, const char* fact) {
  constexpr double LOW = std::numeric_limits<T>::min(), HIGH = std::numeric_limits<T>::max();
  return static_cast<T>(std::clamp(file.Number(fact, 0), LOW, HIGH));
}

bool IsOurs(K7NavData::StoreType_t type, int store) { return type == K7NavData::STORE_NAVDATA && store == 0; }

}  // namespace

NavStore::NavStore() = default;
NavStore::~NavStore() = default;

int NavStore::Open(const char* path) {
  Close();
  if (!path) return K7_ERR_BAD_ARGUMENT;
  int code;
  m_file = StoreFile::Open(path, code);
  return code;
}

void NavStore::Close() { m_file.reset(); }
bool NavStore::IsOpen() const { return m_file != nullptr; }

K7NavQueryResult* NavStore::AllQuery(K7NavType type) {
  return m_file ? ResultOf(*m_file, m_file->Select(type, "ORDER BY t.idx")) : nullptr;
}

K7NavQueryResult* NavStore::AllQuery(K7NavType type, const char* text, const char** fields,
                                     K7TextSearchFlags flags) {
  if (!m_file || !text || !fields) return nullptr;
  std::string columns;
  for (; *fields; fields++) {
    if (const Column* column = ColumnOf(TableOf(type), *fields)) columns += ",\"" + column->name + "\"";
  }
  if (columns.empty()) return nullptr;
  const std::string wanted = Folded1252(text);
  std::vector<K7NavKey> keys;
  const bool good = m_file->Scan(type, "idx" + columns, [&](const Query& row) {
    bool matches = false;
    for (int i = 1; i < sqlite3_column_count(row.Row()) && !matches; i++) {
      const bool absent = sqlite3_column_type(row.Row(), i) == SQLITE_NULL;
      matches = !absent && Matches(Folded1252(Text1252(row.Text(i))), wanted, flags);
    }
    if (matches) keys.emplace_back(static_cast<uint32_t>(row.Integer(0)), type);
  });
  return good ? ResultOf(*m_file, std::move(keys)) : nullptr;
}

int NavStore::GetCount(K7NavType type) { return m_file ? std::max(0, m_file->Count(type)) : 0; }

const K7NavRec* NavStore::GetRec(const K7NavKey& key) { return m_file ? m_file->Keep(key) : nullptr; }

K7NavQueryResult* NavStore::KeyQuery(const K7NavKeyArray& keys) {
  if (!m_file) return nullptr;
  std::vector<K7NavKey> wanted;
  wanted.reserve(static_cast<size_t>(keys.Count()));
  for (int i = 0; i < keys.Count(); i++) wanted.push_back(keys[i]);
  return ResultOf(*m_file, std::move(wanted));
}

void NavStore::FreeRecs() {
  if (m_file) m_file->Free();
}

int NavStore::GetEffectivity(StoreType_t type, int store, unsigned* from, unsigned* until, const char*) {
  if (!m_file || !IsOurs(type, store)) return K7_ERR_NOT_FOUND;
  if (from) *from = Whole<unsigned>(*m_file, "from");
  if (until) *until = Whole<unsigned>(*m_file, "until");
  return K7_OK;
}

int NavStore::GetActiveStore(StoreType_t type, int* store) {
  if (!m_file || !IsOurs(type, 0)) return K7_ERR_NOT_FOUND;
  if (store) *store = 0;
  return K7_OK;
}

int NavStore::GetNumStores(StoreType_t type, int* count, const char*) {
  if (count) *count = m_file && IsOurs(type, 0) ? 1 : 0;
  return K7_OK;
}

int NavStore::SetActiveStore(StoreType_t type, int store) {
  return m_file && IsOurs(type, store) ? K7_OK : K7_ERR_NOT_FOUND;
}

int NavStore::GetDataCycle(StoreType_t type, int store, int* cycle, int* revision) {
  if (!m_file || !IsOurs(type, store)) return K7_ERR_NOT_FOUND;
  if (cycle) *cycle = Whole<int>(*m_file, "cycle");
  if (revision) *revision = Whole<int>(*m_file, "revision");
  return K7_OK;
}

K7NavRec* NavStore::CopyRec(K7NavRec* rec) { return m_file && rec ? m_file->Copy(*rec) : nullptr; }

K7ChartRect NavStore::GetExtent() {
  const K7ChartRect none;
  if (!m_file) return none;
  return {m_file->Number("north", none.North()), m_file->Number("south", none.South()),
          m_file->Number("east", none.East()), m_file->Number("west", none.West())};
}

int NavStore::GetSource(K7String& out) {
  if (!m_file) return K7_ERR_NOT_INITIALIZED;
  out.Clear();
  return out += Text1252(m_file->Text("source")).c_str();
}

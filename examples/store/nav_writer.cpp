#include "store/nav_writer.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "store/airway_network.h"
#include "store/database.h"
#include "store/place.h"
#include "store/relations.h"
#include "store/row.h"
#include "store/text_1252.h"

namespace {

std::string CreateTable(const TypeTable& table) {
  std::string sql = "CREATE TABLE \"" + table.name + "\"(idx INTEGER PRIMARY KEY,record_notes TEXT";
  for (const Column& column : table.columns) {
    sql += ",\"" + column.name + "\"";
    switch (static_cast<int>(column.storage)) {
      case K7STORE_CHAR:
      case K7STORE_TEXT:
      case K7STORE_POINTER:
        sql += column.name == "ident" ? " TEXT COLLATE NOCASE" : " TEXT";
        break;
      case K7STORE_FIXED_DEGREES:
      case K7STORE_FLOAT:
        sql += " REAL";
        break;
      case K7STORE_BYTES:
        sql += " BLOB";
        break;
      default:
        sql += column.scale == 1.0 ? " INTEGER" : " REAL";
    }
  }
  return sql + ")";
}

std::string InsertRow(const TypeTable& table) {
  std::string sql = "REPLACE INTO \"" + table.name + "\" VALUES(?,?";
  for (size_t i = 0; i < table.columns.size(); i++) sql += ",?";
  return sql + ")";
}

}  // namespace

struct NavWriter::State {
  std::string path;
  std::string part;
  Database database;
  std::array<uint32_t, K7NAV_TYPE_COUNT> counts = {};
  std::string problem;  // the first
  K7ChartRect extent;

  std::string source;
  int cycle = 0, revision = 0;
  unsigned from = 0, until = 0;

  bool Fail(const std::string& what) {
    if (problem.empty()) problem = what;
    return false;
  }
  bool Run(const std::string& sql) { return database.Run(sql) || Fail(part + ": " + database.Message()); }
  bool Begin();
  bool Write(const TypeTable& table, const K7NavRec& rec);
  bool AddPlaces(const TypeTable& table);
  bool AddNetwork(const TypeTable& table, const std::string& network);
  bool AddIndexes(const TypeTable& table);
  bool AddFacts();
  bool IsInPlace();
  void Remove();
  bool Replace();
};

// The file is ours alone from here on, whatever a process that died left in it: whoever else begins meets the
// lock, and only who holds it removes the file or renames it. Nothing is rolled back, ever, so there is no
// journal.
bool NavWriter::State::Begin() {
  if (!database.Open(part, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) return false;
  // Else what has no header is refused before it is locked.
  sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
  return database.Run(
             "PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=OFF; PRAGMA cache_size=-65536;"
             "PRAGMA temp_store=FILE; BEGIN EXCLUSIVE") &&
         sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_RESET_DATABASE, 0, nullptr) == SQLITE_OK &&
         IsInPlace();
}

bool NavWriter::State::Write(const TypeTable& table, const K7NavRec& rec) {
  sqlite3_stmt* statement = database.Prepare(InsertRow(table));
  if (!statement) return Fail(part + ": " + database.Message());
  Query query(statement);
  query.Bind(static_cast<int64_t>(rec.key.Idx()));
  const bool bound = BindRow(table, rec, statement, 2);
  query.Next();
  return (bound && query.IsGood()) || Fail(part + ": " + database.Message());
}

bool NavWriter::State::AddPlaces(const TypeTable& table) {
  if (table.place == Place::NONE) return true;
  const std::string area = "\"" + table.AreaName() + "\"";
  if (!Run("CREATE VIRTUAL TABLE " + area + " USING rtree_i32(id,west,east,south,north)")) return false;
  sqlite3_stmt* insert = database.Prepare("INSERT INTO " + area + " VALUES(?,?,?,?,?)");
  sqlite3_stmt* select =
      database.Prepare("SELECT idx," + table.ColumnList() + " FROM \"" + table.name + "\"");
  if (!insert || !select) return Fail(part + ": " + database.Message());
  const auto add = [&](int64_t id, const Box& box) {
    Query query(insert);
    for (const int64_t value :
         {id, int64_t(box.west), int64_t(box.east), int64_t(box.south), int64_t(box.north)})
      query.Bind(value);
    query.Next();
    return query.IsGood() || Fail(part + ": " + database.Message());
  };
  const bool isAirway = std::ranges::find(AIRWAY_TYPES, table.type) != std::end(AIRWAY_TYPES);
  std::string network;
  Arena arena;
  Query rows(select);
  while (rows.Next()) {
    arena.Clear();
    const int64_t id = rows.Integer(0);
    const K7NavRec& rec = *ReadRow(table, static_cast<uint32_t>(id), select, 1, arena);
    if (isAirway) AppendToNetwork(static_cast<const K7AirwaySeg&>(rec), network);
    const auto box = BoundsOf(table, rec);
    if (!box) continue;
    extent.BoundingUnion(extent, box->Degrees());
    constexpr int32_t HALF_TURN = 180 * (1 << 23);
    Box first = *box, second = *box;
    if (box->east < box->west) first.east = HALF_TURN, second.west = -HALF_TURN;
    if (!add(id, first) || (box->east < box->west && !add(id + SECOND_HALF, second))) return false;
  }
  if (!rows.IsGood()) return Fail(part + ": " + database.Message());
  return !isAirway || AddNetwork(table, network);
}

bool NavWriter::State::AddNetwork(const TypeTable& table, const std::string& network) {
  if (!Run("CREATE TABLE IF NOT EXISTS airway_network(type INTEGER PRIMARY KEY,segments BLOB)")) return false;
  sqlite3_stmt* insert = database.Prepare("INSERT INTO airway_network VALUES(?,?)");
  if (!insert) return Fail(part + ": " + database.Message());
  Query query(insert);
  query.Bind(int64_t{table.type}).BindBytes(network).Next();
  return query.IsGood() || Fail(part + ": " + database.Message());
}

bool NavWriter::State::AddIndexes(const TypeTable& table) {
  std::string sql;
  for (const std::string& column : IndexesOf(table)) {
    sql +=
        "CREATE INDEX \"" + table.name + "_" + column + "\" ON \"" + table.name + "\"(\"" + column + "\");";
  }
  return Run(sql);
}

bool NavWriter::State::AddFacts() {
  sqlite3_stmt* insert = nullptr;
  if (Run("CREATE TABLE store(name TEXT PRIMARY KEY,value)"))
    insert = database.Prepare("INSERT INTO store VALUES(?,?)");
  if (!insert) return Fail(part + ": " + database.Message());
  const auto add = [&](const char* name, auto value) {
    Query query(insert);
    query.Bind(std::string_view(name)).Bind(value).Next();
    return query.IsGood() || Fail(part + ": " + database.Message());
  };
  return add("source", std::string_view(Utf8Of1252(source))) && add("cycle", int64_t(cycle)) &&
         add("revision", int64_t(revision)) && add("from", int64_t(from)) && add("until", int64_t(until)) &&
         add("north", extent.North()) && add("south", extent.South()) && add("east", extent.East()) &&
         add("west", extent.West());
}

// False when the one who held the lock before us put the file in its place, or removed it.
bool NavWriter::State::IsInPlace() {
  int moved = 0;
  sqlite3_file_control(database.Handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return !moved || Fail(part + ": taken by another process");
}

// Before the lock goes; where a file cannot be removed while it is open, at once behind it.
void NavWriter::State::Remove() {
  std::error_code error;
  std::filesystem::remove(part, error);
  database.Close();
  if (error) std::filesystem::remove(part, error);
}

// The same. Whoever reads meanwhile has the old one or the new one, whole.
bool NavWriter::State::Replace() {
  std::error_code error;
  std::filesystem::rename(part, path, error);
  if (error == std::errc::permission_denied) {
    database.Close();
    std::filesystem::rename(part, path, error);
  }
  return !error || Fail(path + ": " + error.message());
}

NavWriter::NavWriter() = default;

NavWriter::~NavWriter() {
  if (m_state) m_state->Remove();
}

bool NavWriter::Open(const std::string& path, std::string& problem) {
  auto state = std::make_unique<State>();
  state->path = path;
  state->part = path + ".part";
  std::error_code error;
  bool good = state->Begin();
  if (good && std::filesystem::file_size(state->part, error) > 0) {
    state->Remove();
    good = state->Begin();
  }
  if (!good) {
    problem = sqlite3_errcode(state->database.Handle()) == SQLITE_BUSY
                  ? path + ": being written by another process"
              : state->problem.empty() ? state->part + ": " + state->database.Message()
                                       : state->problem;
    return false;
  }
  m_state = std::move(state);
  return true;
}

K7NavKey NavWriter::Add(K7NavRec& rec) {
  const TypeTable& table = TableOf(rec.Type());
  if (!m_state || table.name.empty() || !m_state->problem.empty()) return {};
  uint32_t& count = m_state->counts[table.type];
  if (count == 0 && !m_state->Run(CreateTable(table))) return {};
  rec.key = K7NavKey(count, table.type);
  if (!m_state->Write(table, rec)) return {};
  count++;
  return rec.key;
}

bool NavWriter::Update(const K7NavRec& rec) {
  return rec.key.Idx() < Count(rec.Type()) && m_state->problem.empty() &&
         m_state->Write(TableOf(rec.Type()), rec);
}

uint32_t NavWriter::Count(K7NavType type) const {
  return m_state && type < K7NAV_TYPE_COUNT ? m_state->counts[type] : 0;
}

void NavWriter::SetSource(const std::string& text, int cycle, int revision, unsigned from, unsigned until) {
  if (!m_state) return;
  m_state->source = text;
  m_state->cycle = cycle;
  m_state->revision = revision;
  m_state->from = from;
  m_state->until = until;
}

bool NavWriter::Finish(std::string& problem) {
  problem = "nothing is being written";
  if (!m_state) return false;
  State& state = *m_state;
  bool good = state.problem.empty();
  for (uint32_t type = 0; type < K7NAV_TYPE_COUNT && good; type++) {
    const TypeTable& table = TableOf(static_cast<K7NavType>(type));
    if (state.counts[type]) good = state.AddPlaces(table) && state.AddIndexes(table);
  }
  good = good && state.AddFacts() &&
         state.Run("PRAGMA application_id=" + std::to_string(APPLICATION_ID) +
                   "; PRAGMA user_version=" + std::to_string(STORE_VERSION) + "; COMMIT") &&
         state.Replace();
  problem = state.problem;
  if (!good) return false;
  m_state.reset();
  return true;
}

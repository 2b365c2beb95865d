#include "web/tile_file.h"

#include "web/content_key.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>

namespace {

constexpr const char* SCHEMA =
    "PRAGMA application_id=0x4D504258;"  // as the format has it
    "CREATE TABLE metadata(name TEXT,value TEXT);"
    "CREATE UNIQUE INDEX metadata_name ON metadata(name);"
    "CREATE TABLE images(tile_id INTEGER PRIMARY KEY,tile_data BLOB);"
    "CREATE TABLE map(zoom_level INTEGER,tile_column INTEGER,tile_row INTEGER,tile_id INTEGER,"
    "PRIMARY KEY(zoom_level,tile_column,tile_row)) WITHOUT ROWID;"
    "CREATE VIEW tiles AS SELECT map.zoom_level AS zoom_level,map.tile_column AS tile_column,"
    "map.tile_row AS tile_row,images.tile_data AS tile_data FROM map JOIN images ON "
    "images.tile_id=map.tile_id;";

Query& BindTile(Query& query, const TileId& tile) {
  return query.Bind(int64_t{tile.z}).Bind(int64_t{tile.x}).Bind(int64_t{(1 << tile.z) - 1 - tile.y});
}

std::string Said(const TileId& tile) {
  return std::to_string(tile.z) + "/" + std::to_string(tile.x) + "/" + std::to_string(tile.y);
}

bool ReadFacts(Database& database, TileFacts& facts) {
  static constexpr size_t MOST_FACTS = 1000;
  Query query(database.Prepare("SELECT name,value FROM metadata"));
  while (query.Next() && facts.size() < MOST_FACTS) facts.emplace_back(query.Text(0), query.Text(1));
  return query.IsGood();
}

// Null for none of that name.
const std::string* FindFact(const TileFacts& facts, const std::string& name) {
  for (const auto& [known, value] : facts)
    if (known == name) return &value;
  return nullptr;
}

}  // namespace

std::string FactsDiffer(const TileFacts& these, const TileFacts& those) {
  for (const TileFacts* const facts : {&those, &these})
    for (const auto& [name, ignored] : *facts) {
      const std::string* const one = FindFact(these, name);
      const std::string* const other = FindFact(those, name);
      if (one && other && *one == *other) continue;
      const std::string said = name.starts_with("k7chart_") ? name.substr(8) : name;
      return said + ": " + (one ? *one : "none") + ", not " + (other ? *other : "none");
    }
  return {};
}

std::string TileWriter::Failed() {
  sqlite3* const handle = m_database.Handle();
  const int reason = handle ? sqlite3_system_errno(handle) : 0;
  const bool isSystems = handle && sqlite3_errcode(handle) != SQLITE_FULL && reason != 0;
  return "cannot write " + m_part + ": " + (isSystems ? std::strerror(reason) : m_database.Message());
}

// The file is this process's alone from here on: another one meets the lock. It is held through all commits.
std::string TileWriter::Begin() {
  if (!m_database.Open(m_part, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) return Failed();
  sqlite3_db_config(m_database.Handle(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(m_database.Handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  if (!m_database.Run("PRAGMA locking_mode=EXCLUSIVE;PRAGMA cache_size=-65536;BEGIN EXCLUSIVE")) {
    switch (sqlite3_errcode(m_database.Handle())) {
      case SQLITE_BUSY:
        return m_path + " is being written by another process";
      case SQLITE_NOTADB:
        return m_part + " is no chart that was begun: remove it, or name another --output";
      default:
        return Failed();
    }
  }
  int moved = 0;
  sqlite3_file_control(m_database.Handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved ? m_path + " has just been written by another process" : std::string();
}

std::string TileWriter::Make(const TileFacts& facts) {
  if (!m_database.Run(SCHEMA)) return Failed();
  for (const auto& [name, value] : facts) {
    Query query(m_database.Prepare("INSERT INTO metadata VALUES(?,?)"));
    query.Bind(std::string_view(name)).Bind(std::string_view(value)).Next();
    if (!query.IsGood()) return Failed();
  }
  return {};
}

std::string TileWriter::Compare(const TileFacts& facts) {
  const std::string remedy = ": remove it, or name another --output";
  TileFacts known;
  if (!ReadFacts(m_database, known) ||
      !m_database.Prepare("SELECT map.zoom_level,tile_data FROM map JOIN images USING(tile_id)"))
    return m_part + " is no chart that was begun" + remedy;
  const std::string difference = FactsDiffer(known, facts);
  return difference.empty() ? std::string()
                            : m_part + " was begun with other options or data (" + difference + ")" + remedy;
}

std::string TileWriter::Open(const std::string& path, const TileFacts& facts) {
  m_path = path;
  m_part = path + ".part";
  m_next = Clock::now();
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    return path + " is no file";
  if (std::string problem = Begin(); !problem.empty()) return problem;
  bool isNew = false;
  {
    Query query(m_database.Prepare("SELECT count(*) FROM sqlite_schema"));
    isNew = query.Next() && query.Integer(0) == 0;
  }
  std::string problem = isNew ? Make(facts) : Compare(facts);
  return problem.empty() ? Keep() : problem;
}

int64_t TileWriter::Count(const char* table) {
  Query query(m_database.Prepare(std::string("SELECT count(*) FROM ") + table));
  return query.Next() ? query.Integer(0) : 0;
}

std::optional<int64_t> TileWriter::ImageOf(const TileId& tile) {
  Query query(
      m_database.Prepare("SELECT tile_id FROM map WHERE zoom_level=? AND tile_column=? AND tile_row=?"));
  return BindTile(query, tile).Next() ? std::optional(query.Integer(0)) : std::nullopt;
}

bool TileWriter::Has(const TileId& tile) { return ImageOf(tile).has_value(); }

// Two pictures of one key are told apart by their bytes: the second has the next key that is free.
std::string TileWriter::Store(std::string_view png, int64_t& image) {
  for (image = static_cast<int64_t>(ContentKey(png));;
       image = image == std::numeric_limits<int64_t>::max() ? 0 : image + 1) {
    Query query(m_database.Prepare("SELECT tile_data FROM images WHERE tile_id=?"));
    if (!query.Bind(image).Next()) {
      if (!query.IsGood()) return Failed();
      break;
    }
    if (query.Bytes(0) == png) return {};
  }
  Query query(m_database.Prepare("INSERT INTO images VALUES(?,?)"));
  query.Bind(image).BindBytes(png).Next();
  return query.IsGood() ? std::string() : Failed();
}

std::string TileWriter::Add(const TileId& tile, std::string_view png) {
  int64_t image = 0;
  if (std::string problem = Store(png, image); !problem.empty()) return problem;
  if (const std::optional<int64_t> known = ImageOf(tile))
    return *known == image ? std::string() : "there are two tiles " + Said(tile) + " that differ";
  Query query(m_database.Prepare("INSERT INTO map VALUES(?,?,?,?)"));
  BindTile(query, tile).Bind(image).Next();
  return query.IsGood() ? std::string() : Failed();
}

std::string TileWriter::Keep() {
  if (Clock::now() < m_next) return {};
  if (!m_database.Run("COMMIT;BEGIN EXCLUSIVE")) return Failed();
  m_next = Clock::now() + std::chrono::seconds(1);
  return {};
}

std::string TileWriter::Finish() {
  if (!m_database.Run("COMMIT;PRAGMA journal_mode=DELETE")) return Failed();
  // Before the lock goes; where a file has no other name while it is open, behind it.
  std::error_code error;
  std::filesystem::rename(m_part, m_path, error);
  m_database.Close();
  if (error == std::errc::permission_denied) std::filesystem::rename(m_part, m_path, error);
  return error ? "cannot write " + m_path + ": " + error.message() : std::string();
}

std::string TileReader::Open(const std::string& path) {
  m_path = path;
  m_facts.clear();
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return "there is no " + path;
  if (!m_database.Open(path, SQLITE_OPEN_READONLY))
    return "cannot read " + path + ": " + m_database.Message();
  if (!ReadFacts(m_database, m_facts) ||
      !m_database.Prepare("SELECT zoom_level,tile_column,tile_row,tile_data FROM tiles"))
    return sqlite3_errcode(m_database.Handle()) == SQLITE_BUSY ? path + " is being written"
                                                               : path + " is no file of tiles";
  return {};
}

std::string TileReader::Fact(const std::string& name) const {
  const std::string* const value = FindFact(m_facts, name);
  return value ? *value : std::string();
}

std::string TileReader::Visit(
    const std::function<std::string(const TileId& tile, std::string_view png)>& visit) {
  Query query(m_database.Prepare("SELECT zoom_level,tile_column,tile_row,tile_data FROM tiles"));
  while (query.Next()) {
    const int64_t z = query.Integer(0), x = query.Integer(1), row = query.Integer(2);
    const int64_t last = z >= 0 && z <= MOST_ZOOM ? (int64_t{1} << z) - 1 : -1;
    if (x < 0 || x > last || row < 0 || row > last) return m_path + " has a tile that is not on the map";
    const TileId tile{static_cast<int>(z), static_cast<int>(x), static_cast<int>(last - row)};
    if (std::string problem = visit(tile, query.Bytes(3)); !problem.empty()) return problem;
  }
  return query.IsGood() ? std::string() : "cannot read " + m_path + ": " + m_database.Message();
}

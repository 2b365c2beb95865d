#include "store/database.h"

Query::~Query() {
  if (!m_statement) return;
  sqlite3_reset(m_statement);
  sqlite3_clear_bindings(m_statement);
}

Query& Query::Bind(int64_t value) {
  if (sqlite3_bind_int64(m_statement, ++m_bound, value) != SQLITE_OK) m_state = SQLITE_ERROR;
  return *this;
}

Query& Query::Bind(double value) {
  if (sqlite3_bind_double(m_statement, ++m_bound, value) != SQLITE_OK) m_state = SQLITE_ERROR;
  return *this;
}

Query& Query::Bind(std::string_view utf8) {
  if (sqlite3_bind_text(m_statement, ++m_bound, utf8.data(), static_cast<int>(utf8.size()),
                        SQLITE_TRANSIENT) != SQLITE_OK)
    m_state = SQLITE_ERROR;
  return *this;
}

Query& Query::BindBytes(std::string_view bytes) {
  if (sqlite3_bind_blob64(m_statement, ++m_bound, bytes.data(), bytes.size(), SQLITE_STATIC) != SQLITE_OK)
    m_state = SQLITE_ERROR;
  return *this;
}

bool Query::Next() {
  if (!IsGood() || m_state == SQLITE_DONE) return false;
  m_state = sqlite3_step(m_statement);
  return m_state == SQLITE_ROW;
}

int64_t Query::Integer(int column) const {
  return sqlite3_column_type(m_statement, column) == SQLITE_INTEGER
             ? sqlite3_column_int64(m_statement, column)
             : 0;
}

std::string_view Query::Text(int column) const {
  if (sqlite3_column_type(m_statement, column) == SQLITE_NULL) return {};
  const void* text = sqlite3_column_text(m_statement, column);
  if (!text) return {};
  return {static_cast<const char*>(text), static_cast<size_t>(sqlite3_column_bytes(m_statement, column))};
}

std::string_view Query::Bytes(int column) const {
  if (sqlite3_column_type(m_statement, column) != SQLITE_BLOB) return {};
  const void* const bytes = sqlite3_column_blob(m_statement, column);
  if (!bytes) return {};
  return {static_cast<const char*>(bytes), static_cast<size_t>(sqlite3_column_bytes(m_statement, column))};
}

bool Database::Open(const std::string& path, int flags) {
  Close();
  sqlite3* handle = nullptr;
  const int state = sqlite3_open_v2(path.c_str(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  m_handle.reset(handle);
  if (state != SQLITE_OK) return false;
  // Records are small, and what comes from outside is not believed. A database that is being made has no need
  // of it, and would have to keep a journal.
  if (!(flags & SQLITE_OPEN_READONLY)) return true;
  sqlite3_busy_timeout(handle, 1000);  // a new one is locked until its writer lets go of it
  sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, 1 << 24);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  return true;
}

void Database::Close() {
  m_statements.clear();
  m_handle.reset();
}

bool Database::Run(const std::string& sql) {
  return m_handle && sqlite3_exec(m_handle.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

sqlite3_stmt* Database::Prepare(const std::string& sql) {
  const auto found = m_statements.find(sql);
  if (found != m_statements.end()) return found->second.get();
  sqlite3_stmt* statement = nullptr;
  if (!m_handle || sqlite3_prepare_v3(m_handle.get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement,
                                      nullptr) != SQLITE_OK)
    return nullptr;
  m_statements[sql].reset(statement);
  return statement;
}

// Database: one connection to SQLite with its prepared statements.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

/// A statement in use: bound, stepped through and given back when it goes out of scope. One text is used by
/// one Query at a time.
class Query {
 public:
  explicit Query(sqlite3_stmt* statement) : m_statement(statement) {}
  ~Query();
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  /// Binds the next parameter.
  Query& Bind(int64_t value);
  Query& Bind(double value);
  Query& Bind(std::string_view utf8);  ///< copied
  /// Bytes as they are, which stay the caller's until the statement is given back.
  Query& BindBytes(std::string_view bytes);
  /// The next row; false at the end and on failure.
  bool Next();
  /// True when everything since the beginning went well.
  bool IsGood() const {
    return m_statement && (m_state == SQLITE_OK || m_state == SQLITE_ROW || m_state == SQLITE_DONE);
  }

  sqlite3_stmt* Row() const { return m_statement; }
  /// 0, or nothing, for a column that is not of that type.
  int64_t Integer(int column) const;
  std::string_view Text(int column) const;
  /// Valid until the next row.
  std::string_view Bytes(int column) const;

 private:
  sqlite3_stmt* m_statement;
  int m_state = SQLITE_OK;
  int m_bound = 0;
};

class Database {
 public:
  /// True when it could be opened; nothing is read yet.
  bool Open(const std::string& path, int flags);
  void Close();
  /// Runs statements without results.
  bool Run(const std::string& sql);
  /// The statement of a text, kept for the next time; null when the database does not understand it.
  sqlite3_stmt* Prepare(const std::string& sql);
  sqlite3* Handle() const { return m_handle.get(); }
  std::string Message() const { return m_handle ? sqlite3_errmsg(m_handle.get()) : "no memory"; }

 private:
  struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  std::unique_ptr<sqlite3, Closer> m_handle;
  std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Closer>> m_statements;
};

/// What tells our files from others, and their version.
inline constexpr int APPLICATION_ID = 0x4B374E56;
inline constexpr int STORE_VERSION = 1;

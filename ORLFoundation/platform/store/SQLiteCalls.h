/// The calls to the database library that a repair of a store makes, one function a call, so that a
/// test can answer them.
#pragma once

#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace ORLFoundation::internal::store {

/// What the library answers where a call succeeds, and where a step gives a row.
inline constexpr int kSQLiteDone = 0, kSQLiteRow = 100;

class SQLiteCalls {
 public:
  SQLiteCalls() = default;
  virtual ~SQLiteCalls() = default;
  SQLiteCalls(const SQLiteCalls&) = delete;
  SQLiteCalls& operator=(const SQLiteCalls&) = delete;

  /// `sqlite3_open` of a path or a file address, whatever the library was configured for. A handle
  /// is given on success alone.
  [[nodiscard]] virtual int open(const std::string& text, sqlite3*& database);
  /// `sqlite3_prepare`. Without a statement on failure.
  [[nodiscard]] virtual int prepare(sqlite3* database, const char* sql, int length,
                                    sqlite3_stmt*& statement);
  [[nodiscard]] virtual int step(sqlite3_stmt* statement);
  [[nodiscard]] virtual int columnCount(sqlite3_stmt* statement);
  /// null for nil; valid until the statement is finished.
  [[nodiscard]] virtual const char* columnText(sqlite3_stmt* statement, int column);
  virtual int finalize(sqlite3_stmt* statement);
  virtual int close(sqlite3* database);

  /// Those that are in place.
  [[nodiscard]] static std::shared_ptr<SQLiteCalls> current();
  /// Replaces them and gives back those before; null for the library's own.
  static std::shared_ptr<SQLiteCalls> exchange(std::shared_ptr<SQLiteCalls> calls);
};

}  // namespace ORLFoundation::internal::store

#include <ORLFoundation/platform/store/SQLiteCalls.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <sqlite3.h>

#include <utility>

namespace ORLFoundation::internal::store {
namespace {

constinit base::Replaceable<SQLiteCalls> places([]() -> std::shared_ptr<SQLiteCalls> {
  return std::make_shared<SQLiteCalls>();
});

static_assert(kSQLiteDone == SQLITE_OK && kSQLiteRow == SQLITE_ROW);

}  // namespace

int SQLiteCalls::open(const std::string& text, sqlite3*& database) {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI;
  const int result = ::sqlite3_open_v2(text.c_str(), &database, kFlags, nullptr);
  // The library gives a handle to a failure too, which nobody would close.
  if (result != SQLITE_OK) ::sqlite3_close(std::exchange(database, nullptr));
  return result;
}

int SQLiteCalls::prepare(sqlite3* database, const char* sql, int length, sqlite3_stmt*& statement) {
  return ::sqlite3_prepare_v2(database, sql, length, &statement, nullptr);
}

int SQLiteCalls::step(sqlite3_stmt* statement) { return ::sqlite3_step(statement); }

int SQLiteCalls::columnCount(sqlite3_stmt* statement) { return ::sqlite3_column_count(statement); }

const char* SQLiteCalls::columnText(sqlite3_stmt* statement, int column) {
  return reinterpret_cast<const char*>(::sqlite3_column_text(statement, column));
}

int SQLiteCalls::finalize(sqlite3_stmt* statement) { return ::sqlite3_finalize(statement); }

int SQLiteCalls::close(sqlite3* database) { return ::sqlite3_close(database); }

std::shared_ptr<SQLiteCalls> SQLiteCalls::current() { return places.current(); }

std::shared_ptr<SQLiteCalls> SQLiteCalls::exchange(std::shared_ptr<SQLiteCalls> calls) {
  return places.exchange(std::move(calls));
}

}  // namespace ORLFoundation::internal::store

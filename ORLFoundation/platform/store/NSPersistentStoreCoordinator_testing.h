/// Object stores in SQLite for tests, made by the database library itself.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <sqlite3.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace ORLFoundation {

/// A database that throws where a statement fails.
class StoreDatabase {
 public:
  explicit StoreDatabase(const std::string& path) {
    sqlite3* database = nullptr;
    const int result = ::sqlite3_open(path.c_str(), &database);
    database_.reset(database);
    check(result);
  }
  void run(const std::string& sql) {
    check(::sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr));
  }
  /// The first column of the first row; "" for no row and for nil.
  [[nodiscard]] std::string text(const std::string& sql) {
    std::string text;
    const auto keep = [](void* kept, int, char** values, char**) {
      if (values[0] != nullptr) *static_cast<std::string*>(kept) = values[0];
      return 0;
    };
    check(::sqlite3_exec(database_.get(), sql.c_str(), keep, &text, nullptr));
    return text;
  }
  [[nodiscard]] int number(const std::string& sql) { return std::stoi(text(sql)); }

 private:
  struct Closer {
    void operator()(sqlite3* database) const { ::sqlite3_close(database); }
  };
  void check(int result) const {
    if (result != SQLITE_OK) throw std::runtime_error(::sqlite3_errmsg(database_.get()));
  }

  std::unique_ptr<sqlite3, Closer> database_;
};

inline constexpr const char* kStoreIdentifier = "0F2D9A1C-5B7E-4C63-9A50-1B2C3D4E5F60";

/// A blob as a literal of SQL; NULL for nil.
inline std::string blobLiteral(const std::optional<NSData>& data) {
  if (!data) return "NULL";
  return "x'" + internal::base::hexText(data->text()) + "'";
}

inline std::optional<NSData> storePlist() {
  return NSPropertyListSerialization::dataWithPropertyList(
      NSDictionary::dictionaryWithEntries(
          {{"NSStoreType", "SQLite"}, {"NSStoreModelVersionHashesVersion", 3}, {"Owner", "Ann"}}),
      NSPropertyListBinaryFormat_v1_0, 0);
}

/// Makes a store whose journal is in a mode, with the tables that all stores have.
inline void makeStore(const std::string& path, const std::string& mode,
                      const std::optional<NSData>& plist = storePlist()) {
  StoreDatabase store(path);
  store.run(
      "PRAGMA journal_mode=" + mode +
      "; CREATE TABLE Z_METADATA (Z_VERSION INTEGER PRIMARY KEY, Z_UUID VARCHAR(255), Z_PLIST "
      "BLOB); CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER PRIMARY KEY, Z_NAME VARCHAR, Z_SUPER "
      "INTEGER, Z_MAX INTEGER); CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB);"
      "INSERT INTO Z_METADATA VALUES (1, '" +
      std::string(kStoreIdentifier) + "', " + blobLiteral(plist) + ")");
}

}  // namespace ORLFoundation

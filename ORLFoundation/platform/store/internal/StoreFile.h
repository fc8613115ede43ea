/// A store file that is open for reading alone.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::store {

class StoreFile {
 public:
  explicit StoreFile(std::string path) : path_(std::move(path)) {}
  /// null with an error.
  [[nodiscard]] std::shared_ptr<NSDictionary> metadata(NSErrorSlot error);

 private:
  struct Closer {
    void operator()(sqlite3* database) const noexcept { ::sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const noexcept { ::sqlite3_finalize(statement); }
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Closer>;
  /// What the one row of metadata holds.
  struct Row {
    std::string identifier;
    std::optional<NSData> plist;
  };

  [[nodiscard]] bool looksLikeStore(NSErrorSlot error);
  [[nodiscard]] bool open(NSErrorSlot error);
  [[nodiscard]] Statement prepare(const char* sql, NSErrorSlot error);
  [[nodiscard]] bool hasTable(NSErrorSlot error);
  [[nodiscard]] std::optional<Row> row(NSErrorSlot error);
  bool failWithResult(int result, NSErrorSlot error) const;
  bool failAsOtherFormat(const std::string& reason, NSErrorSlot error) const;

  const std::string path_;
  /// In write-ahead mode without anything written ahead: nothing beside the file belongs to it.
  bool isSettled_ = false;
  std::unique_ptr<sqlite3, Closer> database_;
};

}  // namespace ORLFoundation::internal::store

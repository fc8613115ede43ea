/// Files that are read and replaced whole. All fail with an error of `NSPOSIXErrorDomain` that
/// names the path.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <optional>
#include <string>

namespace ORLFoundation::internal {

/// A folder that no one else changes meanwhile. Made, with those above it, when it is absent; for
/// the user alone.
class LockedFolder {
 public:
  /// Waits for whoever holds the lock.
  LockedFolder(const std::string& path, NSErrorSlot error);
  ~LockedFolder();
  LockedFolder(const LockedFolder&) = delete;
  LockedFolder& operator=(const LockedFolder&) = delete;

  [[nodiscard]] bool isLocked() const noexcept { return descriptor_ >= 0; }
  /// Brings the folder's list of names to the disk, as far as the file system can.
  void synchronize() const;

 private:
  int descriptor_ = -1;
};

struct FileContents {
  bool exists = false;
  NSData data;
};

/// nil when the file exists and cannot be read, or is larger than 64 MB.
[[nodiscard]] std::optional<FileContents> readWholeFile(const std::string& path, NSErrorSlot error);
/// Writes the bytes beside the path, brings them to the disk, and moves the file over the path.
[[nodiscard]] bool replaceFile(const std::string& path, const NSData& data, NSErrorSlot error);
/// Moves a file to the first of "path.broken", "path.broken2", ... that is free.
[[nodiscard]] bool keepAside(const std::string& path, NSErrorSlot error);

}  // namespace ORLFoundation::internal

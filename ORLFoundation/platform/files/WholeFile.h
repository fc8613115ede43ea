/// Files that are read and replaced whole: whoever opens one at any time, after a crash too, finds
/// the old bytes or the new ones. All fail with an error of `NSPOSIXErrorDomain` that names the
/// path.
///
///     std::shared_ptr<const NSError> error;
///     if (!replaceFile(path, bytes, NewFileRights::Shared, &error)) report(*error);
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::files {

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

 private:
  int descriptor_ = -1;
};

struct FileContents {
  bool exists = false;
  NSData data;
};

/// nil when the file exists and cannot be read, or is larger than 64 MB.
[[nodiscard]] std::optional<FileContents> readWholeFile(const std::string& path, NSErrorSlot error);

/// Who may read a file that was not there before.
enum class NewFileRights : std::uint8_t {
  /// The user alone.
  Private,
  /// Whoever the process's mask lets.
  Shared,
};

/// Writes a file of a new name beside the path, brings it to the disk, moves it over the path, and
/// brings the folder's list of names to the disk, as far as the file system can. A file that is
/// replaced hands on its mode; behind a link the file that it leads to is replaced. Folders,
/// devices and pipes are refused. On failure the path keeps what it held and nothing else is left.
[[nodiscard]] bool replaceFile(const std::string& path, std::string_view bytes,
                               NewFileRights rights, NSErrorSlot error);

/// The same for a file that is not there yet: EEXIST, and nothing is changed, where something
/// stands at the path by the time that the bytes are on the disk.
[[nodiscard]] bool createFile(const std::string& path, std::string_view bytes, NewFileRights rights,
                              NSErrorSlot error);

/// The same as the first for contents that need a path to be written to. `write` gets that of an
/// empty file; it may write into it or put another in its place. What it throws passes through.
[[nodiscard]] bool replaceFile(const std::string& path,
                               const std::function<void(const std::string& temporaryPath)>& write,
                               NewFileRights rights, NSErrorSlot error);

/// Moves a file to the first of "path.broken", "path.broken2", ... that is free.
[[nodiscard]] bool keepAside(const std::string& path, NSErrorSlot error);

}  // namespace ORLFoundation::internal::files

/// The system calls by which files are looked at and changed, one function a call. Each asks
/// `allows` first, where a test refuses a call, changes the world between two calls, or ends the
/// process.
///
///     class FullDisk : public FileCalls {
///       bool allows(FileCall call, std::string_view) override {
///         if (call == FileCall::Write) errno = ENOSPC;
///         return call != FileCall::Write;
///       }
///     };
///
/// All answer -1, or false, with errno where they fail; interrupted ones are made again. A folder's
/// descriptor and a name stand for an item in it; no call follows a link at the name.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::files {

enum class FileCall : std::uint8_t {
  Open,
  OpenBeneath,
  Close,
  Status,
  ReadLink,
  List,
  Read,
  Write,
  CopyRange,
  Seek,
  Truncate,
  MakeFolder,
  MakeLink,
  Rename,
  Remove,
  SetMode,
  SetOwner,
  SetTimes,
  ListAttributes,
  GetAttribute,
  SetAttribute,
  Synchronize,
  Lock,
};

class FileCalls {
 public:
  FileCalls() = default;
  virtual ~FileCalls() = default;
  FileCalls(const FileCalls&) = delete;
  FileCalls& operator=(const FileCalls&) = delete;
  /// Those of the system, one object for all.
  [[nodiscard]] static const std::shared_ptr<FileCalls>& system();

  /// Follows a link at the path, unless the flags say otherwise. Descriptors are not inherited.
  [[nodiscard]] int open(int folder, const std::string& path, int flags, mode_t mode = 0);
  /// Opens what stands beneath a folder, "" for itself. A link anywhere on the way, and a way that
  /// leads out, are failures, whatever changes meanwhile.
  [[nodiscard]] int openBeneath(int folder, const std::string& path, int flags);
  bool close(int file);
  [[nodiscard]] bool status(int folder, const std::string& name, struct stat& status);
  [[nodiscard]] bool status(int file, struct stat& status);
  [[nodiscard]] std::optional<std::string> readLink(int folder, const std::string& name);
  /// The next records of an open folder, as `getdents64` gives them; 0 at the end.
  [[nodiscard]] ssize_t list(int folder, std::span<std::byte> records);
  [[nodiscard]] ssize_t read(int file, std::span<std::byte> bytes, off_t at);
  /// Writes all of the bytes.
  [[nodiscard]] bool write(int file, std::span<const std::byte> bytes, off_t at);
  /// Copies within the kernel; fewer bytes than asked for, 0 too, are no failure.
  [[nodiscard]] ssize_t copyRange(int from, int to, off_t at, std::size_t length);
  [[nodiscard]] off_t seek(int file, off_t at, int whence);
  [[nodiscard]] bool truncate(int file, off_t length);
  [[nodiscard]] bool makeFolder(int folder, const std::string& name, mode_t mode);
  [[nodiscard]] bool makeLink(int folder, const std::string& name, const std::string& target);
  /// `flags` are those of `renameat2`.
  [[nodiscard]] bool rename(int folder, const std::string& name, int toFolder,
                            const std::string& toName, unsigned flags = 0);
  /// `flags` are those of `unlinkat`.
  [[nodiscard]] bool remove(int folder, const std::string& name, int flags = 0);
  [[nodiscard]] bool setMode(int file, mode_t mode);
  /// Fails for a link.
  [[nodiscard]] bool setMode(int folder, const std::string& name, mode_t mode);
  [[nodiscard]] bool setOwner(int file, uid_t user, gid_t group);
  [[nodiscard]] bool setOwner(int folder, const std::string& name, uid_t user, gid_t group);
  /// Times of access and change, those of `status`.
  [[nodiscard]] bool setTimes(int file, const struct stat& status);
  [[nodiscard]] bool setTimes(int folder, const std::string& name, const struct stat& status);
  /// The names of the extended attributes, each with a zero behind it.
  [[nodiscard]] std::optional<std::string> attributeNames(int file);
  [[nodiscard]] std::optional<std::string> attribute(int file, const std::string& name);
  [[nodiscard]] bool setAttribute(int file, const std::string& name, const std::string& value);
  [[nodiscard]] bool synchronize(int file);
  /// Takes the lock of an open folder, where nobody holds it.
  [[nodiscard]] bool lock(int file);
  /// Takes the lock of an open file once nobody else holds it, and gives it back.
  [[nodiscard]] bool waitForLock(int file);
  [[nodiscard]] bool unlock(int file);

 protected:
  /// Whether a call may be made; where not, errno says what it fails with. `name` is the path or
  /// the name that it works on, "" for those on a descriptor.
  [[nodiscard]] virtual bool allows(FileCall call, std::string_view name);

 private:
  [[nodiscard]] int walkBeneath(int folder, const std::string& path, int flags);
};

/// A descriptor that is closed when its owner dies.
class OpenFile {
 public:
  OpenFile() = default;
  OpenFile(FileCalls& calls, int number) noexcept : calls_(&calls), number_(number) {}
  ~OpenFile() { reset(); }
  OpenFile(OpenFile&& other) noexcept
      : calls_(other.calls_), number_(std::exchange(other.number_, -1)) {}
  OpenFile& operator=(OpenFile&& other) noexcept {
    if (this == &other) return *this;
    reset();
    calls_ = other.calls_;
    number_ = std::exchange(other.number_, -1);
    return *this;
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
  [[nodiscard]] int number() const noexcept { return number_; }
  /// Whether closing told of no failure of what was written.
  [[nodiscard]] bool close() { return calls_->close(std::exchange(number_, -1)); }

 private:
  void reset() noexcept;

  FileCalls* calls_ = nullptr;
  int number_ = -1;
};

}  // namespace ORLFoundation::internal::files

#include <ORLFoundation/platform/files/WholeFile.h>

#include <ORLFoundation/platform/base/Bytes.h>
#include <ORLFoundation/platform/base/Descriptor.h>
#include <ORLFoundation/platform/base/TemporaryPath.h>
#include <ORLFoundation/platform/value/NSUUID.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::files {
namespace {

using base::Descriptor;

constexpr std::size_t kMostBytes = std::size_t{64} << 20;
constexpr int kMostNamesAside = 1000;
constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kSharedMode = 0666;  // of which the process's mask takes away
constexpr mode_t kModeBits = 07777;

bool fail(NSErrorSlot error, const std::string& path, int code) {
  return NSFillErrorSlot(error, NSPOSIXErrorDomain, code, path + ": " + std::strerror(code));
}

/// Removes its file when it dies, or when a signal ends the program, unless it was moved away.
class TemporaryFile {
 public:
  /// Empty, of a new name beside the target.
  TemporaryFile(const std::string& target, mode_t mode)
      : path_(target + "." + NSUUID::UUID().UUIDString().substr(0, 8)), noted_(path_) {
    const Descriptor file(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    isThere_ = file.number() >= 0;
  }
  ~TemporaryFile() {
    if (isThere_) std::remove(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool isThere() const { return isThere_; }
  [[nodiscard]] bool moveTo(const std::string& target) {
    if (std::rename(path_.c_str(), target.c_str()) != 0) return false;
    isThere_ = false;
    return true;
  }
  /// The same, and takes no other file's place.
  [[nodiscard]] bool moveToFreePlace(const std::string& target) {
    if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
      isThere_ = false;
      return true;
    }
    // File systems that do not know this flag know second names.
    return errno == EINVAL && ::link(path_.c_str(), target.c_str()) == 0;
  }

 private:
  const std::string path_;
  const base::TemporaryPath noted_;
  bool isThere_ = false;
};

/// Where the bytes go, behind links, and the mode that is there to be kept.
struct Target {
  std::string path;
  std::optional<mode_t> mode;
};

/// nil and an error for what is no file, and for what cannot be looked at.
std::optional<Target> targetOf(const std::string& path, NSErrorSlot error) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return Target{path, std::nullopt};
    fail(error, path, errno);
    return std::nullopt;
  }
  if (!S_ISREG(status.st_mode)) {
    NSFillErrorSlot(error, NSPOSIXErrorDomain, S_ISDIR(status.st_mode) ? EISDIR : EINVAL,
                    path + ": it is not a file");
    return std::nullopt;
  }
  std::error_code code;
  const std::string real = std::filesystem::canonical(path, code).string();
  if (!code) return Target{real, status.st_mode & kModeBits};
  fail(error, path, code.value());
  return std::nullopt;
}

std::string folderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

bool makeFolders(const std::string& path) {
  std::string part;
  for (std::size_t at = 0; at != std::string::npos;) {
    at = path.find('/', at + 1);
    part = path.substr(0, at);
    if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST && errno != EISDIR) return false;
  }
  return true;
}

bool writeBytes(const std::string& path, std::string_view bytes) {
  Descriptor file(::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
  return file.number() >= 0 && base::writeAll(file.number(), base::bytesOf(bytes)) && file.close();
}

/// Brings a written file to the disk, with the mode that it is to have.
bool settle(const std::string& path, std::optional<mode_t> mode) {
  Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return file.number() >= 0 && (!mode || ::fchmod(file.number(), *mode) == 0) &&
         ::fsync(file.number()) == 0 && file.close();
}

void synchronizeFolder(const std::string& path) {
  const Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.number() >= 0) static_cast<void>(::fsync(folder.number()));
}

/// `write` answers whether it could, with errno.
template <class Write>
bool replace(const std::string& path, const Write& write, NewFileRights rights, NSErrorSlot error) {
  const std::optional<Target> target = targetOf(path, error);
  if (!target) return false;
  // No one else sees the bytes before they have the mode of the old file.
  const bool isOpen = rights == NewFileRights::Shared && !target->mode;
  TemporaryFile temporary(target->path, isOpen ? kSharedMode : kPrivateMode);
  if (!temporary.isThere() || !write(temporary.path()) || !settle(temporary.path(), target->mode) ||
      !temporary.moveTo(target->path))
    return fail(error, path, errno);
  synchronizeFolder(folderOf(target->path));
  return true;
}

}  // namespace

LockedFolder::LockedFolder(const std::string& path, NSErrorSlot error) {
  const bool exists = makeFolders(path);
  if (exists) descriptor_ = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  int result = descriptor_;
  while (descriptor_ >= 0 && (result = ::flock(descriptor_, LOCK_EX)) != 0 && errno == EINTR) {
  }
  if (result >= 0) return;
  fail(error, path, errno);
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

LockedFolder::~LockedFolder() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::optional<FileContents> readWholeFile(const std::string& path, NSErrorSlot error) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.number() < 0 && errno == ENOENT) return FileContents{};
  std::vector<std::uint8_t> bytes;
  std::array<std::uint8_t, 16384> buffer{};
  while (file.number() >= 0 && bytes.size() <= kMostBytes) {
    const ssize_t count = ::read(file.number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    if (count == 0) return FileContents{true, NSData(std::move(bytes))};
    bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + count);
  }
  fail(error, path, bytes.size() > kMostBytes ? EFBIG : errno);
  return std::nullopt;
}

bool createFile(const std::string& path, std::string_view bytes, NewFileRights rights,
                NSErrorSlot error) {
  TemporaryFile temporary(path, rights == NewFileRights::Shared ? kSharedMode : kPrivateMode);
  if (!temporary.isThere() || !writeBytes(temporary.path(), bytes) ||
      !settle(temporary.path(), std::nullopt) || !temporary.moveToFreePlace(path))
    return fail(error, path, errno);
  synchronizeFolder(folderOf(path));
  return true;
}

bool replaceFile(const std::string& path, std::string_view bytes, NewFileRights rights,
                 NSErrorSlot error) {
  return replace(
      path, [bytes](const std::string& temporary) { return writeBytes(temporary, bytes); }, rights,
      error);
}

bool replaceFile(const std::string& path, const std::function<void(const std::string&)>& write,
                 NewFileRights rights, NSErrorSlot error) {
  const auto call = [&write](const std::string& temporary) {
    write(temporary);
    return true;
  };
  return replace(path, call, rights, error);
}

bool keepAside(const std::string& path, NSErrorSlot error) {
  for (int number = 1; number <= kMostNamesAside; ++number) {
    const std::string aside = path + ".broken" + (number > 1 ? std::to_string(number) : "");
    struct stat status {};
    if (::lstat(aside.c_str(), &status) == 0) continue;
    return std::rename(path.c_str(), aside.c_str()) == 0 || fail(error, path, errno);
  }
  return fail(error, path, EEXIST);
}

}  // namespace ORLFoundation::internal::files

#include <ORLFoundation/platform/files/FileCalls.h>

#include <dirent.h>
#include <linux/openat2.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

namespace ORLFoundation::internal::files {
namespace {

/// Makes a call again for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

std::array<timespec, 2> timesOf(const struct stat& status) {
  return {status.st_atim, status.st_mtim};
}

/// A value whose length is asked for first; it may grow before it is read.
template <class Get>
std::optional<std::string> grownValue(const Get& get) {
  std::string value;
  while (true) {
    const ssize_t needed = get(nullptr, 0);
    if (needed <= 0) return needed < 0 ? std::nullopt : std::optional<std::string>(value);
    value.resize(static_cast<std::size_t>(needed));
    const ssize_t length = get(value.data(), value.size());
    if (length >= 0) {
      value.resize(static_cast<std::size_t>(length));
      return value;
    }
    if (errno != ERANGE) return std::nullopt;
  }
}

}  // namespace

const std::shared_ptr<FileCalls>& FileCalls::system() {
  static const auto* const calls = new std::shared_ptr<FileCalls>(std::make_shared<FileCalls>());
  return *calls;
}

bool FileCalls::allows(FileCall, std::string_view) { return true; }

int FileCalls::open(int folder, const std::string& path, int flags, mode_t mode) {
  if (!allows(FileCall::Open, path)) return -1;
  return uninterrupted([&] { return ::openat(folder, path.c_str(), flags | O_CLOEXEC, mode); });
}

int FileCalls::openBeneath(int folder, const std::string& path, int flags) {
  const std::string& way = path.empty() ? std::string(".") : path;
  open_how how{};
  how.flags = static_cast<std::uint64_t>(flags) | O_CLOEXEC;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
  const bool isAllowed = allows(FileCall::OpenBeneath, path);
  const int file = isAllowed ? static_cast<int>(uninterrupted([&] {
    return ::syscall(SYS_openat2, folder, way.c_str(), &how, sizeof how);
  }))
                             : -1;
  // Kernels before 5.6, and filters that know no newer calls. A rename meanwhile is EAGAIN.
  if (file >= 0 || (errno != ENOSYS && errno != EPERM && errno != EAGAIN)) return file;
  return walkBeneath(folder, way, flags);
}

int FileCalls::walkBeneath(int folder, const std::string& path, int flags) {
  OpenFile held;
  int at = folder;
  for (std::size_t begin = 0;;) {
    const std::size_t end = path.find('/', begin);
    const std::string name = path.substr(begin, end - begin);
    if (name == "..") errno = EXDEV;
    if (name == "..") return -1;
    const bool isLast = end == std::string::npos;
    const int kind = isLast ? flags : O_PATH | O_DIRECTORY;
    const int next = open(at, name, kind | O_NOFOLLOW);
    if (isLast || next < 0) return next;
    held = OpenFile(*this, next);
    at = next;
    begin = end + 1;
  }
}

bool FileCalls::close(int file) {
  const bool isAllowed = allows(FileCall::Close, "");
  const int refusal = errno;
  // The descriptor is gone in any case, after EINTR too.
  const bool isClosed = ::close(file) == 0 || errno == EINTR;
  if (!isAllowed) errno = refusal;
  return isAllowed && isClosed;
}

bool FileCalls::status(int folder, const std::string& name, struct stat& status) {
  return allows(FileCall::Status, name) &&
         ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool FileCalls::status(int file, struct stat& status) {
  return allows(FileCall::Status, "") &&
         ::fstatat(file, "", &status, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) == 0;
}

std::optional<std::string> FileCalls::readLink(int folder, const std::string& name) {
  std::array<char, PATH_MAX> target{};
  if (!allows(FileCall::ReadLink, name)) return std::nullopt;
  const ssize_t length = ::readlinkat(folder, name.c_str(), target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

ssize_t FileCalls::list(int folder, std::span<std::byte> records) {
  if (!allows(FileCall::List, "")) return -1;
  return uninterrupted([&] { return ::getdents64(folder, records.data(), records.size()); });
}

ssize_t FileCalls::read(int file, std::span<std::byte> bytes, off_t at) {
  if (!allows(FileCall::Read, "")) return -1;
  return uninterrupted([&] { return ::pread(file, bytes.data(), bytes.size(), at); });
}

bool FileCalls::write(int file, std::span<const std::byte> bytes, off_t at) {
  while (!bytes.empty()) {
    if (!allows(FileCall::Write, "")) return false;
    const ssize_t count =
        uninterrupted([&] { return ::pwrite(file, bytes.data(), bytes.size(), at); });
    if (count < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
    at += count;
  }
  return true;
}

ssize_t FileCalls::copyRange(int from, int to, off_t at, std::size_t length) {
  if (!allows(FileCall::CopyRange, "")) return -1;
  off_t source = at, target = at;
  return uninterrupted([&] { return ::copy_file_range(from, &source, to, &target, length, 0); });
}

off_t FileCalls::seek(int file, off_t at, int whence) {
  return allows(FileCall::Seek, "") ? ::lseek(file, at, whence) : -1;
}

bool FileCalls::truncate(int file, off_t length) {
  return allows(FileCall::Truncate, "") &&
         uninterrupted([&] { return ::ftruncate(file, length); }) == 0;
}

bool FileCalls::makeFolder(int folder, const std::string& name, mode_t mode) {
  return allows(FileCall::MakeFolder, name) && ::mkdirat(folder, name.c_str(), mode) == 0;
}

bool FileCalls::makeLink(int folder, const std::string& name, const std::string& target) {
  return allows(FileCall::MakeLink, name) && ::symlinkat(target.c_str(), folder, name.c_str()) == 0;
}

bool FileCalls::rename(int folder, const std::string& name, int toFolder, const std::string& toName,
                       unsigned flags) {
  if (!allows(FileCall::Rename, name)) return false;
  // The older call serves file systems that know no flags.
  if (flags == 0) return ::renameat(folder, name.c_str(), toFolder, toName.c_str()) == 0;
  return ::renameat2(folder, name.c_str(), toFolder, toName.c_str(), flags) == 0;
}

bool FileCalls::remove(int folder, const std::string& name, int flags) {
  return allows(FileCall::Remove, name) && ::unlinkat(folder, name.c_str(), flags) == 0;
}

bool FileCalls::setMode(int file, mode_t mode) {
  return allows(FileCall::SetMode, "") && ::fchmod(file, mode) == 0;
}

bool FileCalls::setMode(int folder, const std::string& name, mode_t mode) {
  return allows(FileCall::SetMode, name) &&
         ::fchmodat(folder, name.c_str(), mode, AT_SYMLINK_NOFOLLOW) == 0;
}

bool FileCalls::setOwner(int file, uid_t user, gid_t group) {
  return allows(FileCall::SetOwner, "") && ::fchown(file, user, group) == 0;
}

bool FileCalls::setOwner(int folder, const std::string& name, uid_t user, gid_t group) {
  return allows(FileCall::SetOwner, name) &&
         ::fchownat(folder, name.c_str(), user, group, AT_SYMLINK_NOFOLLOW) == 0;
}

bool FileCalls::setTimes(int file, const struct stat& status) {
  return allows(FileCall::SetTimes, "") && ::futimens(file, timesOf(status).data()) == 0;
}

bool FileCalls::setTimes(int folder, const std::string& name, const struct stat& status) {
  return allows(FileCall::SetTimes, name) &&
         ::utimensat(folder, name.c_str(), timesOf(status).data(), AT_SYMLINK_NOFOLLOW) == 0;
}

std::optional<std::string> FileCalls::attributeNames(int file) {
  if (!allows(FileCall::ListAttributes, "")) return std::nullopt;
  return grownValue(
      [file](char* names, std::size_t size) { return ::flistxattr(file, names, size); });
}

std::optional<std::string> FileCalls::attribute(int file, const std::string& name) {
  if (!allows(FileCall::GetAttribute, name)) return std::nullopt;
  return grownValue(
      [&](char* value, std::size_t size) { return ::fgetxattr(file, name.c_str(), value, size); });
}

bool FileCalls::setAttribute(int file, const std::string& name, const std::string& value) {
  return allows(FileCall::SetAttribute, name) &&
         ::fsetxattr(file, name.c_str(), value.data(), value.size(), 0) == 0;
}

bool FileCalls::synchronize(int file) {
  return allows(FileCall::Synchronize, "") && uninterrupted([&] { return ::fsync(file); }) == 0;
}

bool FileCalls::lock(int file) {
  return allows(FileCall::Lock, "") &&
         uninterrupted([&] { return ::flock(file, LOCK_EX | LOCK_NB); }) == 0;
}

bool FileCalls::waitForLock(int file) {
  return allows(FileCall::Lock, "") && uninterrupted([&] { return ::flock(file, LOCK_EX); }) == 0;
}

bool FileCalls::unlock(int file) { return ::flock(file, LOCK_UN) == 0; }

void OpenFile::reset() noexcept {
  if (number_ >= 0) ::close(std::exchange(number_, -1));
}

}  // namespace ORLFoundation::internal::files

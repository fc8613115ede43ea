
#include <ORLFoundation/platform/files/WholeFile.h>

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

namespace ORLFoundation::internal {
namespace {

constexpr std::size_t kMostBytes = std::size_t{64} << 20;
constexpr int kMostNamesAside = 1000;

bool fail(NSErrorSlot error, const std::string& path, int code) {
  return NSFillErrorSlot(error, NSPOSIXErrorDomain, code, path + ": " + std::strerror(code));
}

/// Closes its file when it dies.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int number() const { return number_; }
  /// Whether closing told of no failure.
  [[nodiscard]] bool close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

bool makeFolders(const std::string& path) {
  std::string part;
  for (std::size_t at = 0; at != std::string::npos;) {
    at = path.find('/', at + 1);
    part = path.substr(0, at);
    if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST && errno != EISDIR) return false;
  }
  return true;
}

bool writeAll(int file, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool fillFile(int number, const NSData& data) {
  Descriptor file(number);
  return writeAll(number, data.bytes()) && ::fsync(number) == 0 && file.close();
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

void LockedFolder::synchronize() const { static_cast<void>(::fsync(descriptor_)); }

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

bool replaceFile(const std::string& path, const NSData& data, NSErrorSlot error) {
  std::error_code ignored;
  const std::filesystem::path real = std::filesystem::canonical(path, ignored);
  const std::string target = real.empty() ? path : real.string();
  std::string temporary = target + ".XXXXXX";
  const int file = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (file < 0) return fail(error, path, errno);
  if (fillFile(file, data) && std::rename(temporary.c_str(), target.c_str()) == 0) return true;
  const int code = errno;
  std::remove(temporary.c_str());
  return fail(error, path, code);
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

}  // namespace ORLFoundation::internal

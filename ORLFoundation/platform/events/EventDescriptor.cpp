#include <ORLFoundation/platform/events/EventDescriptor.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ORLFoundation::internal::events {
namespace {

// What the kernel writes behind the path of a name that is gone; a name may end so too.
constexpr std::string_view kGone = " (deleted)";

std::string linkOfDescriptor(int descriptor) {
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  std::array<char, PATH_MAX> text{};
  const ssize_t length = ::readlink(link.c_str(), text.data(), text.size());
  return length <= 0 ? std::string() : std::string(text.data(), static_cast<std::size_t>(length));
}

bool leadsTo(const std::string& path, const struct stat& file) {
  struct stat found {};
  return ::lstat(path.c_str(), &found) == 0 && found.st_dev == file.st_dev &&
         found.st_ino == file.st_ino;
}

bool hasName(int descriptor) {
  struct stat file {};
  return ::fstat(descriptor, &file) == 0 && file.st_nlink > 0;
}

bool areOneFile(int first, int second) {
  struct stat one {
  }, other{};
  return ::fstat(first, &one) == 0 && ::fstat(second, &other) == 0 && one.st_dev == other.st_dev &&
         one.st_ino == other.st_ino;
}

/// While a name is being given to another file the kernel leads to the one before, which has none
/// any more: what stands there is found when that is over.
int openNamed(const std::string& path) {
  int nameless = -1;
  while (true) {
    const int descriptor = ::open(path.c_str(), O_PATH | O_CLOEXEC);
    const int number = errno;
    const bool isAgain = descriptor >= 0 && nameless >= 0 && areOneFile(descriptor, nameless);
    if (nameless >= 0) ::close(nameless);
    errno = number;
    if (descriptor < 0 || hasName(descriptor)) return descriptor;
    if (isAgain) {
      ::close(descriptor);
      errno = ENOENT;
      return -1;
    }
    nameless = descriptor;
    waitForChangesAround(linkOfDescriptor(nameless));
  }
}

}  // namespace

int openForEvents(const std::string& path) {
  if (path.find('\0') == std::string::npos) return openNamed(path);
  errno = ENOENT;
  return -1;
}

void waitForChangesAround(const std::string& path) {
  static std::atomic<std::int64_t> lookups{
      std::chrono::steady_clock::now().time_since_epoch().count()};
  // A name that nobody has asked for before is looked for in the folder itself, which the kernel
  // keeps closed while a change is under way.
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  struct stat found {};
  static_cast<void>(::lstat((folder + ".orlf-" + std::to_string(++lookups)).c_str(), &found));
}

std::optional<std::string> pathOfDescriptor(int descriptor) {
  struct stat file {};
  if (::fstat(descriptor, &file) != 0) return std::nullopt;
  std::string path = linkOfDescriptor(descriptor);
  if (path.empty() || path.front() != '/') return std::nullopt;
  if (leadsTo(path, file)) return path;
  // A name that was taken away and given again is a new one to the kernel.
  if (!std::string_view(path).ends_with(kGone)) return std::nullopt;
  path.resize(path.size() - kGone.size());
  return leadsTo(path, file) ? std::optional(path) : std::nullopt;
}

}  // namespace ORLFoundation::internal::events

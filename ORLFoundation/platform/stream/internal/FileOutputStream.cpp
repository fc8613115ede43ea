#include <ORLFoundation/platform/stream/internal/FileOutputStream.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/stream/internal/StreamError.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace ORLFoundation::internal::stream {
namespace {

constexpr mode_t kRightsOfNewFiles = 0666;

/// A path with a zero byte in it would be cut there.
bool isUsable(const std::string& path) noexcept { return path.find('\0') == std::string::npos; }

}  // namespace

FileOutputStream::~FileOutputStream() { closeFile(); }

void FileOutputStream::open() {
  if (streamStatus() != NSStreamStatusNotOpen) return;
  const int onContents = append_ ? O_APPEND : O_TRUNC;
  errno = EINVAL;
  if (isUsable(path_))
    file_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | onContents, kRightsOfNewFiles);
  if (file_ < 0) return fail();
  NSStream::open();
}

void FileOutputStream::close() {
  closeFile();
  NSStream::close();
}

NSInteger FileOutputStream::write(std::span<const std::uint8_t> buffer) {
  if (streamStatus() != NSStreamStatusOpen) {
    setStreamError(posixError(EBADF, path_));
    return -1;
  }
  ssize_t count = 0;
  do {
    count = ::write(file_, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) fail();
  return count;
}

id FileOutputStream::propertyForKey(std::string_view key) const {
  if (key != NSStreamFileCurrentOffsetKey || file_ < 0) return nullptr;
  const off_t offset = ::lseek(file_, 0, append_ ? SEEK_END : SEEK_CUR);
  return offset < 0 ? id() : id(NSInteger{offset});
}

void FileOutputStream::fail() {
  setStreamError(posixError(errno, path_));
  setStreamStatus(NSStreamStatusError);
  closeFile();
}

void FileOutputStream::closeFile() noexcept {
  const int file = std::exchange(file_, -1);
  if (file >= 0) ::close(file);
}

}  // namespace ORLFoundation::internal::stream

#include <ORLFoundation/platform/stream/internal/FileInputStream.h>

#include <ORLFoundation/platform/stream/internal/StreamError.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace ORLFoundation::internal::stream {

FileInputStream::~FileInputStream() { closeFile(); }

void FileInputStream::open() {
  if (streamStatus() != NSStreamStatusNotOpen) return;
  errno = EINVAL;
  // A path with a zero byte in it would be cut there.
  if (path_.find('\0') == std::string::npos) file_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (file_ < 0) return fail();
  NSStream::open();
}

void FileInputStream::close() {
  closeFile();
  NSStream::close();
}

NSInteger FileInputStream::read(std::span<std::uint8_t> buffer) {
  if (streamStatus() == NSStreamStatusAtEnd || (hasBytesAvailable() && buffer.empty())) return 0;
  if (streamStatus() != NSStreamStatusOpen) {
    setStreamError(posixError(EBADF, path_));
    return -1;
  }
  ssize_t count = 0;
  do {
    count = ::read(file_, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) fail();
  if (count == 0) setStreamStatus(NSStreamStatusAtEnd);
  return count;
}

void FileInputStream::fail() {
  setStreamError(posixError(errno, path_));
  setStreamStatus(NSStreamStatusError);
  closeFile();
}

void FileInputStream::closeFile() noexcept {
  const int file = std::exchange(file_, -1);
  if (file >= 0) ::close(file);
}

}  // namespace ORLFoundation::internal::stream

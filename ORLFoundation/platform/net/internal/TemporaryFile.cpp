#include <ORLFoundation/platform/net/internal/TemporaryFile.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

namespace ORLFoundation::internal::net {

std::unique_ptr<TemporaryFile> TemporaryFile::make() {
  const char* const folder = std::getenv("TMPDIR");
  std::string path = folder != nullptr && *folder != '\0' ? folder : "/tmp";
  path += "/orlf-download-XXXXXX";
  const int descriptor = ::mkostemp(path.data(), O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  return std::unique_ptr<TemporaryFile>(new TemporaryFile(std::move(path), descriptor));
}

TemporaryFile::~TemporaryFile() {
  static_cast<void>(close());
  ::unlink(path_.c_str());
}

bool TemporaryFile::write(std::span<const std::uint8_t> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool TemporaryFile::close() {
  return descriptor_ < 0 || ::close(std::exchange(descriptor_, -1)) == 0;
}

}  // namespace ORLFoundation::internal::net

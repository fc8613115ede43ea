#include <ORLFoundation/platform/net/internal/TemporaryFile.h>

#include <fcntl.h>
#include <unistd.h>

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
  return base::writeAll(descriptor_.number(), bytes);
}

bool TemporaryFile::close() { return !descriptor_.isOpen() || descriptor_.close(); }

}  // namespace ORLFoundation::internal::net

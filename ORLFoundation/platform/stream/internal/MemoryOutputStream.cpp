#include <ORLFoundation/platform/stream/internal/MemoryOutputStream.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/stream/internal/StreamError.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cerrno>

namespace ORLFoundation::internal::stream {

NSInteger MemoryOutputStream::write(std::span<const std::uint8_t> buffer) {
  if (streamStatus() != NSStreamStatusOpen) {
    setStreamError(posixError(EBADF));
    return -1;
  }
  bytes_.insert(bytes_.end(), buffer.begin(), buffer.end());
  return static_cast<NSInteger>(buffer.size());
}

id MemoryOutputStream::propertyForKey(std::string_view key) const {
  if (key != NSStreamDataWrittenToMemoryStreamKey) return nullptr;
  return NSData(std::span<const std::uint8_t>(bytes_));
}

}  // namespace ORLFoundation::internal::stream

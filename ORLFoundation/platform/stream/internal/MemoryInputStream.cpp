#include <ORLFoundation/platform/stream/internal/MemoryInputStream.h>

#include <ORLFoundation/platform/stream/internal/StreamError.h>

#include <algorithm>
#include <cerrno>

namespace ORLFoundation::internal::stream {

NSInteger MemoryInputStream::read(std::span<std::uint8_t> buffer) {
  if (streamStatus() == NSStreamStatusAtEnd || (hasBytesAvailable() && buffer.empty())) return 0;
  if (streamStatus() != NSStreamStatusOpen) {
    setStreamError(posixError(EBADF));
    return -1;
  }
  const auto rest = data_.bytes().subspan(taken_);
  const auto piece = rest.first(std::min(rest.size(), buffer.size()));
  std::ranges::copy(piece, buffer.begin());
  taken_ += piece.size();
  if (piece.empty()) setStreamStatus(NSStreamStatusAtEnd);
  return static_cast<NSInteger>(piece.size());
}

}  // namespace ORLFoundation::internal::stream

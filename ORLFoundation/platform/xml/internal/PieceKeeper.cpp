#include <ORLFoundation/platform/xml/internal/PieceKeeper.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::xml {
namespace {

/// Both halves of a line end in the widest encoding.
constexpr std::size_t kLongestLineEnd = 8;

}  // namespace

std::span<const std::uint8_t> PieceKeeper::completed(std::span<const std::uint8_t> piece,
                                                     std::size_t least) {
  if (kept_.size() + piece.size() < least) {
    kept_.insert(kept_.end(), piece.begin(), piece.end());
    return {};
  }
  joined_.clear();
  if (!kept_.empty()) {
    std::swap(joined_, kept_);
    joined_.insert(joined_.end(), piece.begin(), piece.end());
    piece = joined_;
  }
  const std::size_t length = lengthOfLineEnd(piece);
  kept_.assign(piece.end() - static_cast<std::ptrdiff_t>(length), piece.end());
  return piece.first(piece.size() - length);
}

/// How many of the last bytes are a carriage return with zeros and line feeds alone behind it.
std::size_t PieceKeeper::lengthOfLineEnd(std::span<const std::uint8_t> bytes) noexcept {
  const std::size_t most = std::min(bytes.size(), kLongestLineEnd);
  for (std::size_t length = 1; length <= most; ++length) {
    const std::uint8_t byte = bytes[bytes.size() - length];
    if (byte == '\r') return length;
    if (byte != 0 && byte != '\n') break;
  }
  return 0;
}

}  // namespace ORLFoundation::internal::xml

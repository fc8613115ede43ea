/// Pieces of a document that wait for more of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::xml {

/// Keeps back what may be half of a line end, since libxml2 would take a carriage return that ends
/// a piece in UTF-16 for a line end of its own, and pieces that are too short.
class PieceKeeper {
 public:
  /// What was kept and the piece behind it, less what is kept now: all of it while it is less than
  /// `least`. The bytes are the piece's or the keeper's own, and last until either changes.
  [[nodiscard]] std::span<const std::uint8_t> completed(std::span<const std::uint8_t> piece,
                                                        std::size_t least = 0);
  /// What waits for a next piece.
  [[nodiscard]] std::span<const std::uint8_t> kept() const noexcept { return kept_; }

 private:
  static std::size_t lengthOfLineEnd(std::span<const std::uint8_t> bytes) noexcept;

  std::vector<std::uint8_t> kept_;
  std::vector<std::uint8_t> joined_;  // empty where nothing was kept before
};

}  // namespace ORLFoundation::internal::xml

#include <ORLFoundation/platform/compression/internal/BitStreams.h>

namespace ORLFoundation::internal::compression {

bool BackwardBits::begin(std::span<const std::uint8_t> bytes, int spare) noexcept {
  begin_ = bytes.data();
  at_ = begin_ + bytes.size();
  bits_ = 0;
  count_ = 0;
  if (spare < -7 || spare > 0) return false;
  if (spare == 0) return true;
  if (bytes.empty()) return false;
  bits_ = *--at_;
  count_ = 8 + spare;
  return (bits_ >> count_) == 0;
}

void BackwardBits::refillSlowly() noexcept {
  while (count_ >= 0 && count_ <= 55 && at_ > begin_) {
    bits_ = (bits_ << 8) | *--at_;
    count_ += 8;
  }
}

}  // namespace ORLFoundation::internal::compression

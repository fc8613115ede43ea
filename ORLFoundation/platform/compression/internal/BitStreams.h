/// Bits written from the first byte on, the lowest bit first, and read from the last one backward.
#pragma once

#include <ORLFoundation/platform/compression/internal/LittleEndian.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace ORLFoundation::internal::compression {

/// Writes up to 56 bits between two calls of `flush`, which stores eight bytes whatever there is.
class BitWriter {
 public:
  explicit BitWriter(std::uint8_t* bytes) noexcept : begin_(bytes), at_(bytes) {}

  void push(std::uint64_t value, unsigned count) noexcept {
    bits_ |= value << count_;
    count_ += count;
  }
  void flush() noexcept {
    store(at_, bits_);
    at_ += count_ / 8;
    bits_ >>= count_ & ~7U;
    count_ &= 7U;
  }
  /// Fills the last byte with zeros, and tells how many, as a number from -7 to 0. In the header,
  /// as the others are: a writer whose address is known elsewhere is not kept in registers.
  int finish() noexcept {
    flush();
    if (count_ == 0) return 0;
    const int spare = static_cast<int>(count_) - 8;
    ++at_;
    bits_ = 0;
    count_ = 0;
    return spare;
  }
  [[nodiscard]] std::size_t length() const noexcept {
    return static_cast<std::size_t>(at_ - begin_);
  }

 private:
  std::uint8_t* const begin_;
  std::uint8_t* at_;
  std::uint64_t bits_ = 0;
  unsigned count_ = 0;
};

/// Reads up to 56 bits between two calls of `refill`. Reading more than there is gives bits of no
/// meaning, and `isOverdrawn`.
class BackwardBits {
 public:
  /// `spare`, -7 to 0, is how many bits of the last byte are none. False where these are not zero,
  /// and for a last byte that is not there.
  [[nodiscard]] bool begin(std::span<const std::uint8_t> bytes, int spare) noexcept;

  void refill() noexcept {
    if (at_ - begin_ < 8) return refillSlowly();
    const auto bits = static_cast<unsigned>(63 - count_) & ~7U;
    bits_ = (bits_ << bits) | ((load<std::uint64_t>(at_ - 8) >> 1) >> (63 - bits));
    at_ -= bits / 8;
    count_ += static_cast<int>(bits);
  }
  [[nodiscard]] std::uint32_t pull(unsigned count) noexcept {
    count_ -= static_cast<int>(count);
    const std::uint64_t mask = (std::uint64_t{1} << count) - 1;
    return static_cast<std::uint32_t>((bits_ >> (static_cast<unsigned>(count_) & 63U)) & mask);
  }
  [[nodiscard]] bool isOverdrawn() const noexcept { return count_ < 0; }
  /// Bits that are left.
  [[nodiscard]] std::ptrdiff_t left() const noexcept { return (at_ - begin_) * 8 + count_; }

 private:
  void refillSlowly() noexcept;

  const std::uint8_t* begin_ = nullptr;
  const std::uint8_t* at_ = nullptr;
  std::uint64_t bits_ = 0;
  int count_ = 0;
};

}  // namespace ORLFoundation::internal::compression

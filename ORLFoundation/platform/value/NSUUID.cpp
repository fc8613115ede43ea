

#include <ORLFoundation/platform/value/NSUUID.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <cstring>
#include <random>

namespace ORLFoundation {
namespace {

constexpr std::size_t kTextLength = 36;

constexpr bool isHyphenAt(std::size_t i) { return i == 8 || i == 13 || i == 18 || i == 23; }

}  // namespace

NSUUID NSUUID::UUID() {
  std::random_device source;
  Bytes bytes;
  for (std::size_t i = 0; i < bytes.size(); i += 4) {
    const std::uint32_t word = source();
    std::memcpy(&bytes[i], &word, sizeof word);
  }
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x40);  // version 4, random
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
  return NSUUID(bytes);
}

std::optional<NSUUID> NSUUID::initWithUUIDString(std::string_view text) {
  if (text.size() != kTextLength) return std::nullopt;
  Bytes bytes{};
  std::size_t digit = 0;
  for (std::size_t i = 0; i < kTextLength; ++i) {
    if (isHyphenAt(i)) {
      if (text[i] != '-') return std::nullopt;
      continue;
    }
    const int value = internal::base::hexDigitValue(text[i]);
    if (value < 0) return std::nullopt;
    bytes[digit / 2] = static_cast<std::uint8_t>(bytes[digit / 2] * 16 + value);
    ++digit;
  }
  return NSUUID(bytes);
}

std::string NSUUID::UUIDString() const {
  std::string text;
  text.reserve(kTextLength);
  for (const std::uint8_t byte : bytes_) {
    if (isHyphenAt(text.size())) text += '-';
    internal::base::appendHexByte(text, byte, internal::base::kUpperHexDigits);
  }
  return text;
}

NSUInteger NSUUID::hash() const noexcept {
  std::uint64_t halves[2];
  std::memcpy(halves, bytes_.data(), sizeof halves);
  return halves[0] ^ (halves[1] * 0x9e3779b97f4a7c15U);
}

}  // namespace ORLFoundation

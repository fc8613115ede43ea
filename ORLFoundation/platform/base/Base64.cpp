#include <ORLFoundation/platform/base/Base64.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace ORLFoundation::internal::base {
namespace {

constexpr std::size_t kGroupBytes = 3;
constexpr std::size_t kGroupDigits = 4;
constexpr unsigned kDigitBits = 6;

constexpr std::array<std::int8_t, 256> kValues = [] {
  std::array<std::int8_t, 256> values{};
  for (auto& value : values) value = -1;
  for (std::size_t i = 0; i < kBase64Alphabet.size(); ++i)
    values[static_cast<unsigned char>(kBase64Alphabet[i])] = static_cast<std::int8_t>(i);
  return values;
}();

}  // namespace

int base64DigitValue(char c) noexcept { return kValues[static_cast<unsigned char>(c)]; }

std::string base64Text(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + kGroupBytes - 1) / kGroupBytes * kGroupDigits);
  for (std::size_t at = 0; at < bytes.size(); at += kGroupBytes) {
    const std::size_t count = std::min(kGroupBytes, bytes.size() - at);
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < kGroupBytes; ++i)
      group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    for (std::size_t i = 0; i < kGroupDigits; ++i)
      text +=
          i <= count ? kBase64Alphabet[group >> (kDigitBits * (kGroupDigits - 1 - i)) & 0x3F] : '=';
  }
  return text;
}

std::string bytesOfLooseBase64Text(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / kGroupDigits * kGroupBytes);
  std::uint32_t pending = 0;
  unsigned bits = 0;
  for (const char c : text.substr(0, text.find('='))) {
    const int value = base64DigitValue(c);
    if (value < 0) continue;
    pending = pending << kDigitBits | static_cast<std::uint32_t>(value);
    bits += kDigitBits;
    if (bits < 8) continue;
    bits -= 8;
    bytes += static_cast<char>(pending >> bits & 0xFF);
  }
  return bytes;
}

std::optional<std::string> bytesOfBase64Text(std::string_view text) {
  if (text.size() % kGroupDigits != 0) return std::nullopt;
  const std::size_t filling = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  const std::string_view digits = text.substr(0, text.size() - filling);
  // Looked at before anything is decoded: of a malformed key's text nothing stays in memory.
  if (!std::all_of(digits.begin(), digits.end(), [](char c) { return base64DigitValue(c) >= 0; }))
    return std::nullopt;
  const int bitsBehind =
      filling > 0 ? base64DigitValue(digits.back()) & ((1 << 2 * filling) - 1) : 0;
  if (bitsBehind != 0) return std::nullopt;
  return bytesOfLooseBase64Text(digits);
}

}  // namespace ORLFoundation::internal::base

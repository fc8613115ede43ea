
#include <ORLFoundation/security/primitives/NewBase64.h>

#include <ORLFoundation/platform/base/Base64.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kLineBytes = 48, kLineCharacters = 64;
constexpr std::size_t kMostBytes = SIZE_MAX / 4;
constexpr std::uint8_t kNone = 0xFF;
constexpr std::string_view kAlphabet = ORLFoundation::internal::base::kBase64Alphabet;

using Pair = std::array<char, 2>;

/// Two characters for each twelve bits.
constexpr std::array<Pair, 4096> kPairs = [] {
  std::array<Pair, 4096> pairs{};
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kAlphabet[i >> 6], kAlphabet[i & 63]};
  return pairs;
}();

constexpr std::array<std::uint8_t, 256> kDigits = [] {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(kNone);
  for (std::uint8_t i = 0; i < 64; ++i) digits[static_cast<std::uint8_t>(kAlphabet[i])] = i;
  return digits;
}();

char* encodeGroups(const std::uint8_t* in, std::size_t groups, char* out) {
  for (; groups > 0; --groups, in += 3, out += 4) {
    const std::uint32_t bits = std::uint32_t{in[0]} << 16 | std::uint32_t{in[1]} << 8 | in[2];
    std::memcpy(out, kPairs[bits >> 12].data(), 2);
    std::memcpy(out + 2, kPairs[bits & 0xFFF].data(), 2);
  }
  return out;
}

/// The last one or two bytes, with the "=" that fill them up.
char* encodeRest(const std::uint8_t* in, std::size_t count, char* out) {
  if (count == 0) return out;
  const std::uint32_t bits =
      std::uint32_t{in[0]} << 16 | (count > 1 ? std::uint32_t{in[1]} << 8 : 0);
  std::memcpy(out, kPairs[bits >> 12].data(), 2);
  out[2] = count > 1 ? kPairs[bits & 0xFFF][0] : '=';
  out[3] = '=';
  return out + 4;
}

/// Decodes whole groups of four characters of the alphabet in a row, from the front.
std::size_t decodeRun(const std::uint8_t* in, std::size_t length, std::uint8_t*& out) {
  std::size_t used = 0;
  for (; length - used >= 4; used += 4, out += 3) {
    const std::uint32_t a = kDigits[in[used]], b = kDigits[in[used + 1]];
    const std::uint32_t c = kDigits[in[used + 2]], d = kDigits[in[used + 3]];
    if (((a | b | c | d) & 0xC0) != 0) break;
    out[0] = static_cast<std::uint8_t>(a << 2 | b >> 4);
    out[1] = static_cast<std::uint8_t>(b << 4 | c >> 2);
    out[2] = static_cast<std::uint8_t>(c << 6 | d);
  }
  return used;
}

struct Group {
  std::array<std::uint8_t, 4> digits{};
  std::size_t count = 0;
  std::size_t used = 0;
};

/// The next four characters of the alphabet, fewer at the text's end.
Group nextGroup(const std::uint8_t* in, std::size_t length) {
  Group group;
  while (group.used < length && group.count < group.digits.size()) {
    const std::uint8_t digit = kDigits[in[group.used++]];
    if (digit != kNone) group.digits[group.count++] = digit;
  }
  return group;
}

void storeGroup(const Group& group, std::uint8_t* out) {
  const auto& [a, b, c, d] = group.digits;
  out[0] = static_cast<std::uint8_t>(a << 2 | b >> 4);
  out[1] = static_cast<std::uint8_t>(b << 4 | c >> 2);
  out[2] = static_cast<std::uint8_t>(c << 6 | d);
}

}  // namespace

char* NewBase64Encode(const void* inputBuffer, size_t length, int separateLines,
                      size_t* outputLength) {
  if (outputLength != nullptr) *outputLength = 0;
  if (length > kMostBytes) return nullptr;
  const std::size_t breaks = separateLines != 0 && length > 0 ? (length - 1) / kLineBytes : 0;
  const std::size_t size = (length + 2) / 3 * 4 + 2 * breaks;
  auto* const text = static_cast<char*>(std::malloc(size + 1));
  if (text == nullptr) return nullptr;
  const auto* in = static_cast<const std::uint8_t*>(inputBuffer);
  char* out = text;
  for (std::size_t line = 0; line < breaks; ++line, in += kLineBytes) {
    out = encodeGroups(in, kLineBytes / 3, out);
    *out++ = '\r';
    *out++ = '\n';
  }
  static_assert(kLineBytes / 3 * 4 == kLineCharacters);
  const std::size_t left = length - breaks * kLineBytes;
  out = encodeGroups(in, left / 3, out);
  out = encodeRest(in + left / 3 * 3, left % 3, out);
  *out = '\0';
  if (outputLength != nullptr) *outputLength = size;
  return text;
}

void* NewBase64Decode(const char* inputBuffer, size_t length, size_t* outputLength) {
  if (outputLength != nullptr) *outputLength = 0;
  if (length >= SIZE_MAX - 1) length = std::strlen(inputBuffer);
  if (length > kMostBytes) return nullptr;
  // The stores of a group that counts for less than three bytes reach beyond its end.
  auto* const bytes = static_cast<std::uint8_t*>(std::malloc(length / 4 * 3 + 3));
  if (bytes == nullptr) return nullptr;
  const auto* const in = reinterpret_cast<const std::uint8_t*>(inputBuffer);
  std::uint8_t* out = bytes;
  for (std::size_t at = 0; at < length;) {
    at += decodeRun(in + at, length - at, out);
    if (at == length) break;
    const Group group = nextGroup(in + at, length - at);
    at += group.used;
    storeGroup(group, out);
    if (group.count > 0) {
      out += group.count - 1;
    } else if (out > bytes) {
      --out;
    }
  }
  if (outputLength != nullptr) *outputLength = static_cast<std::size_t>(out - bytes);
  return bytes;
}

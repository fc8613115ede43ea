#include <ORLFoundation/platform/text/NSStringBytes.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF16.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/internal/ByteTables.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/normalizer2.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using namespace internal::base;
using namespace internal::text;

constexpr std::array<NSUInteger, 8> kEncodings{
    NSASCIIStringEncoding,          NSUTF8StringEncoding,
    NSISOLatin1StringEncoding,      NSUTF16StringEncoding,
    NSWindowsCP1252StringEncoding,  NSMacOSRomanStringEncoding,
    NSUTF16BigEndianStringEncoding, NSUTF16LittleEndianStringEncoding};

bool isKnown(NSUInteger encoding) {
  return std::find(kEncodings.begin(), kEncodings.end(), encoding) != kEncodings.end();
}

bool isUTF16(NSUInteger encoding) {
  return encoding == NSUTF16StringEncoding || encoding == NSUTF16BigEndianStringEncoding ||
         encoding == NSUTF16LittleEndianStringEncoding;
}

/// How many bytes at the front of a text are ASCII.
std::size_t lengthOfASCII(std::string_view text) noexcept {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::size_t at = 0;
  for (std::array<std::uint64_t, 2> words{}; at + sizeof(words) <= text.size();
       at += sizeof(words)) {
    std::memcpy(words.data(), text.data() + at, sizeof(words));
    if (((words[0] | words[1]) & kHighBits) != 0) break;
  }
  while (at < text.size() && isASCII(text[at])) ++at;
  return at;
}

constexpr char32_t kByteOrderMark = 0xFEFF;

/// The bytes of one character, or of what stands for it.
using Bytes = std::string;

void appendUnit(Bytes& bytes, std::uint32_t unit, bool isBigEndian) {
  const char high = static_cast<char>(unit >> 8 & 0xFF);
  const char low = static_cast<char>(unit & 0xFF);
  bytes += isBigEndian ? high : low;
  bytes += isBigEndian ? low : high;
}

bool appendUTF16(Bytes& bytes, char32_t character, bool isBigEndian) {
  forEachUnit(character, [&](char16_t unit) { appendUnit(bytes, unit, isBigEndian); });
  return true;
}

bool appendByte(Bytes& bytes, std::optional<std::uint8_t> byte) {
  if (byte) bytes += static_cast<char>(*byte);
  return byte.has_value();
}

std::optional<std::uint8_t> byteBelow(char32_t limit, char32_t character) {
  return character < limit ? std::optional(static_cast<std::uint8_t>(character)) : std::nullopt;
}

/// Appends a character as the encoding writes it; false when it lacks it.
bool appendExact(Bytes& bytes, char32_t character, NSUInteger encoding) {
  switch (encoding) {
    case NSUTF8StringEncoding:
      appendUTF8(bytes, character);
      return true;
    case NSUTF16StringEncoding:
      return appendUTF16(bytes, character, std::endian::native == std::endian::big);
    case NSUTF16BigEndianStringEncoding:
      return appendUTF16(bytes, character, true);
    case NSUTF16LittleEndianStringEncoding:
      return appendUTF16(bytes, character, false);
    case NSWindowsCP1252StringEncoding:
      return appendByte(bytes, byteOfWindowsLatin1(character));
    case NSMacOSRomanStringEncoding:
      return appendByte(bytes, byteOfMacRoman(character));
    case NSISOLatin1StringEncoding:
      return appendByte(bytes, byteBelow(0x100, character));
    default:
      return appendByte(bytes, byteBelow(0x80, character));
  }
}

/// Marks that no decomposition leads to ASCII, and their look-alikes.
char lookAlikeOf(char32_t character) noexcept {
  switch (character) {
    case U'\u2018':
    case U'\u2019':
    case U'\u201A':
    case U'\u2032':
      return '\'';
    case U'\u201C':
    case U'\u201D':
    case U'\u201E':
    case U'\u2033':
      return '"';
    case U'\u2010':
    case U'\u2012':
    case U'\u2013':
    case U'\u2014':
    case U'\u2015':
    case U'\u2212':
      return '-';
    default:
      return '?';
  }
}

/// The characters of the compatibility decomposition that the encoding has, without the marks that
/// it lacks.
Bytes decomposed(char32_t character, NSUInteger encoding) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getNFKDInstance(status);
  icu::UnicodeString parts;
  Bytes bytes;
  if (U_FAILURE(status) || !normalizer->getDecomposition(static_cast<UChar32>(character), parts))
    return bytes;
  for (std::int32_t at = 0; at < parts.length(); at = parts.moveIndex32(at, 1))
    appendExact(bytes, static_cast<char32_t>(parts.char32At(at)), encoding);
  return bytes;
}

bool append(Bytes& bytes, char32_t character, NSUInteger encoding, bool isLossy) {
  if (appendExact(bytes, character, encoding)) return true;
  if (!isLossy) return false;
  bytes = decomposed(character, encoding);
  if (bytes.empty()) bytes += lookAlikeOf(character);
  return true;
}

}  // namespace

std::size_t orlfLengthOfKeptBytes(std::string_view text, NSUInteger encoding) noexcept {
  std::size_t at = 0;
  if (encoding == NSUTF8StringEncoding) {
    for (at = lengthOfASCII(text); at < text.size(); at += lengthOfASCII(text.substr(at))) {
      const UTF8Character character = firstUTF8Character(text.substr(at));
      if (character.isBroken) break;
      at += character.length;
    }
  } else if (!isUTF16(encoding) && isKnown(encoding)) {
    at = lengthOfASCII(text);
  }
  return at;
}

NSStringBytes::NSStringBytes(std::string_view text, NSUInteger encoding, NSUInteger options)
    : remaining_(text),
      encoding_(encoding),
      isLossy_((options & NSStringEncodingConversionAllowLossy) != 0),
      needsMark_(encoding == NSUTF16StringEncoding &&
                 (options & NSStringEncodingConversionExternalRepresentation) != 0) {}

std::optional<std::size_t> NSStringBytes::getBytes(std::span<std::uint8_t> buffer) {
  if (buffer.size() < kLeastSpace)
    throw NSException(NSRangeException, "The buffer is too small for a character.");
  if (!isKnown(encoding_)) return remaining_.empty() ? std::optional<std::size_t>(0) : std::nullopt;
  std::size_t used = 0;
  Bytes bytes;
  if (std::exchange(needsMark_, false)) appendExact(bytes, kByteOrderMark, encoding_);
  const std::size_t before = remaining_.size();
  for (;;) {
    const std::size_t kept =
        orlfLengthOfKeptBytes(remaining_.substr(0, buffer.size() - used), encoding_);
    std::copy_n(remaining_.data(), kept, buffer.begin() + static_cast<std::ptrdiff_t>(used));
    used += kept;
    remaining_.remove_prefix(kept);
    if (remaining_.empty()) break;
    const UTF8Character character = firstUTF8Character(remaining_);
    Bytes next;
    if (!append(next, character.codePoint, encoding_, isLossy_)) break;
    bytes += next;
    if (used + bytes.size() > buffer.size()) break;
    std::copy(bytes.begin(), bytes.end(), buffer.begin() + static_cast<std::ptrdiff_t>(used));
    used += bytes.size();
    bytes.clear();
    remaining_.remove_prefix(character.length);
  }
  if (remaining_.size() == before && before != 0) return std::nullopt;
  return used;
}

std::optional<NSData> dataUsingEncoding(std::string_view string, NSUInteger encoding,
                                        bool allowLossyConversion) {
  if (!isKnown(encoding)) return std::nullopt;
  if (orlfLengthOfKeptBytes(string, encoding) == string.size()) return NSData(string);
  NSUInteger options = NSStringEncodingConversionExternalRepresentation;
  if (allowLossyConversion) options |= NSStringEncodingConversionAllowLossy;
  NSStringBytes pieces(string, encoding, options);
  std::array<std::uint8_t, 4096> buffer{};
  std::vector<std::uint8_t> bytes;
  while (!pieces.remaining().empty()) {
    const std::optional<std::size_t> used = pieces.getBytes(buffer);
    if (!used) return std::nullopt;
    bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(*used));
  }
  return NSData(std::move(bytes));
}

}  // namespace ORLFoundation

#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/text/internal/ByteTables.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace ORLFoundation {
namespace {

using namespace internal::base;
using namespace internal::text;

using Text = std::optional<std::string>;

Text textOfUTF8(std::string_view bytes) {
  constexpr std::string_view kMarkInFront = "\xEF\xBB\xBF";
  if (bytes.starts_with(kMarkInFront)) bytes.remove_prefix(kMarkInFront.size());
  return isUTF8(bytes) ? Text(bytes) : std::nullopt;
}

Text textOfASCII(std::string_view bytes) { return isASCII(bytes) ? Text(bytes) : std::nullopt; }

/// nil when a byte has no character.
Text textOfTable(std::string_view bytes, const ByteTable& table) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const char32_t character = table[static_cast<unsigned char>(byte)];
    if (character == kNoCharacter) return std::nullopt;
    appendUTF8(text, character);
  }
  return text;
}

Text textOfWindowsLatin1(std::string_view bytes) {
  return textOfTable(bytes, windowsLatin1Table());
}

Text textOfISOLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) appendUTF8(text, static_cast<unsigned char>(byte));
  return text;
}

enum class ByteOrder : std::uint8_t { Big, Little };

Text textOfUTF16(std::string_view bytes, ByteOrder order) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  const std::size_t high = order == ByteOrder::Big ? 0 : 1;
  icu::UnicodeString units;
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    const auto byte = [&](std::size_t place) {
      return static_cast<unsigned>(static_cast<unsigned char>(bytes[at + place]));
    };
    units += static_cast<char16_t>(byte(high) << 8 | byte(1 - high));
  }
  for (std::int32_t at = 0; at < units.length(); at = units.moveIndex32(at, 1))
    if (U_IS_SURROGATE(units.char32At(at))) return std::nullopt;
  return internal::text::utf8Of(units);
}

Text textOfMarkedUTF16(std::string_view bytes) {
  constexpr std::size_t kMark = 2;
  if (bytes.starts_with("\xFF\xFE")) return textOfUTF16(bytes.substr(kMark), ByteOrder::Little);
  if (bytes.starts_with("\xFE\xFF")) bytes.remove_prefix(kMark);
  return textOfUTF16(bytes, ByteOrder::Big);
}

Text textOfMacRoman(std::string_view bytes) { return textOfTable(bytes, macRomanTable()); }

}  // namespace

std::optional<std::string> stringWithData(const NSData& data, NSUInteger encoding) {
  switch (encoding) {
    case NSASCIIStringEncoding:
      return textOfASCII(data.text());
    case NSUTF8StringEncoding:
      return textOfUTF8(data.text());
    case NSISOLatin1StringEncoding:
      return textOfISOLatin1(data.text());
    case NSUTF16StringEncoding:
      return textOfMarkedUTF16(data.text());
    case NSUTF16BigEndianStringEncoding:
      return textOfUTF16(data.text(), ByteOrder::Big);
    case NSUTF16LittleEndianStringEncoding:
      return textOfUTF16(data.text(), ByteOrder::Little);
    case NSWindowsCP1252StringEncoding:
      return textOfWindowsLatin1(data.text());
    case NSMacOSRomanStringEncoding:
      return textOfMacRoman(data.text());
    default:
      return std::nullopt;
  }
}

}  // namespace ORLFoundation

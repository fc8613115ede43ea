
#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/ucnv.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace ORLFoundation {
namespace {

using Text = std::optional<std::string>;

bool isUTF8(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  for (std::size_t at = 0; at < text.size();) {
    UChar32 character = U_SENTINEL;
    U8_NEXT(bytes, at, text.size(), character);
    if (character < 0) return false;
  }
  return true;
}

Text textOfUTF8(std::string_view bytes) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  return isUTF8(bytes) ? Text(bytes) : std::nullopt;
}

Text textOfASCII(std::string_view bytes) {
  return internal::base::isASCII(bytes) ? Text(bytes) : std::nullopt;
}

/// The UTF-8 of each byte of an encoding.
using ByteTable = std::array<std::string, 256>;

ByteTable tableOf(const char* converterName) {
  ByteTable table;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
      ucnv_open(converterName, &status), &ucnv_close);
  for (std::size_t byte = 0; U_SUCCESS(status) && byte < table.size(); ++byte) {
    const char source = static_cast<char>(byte);
    const char* from = &source;
    const UChar32 character = ucnv_getNextUChar(converter.get(), &from, from + 1, &status);
    icu::UnicodeString(character).toUTF8String(table[byte]);
  }
  return table;
}

std::string textOfTable(std::string_view bytes, const ByteTable& table) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += table[static_cast<unsigned char>(byte)];
  return text;
}

Text textOfWindowsLatin1(std::string_view bytes) {
  static const auto& table = *new ByteTable(tableOf("windows-1252"));
  constexpr std::string_view kWithoutCharacter = "\x81\x8D\x8F\x90\x9D";
  if (bytes.find_first_of(kWithoutCharacter) != bytes.npos) return std::nullopt;
  return textOfTable(bytes, table);
}

Text textOfMacRoman(std::string_view bytes) {
  static const auto& table = *new ByteTable(tableOf("macintosh"));
  return textOfTable(bytes, table);
}

}  // namespace

std::optional<std::string> stringWithData(const NSData& data, NSUInteger encoding) {
  switch (encoding) {
    case NSASCIIStringEncoding:
      return textOfASCII(data.text());
    case NSUTF8StringEncoding:
      return textOfUTF8(data.text());
    case NSWindowsCP1252StringEncoding:
      return textOfWindowsLatin1(data.text());
    case NSMacOSRomanStringEncoding:
      return textOfMacRoman(data.text());
    default:
      return std::nullopt;
  }
}

}  // namespace ORLFoundation

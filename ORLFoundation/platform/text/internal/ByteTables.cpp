#include <ORLFoundation/platform/text/internal/ByteTables.h>

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::text {
namespace {

ByteTable tableOf(const char* converterName, std::string_view withoutCharacter) {
  ByteTable table;
  table.fill(kNoCharacter);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
      ucnv_open(converterName, &status), &ucnv_close);
  for (std::size_t byte = 0; U_SUCCESS(status) && byte < table.size(); ++byte) {
    const char source = static_cast<char>(byte);
    const char* from = &source;
    const UChar32 character = ucnv_getNextUChar(converter.get(), &from, from + 1, &status);
    if (withoutCharacter.find(source) == withoutCharacter.npos)
      table[byte] = static_cast<char32_t>(character);
  }
  return table;
}

/// Characters in ascending order, each with its byte.
using Bytes = std::vector<std::pair<char32_t, std::uint8_t>>;

Bytes bytesOf(const ByteTable& table) {
  Bytes bytes;
  for (std::size_t byte = 0; byte < table.size(); ++byte)
    if (table[byte] != kNoCharacter)
      bytes.emplace_back(table[byte], static_cast<std::uint8_t>(byte));
  std::sort(bytes.begin(), bytes.end());
  return bytes;
}

std::optional<std::uint8_t> byteIn(const Bytes& bytes, char32_t character) {
  const auto isBelow = [](const auto& entry, char32_t sought) { return entry.first < sought; };
  const auto found = std::lower_bound(bytes.begin(), bytes.end(), character, isBelow);
  if (found == bytes.end() || found->first != character) return std::nullopt;
  return found->second;
}

}  // namespace

const ByteTable& windowsLatin1Table() {
  static const ByteTable table = tableOf("windows-1252", "\x81\x8D\x8F\x90\x9D");
  return table;
}

const ByteTable& macRomanTable() {
  static const ByteTable table = tableOf("macintosh", {});
  return table;
}

std::optional<std::uint8_t> byteOfWindowsLatin1(char32_t character) {
  static const Bytes& bytes = *new Bytes(bytesOf(windowsLatin1Table()));
  return byteIn(bytes, character);
}

std::optional<std::uint8_t> byteOfMacRoman(char32_t character) {
  static const Bytes& bytes = *new Bytes(bytesOf(macRomanTable()));
  return byteIn(bytes, character);
}

}  // namespace ORLFoundation::internal::text

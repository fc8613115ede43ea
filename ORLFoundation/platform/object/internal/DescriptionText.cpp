

#include <ORLFoundation/platform/object/internal/DescriptionText.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF16.h>
#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <cstdint>

namespace ORLFoundation::internal::object {
namespace {

void appendUnit(std::string& out, char16_t unit) {
  out += "\\U";
  base::appendHexByte(out, static_cast<std::uint8_t>(unit >> 8));
  base::appendHexByte(out, static_cast<std::uint8_t>(unit));
}

void appendUnits(std::string& out, char32_t character) {
  base::forEachUnit(character, [&out](char16_t unit) { appendUnit(out, unit); });
}

void appendASCII(std::string& out, char c) {
  switch (c) {
    case '"':
      out += "\\\"";
      break;
    case '\\':
      out += "\\\\";
      break;
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      out += c;
  }
}

}  // namespace

std::string characterText(NSUInteger codePoint) {
  std::string text;
  base::appendUTF8(
      text, codePoint > 0x10ffff ? base::kReplacementCharacter : static_cast<char32_t>(codePoint));
  return text;
}

std::string wellFormed(std::string_view text) {
  if (base::isUTF8(text)) return std::string(text);
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const base::UTF8Character character = base::firstUTF8Character(text);
    base::appendUTF8(out, character.codePoint);
    text.remove_prefix(character.length);
  }
  return out;
}

std::string quotedWhereNeeded(std::string_view text) {
  if (!text.empty() && std::ranges::all_of(text, base::isLetterOrDigit<char>))
    return std::string(text);
  std::string out = "\"";
  while (!text.empty()) {
    const base::UTF8Character character = base::firstUTF8Character(text);
    if (character.codePoint < 0x80) {
      appendASCII(out, text.front());
    } else {
      appendUnits(out, character.codePoint);
    }
    text.remove_prefix(character.length);
  }
  return out += '"';
}

}  // namespace ORLFoundation::internal::object



#include <ORLFoundation/platform/object/internal/DescriptionText.h>

#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace ORLFoundation::internal {
namespace {

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

void appendUnit(std::string& out, std::uint32_t unit) {
  char text[8];
  std::snprintf(text, sizeof text, "\\U%04x", static_cast<unsigned>(unit & 0xffffU));
  out += text;
}

void appendUnits(std::string& out, char32_t character) {
  if (base::unitsInUTF16(character) == 1) return appendUnit(out, character);
  appendUnit(out, 0xd800 + ((character - 0x10000) >> 10));
  appendUnit(out, 0xdc00 + ((character - 0x10000) & 0x3ff));
}

void appendAscii(std::string& out, char c) {
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
  if (!text.empty() && std::ranges::all_of(text, isPlain)) return std::string(text);
  std::string out = "\"";
  while (!text.empty()) {
    const base::UTF8Character character = base::firstUTF8Character(text);
    if (character.codePoint < 0x80) {
      appendAscii(out, text.front());
    } else {
      appendUnits(out, character.codePoint);
    }
    text.remove_prefix(character.length);
  }
  return out += '"';
}

}  // namespace ORLFoundation::internal

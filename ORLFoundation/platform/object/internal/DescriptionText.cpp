

#include <ORLFoundation/platform/object/internal/DescriptionText.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace ORLFoundation::internal {
namespace {

constexpr std::uint32_t kReplacement = 0xfffd;

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// How many bytes the character that begins with this byte has; 1 for a byte that begins none.
std::size_t lengthOfCharacter(unsigned char lead) {
  if (lead >= 0xf0 && lead <= 0xf4) return 4;
  if (lead >= 0xe0 && lead < 0xf0) return 3;
  if (lead >= 0xc2 && lead < 0xe0) return 2;
  return 1;
}

/// Takes one character off the text; bytes that are no UTF-8 read as U+FFFD, one each.
std::uint32_t takeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lengthOfCharacter(lead);
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
  if (length == 1 || text.size() < length ||
      !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length),
                   isContinuation)) {
    text.remove_prefix(1);
    return kReplacement;
  }
  std::uint32_t character = lead & (0xffU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i)
    character = (character << 6) | (static_cast<unsigned char>(text[i]) & 0x3fU);
  text.remove_prefix(length);
  return character <= 0x10ffff ? character : kReplacement;
}

void appendUnit(std::string& out, std::uint32_t unit) {
  char text[8];
  std::snprintf(text, sizeof text, "\\U%04x", static_cast<unsigned>(unit & 0xffffU));
  out += text;
}

void appendCharacter(std::string& out, std::uint32_t character) {
  if (character < 0x10000) return appendUnit(out, character);
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

std::string quotedWhereNeeded(std::string_view text) {
  if (!text.empty() && std::ranges::all_of(text, isPlain)) return std::string(text);
  std::string out = "\"";
  while (!text.empty()) {
    if (static_cast<unsigned char>(text.front()) < 0x80) {
      appendAscii(out, text.front());
      text.remove_prefix(1);
    } else {
      appendCharacter(out, takeCharacter(text));
    }
  }
  return out += '"';
}

}  // namespace ORLFoundation::internal

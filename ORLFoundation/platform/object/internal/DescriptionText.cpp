

#include <ORLFoundation/platform/object/internal/DescriptionText.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace ORLFoundation::internal {
namespace {

constexpr std::uint32_t kReplacement = 0xfffd;

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

struct Sequence {
  std::size_t length;
  std::uint32_t least;  // smaller code points have a shorter form
};

/// What the byte begins; a length of 0 where it begins no character.
Sequence sequenceOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0};
  if (lead >= 0xc2 && lead < 0xe0) return {2, 0x80};
  if (lead >= 0xe0 && lead < 0xf0) return {3, 0x800};
  if (lead >= 0xf0 && lead <= 0xf4) return {4, 0x10000};
  return {0, 0};
}

/// The character that well-formed UTF-8 begins with; nil for other bytes.
std::optional<std::uint32_t> characterOf(std::string_view text, Sequence sequence) {
  if (sequence.length == 0 || text.size() < sequence.length) return std::nullopt;
  std::uint32_t character = static_cast<unsigned char>(text.front());
  if (sequence.length > 1) character &= 0xffU >> (sequence.length + 1);
  for (const char byte : text.substr(1, sequence.length - 1)) {
    if ((static_cast<unsigned char>(byte) & 0xc0U) != 0x80) return std::nullopt;
    character = (character << 6) | (static_cast<unsigned char>(byte) & 0x3fU);
  }
  const bool isSurrogate = character >= 0xd800 && character <= 0xdfff;
  if (character < sequence.least || character > 0x10ffff || isSurrogate) return std::nullopt;
  return character;
}

/// Takes one character off the text; bytes that are no UTF-8 read as U+FFFD, one each.
std::uint32_t takeCharacter(std::string_view& text) {
  const Sequence sequence = sequenceOf(static_cast<unsigned char>(text.front()));
  const auto character = characterOf(text, sequence);
  text.remove_prefix(character ? sequence.length : 1);
  return character.value_or(kReplacement);
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

std::string characterText(NSUInteger codePoint) {
  const bool isSurrogate = codePoint >= 0xd800 && codePoint <= 0xdfff;
  const auto code =
      codePoint > 0x10ffff || isSurrogate ? kReplacement : static_cast<std::uint32_t>(codePoint);
  const auto byte = [](std::uint32_t bits) { return static_cast<char>(bits); };
  const auto tail = [&](unsigned shift) { return byte(0x80U | ((code >> shift) & 0x3fU)); };
  if (code < 0x80) return {byte(code)};
  if (code < 0x800) return {byte(0xc0U | (code >> 6)), tail(0)};
  if (code < 0x10000) return {byte(0xe0U | (code >> 12)), tail(6), tail(0)};
  return {byte(0xf0U | (code >> 18)), tail(12), tail(6), tail(0)};
}

std::string wellFormed(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::string_view before = text;
    if (takeCharacter(text) == kReplacement) {
      out += characterText(kReplacement);
    } else {
      out += before.substr(0, before.size() - text.size());
    }
  }
  return out;
}

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

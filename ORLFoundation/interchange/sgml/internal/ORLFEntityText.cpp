#include <ORLFoundation/interchange/sgml/internal/ORLFEntityText.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <array>
#include <cstddef>

namespace ORLFoundation::internal::sgml {
namespace {

using namespace internal::base;

enum class Kind : unsigned char { kPlain, kEscaped, kRemoved, kBeyondASCII };

constexpr std::array<Kind, 256> kindsOfBytes() {
  std::array<Kind, 256> kinds{};
  for (std::size_t byte = 0; byte < kinds.size(); ++byte)
    kinds[byte] = byte >= 0x80                  ? Kind::kBeyondASCII
                  : byte < 0x20 || byte == 0x7F ? Kind::kRemoved
                                                : Kind::kPlain;
  for (const char c : std::string_view("&<>\""))
    kinds[static_cast<unsigned char>(c)] = Kind::kEscaped;
  return kinds;
}
constexpr std::array<Kind, 256> kKinds = kindsOfBytes();

Kind kindOf(char c) noexcept { return kKinds[static_cast<unsigned char>(c)]; }

std::string_view entityOf(char c) noexcept {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    default:
      return "&quot;";
  }
}

bool isRemoved(char32_t character) {
  static const NSCharacterSet& controls = *NSCharacterSet::controlCharacterSet();
  static const NSCharacterSet& illegal = *NSCharacterSet::illegalCharacterSet();
  return controls.longCharacterIsMember(character) || illegal.longCharacterIsMember(character);
}

/// Appends the character beyond ASCII that a text begins with; its length.
std::size_t appendCharacter(std::string& result, std::string_view text) {
  const UTF8Character character = firstUTF8Character(text);
  if (character.isBroken)
    appendUTF8(result, kReplacementCharacter);
  else if (!isRemoved(character.codePoint))
    result += text.substr(0, character.length);
  return character.length;
}

}  // namespace

void appendEscaped(std::string& result, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && kindOf(text[end]) == Kind::kPlain) ++end;
    result += text.substr(at, end - at);
    at = end;
    if (at == text.size()) return;
    const Kind kind = kindOf(text[at]);
    if (kind == Kind::kBeyondASCII) {
      at += appendCharacter(result, text.substr(at));
    } else {
      if (kind == Kind::kEscaped) result += entityOf(text[at]);
      ++at;
    }
  }
}

void appendWithoutControls(std::string& result, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const Kind kind = kindOf(text[at]);
    if (kind == Kind::kBeyondASCII) {
      at += appendCharacter(result, text.substr(at));
    } else {
      if (kind != Kind::kRemoved) result += text[at];
      ++at;
    }
  }
}

}  // namespace ORLFoundation::internal::sgml

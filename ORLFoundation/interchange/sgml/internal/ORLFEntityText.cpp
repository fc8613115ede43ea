#include <ORLFoundation/interchange/sgml/ORLFEntityText.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

#ifdef __SSE2__
constexpr std::size_t kBlock = 16;

/// A bit for each byte of a block that is not plain.
std::uint32_t othersIn(const char* bytes) noexcept {
  const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  const auto equals = [](__m128i left, char c) { return _mm_cmpeq_epi8(left, _mm_set1_epi8(c)); };
  // As signed numbers, controls and all beyond ASCII are less than a blank.
  const __m128i removed =
      _mm_or_si128(_mm_cmplt_epi8(block, _mm_set1_epi8(' ')), equals(block, '\x7F'));
  // < and > differ in one bit, the quotation mark and & too.
  const __m128i brackets = equals(_mm_or_si128(block, _mm_set1_epi8('<' ^ '>')), '>');
  const __m128i marks = equals(_mm_or_si128(block, _mm_set1_epi8('"' ^ '&')), '&');
  const __m128i others = _mm_or_si128(removed, _mm_or_si128(brackets, marks));
  return static_cast<std::uint32_t>(_mm_movemask_epi8(others));
}
#endif

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

/// Replaces every occurrence of an entity from left to right, in place.
void replaceEntity(std::string& text, std::string_view entity, char plain) {
  std::size_t found = text.find(entity);
  if (found == text.npos) return;
  std::size_t end = found;
  while (found != text.npos) {
    text[end++] = plain;
    const std::size_t from = found + entity.size();
    found = text.find(entity, from);
    const std::size_t count = std::min(found, text.size()) - from;
    std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(from), count,
                text.begin() + static_cast<std::ptrdiff_t>(end));
    end += count;
  }
  text.resize(end);
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

std::size_t lengthOfPlainText(std::string_view text) noexcept {
  std::size_t end = 0;
#ifdef __SSE2__
  for (; end + kBlock <= text.size(); end += kBlock)
    if (const std::uint32_t others = othersIn(text.data() + end); others != 0)
      return end + static_cast<std::size_t>(std::countr_zero(others));
#endif
  while (end < text.size() && kindOf(text[end]) == Kind::kPlain) ++end;
  return end;
}

std::string_view withoutControlsAtEnd(std::string_view text) noexcept {
  while (!text.empty() && kindOf(text.back()) == Kind::kRemoved) text.remove_suffix(1);
  return text;
}

void unescape(std::string& text) {
  for (const char plain : std::string_view("&<>\"&")) replaceEntity(text, entityOf(plain), plain);
}

void appendEscaped(std::string& result, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t plain = lengthOfPlainText(text.substr(at));
    result += text.substr(at, plain);
    at += plain;
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

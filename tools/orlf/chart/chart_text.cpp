#include "chart/chart_text.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace orlftool {
namespace {

constexpr std::string_view kEllipsis = "\u2026", kTrueMinus = "\u2212";

bool isHidden(UChar32 character) {
  const auto type = static_cast<UCharCategory>(u_charType(character));
  return type == U_CONTROL_CHAR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR ||
         U_IS_UNICODE_NONCHAR(character);
}

std::string writtenOut(UChar32 character) {
  if (character == '\n') return R"(\n)";
  if (character == '\r') return R"(\r)";
  if (character == '\t') return R"(\t)";
  std::array<char, 16> text{};
  (void)std::snprintf(text.data(), text.size(), character > 0xFFFF ? R"(\U%08X)" : R"(\u%04X)",
                      static_cast<unsigned>(character));
  return text.data();
}

/// Where characters as readers see them end, in UTF-16 units.
std::vector<std::int32_t> characterEnds(const icu::UnicodeString& text) {
  std::vector<std::int32_t> ends{0};
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> characters(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  if (U_FAILURE(status)) return ends;
  characters->setText(text);
  while (characters->next() != icu::BreakIterator::DONE) ends.push_back(characters->current());
  return ends;
}

}  // namespace

std::string visibleText(std::string_view text) {
  const auto units = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  icu::UnicodeString shown;
  for (std::int32_t at = 0; at < units.length(); at = units.moveIndex32(at, 1)) {
    const UChar32 character = units.char32At(at);
    if (isHidden(character)) {
      shown.append(icu::UnicodeString::fromUTF8(writtenOut(character)));
    } else {
      shown.append(character);
    }
  }
  return utf8(shown);
}

std::string fittedText(const std::string& text, double width, TextStyle style,
                       const TextRuler& ruler) {
  if (ruler.width(text, style) <= width) return text;
  const auto units = icu::UnicodeString::fromUTF8(text);
  const std::vector<std::int32_t> ends = characterEnds(units);
  const auto cutAfter = [&](std::size_t count) {
    return utf8(units.tempSubString(0, ends[count])).append(kEllipsis);
  };
  std::size_t fits = 0;  // characters that fit, and a count that does not
  for (std::size_t tooMany = ends.size(); tooMany - fits > 1;) {
    const std::size_t middle = fits + (tooMany - fits) / 2;
    (ruler.width(cutAfter(middle), style) <= width ? fits : tooMany) = middle;
  }
  return cutAfter(fits);
}

std::string withTrueMinus(std::string_view number) {
  std::string text;
  for (const char character : number) {
    if (character == '-') {
      text += kTrueMinus;
    } else {
      text += character;
    }
  }
  return text;
}

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  text.toUTF8String(bytes);
  return bytes;
}

}  // namespace orlftool

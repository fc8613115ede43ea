
#include <ORLFoundation/platform/text/internal/FoldedText.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>

namespace ORLFoundation::internal::text {
namespace {

/// Marks on letters before this one, the end of Cyrillic, are passed over where marks do not count.
constexpr UChar32 kEndOfMarkedScripts = 0x0510;

bool isMark(UChar32 character) { return (U_GET_GC_MASK(character) & U_GC_M_MASK) != 0; }

const icu::Normalizer2& decomposer() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* instance = icu::Normalizer2::getNFDInstance(status);
  if (U_FAILURE(status)) throw NSException(NSInvalidArgumentException, u_errorName(status));
  return *instance;
}

icu::UnicodeString decomposed(const icu::UnicodeString& text) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString result = decomposer().normalize(text, status);
  return U_SUCCESS(status) ? result : text;
}

/// Leaves out the marks that follow a letter of the scripts whose marks are passed over.
icu::UnicodeString withoutMarks(const icu::UnicodeString& text) {
  icu::UnicodeString result;
  bool passesOver = false;
  for (std::int32_t at = 0; at < text.length();) {
    const UChar32 character = text.char32At(at);
    at += U16_LENGTH(character);
    if (!isMark(character)) {
      passesOver = character < kEndOfMarkedScripts;
    } else if (passesOver) {
      continue;
    }
    result.append(character);
  }
  return result;
}

/// The end of the character at `from` with the marks that follow it.
std::int32_t endOfCharacter(const icu::UnicodeString& text, std::int32_t from, bool literal) {
  std::int32_t at = text.moveIndex32(from, 1);
  while (!literal && at < text.length() && isMark(text.char32At(at))) at = text.moveIndex32(at, 1);
  return at;
}

char16_t foldedASCII(char16_t unit, NSUInteger options) {
  const bool changes = (options & NSCaseInsensitiveSearch) != 0 && base::isUpperLetter(unit);
  return changes ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

std::vector<std::size_t> borders(std::u16string_view needle) {
  std::vector<std::size_t> table(needle.size(), 0);
  for (std::size_t at = 1, length = 0; at < needle.size(); ++at) {
    while (length > 0 && needle[at] != needle[length]) length = table[length - 1];
    if (needle[at] == needle[length]) ++length;
    table[at] = length;
  }
  return table;
}

}  // namespace

icu::UnicodeString folded(const icu::UnicodeString& text, NSUInteger options) {
  const bool literal = (options & NSLiteralSearch) != 0;
  icu::UnicodeString result = literal ? text : decomposed(text);
  if ((options & NSCaseInsensitiveSearch) != 0) {
    result.foldCase();
    if (!literal) result = decomposed(result);
  }
  return (options & NSDiacriticInsensitiveSearch) != 0 ? withoutMarks(result) : result;
}

FoldedText::FoldedText(const icu::UnicodeString& text, NSUInteger options) {
  const bool literal = (options & NSLiteralSearch) != 0;
  const auto size = static_cast<std::size_t>(text.length());
  units.reserve(size);
  origins.reserve(size + 1);
  for (std::int32_t at = 0; at < text.length();) {
    const std::int32_t end = endOfCharacter(text, at, literal);
    origins.push_back(at);
    if (end == at + 1 && text[at] < 0x80) {
      units += foldedASCII(text[at], options);
    } else {
      const icu::UnicodeString character = folded(text.tempSubStringBetween(at, end), options);
      units.append(character.getBuffer(), static_cast<std::size_t>(character.length()));
      origins.resize(units.size(), ~at);
    }
    at = end;
  }
  origins.push_back(text.length());
}

std::size_t unitAtOrAfter(const FoldedText& text, NSUInteger place) {
  const auto isBefore = [place](std::int32_t origin) {
    return static_cast<NSUInteger>(origin < 0 ? ~origin : origin) < place;
  };
  const auto found = std::partition_point(text.origins.begin(), text.origins.end(), isBefore);
  return static_cast<std::size_t>(std::distance(text.origins.begin(), found));
}

// The search of Knuth, Morris and Pratt; matches that do not lie at the bounds are passed over.
std::size_t findAtBounds(const FoldedText& text, std::u16string_view needle, std::size_t from) {
  if (needle.empty()) return std::u16string::npos;
  const std::vector<std::size_t> table = borders(needle);
  for (std::size_t at = from, length = 0; at < text.units.size(); ++at) {
    while (length > 0 && text.units[at] != needle[length]) length = table[length - 1];
    if (text.units[at] == needle[length]) ++length;
    if (length < needle.size()) continue;
    const std::size_t begin = at + 1 - length;
    if (text.origins[begin] >= 0 && text.origins[at + 1] >= 0) return begin;
    length = table[length - 1];
  }
  return std::u16string::npos;
}

}  // namespace ORLFoundation::internal::text

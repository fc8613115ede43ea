
#include <ORLFoundation/platform/predicate/internal/PredicatePatterns.h>

#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/regex.h>

#include <cstdint>
#include <vector>

namespace ORLFoundation::internal::predicate {
namespace {

// ICU counts time in steps of about a millisecond, the stack in bytes.
constexpr std::int32_t kLongestMatch = 1000;
constexpr std::int32_t kLargestStack = 8 * 1024 * 1024;

constexpr UChar32 kAnyCharacter = -1;
constexpr UChar32 kAnyText = -2;

/// The code points under the options; composed, so that a letter with its marks is one.
std::vector<UChar32> charactersOf(std::string_view string, NSUInteger options) {
  const icu::UnicodeString text = text::utf16Of(stringByFoldingWithOptions(string, options));
  std::vector<UChar32> characters;
  for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1))
    characters.push_back(text.char32At(at));
  return characters;
}

std::vector<UChar32> wildcardsOf(const std::vector<UChar32>& characters) {
  std::vector<UChar32> pattern;
  bool isEscaped = false;
  for (const UChar32 character : characters) {
    if (!isEscaped && character == u'\\') {
      isEscaped = true;
      continue;
    }
    const bool isWild = !isEscaped && (character == u'?' || character == u'*');
    pattern.push_back(!isWild ? character : character == u'?' ? kAnyCharacter : kAnyText);
    isEscaped = false;
  }
  return pattern;
}

// Each star takes as little as it can; only the latest one is ever made longer.
bool fitsCharacters(const std::vector<UChar32>& text, const std::vector<UChar32>& pattern) {
  std::size_t at = 0;
  std::size_t wanted = 0;
  std::size_t star = pattern.size();
  std::size_t afterStar = 0;
  while (at < text.size()) {
    if (wanted < pattern.size() && pattern[wanted] == kAnyText) {
      star = wanted++;
      afterStar = at;
    } else if (wanted < pattern.size() &&
               (pattern[wanted] == kAnyCharacter || pattern[wanted] == text[at])) {
      ++wanted;
      ++at;
    } else if (star < pattern.size()) {
      wanted = star + 1;
      at = ++afterStar;
    } else {
      return false;
    }
  }
  while (wanted < pattern.size() && pattern[wanted] == kAnyText) ++wanted;
  return wanted == pattern.size();
}

[[noreturn]] void raise(const char* what, std::string_view pattern, UErrorCode status) {
  throw NSException(NSInvalidArgumentException, "Can't do regex matching, reason: (" +
                                                    std::string(what) + " " + u_errorName(status) +
                                                    ", pattern " + std::string(pattern) + ")");
}

}  // namespace

bool fitsWildcards(std::string_view text, std::string_view pattern, NSUInteger options) {
  return fitsCharacters(charactersOf(text, options), wildcardsOf(charactersOf(pattern, options)));
}

bool fitsExpression(std::string_view text, std::string_view pattern, NSUInteger options) {
  // Case is left to the expression: folding it would turn \D into \d.
  const bool withoutMarks = (options & NSDiacriticInsensitiveSearch) != 0;
  const auto unitsOf = [withoutMarks](std::string_view string) {
    return text::utf16Of(withoutMarks
                             ? stringByFoldingWithOptions(string, NSDiacriticInsensitiveSearch)
                             : std::string(string));
  };
  const icu::UnicodeString input = unitsOf(text);
  const bool anyCase = (options & NSCaseInsensitiveSearch) != 0;
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(unitsOf(pattern), anyCase ? UREGEX_CASE_INSENSITIVE : 0, status);
  if (U_FAILURE(status)) raise("Can't open pattern", pattern, status);
  matcher.setTimeLimit(kLongestMatch, status);
  matcher.setStackLimit(kLargestStack, status);
  matcher.reset(input);
  const bool fits = matcher.matches(status) != 0;
  if (U_FAILURE(status)) raise("Can't match", pattern, status);
  return fits;
}

}  // namespace ORLFoundation::internal::predicate


#include <ORLFoundation/platform/text/NSStringCase.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>

namespace ORLFoundation {
namespace {

using internal::base::isASCII;
using internal::base::isLetter;
using internal::base::lowerASCII;
using internal::base::upperASCII;
using internal::text::utf16Of;
using internal::text::utf8Of;

std::string mapped(std::string_view text, char (*map)(char)) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), map);
  return result;
}

/// What stands inside a run of letters without being cased: marks, format characters, modifiers and
/// the apostrophes.
bool isCaseIgnorable(UChar32 character) {
  constexpr std::uint32_t kIgnorable =
      U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK | U_GC_LM_MASK | U_GC_SK_MASK;
  return character == u'\'' || character == u'\u2019' ||
         (U_GET_GC_MASK(character) & kIgnorable) != 0;
}

bool isCased(UChar32 character) { return u_hasBinaryProperty(character, UCHAR_CASED) != 0; }

std::string capitalizedASCII(std::string_view text) {
  std::string result(text);
  bool isInRun = false;
  for (char& c : result) {
    if (isLetter(c)) {
      c = isInRun ? lowerASCII(c) : upperASCII(c);
      isInRun = true;
    } else if (c != '\'' && c != '^' && c != '`') {
      isInRun = false;
    }
  }
  return result;
}

/// The end of the run of letters that begins at `from`.
std::int32_t endOfRun(const icu::UnicodeString& text, std::int32_t from) {
  std::int32_t at = from;
  while (at < text.length()) {
    const UChar32 character = text.char32At(at);
    if (!isCased(character) && !isCaseIgnorable(character)) break;
    at += U16_LENGTH(character);
  }
  return at;
}

void appendCapitalizedRun(const icu::UnicodeString& run, const icu::Locale& locale,
                          icu::UnicodeString& result) {
  icu::UnicodeString title = run;
  title.toTitle(nullptr, locale, U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_BREAK_ADJUSTMENT);
  result.append(title);
}

std::string capitalized(std::string_view text, const icu::Locale& locale) {
  const icu::UnicodeString units = utf16Of(text);
  icu::UnicodeString result;
  for (std::int32_t at = 0; at < units.length();) {
    const UChar32 character = units.char32At(at);
    const std::int32_t end = isCased(character) ? endOfRun(units, at) : at;
    if (end > at) {
      appendCapitalizedRun(units.tempSubStringBetween(at, end), locale, result);
      at = end;
    } else {
      result.append(character);
      at += U16_LENGTH(character);
    }
  }
  return utf8Of(result);
}

/// Whether a language may map letters by rules of its own; codes of three letters are left to ICU.
bool hasOwnLetterRules(std::string_view localeIdentifier) {
  constexpr std::string_view kLanguages[] = {"az", "el", "hy", "lt", "nl", "tr"};
  const std::string_view language =
      localeIdentifier.substr(0, localeIdentifier.find_first_of("_-@."));
  return language.size() > 2 ||
         std::any_of(std::begin(kLanguages), std::end(kLanguages),
                     [&](std::string_view known) { return language == known; });
}

}  // namespace

std::string uppercaseString(std::string_view text) {
  if (isASCII(text)) return mapped(text, upperASCII);
  return utf8Of(utf16Of(text).toUpper(icu::Locale::getRoot()));
}

std::string lowercaseString(std::string_view text) {
  if (isASCII(text)) return mapped(text, lowerASCII);
  return utf8Of(utf16Of(text).toLower(icu::Locale::getRoot()));
}

std::string capitalizedString(std::string_view text) {
  return isASCII(text) ? capitalizedASCII(text) : capitalized(text, icu::Locale::getRoot());
}

std::string capitalizedStringWithLocale(std::string_view text, std::string_view localeIdentifier) {
  if (!hasOwnLetterRules(localeIdentifier)) return capitalizedString(text);
  return capitalized(text, icu::Locale(std::string(localeIdentifier).c_str()));
}

}  // namespace ORLFoundation

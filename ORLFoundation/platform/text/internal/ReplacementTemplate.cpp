
#include <ORLFoundation/platform/text/internal/ReplacementTemplate.h>

#include <ORLFoundation/platform/base/ASCII.h>

namespace ORLFoundation::internal::text {

ReplacementTemplate::ReplacementTemplate(const icu::UnicodeString& text,
                                         const icu::RegexPattern& pattern, std::int32_t groupCount)
    : groupCount_(groupCount), pieces_{{icu::UnicodeString(), kNoGroup}} {
  for (std::int32_t at = 0; at < text.length();) {
    const char16_t unit = text.charAt(at);
    if (unit == u'\\') {
      at = readEscape(text, at + 1);
    } else if (unit == u'$') {
      at = readGroup(text, at + 1, pattern);
    } else {
      pieces_.back().text.append(unit);
      ++at;
    }
  }
}

/// Takes what stands behind a backslash; answers where the template goes on.
std::int32_t ReplacementTemplate::readEscape(const icu::UnicodeString& text, std::int32_t at) {
  if (at >= text.length()) return at;
  const char16_t unit = text.charAt(at);
  if (unit == u'u' || unit == u'U') {
    std::int32_t end = at;
    const UChar32 character = text.unescapeAt(end);
    if (character >= 0) {
      pieces_.back().text.append(character);
      return end;
    }
  }
  pieces_.back().text.append(unit);
  return at + 1;
}

/// The same for what stands behind a dollar sign.
std::int32_t ReplacementTemplate::readGroup(const icu::UnicodeString& text, std::int32_t at,
                                            const icu::RegexPattern& pattern) {
  const char16_t unit = at < text.length() ? text.charAt(at) : u'\0';
  if (base::isDigit(unit)) return readNumber(text, at);
  const std::int32_t brace = unit == u'{' ? text.indexOf(u'}', at) : -1;
  if (brace >= 0) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t group =
        pattern.groupNumberFromName(text.tempSubStringBetween(at + 1, brace), status);
    if (U_SUCCESS(status)) {
      pieces_.back().group = group;
      pieces_.push_back({icu::UnicodeString(), kNoGroup});
      return brace + 1;
    }
  }
  pieces_.back().text.append(u'$');
  return at;
}

std::int32_t ReplacementTemplate::readNumber(const icu::UnicodeString& text, std::int32_t at) {
  std::int32_t group = text.charAt(at) - u'0';
  for (++at; at < text.length() && base::isDigit(text.charAt(at)); ++at) {
    const std::int32_t longer = group * 10 + (text.charAt(at) - u'0');
    if (longer > groupCount_) break;
    group = longer;
  }
  if (group > groupCount_) return at;
  pieces_.back().group = group;
  pieces_.push_back({icu::UnicodeString(), kNoGroup});
  return at;
}

void ReplacementTemplate::appendTo(icu::UnicodeString& answer, const icu::UnicodeString& text,
                                   const icu::RegexMatcher& matcher) const {
  for (const Piece& piece : pieces_) {
    answer.append(piece.text);
    if (piece.group == kNoGroup) continue;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t begin = matcher.start(piece.group, status);
    const std::int32_t end = matcher.end(piece.group, status);
    if (U_SUCCESS(status) && begin >= 0) answer.append(text, begin, end - begin);
  }
}

}  // namespace ORLFoundation::internal::text

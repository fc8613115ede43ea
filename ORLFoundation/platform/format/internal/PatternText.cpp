#include <ORLFoundation/platform/format/internal/PatternText.h>

#include <unicode/uchar.h>

namespace ORLFoundation::internal::format {

std::vector<icu::UnicodeString> wordsOf(const icu::UnicodeString& pattern) {
  std::vector<icu::UnicodeString> words;
  bool quoted = false;
  icu::UnicodeString word;
  for (std::int32_t at = 0; at < pattern.length(); ++at) {
    const char16_t unit = pattern[at];
    if (unit != u'\'') {
      if (quoted && u_isalpha(unit)) word.append(unit);
      continue;
    }
    if (quoted && !word.isEmpty()) words.push_back(word);
    word.remove();
    quoted = !quoted;
  }
  return words;
}

bool holdsInOrder(const icu::UnicodeString& text, const std::vector<icu::UnicodeString>& words) {
  std::int32_t from = 0;
  for (const icu::UnicodeString& word : words) {
    const std::int32_t found = text.indexOf(word, from);
    if (found < 0) return false;
    from = found + word.length();
  }
  return true;
}

bool endsInWhiteSpace(const icu::UnicodeString& text, std::int32_t from) {
  while (from < text.length() && u_isUWhiteSpace(text[from])) ++from;
  return from == text.length();
}

bool asksForAny(const icu::UnicodeString& pattern, std::u16string_view letters) {
  bool quoted = false;
  for (std::int32_t at = 0; at < pattern.length(); ++at) {
    const char16_t unit = pattern[at];
    if (unit == u'\'') quoted = !quoted;
    if (!quoted && letters.find(unit) != std::u16string_view::npos) return true;
  }
  return false;
}

}  // namespace ORLFoundation::internal::format

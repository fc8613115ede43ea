/// What the patterns of dates and the texts read under them are looked at for.
#pragma once

#include <unicode/unistr.h>

#include <string_view>
#include <vector>

namespace ORLFoundation::internal::format {

/// The words between quotes of a pattern that hold letters: 'T', 'GMT'.
[[nodiscard]] std::vector<icu::UnicodeString> wordsOf(const icu::UnicodeString& pattern);
[[nodiscard]] bool holdsInOrder(const icu::UnicodeString& text,
                                const std::vector<icu::UnicodeString>& words);
/// Whether nothing but white space follows.
[[nodiscard]] bool endsInWhiteSpace(const icu::UnicodeString& text, std::int32_t from);
/// Whether a letter of the list stands outside of quotes.
[[nodiscard]] bool asksForAny(const icu::UnicodeString& pattern, std::u16string_view letters);

}  // namespace ORLFoundation::internal::format

/// What locales say about dates: formats of styles and templates, names, and words for days near
/// the current one. Locales are ICU's identifiers, whose keyword tells a calendar.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>
#include <unicode/dtfmtsym.h>
#include <unicode/smpdtfmt.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::format {

/// The identifier with another calendar.
[[nodiscard]] std::string localeWithCalendar(const std::string& locale, std::string_view calendar);
/// "gregorian", "buddhist": that of the keyword, else that of the locale's region.
[[nodiscard]] std::string calendarOfLocale(const std::string& locale);

/// ICU's formatter of the styles; null for two that are none.
[[nodiscard]] std::unique_ptr<icu::SimpleDateFormat> formatOfStyles(const icu::Locale& locale,
                                                                    NSUInteger dateStyle,
                                                                    NSUInteger timeStyle);
/// The format of the styles, 1 short to 4 full; any other is none. Empty for two of those.
[[nodiscard]] std::string patternOfStyles(const std::string& locale, NSUInteger dateStyle,
                                          NSUInteger timeStyle);
/// The locale's own format for the letters of a template.
[[nodiscard]] std::string patternOfTemplate(const std::string& locale, std::string_view letters);

[[nodiscard]] std::vector<std::string> monthNames(const std::string& locale,
                                                  icu::DateFormatSymbols::DtContextType context,
                                                  icu::DateFormatSymbols::DtWidthType width);
/// From Sunday on.
[[nodiscard]] std::vector<std::string> weekdayNames(const std::string& locale,
                                                    icu::DateFormatSymbols::DtContextType context,
                                                    icu::DateFormatSymbols::DtWidthType width);

/// The word of a day that many days after the current one ("Today", "Tomorrow", with a capital
/// letter where the language has them); nil where the locale has none.
[[nodiscard]] std::optional<std::string> wordOfDay(const std::string& locale, NSInteger day);
/// How many days after the current one a word tells; nil for any other text.
[[nodiscard]] std::optional<NSInteger> dayOfWord(const std::string& locale, std::string_view word);
/// The format of both styles with the words of a day, in quotes, in place of the date's format.
[[nodiscard]] std::string patternWithWord(const std::string& locale, NSUInteger dateStyle,
                                          NSUInteger timeStyle, std::string_view word);

}  // namespace ORLFoundation::internal::format

#include <ORLFoundation/platform/format/internal/DateStyles.h>

#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/dtptngen.h>
#include <unicode/reldatefmt.h>
#include <unicode/udisplaycontext.h>

#include <cstdint>
#include <map>
#include <mutex>

namespace ORLFoundation::internal::format {

using text::utf16Of;
using text::utf8Of;

namespace {

icu::Locale localeOf(const std::string& identifier) { return icu::Locale(identifier.c_str()); }

constexpr icu::DateFormat::EStyle kStyles[] = {icu::DateFormat::kNone, icu::DateFormat::kShort,
                                               icu::DateFormat::kMedium, icu::DateFormat::kLong,
                                               icu::DateFormat::kFull};

icu::DateFormat::EStyle styleOf(NSUInteger style) {
  return style < std::size(kStyles) ? kStyles[style] : icu::DateFormat::kNone;
}

std::vector<std::string> texts(const icu::UnicodeString* units, std::int32_t count,
                               std::int32_t from) {
  std::vector<std::string> names;
  for (std::int32_t i = from; i < count; ++i) names.push_back(utf8Of(units[i]));
  return names;
}

icu::UnicodeString foldedCase(icu::UnicodeString text) { return text.trim().foldCase(); }

// The days that some language has a word for.
constexpr NSInteger kFirstDayWithWord = -2;
constexpr NSInteger kLastDayWithWord = 2;
constexpr UDateDirection kDirections[] = {UDAT_DIRECTION_LAST_2, UDAT_DIRECTION_LAST,
                                          UDAT_DIRECTION_THIS, UDAT_DIRECTION_NEXT,
                                          UDAT_DIRECTION_NEXT_2};

icu::UnicodeString quoted(icu::UnicodeString words) {
  words.findAndReplace(u"'", u"''");
  return u"'" + words + u"'";
}

}  // namespace

std::string localeWithCalendar(const std::string& locale, std::string_view calendar) {
  icu::Locale made = localeOf(locale);
  UErrorCode status = U_ZERO_ERROR;
  made.setKeywordValue("calendar", std::string(calendar).c_str(), status);
  return U_SUCCESS(status) ? made.getName() : locale;
}

std::string calendarOfLocale(const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(localeOf(locale), status));
  return U_SUCCESS(status) && calendar ? calendar->getType() : "gregorian";
}

std::unique_ptr<icu::SimpleDateFormat> formatOfStyles(const icu::Locale& locale,
                                                      NSUInteger dateStyle, NSUInteger timeStyle) {
  const icu::DateFormat::EStyle date = styleOf(dateStyle);
  const icu::DateFormat::EStyle time = styleOf(timeStyle);
  if (date == icu::DateFormat::kNone && time == icu::DateFormat::kNone) return nullptr;
  std::unique_ptr<icu::DateFormat> format(
      icu::DateFormat::createDateTimeInstance(date, time, locale));
  auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format.get());
  if (simple != nullptr) static_cast<void>(format.release());
  return std::unique_ptr<icu::SimpleDateFormat>(simple);
}

std::string patternOfStyles(const std::string& locale, NSUInteger dateStyle, NSUInteger timeStyle) {
  const auto format = formatOfStyles(localeOf(locale), dateStyle, timeStyle);
  icu::UnicodeString pattern;
  return format ? utf8Of(format->toPattern(pattern)) : std::string();
}

std::string patternOfTemplate(const std::string& locale, std::string_view letters) {
  // Slow to make, so each is kept; not all of them, should a program walk through all locales.
  static std::mutex lock;
  static std::map<std::string, std::unique_ptr<icu::DateTimePatternGenerator>> generators;
  constexpr std::size_t kMostGenerators = 32;
  const std::lock_guard guard(lock);
  UErrorCode status = U_ZERO_ERROR;
  if (generators.size() >= kMostGenerators && !generators.contains(locale)) generators.clear();
  auto& generator = generators[locale];
  if (!generator)
    generator.reset(icu::DateTimePatternGenerator::createInstance(localeOf(locale), status));
  if (U_FAILURE(status) || !generator) return {};
  const icu::UnicodeString pattern = generator->getBestPattern(utf16Of(letters), status);
  return U_SUCCESS(status) ? utf8Of(pattern) : std::string();
}

std::vector<std::string> monthNames(const std::string& locale,
                                    icu::DateFormatSymbols::DtContextType context,
                                    icu::DateFormatSymbols::DtWidthType width) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DateFormatSymbols symbols(localeOf(locale), status);
  std::int32_t count = 0;
  if (U_FAILURE(status)) return {};
  const icu::UnicodeString* names = symbols.getMonths(count, context, width);
  return texts(names, count, 0);
}

std::vector<std::string> weekdayNames(const std::string& locale,
                                      icu::DateFormatSymbols::DtContextType context,
                                      icu::DateFormatSymbols::DtWidthType width) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DateFormatSymbols symbols(localeOf(locale), status);
  std::int32_t count = 0;
  if (U_FAILURE(status)) return {};
  const icu::UnicodeString* names = symbols.getWeekdays(count, context, width);
  return texts(names, count, 1);
}

std::optional<std::string> wordOfDay(const std::string& locale, NSInteger day) {
  if (day < kFirstDayWithWord || day > kLastDayWithWord) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const icu::RelativeDateTimeFormatter formatter(localeOf(locale), nullptr, UDAT_STYLE_LONG,
                                                 UDISPCTX_CAPITALIZATION_FOR_BEGINNING_OF_SENTENCE,
                                                 status);
  icu::UnicodeString word;
  if (U_SUCCESS(status))
    formatter.format(kDirections[day - kFirstDayWithWord], UDAT_ABSOLUTE_DAY, word, status);
  if (U_FAILURE(status) || word.isEmpty()) return std::nullopt;
  return utf8Of(word);
}

std::optional<NSInteger> dayOfWord(const std::string& locale, std::string_view word) {
  const icu::UnicodeString wanted = foldedCase(utf16Of(word));
  for (NSInteger day = kFirstDayWithWord; day <= kLastDayWithWord; ++day) {
    const auto known = wordOfDay(locale, day);
    if (known && foldedCase(utf16Of(*known)) == wanted) return day;
  }
  return std::nullopt;
}

std::string patternWithWord(const std::string& locale, NSUInteger dateStyle, NSUInteger timeStyle,
                            std::string_view word) {
  const icu::UnicodeString words = quoted(utf16Of(word));
  icu::UnicodeString both = utf16Of(patternOfStyles(locale, dateStyle, timeStyle));
  const icu::UnicodeString date = utf16Of(patternOfStyles(locale, dateStyle, 0));
  if (both.indexOf(date) >= 0) return utf8Of(both.findAndReplace(date, words));
  return utf8Of(words + u" " + utf16Of(patternOfStyles(locale, 0, timeStyle)));
}

}  // namespace ORLFoundation::internal::format

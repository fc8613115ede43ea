#include <ORLFoundation/platform/format/internal/DateEngine.h>

#include <ORLFoundation/platform/format/internal/DateStyles.h>
#include <ORLFoundation/platform/format/internal/ICUCalendar.h>
#include <ORLFoundation/platform/format/internal/NumericDate.h>
#include <ORLFoundation/platform/format/internal/PatternText.h>
#include <ORLFoundation/platform/format/internal/ZoneBridge.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/numsys.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::format {

namespace civil = base::civil;

namespace {

constexpr double kMilliseconds = 1000;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
// 2000-01-01T00:00:00Z, for the year that a format does not ask for.
constexpr double kUsualDate = 946684800;

// Letters of the time of day.
constexpr std::u16string_view kTimeLetters = u"hHkKmsSaAbBjJC";

bool hasPlainDigits(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::NumberingSystem> system(
      icu::NumberingSystem::createInstance(locale, status));
  return U_SUCCESS(status) && system && std::string_view(system->getName()) == "latn";
}

std::unique_ptr<icu::SimpleDateFormat> formatOf(const DateSettings& settings) {
  const icu::Locale locale(settings.locale.c_str());
  if (settings.dateStyle != 0 || settings.timeStyle != 0)
    return formatOfStyles(locale, settings.dateStyle, settings.timeStyle);
  UErrorCode status = U_ZERO_ERROR;
  auto made =
      std::make_unique<icu::SimpleDateFormat>(text::utf16Of(settings.pattern), locale, status);
  return U_SUCCESS(status) ? std::move(made) : nullptr;
}

void setWeeks(icu::Calendar& calendar, const DateSettings& settings) {
  if (settings.firstWeekday != 0)
    calendar.setFirstDayOfWeek(static_cast<UCalendarDaysOfWeek>(settings.firstWeekday));
  if (settings.minimumDaysInFirstWeek != 0)
    calendar.setMinimalDaysInFirstWeek(static_cast<std::uint8_t>(settings.minimumDaysInFirstWeek));
}

}  // namespace

// ICU reads leniently over a calendar of its own; what it read is set in a strict one, whose clock
// is GMT's: the local time is turned into an instant by our zone.
struct DateEngine::Parts {
  ZoneBridge zone;
  std::optional<NumericDate> numeric;
  std::int32_t windowStart = 0;
  std::unique_ptr<icu::SimpleDateFormat> format;
  std::unique_ptr<icu::Calendar> strict;
  const icu::TimeZone* clock = nullptr;  // the strict calendar's, while it has its own
  std::vector<icu::UnicodeString> words;
  bool isGregorian = false;
  bool asksForTime = false;
  std::int32_t usualYear = 0;

  explicit Parts(const DateSettings& settings);
  void makeFormat(const DateSettings& settings);
  void setWindow(NSDate start);
  void restoreClock();
  [[nodiscard]] double localOf(NSDate date) const;
  // Seconds since 1970, not-a-number for none.
  [[nodiscard]] double instantOfLocal(double local) const;
  [[nodiscard]] double instantRead();
  [[nodiscard]] double instantInZoneOfText();
  [[nodiscard]] std::optional<Reading> readByICU(const icu::UnicodeString& text, bool whole);
};

DateEngine::Parts::Parts(const DateSettings& settings) : zone(settings.zone) {
  makeFormat(settings);
  if (!format) return;
  strict->setTimeZone(*icu::TimeZone::getGMT());
  clock = &strict->getTimeZone();
  setWindow(settings.twoDigitStart);
  format->setTimeZone(zone);
  const icu::UnicodeString pattern = text::utf16Of(settings.pattern);
  words = wordsOf(pattern);
  asksForTime = asksForAny(pattern, kTimeLetters);
  isGregorian = isGregorianCalendar(*strict);
  if (isGregorian && !settings.icuAlone && hasPlainDigits(icu::Locale(settings.locale.c_str())))
    numeric = NumericDate::ofPattern(settings.pattern);
}

void DateEngine::Parts::makeFormat(const DateSettings& settings) {
  auto made = formatOf(settings);
  if (!made || made->getCalendar() == nullptr) return;
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(made->getCalendar()->clone());
  extendToAllTime(*calendar);
  setWeeks(*calendar, settings);
  made->setCalendar(*calendar);
  made->setLenient(true);
  calendar->setLenient(false);
  calendar->setTime(kUsualDate * kMilliseconds, status);
  usualYear = calendar->get(UCAL_EXTENDED_YEAR, status);
  if (U_FAILURE(status)) return;
  format = std::move(made);
  strict = std::move(calendar);
}

// ICU compares years of two digits with the start as the strict calendar's clock shows it.
void DateEngine::Parts::setWindow(NSDate start) {
  double local = localOf(start);
  if (!(std::abs(local) <= kOtherReach)) local = localOf(NSDate::distantPast());
  UErrorCode status = U_ZERO_ERROR;
  // Japanese years begin anew with each era and have no centuries.
  if (std::string_view(strict->getType()) == "japanese") return;
  format->setTimeZone(*icu::TimeZone::getGMT());
  format->set2DigitYearStart(local * kMilliseconds, status);
  const auto day = static_cast<std::int64_t>(std::floor(local / civil::kSecondsPerDay));
  windowStart = civil::dateFromDay(static_cast<std::int32_t>(day)).year;
}

double DateEngine::Parts::localOf(NSDate date) const {
  return date.timeIntervalSince1970() +
         static_cast<double>(zone.zone()->secondsFromGMTForDate(date));
}

// A day without a midnight begins at the clock change; a time that was named must exist.
double DateEngine::Parts::instantOfLocal(double local) const {
  const double instant = zone.instantOfLocal(std::floor(local)) + (local - std::floor(local));
  if (asksForTime && localOf(NSDate::dateWithTimeIntervalSince1970(instant)) != local &&
      std::abs(local) < kOtherReach)
    return kNone;
  return instant;
}

void DateEngine::Parts::restoreClock() {
  if (&strict->getTimeZone() == clock) return;
  strict->setTimeZone(*icu::TimeZone::getGMT());
  clock = &strict->getTimeZone();
}

// The text named a zone, which ICU has put into the calendar; where it also told the kind of time
// (EST, EDT), the fields of the offset hold that. Offsets come from our tables, unless the text
// told the other kind than the one of the date.
double DateEngine::Parts::instantInZoneOfText() {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString name;
  strict->getTimeZone().getID(name);
  const bool toldKind = strict->isSet(UCAL_ZONE_OFFSET) != 0;
  const std::int32_t told =
      toldKind ? strict->get(UCAL_ZONE_OFFSET, status) + strict->get(UCAL_DST_OFFSET, status) : 0;
  if (toldKind) {
    strict->set(UCAL_ZONE_OFFSET, 0);
    strict->set(UCAL_DST_OFFSET, 0);
  }
  restoreClock();
  const double local = strict->getTime(status) / kMilliseconds;
  const auto named = NSTimeZone::timeZoneWithName(text::utf8Of(name));
  if (U_FAILURE(status) || !std::isfinite(local) || (!named && !toldKind)) return kNone;
  if (!named) return local - told / kMilliseconds;
  const ZoneBridge bridge(named);
  std::int32_t standard = 0;
  std::int32_t saving = 0;
  bridge.getOffset(local * kMilliseconds, 1, standard, saving, status);
  const bool otherKind = toldKind && (told == standard || std::abs(told - standard) == 3600000);
  return local - (otherKind ? told : standard + saving) / kMilliseconds;
}

double DateEngine::Parts::instantRead() {
  if (!strict->isSet(UCAL_YEAR) && !strict->isSet(UCAL_EXTENDED_YEAR) &&
      !strict->isSet(UCAL_YEAR_WOY) && !strict->isSet(UCAL_JULIAN_DAY))
    strict->set(UCAL_EXTENDED_YEAR, usualYear);
  if (&strict->getTimeZone() != clock || strict->isSet(UCAL_ZONE_OFFSET))
    return instantInZoneOfText();
  UErrorCode status = U_ZERO_ERROR;
  const double local = strict->getTime(status) / kMilliseconds;
  if (U_FAILURE(status) || !std::isfinite(local)) return kNone;
  return instantOfLocal(local);
}

std::optional<DateEngine::Reading> DateEngine::Parts::readByICU(const icu::UnicodeString& text,
                                                                bool whole) {
  if (!format || !holdsInOrder(text, words)) return std::nullopt;
  strict->clear();
  icu::ParsePosition position(0);
  format->parse(text, *strict, position);
  const std::int32_t end = position.getIndex();
  const bool failed =
      position.getErrorIndex() >= 0 || end == 0 || (whole && !endsInWhiteSpace(text, end));
  const double instant = failed ? kNone : instantRead();
  restoreClock();
  if (!(std::abs(instant) <= (isGregorian ? kGregorianReach : kOtherReach))) return std::nullopt;
  return Reading{NSDate::dateWithTimeIntervalSince1970(instant), static_cast<NSUInteger>(end)};
}

DateEngine::DateEngine(const DateSettings& settings) : parts_(std::make_unique<Parts>(settings)) {}

DateEngine::~DateEngine() = default;

std::optional<std::string> DateEngine::print(NSDate date) const {
  const Parts& parts = *parts_;
  if (!parts.format) return std::nullopt;
  if (!isInReach(date, parts.isGregorian)) return std::nullopt;
  const UDate milliseconds = millisecondsOf(date);
  if (parts.numeric) {
    const double local = std::floor(milliseconds / kMilliseconds) +
                         static_cast<double>(parts.zone.zone()->secondsFromGMTForDate(
                             NSDate::dateWithTimeIntervalSince1970(milliseconds / kMilliseconds)));
    const double day = std::floor(local / civil::kSecondsPerDay);
    if (std::abs(day) < civil::kMaxDay) {
      auto text = parts.numeric->print(civil::dateFromDay(static_cast<std::int32_t>(day)));
      if (text) return text;
    }
  }
  icu::UnicodeString text;
  parts.format->format(milliseconds, text);
  return text::utf8Of(text);
}

std::optional<DateEngine::Reading> DateEngine::read(std::string_view text, bool whole) const {
  Parts& parts = *parts_;
  civil::Date date{};
  const auto answer = parts.numeric ? parts.numeric->read(text, parts.windowStart, date)
                                    : NumericDate::Answer::kUnknown;
  if (answer == NumericDate::Answer::kRefused) return std::nullopt;
  if (answer == NumericDate::Answer::kUnknown) return parts.readByICU(text::utf16Of(text), whole);
  const auto day = static_cast<double>(civil::dayFromDate(date.year, date.month, date.day));
  const double instant = parts.zone.instantOfLocal(day * civil::kSecondsPerDay);
  return Reading{NSDate::dateWithTimeIntervalSince1970(instant), text.size()};
}

}  // namespace ORLFoundation::internal::format

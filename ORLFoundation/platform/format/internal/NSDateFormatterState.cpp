#include <ORLFoundation/platform/format/internal/NSDateFormatterState.h>

#include <ORLFoundation/platform/format/internal/DateStyles.h>
#include <ORLFoundation/platform/text/UTF16Range.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::format {
namespace {

// The formats that one formatter prints under at a time, beside its own the widened ones.
constexpr std::size_t kMostEngines = 4;
constexpr NSUInteger kDay = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;

}  // namespace

NSDateFormatterState::Settings& NSDateFormatterState::change() {
  pattern_.reset();
  calendar_.reset();
  engines_.clear();
  return settings;
}

const std::string& NSDateFormatterState::pattern() {
  if (settings.format) return *settings.format;
  if (!pattern_) pattern_ = patternOfStyles(icuLocale(), settings.dateStyle, settings.timeStyle);
  return *pattern_;
}

std::string NSDateFormatterState::icuLocale() const {
  const std::string& locale = settings.locale->localeIdentifier();
  return settings.calendar ? localeWithCalendar(locale, settings.calendar->calendarIdentifier())
                           : locale;
}

const std::shared_ptr<NSCalendar>& NSDateFormatterState::usedCalendar() {
  if (calendar_) return calendar_;
  calendar_ = copyOf(settings.calendar);
  const std::string& locale = settings.locale->localeIdentifier();
  if (!calendar_) {
    calendar_ = NSCalendar::initWithCalendarIdentifier(calendarOfLocale(locale));
    if (!calendar_)
      calendar_ = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
    calendar_->setLocaleIdentifier(locale);
  }
  calendar_->setTimeZone(settings.zone);
  return calendar_;
}

DateEngine& NSDateFormatterState::engineOf(std::string_view format) {
  const auto known = std::find_if(engines_.begin(), engines_.end(),
                                  [format](const Engine& made) { return made.pattern == format; });
  if (known != engines_.end()) return *known->engine;
  DateSettings made;
  made.locale = icuLocale();
  made.pattern = std::string(format);
  if (!settings.format && format == pattern()) {
    made.dateStyle = settings.dateStyle;
    made.timeStyle = settings.timeStyle;
  }
  made.zone = settings.zone;
  made.twoDigitStart = settings.twoDigitStart.value_or(*Settings().twoDigitStart);
  if (settings.calendar) {
    made.firstWeekday = static_cast<std::int32_t>(settings.calendar->firstWeekday());
    made.minimumDaysInFirstWeek =
        static_cast<std::int32_t>(settings.calendar->minimumDaysInFirstWeek());
  }
  if (engines_.size() == kMostEngines) engines_.erase(engines_.begin() + 1);
  engines_.push_back({made.pattern, std::make_unique<DateEngine>(made)});
  return *engines_.back().engine;
}

std::optional<NSInteger> NSDateFormatterState::daysFromToday(NSDate date) {
  const NSCalendar& calendar = *usedCalendar();
  NSDate today;
  NSDate day;
  if (!calendar.rangeOfUnit(NSCalendarUnitDay, &today, nullptr, NSDate::date()) ||
      !calendar.rangeOfUnit(NSCalendarUnitDay, &day, nullptr, date))
    return std::nullopt;
  return calendar.components(NSCalendarUnitDay, today, day, 0).day();
}

std::optional<NSDate> NSDateFormatterState::dayFromToday(NSInteger days) {
  const NSCalendar& calendar = *usedCalendar();
  const auto today = calendar.dateFromComponents(calendar.components(kDay, NSDate::date()));
  if (!today) return std::nullopt;
  return calendar.dateByAddingUnit(NSCalendarUnitDay, days, *today, 0);
}

std::optional<std::string> NSDateFormatterState::relativeText(NSDate date) {
  const auto days = daysFromToday(date);
  auto word = days ? wordOfDay(icuLocale(), *days) : std::nullopt;
  if (!word || settings.timeStyle == NSDateFormatterNoStyle) return word;
  const std::string format =
      patternWithWord(icuLocale(), settings.dateStyle, settings.timeStyle, *word);
  return engineOf(format).print(date);
}

std::optional<DateEngine::Reading> NSDateFormatterState::read(std::string_view text, bool whole) {
  if (isRelative() && settings.timeStyle == NSDateFormatterNoStyle) {
    const auto days = dayOfWord(icuLocale(), text);
    const auto day = days ? dayFromToday(*days) : std::nullopt;
    if (day) return DateEngine::Reading{*day, text::unitsOf(text, NSDateFormatter::kLongestText)};
  }
  const std::string& format = pattern();
  if (format.empty()) return std::nullopt;
  return engineOf(format).read(text, whole);
}

}  // namespace ORLFoundation::internal::format

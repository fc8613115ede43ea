#include <ORLFoundation/platform/format/NSDateIntervalFormatter.h>

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/format/internal/DateEngine.h>
#include <ORLFoundation/platform/format/internal/DateSpanEngine.h>
#include <ORLFoundation/platform/format/internal/DateStyles.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <array>
#include <utility>

namespace ORLFoundation {

using namespace internal::format;

namespace {

// By style.
constexpr std::array<std::string_view, 5> kDateLetters{"", "yMd", "yMMMd", "yMMMMd", "yMMMMEEEEd"};
constexpr std::array<std::string_view, 5> kTimeLetters{"", "jm", "jms", "jmsz", "jmszzzz"};

template <std::size_t Count>
std::string_view lettersOf(const std::array<std::string_view, Count>& letters, NSUInteger style) {
  return style < Count ? letters.at(style) : std::string_view();
}

std::shared_ptr<NSCalendar> calendarOf(const std::string& locale,
                                       const std::shared_ptr<NSTimeZone>& zone) {
  auto calendar = NSCalendar::initWithCalendarIdentifier(calendarOfLocale(locale));
  if (!calendar) calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setLocaleIdentifier(locale);
  calendar->setTimeZone(zone);
  return calendar;
}

// Part of stored archives: they never change.
constexpr std::string_view kDateStyleKey = "dateStyle";
constexpr std::string_view kTimeStyleKey = "timeStyle";
constexpr std::string_view kTemplateKey = "dateTemplate";
constexpr std::string_view kLocaleKey = "locale";
constexpr std::string_view kTimeZoneKey = "timeZone";
constexpr std::string_view kCalendarKey = "calendar";
constexpr std::string_view kCalendarZoneKey = "calendarTimeZone";
constexpr std::string_view kFirstWeekdayKey = "firstWeekday";
constexpr std::string_view kMinimumDaysKey = "minimumDaysInFirstWeek";

}  // namespace

struct internal::format::NSDateIntervalFormatterState {
  struct Settings {
    NSDateIntervalFormatterStyle dateStyle = NSDateIntervalFormatterNoStyle;
    NSDateIntervalFormatterStyle timeStyle = NSDateIntervalFormatterNoStyle;
    std::optional<std::string> letters;
    std::shared_ptr<NSLocale> locale = NSLocale::currentLocale();
    std::shared_ptr<NSTimeZone> zone = NSTimeZone::defaultTimeZone();
    std::shared_ptr<NSCalendar> calendar = calendarOf(locale->localeIdentifier(), zone);
  };

  Settings settings;

  // The settings, to be changed: what was made of them is dropped.
  Settings& change() {
    span.reset();
    point.reset();
    return settings;
  }
  [[nodiscard]] std::string usedLetters() const {
    if (settings.letters) return *settings.letters;
    return std::string(lettersOf(kDateLetters, settings.dateStyle))
        .append(lettersOf(kTimeLetters, settings.timeStyle));
  }
  [[nodiscard]] std::optional<std::string> print(NSDate from, NSDate to);

 private:
  void makeEngines();
  [[nodiscard]] bool areAlike(NSDate from, NSDate to) const;
  // ICU 72 has an older form of this style, 01-Jan-2024; its template has the later one, 1 Jan
  // 2024.
  [[nodiscard]] bool isTemplateBetter() const {
    return settings.locale->localeIdentifier() == "en_IN" &&
           settings.dateStyle == NSDateIntervalFormatterMediumStyle &&
           settings.timeStyle == NSDateIntervalFormatterNoStyle;
  }
  [[nodiscard]] std::string icuLocale() const {
    const std::string& locale = settings.locale->localeIdentifier();
    return settings.calendar ? localeWithCalendar(locale, settings.calendar->calendarIdentifier())
                             : locale;
  }

  std::unique_ptr<DateSpanEngine> span;
  std::unique_ptr<DateEngine> point;  // for dates alike; null where the template tells them too
  std::shared_ptr<NSCalendar> clock;  // Gregorian, in the zone
};

namespace internal::format {

void NSDateIntervalFormatterState::makeEngines() {
  const std::string locale = icuLocale();
  span = std::make_unique<DateSpanEngine>(DateSpanSettings{locale, usedLetters(), settings.zone});
  if (settings.letters || isTemplateBetter()) return;
  clock = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  clock->setTimeZone(settings.zone);
  DateSettings one;
  one.locale = locale;
  one.pattern = patternOfStyles(locale, settings.dateStyle, settings.timeStyle);
  one.dateStyle = settings.dateStyle;
  one.timeStyle = settings.timeStyle;
  one.zone = settings.zone;
  point = std::make_unique<DateEngine>(one);
}

// Whether the styles show no difference: no other day, or no other minute or second where they
// tell times.
bool NSDateIntervalFormatterState::areAlike(NSDate from, NSDate to) const {
  NSUInteger units =
      NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
  if (!lettersOf(kTimeLetters, settings.timeStyle).empty()) {
    units |= NSCalendarUnitHour | NSCalendarUnitMinute;
    if (settings.timeStyle != NSDateIntervalFormatterShortStyle) units |= NSCalendarUnitSecond;
  }
  return clock->components(units, from) == clock->components(units, to);
}

std::optional<std::string> NSDateIntervalFormatterState::print(NSDate from, NSDate to) {
  if (usedLetters().empty()) return std::string();
  if (!span) makeEngines();
  std::optional<std::string> text = span->print(from, to);
  return text && point && areAlike(from, to) ? point->print(from) : text;
}

}  // namespace internal::format

NSDateIntervalFormatter::NSDateIntervalFormatter()
    : state_(std::make_unique<NSDateIntervalFormatterState>()) {}

NSDateIntervalFormatter::~NSDateIntervalFormatter() = default;

NSDateIntervalFormatterStyle NSDateIntervalFormatter::dateStyle() const {
  const std::lock_guard guard(lock_);
  return state_->settings.dateStyle;
}

NSDateIntervalFormatterStyle NSDateIntervalFormatter::timeStyle() const {
  const std::lock_guard guard(lock_);
  return state_->settings.timeStyle;
}

void NSDateIntervalFormatter::setDateStyle(NSDateIntervalFormatterStyle style) {
  const std::lock_guard guard(lock_);
  NSDateIntervalFormatterState::Settings& settings = state_->change();
  settings.dateStyle = style;
  settings.letters.reset();
}

void NSDateIntervalFormatter::setTimeStyle(NSDateIntervalFormatterStyle style) {
  const std::lock_guard guard(lock_);
  NSDateIntervalFormatterState::Settings& settings = state_->change();
  settings.timeStyle = style;
  settings.letters.reset();
}

std::string NSDateIntervalFormatter::dateTemplate() const {
  const std::lock_guard guard(lock_);
  return state_->usedLetters();
}

void NSDateIntervalFormatter::setDateTemplate(std::string_view dateTemplate) {
  const std::lock_guard guard(lock_);
  state_->change().letters = std::string(dateTemplate);
}

std::shared_ptr<NSLocale> NSDateIntervalFormatter::locale() const {
  const std::lock_guard guard(lock_);
  return state_->settings.locale;
}

void NSDateIntervalFormatter::setLocale(std::shared_ptr<NSLocale> locale) {
  const std::lock_guard guard(lock_);
  state_->change().locale = locale ? std::move(locale) : NSLocale::currentLocale();
}

std::shared_ptr<NSTimeZone> NSDateIntervalFormatter::timeZone() const {
  const std::lock_guard guard(lock_);
  return state_->settings.zone;
}

void NSDateIntervalFormatter::setTimeZone(std::shared_ptr<NSTimeZone> zone) {
  const std::lock_guard guard(lock_);
  state_->change().zone = zone ? std::move(zone) : NSTimeZone::defaultTimeZone();
}

std::shared_ptr<NSCalendar> NSDateIntervalFormatter::calendar() const {
  const std::lock_guard guard(lock_);
  return copyOf(state_->settings.calendar);
}

void NSDateIntervalFormatter::setCalendar(const std::shared_ptr<NSCalendar>& calendar) {
  const std::lock_guard guard(lock_);
  state_->change().calendar = copyOf(calendar);
}

std::optional<std::string> NSDateIntervalFormatter::stringFromDate(
    std::optional<NSDate> fromDate, std::optional<NSDate> toDate) const {
  if (!fromDate || !toDate) return std::nullopt;
  const std::lock_guard guard(lock_);
  return state_->print(*fromDate, *toDate);
}

const NSCodingClass& NSDateIntervalFormatter::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<NSDateIntervalFormatter>("NSDateIntervalFormatter");
  return record;
}

void NSDateIntervalFormatter::encodeWithCoder(NSCoder& coder) const {
  const std::lock_guard guard(lock_);
  const NSDateIntervalFormatterState::Settings& settings = state_->settings;
  coder.encodeInteger(static_cast<NSInteger>(settings.dateStyle), kDateStyleKey);
  coder.encodeInteger(static_cast<NSInteger>(settings.timeStyle), kTimeStyleKey);
  coder.encodeObject(settings.letters, kTemplateKey);
  coder.encodeObject(settings.locale->localeIdentifier(), kLocaleKey);
  coder.encodeObject(settings.zone->name(), kTimeZoneKey);
  if (!settings.calendar) return;
  coder.encodeObject(settings.calendar->calendarIdentifier(), kCalendarKey);
  coder.encodeObject(settings.calendar->timeZone()->name(), kCalendarZoneKey);
  coder.encodeInteger(settings.calendar->firstWeekday(), kFirstWeekdayKey);
  coder.encodeInteger(settings.calendar->minimumDaysInFirstWeek(), kMinimumDaysKey);
}

void NSDateIntervalFormatter::readSettings(NSCoder& coder) {
  const auto zoneUnder = [&coder](std::string_view key) {
    const auto name = coder.decodeObjectOfClass<std::string>(key);
    const auto zone = name ? NSTimeZone::timeZoneWithName(*name) : nullptr;
    return zone ? zone : NSTimeZone::defaultTimeZone();
  };
  const std::lock_guard guard(lock_);
  NSDateIntervalFormatterState::Settings& settings = state_->change();
  settings.dateStyle =
      static_cast<NSDateIntervalFormatterStyle>(coder.decodeInteger(kDateStyleKey));
  settings.timeStyle =
      static_cast<NSDateIntervalFormatterStyle>(coder.decodeInteger(kTimeStyleKey));
  settings.letters = coder.decodeObjectOfClass<std::string>(kTemplateKey);
  if (const auto locale = coder.decodeObjectOfClass<std::string>(kLocaleKey))
    settings.locale = std::make_shared<NSLocale>(*locale);
  settings.zone = zoneUnder(kTimeZoneKey);
  const auto identifier = coder.decodeObjectOfClass<std::string>(kCalendarKey);
  settings.calendar = identifier ? NSCalendar::initWithCalendarIdentifier(*identifier) : nullptr;
  if (!settings.calendar) return;
  settings.calendar->setLocaleIdentifier(settings.locale->localeIdentifier());
  settings.calendar->setTimeZone(zoneUnder(kCalendarZoneKey));
  settings.calendar->setFirstWeekday(coder.decodeInteger(kFirstWeekdayKey));
  settings.calendar->setMinimumDaysInFirstWeek(coder.decodeInteger(kMinimumDaysKey));
}

std::shared_ptr<NSDateIntervalFormatter> NSDateIntervalFormatter::initWithCoder(NSCoder& coder) {
  auto formatter = std::make_shared<NSDateIntervalFormatter>();
  formatter->readSettings(coder);
  return formatter;
}

std::shared_ptr<NSObject> NSDateIntervalFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<NSDateIntervalFormatter>();
}

std::shared_ptr<NSObject> NSDateIntervalFormatter::copy() {
  const auto made = newObjectAs<NSDateIntervalFormatter>();
  const std::scoped_lock guard(lock_, made->lock_);
  made->state_->change() = state_->settings;
  made->state_->settings.calendar = copyOf(state_->settings.calendar);
  return made;
}

}  // namespace ORLFoundation

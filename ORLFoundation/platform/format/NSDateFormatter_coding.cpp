// How formatters of dates are archived.

#include <ORLFoundation/platform/format/NSDateFormatter.h>

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/format/internal/NSDateFormatterState.h>
#include <ORLFoundation/platform/object/Id.h>

#include <string_view>
#include <utility>

namespace ORLFoundation {

using namespace internal::format;

namespace {

// Part of stored archives: they never change.
constexpr std::string_view kDateStyleKey = "dateStyle";
constexpr std::string_view kTimeStyleKey = "timeStyle";
constexpr std::string_view kDateFormatKey = "dateFormat";
constexpr std::string_view kLocaleKey = "locale";
constexpr std::string_view kTimeZoneKey = "timeZone";
constexpr std::string_view kCalendarKey = "calendar";
constexpr std::string_view kFirstWeekdayKey = "firstWeekday";
constexpr std::string_view kMinimumDaysKey = "minimumDaysInFirstWeek";
constexpr std::string_view kLenientKey = "lenient";
constexpr std::string_view kTwoDigitStartDateKey = "twoDigitStartDate";
constexpr std::string_view kRelativeKey = "doesRelativeDateFormatting";

NSDateFormatterStyle decodeStyle(NSCoder& coder, std::string_view key) {
  const auto style = static_cast<NSDateFormatterStyle>(coder.decodeInteger(key));
  return style <= NSDateFormatterFullStyle ? style : NSDateFormatterNoStyle;
}

std::shared_ptr<NSCalendar> decodeCalendar(NSCoder& coder) {
  const auto identifier = coder.decodeObjectOfClass<std::string>(kCalendarKey);
  auto calendar = identifier ? NSCalendar::initWithCalendarIdentifier(*identifier) : nullptr;
  if (!calendar) return nullptr;
  calendar->setFirstWeekday(coder.decodeInteger(kFirstWeekdayKey));
  calendar->setMinimumDaysInFirstWeek(coder.decodeInteger(kMinimumDaysKey));
  return calendar;
}

}  // namespace

const NSCodingClass& NSDateFormatter::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<NSDateFormatter>("NSDateFormatter");
  return record;
}

void NSDateFormatter::encodeWithCoder(NSCoder& coder) const {
  const std::lock_guard guard(lock_);
  const NSDateFormatterState::Settings& settings = state_->settings;
  coder.encodeInteger(static_cast<NSInteger>(settings.dateStyle), kDateStyleKey);
  coder.encodeInteger(static_cast<NSInteger>(settings.timeStyle), kTimeStyleKey);
  coder.encodeObject(settings.format, kDateFormatKey);
  coder.encodeObject(settings.locale->localeIdentifier(), kLocaleKey);
  coder.encodeObject(settings.zone->name(), kTimeZoneKey);
  if (settings.calendar) {
    coder.encodeObject(settings.calendar->calendarIdentifier(), kCalendarKey);
    coder.encodeInteger(settings.calendar->firstWeekday(), kFirstWeekdayKey);
    coder.encodeInteger(settings.calendar->minimumDaysInFirstWeek(), kMinimumDaysKey);
  }
  coder.encodeBool(settings.lenient, kLenientKey);
  coder.encodeObject(settings.twoDigitStart, kTwoDigitStartDateKey);
  coder.encodeBool(settings.relative, kRelativeKey);
}

void NSDateFormatter::readSettings(NSCoder& coder) {
  const std::lock_guard guard(lock_);
  NSDateFormatterState::Settings& settings = state_->change();
  settings.dateStyle = decodeStyle(coder, kDateStyleKey);
  settings.timeStyle = decodeStyle(coder, kTimeStyleKey);
  settings.format = coder.decodeObjectOfClass<std::string>(kDateFormatKey);
  if (const auto locale = coder.decodeObjectOfClass<std::string>(kLocaleKey))
    settings.locale = std::make_shared<NSLocale>(*locale);
  if (const auto name = coder.decodeObjectOfClass<std::string>(kTimeZoneKey)) {
    if (auto zone = NSTimeZone::timeZoneWithName(*name)) settings.zone = std::move(zone);
  }
  settings.calendar = decodeCalendar(coder);
  settings.lenient = coder.decodeBool(kLenientKey);
  if (coder.containsValueForKey(kTwoDigitStartDateKey))
    settings.twoDigitStart = coder.decodeObjectOfClass<NSDate>(kTwoDigitStartDateKey);
  settings.relative = coder.decodeBool(kRelativeKey);
}

std::shared_ptr<NSDateFormatter> NSDateFormatter::initWithCoder(NSCoder& coder) {
  auto formatter = std::make_shared<NSDateFormatter>();
  formatter->readSettings(coder);
  return formatter;
}

}  // namespace ORLFoundation

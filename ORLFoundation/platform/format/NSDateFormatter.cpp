#include <ORLFoundation/platform/format/NSDateFormatter.h>

#include <ORLFoundation/platform/format/NSFormattingError.h>
#include <ORLFoundation/platform/format/internal/DateStyles.h>
#include <ORLFoundation/platform/format/internal/NSDateFormatterState.h>
#include <ORLFoundation/platform/format/internal/PatternText.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/text/UTF16Range.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::format;

namespace {

// Styles beyond the known ones are none.
NSDateFormatterStyle knownStyle(NSDateFormatterStyle style) {
  return style <= NSDateFormatterFullStyle ? style : NSDateFormatterNoStyle;
}

using Symbols = icu::DateFormatSymbols;

}  // namespace

NSDateFormatter::NSDateFormatter() : state_(std::make_unique<NSDateFormatterState>()) {}

NSDateFormatter::~NSDateFormatter() = default;

NSDateFormatterStyle NSDateFormatter::dateStyle() const {
  const std::lock_guard guard(lock_);
  return state_->settings.dateStyle;
}

NSDateFormatterStyle NSDateFormatter::timeStyle() const {
  const std::lock_guard guard(lock_);
  return state_->settings.timeStyle;
}

void NSDateFormatter::setDateStyle(NSDateFormatterStyle style) {
  const std::lock_guard guard(lock_);
  NSDateFormatterState::Settings& settings = state_->change();
  settings.dateStyle = knownStyle(style);
  settings.format.reset();
}

void NSDateFormatter::setTimeStyle(NSDateFormatterStyle style) {
  const std::lock_guard guard(lock_);
  NSDateFormatterState::Settings& settings = state_->change();
  settings.timeStyle = knownStyle(style);
  settings.format.reset();
}

std::string NSDateFormatter::dateFormat() const {
  const std::lock_guard guard(lock_);
  return state_->pattern();
}

void NSDateFormatter::setDateFormat(std::string_view format) {
  const std::lock_guard guard(lock_);
  state_->change().format = std::string(format);
}

void NSDateFormatter::setLocalizedDateFormatFromTemplate(std::string_view dateFormatTemplate) {
  const std::lock_guard guard(lock_);
  setDateFormat(patternOfTemplate(state_->icuLocale(), dateFormatTemplate));
}

std::string NSDateFormatter::dateFormatFromTemplate(std::string_view dateFormatTemplate,
                                                    NSUInteger /*options*/,
                                                    const std::shared_ptr<NSLocale>& locale) {
  const auto used = locale ? locale : NSLocale::currentLocale();
  return patternOfTemplate(used->localeIdentifier(), dateFormatTemplate);
}

std::shared_ptr<NSLocale> NSDateFormatter::locale() const {
  const std::lock_guard guard(lock_);
  return state_->settings.locale;
}

void NSDateFormatter::setLocale(std::shared_ptr<NSLocale> locale) {
  const std::lock_guard guard(lock_);
  state_->change().locale = locale ? std::move(locale) : NSLocale::currentLocale();
}

std::shared_ptr<NSTimeZone> NSDateFormatter::timeZone() const {
  const std::lock_guard guard(lock_);
  return state_->settings.zone;
}

void NSDateFormatter::setTimeZone(std::shared_ptr<NSTimeZone> zone) {
  const std::lock_guard guard(lock_);
  state_->change().zone = zone ? std::move(zone) : NSTimeZone::defaultTimeZone();
}

std::shared_ptr<NSCalendar> NSDateFormatter::calendar() const {
  const std::lock_guard guard(lock_);
  return copyOf(state_->usedCalendar());
}

void NSDateFormatter::setCalendar(const std::shared_ptr<NSCalendar>& calendar) {
  const std::lock_guard guard(lock_);
  state_->change().calendar = copyOf(calendar);
}

bool NSDateFormatter::isLenient() const {
  const std::lock_guard guard(lock_);
  return state_->settings.lenient;
}

void NSDateFormatter::setLenient(bool lenient) {
  const std::lock_guard guard(lock_);
  state_->settings.lenient = lenient;
}

std::optional<NSDate> NSDateFormatter::twoDigitStartDate() const {
  const std::lock_guard guard(lock_);
  return state_->settings.twoDigitStart;
}

void NSDateFormatter::setTwoDigitStartDate(std::optional<NSDate> date) {
  const std::lock_guard guard(lock_);
  state_->change().twoDigitStart = date;
}

bool NSDateFormatter::doesRelativeDateFormatting() const {
  const std::lock_guard guard(lock_);
  return state_->settings.relative;
}

void NSDateFormatter::setDoesRelativeDateFormatting(bool relative) {
  const std::lock_guard guard(lock_);
  state_->settings.relative = relative;
}

std::vector<std::string> NSDateFormatter::monthSymbols() const {
  const std::lock_guard guard(lock_);
  return monthNames(state_->icuLocale(), Symbols::FORMAT, Symbols::WIDE);
}

std::vector<std::string> NSDateFormatter::shortMonthSymbols() const {
  const std::lock_guard guard(lock_);
  return monthNames(state_->icuLocale(), Symbols::FORMAT, Symbols::ABBREVIATED);
}

std::vector<std::string> NSDateFormatter::veryShortMonthSymbols() const {
  const std::lock_guard guard(lock_);
  return monthNames(state_->icuLocale(), Symbols::FORMAT, Symbols::NARROW);
}

std::vector<std::string> NSDateFormatter::standaloneMonthSymbols() const {
  const std::lock_guard guard(lock_);
  return monthNames(state_->icuLocale(), Symbols::STANDALONE, Symbols::WIDE);
}

std::vector<std::string> NSDateFormatter::shortStandaloneMonthSymbols() const {
  const std::lock_guard guard(lock_);
  return monthNames(state_->icuLocale(), Symbols::STANDALONE, Symbols::ABBREVIATED);
}

std::vector<std::string> NSDateFormatter::weekdaySymbols() const {
  const std::lock_guard guard(lock_);
  return weekdayNames(state_->icuLocale(), Symbols::FORMAT, Symbols::WIDE);
}

std::vector<std::string> NSDateFormatter::shortWeekdaySymbols() const {
  const std::lock_guard guard(lock_);
  return weekdayNames(state_->icuLocale(), Symbols::FORMAT, Symbols::ABBREVIATED);
}

std::vector<std::string> NSDateFormatter::veryShortWeekdaySymbols() const {
  const std::lock_guard guard(lock_);
  return weekdayNames(state_->icuLocale(), Symbols::FORMAT, Symbols::NARROW);
}

std::string NSDateFormatter::stringFromDate(NSDate date) const {
  return stringForObjectValue(date).value_or(std::string());
}

std::optional<NSDate> NSDateFormatter::dateFromString(std::string_view string) const {
  std::optional<NSDate> date;
  return getObjectValue(&date, string) ? date : std::nullopt;
}

std::optional<std::string> NSDateFormatter::stringForObjectValue(const id& object) const {
  const auto date = object.as<NSDate>();
  if (!date) return std::nullopt;
  const std::lock_guard guard(lock_);
  if (state_->isRelative()) {
    if (auto text = state_->relativeText(*date)) return text;
  }
  return state_->engineOf(state_->pattern()).print(*date);
}

std::optional<std::string> NSDateFormatter::stringUnderFormat(std::string_view format,
                                                              NSDate date) const {
  const std::lock_guard guard(lock_);
  return state_->engineOf(format).print(date);
}

bool NSDateFormatter::getObjectValue(std::optional<NSDate>* object, std::string_view forString,
                                     NSRange* range, NSErrorSlot error) const {
  const std::lock_guard guard(lock_);
  const bool whole = range == nullptr;
  const std::string_view text =
      whole ? forString : internal::text::partOfText(forString, *range, kLongestText);
  const bool readable =
      !text.empty() && internal::text::unitsOf(text, kLongestText) <= kLongestText;
  const auto read = readable ? state_->read(text, whole) : std::nullopt;
  if (!read)
    return NSFillErrorSlot(error, NSCocoaErrorDomain, NSFormattingError,
                           "The text is no date of the format “" + state_->pattern() + "”.");
  if (object != nullptr) *object = read->date;
  if (range != nullptr) range->length = read->consumed;
  return true;
}

std::shared_ptr<NSObject> NSDateFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<NSDateFormatter>();
}

void NSDateFormatter::takeSettings(const NSDateFormatter& other) {
  const std::scoped_lock guard(lock_, other.lock_);
  state_->change() = other.state_->settings;
  if (state_->settings.calendar) state_->settings.calendar = copyOf(state_->settings.calendar);
}

std::shared_ptr<NSObject> NSDateFormatter::copy() {
  const auto made = newObjectAs<NSDateFormatter>();
  made->takeSettings(*this);
  return made;
}

}  // namespace ORLFoundation

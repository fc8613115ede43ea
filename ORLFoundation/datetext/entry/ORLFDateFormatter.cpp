#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/datetext/entry/internal/ShortFormat.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <mutex>
#include <utility>

namespace ORLFoundation {

using namespace internal::entry;

namespace {

// What new formatters refuse, under the class's lock.
struct ClassMinimum {
  std::mutex lock;
  std::optional<NSDate> date;
};

ClassMinimum& classMinimum() {
  static auto* const minimum = new ClassMinimum;  // outlives the objects that use it
  return *minimum;
}

// Once per process, before the first formatter or the first look at the default.
void registerDefault() {
  static const bool registered = [] {
    NSUserDefaults::standardUserDefaults()->registerDefaults(
        *NSDictionary::dictionaryWithEntries({{ORLFDateFormatterUseTestingFormatKey, false}}));
    return true;
  }();
  static_cast<void>(registered);
}

}  // namespace

ORLFDateFormatter::ORLFDateFormatter() { setUp(); }

void ORLFDateFormatter::setUp() {
  registerDefault();
  const std::lock_guard guard(lock());
  minimunDate_ = defaultMinimunDate();
  ORLFDateFormatter::setDateStyle(NSDateFormatterShortStyle);
  updateFormatInfo();
}

std::optional<NSDate> ORLFDateFormatter::defaultMinimunDate() {
  const std::lock_guard guard(classMinimum().lock);
  return classMinimum().date;
}

void ORLFDateFormatter::setDefaultMinimunDate(std::optional<NSDate> date) {
  const std::lock_guard guard(classMinimum().lock);
  classMinimum().date = date;
}

bool ORLFDateFormatter::useTestingFormat() {
  registerDefault();
  static const bool use =
      NSUserDefaults::standardUserDefaults()->boolForKey(ORLFDateFormatterUseTestingFormatKey);
  return use;
}

bool ORLFDateFormatter::allowNilDates() const {
  const std::lock_guard guard(lock());
  return allowNilDates_;
}

void ORLFDateFormatter::setAllowNilDates(bool allow) {
  changeValue("allowNilDates", [this, allow] {
    const std::lock_guard guard(lock());
    allowNilDates_ = allow;
  });
}

bool ORLFDateFormatter::forceWideYear() const {
  const std::lock_guard guard(lock());
  return forceWideYear_;
}

void ORLFDateFormatter::setForceWideYear(bool force) {
  changeValue("forceWideYear", [this, force] {
    const std::lock_guard guard(lock());
    forceWideYear_ = force;
  });
}

bool ORLFDateFormatter::forceWideMonth() const {
  const std::lock_guard guard(lock());
  return forceWideMonth_;
}

void ORLFDateFormatter::setForceWideMonth(bool force) {
  changeValue("forceWideMonth", [this, force] {
    const std::lock_guard guard(lock());
    forceWideMonth_ = force;
  });
}

bool ORLFDateFormatter::forceWideDay() const {
  const std::lock_guard guard(lock());
  return forceWideDay_;
}

void ORLFDateFormatter::setForceWideDay(bool force) {
  changeValue("forceWideDay", [this, force] {
    const std::lock_guard guard(lock());
    forceWideDay_ = force;
  });
}

std::optional<NSDate> ORLFDateFormatter::minimunDate() const {
  const std::lock_guard guard(lock());
  return minimunDate_;
}

void ORLFDateFormatter::setMinimunDate(std::optional<NSDate> date) {
  changeValue("minimunDate", [this, date] {
    const std::lock_guard guard(lock());
    minimunDate_ = date;
  });
}

bool ORLFDateFormatter::recognized() const {
  const std::lock_guard guard(lock());
  return recognized_;
}

bool ORLFDateFormatter::monthFirst() const {
  const std::lock_guard guard(lock());
  return monthFirst_;
}

std::shared_ptr<NSDateFormatter> ORLFDateFormatter::shortDateFormatter() const {
  const std::lock_guard guard(lock());
  return copyOf(shortDateFormatter_);
}

void ORLFDateFormatter::updateFormatInfo() {
  const std::lock_guard guard(lock());
  if (dateStyle() == NSDateFormatterNoStyle) return;
  auto plain = std::make_shared<NSDateFormatter>();
  plain->setDateStyle(NSDateFormatterShortStyle);
  plain->setLenient(true);
  const std::optional<bool> monthFirst = monthFirstOfShortFormat(plain->dateFormat());
  shortDateFormatter_ = monthFirst ? std::move(plain) : nullptr;
  if (!monthFirst) return;
  recognized_ = true;
  monthFirst_ = *monthFirst;
}

void ORLFDateFormatter::setDateStyle(NSDateFormatterStyle style) {
  const std::lock_guard guard(lock());
  NSDateFormatter::setDateStyle(style);
  updateFormatInfo();
}

void ORLFDateFormatter::setDateFormat(std::string_view format) {
  const std::lock_guard guard(lock());
  NSDateFormatter::setDateFormat(format);
  updateFormatInfo();
}

// The hundredth anniversary lies outside, so that each two digits tell one year.
bool ORLFDateFormatter::isOutsideHundredYears(NSDate date) const {
  const auto start = twoDigitStartDate();
  if (!start) return false;
  if (date.compare(*start) == NSOrderedAscending) return true;
  constexpr NSInteger kYears = 100;
  const auto end = calendar()->dateByAddingUnit(NSCalendarUnitYear, kYears, *start, 0);
  return end && date.compare(*end) != NSOrderedAscending;
}

std::optional<std::string> ORLFDateFormatter::stringForObjectValue(const id& object) const {
  const std::lock_guard guard(lock());
  const auto date = object.as<NSDate>();
  if (!date || dateStyle() == NSDateFormatterNoStyle || doesRelativeDateFormatting())
    return NSDateFormatter::stringForObjectValue(object);
  const bool testing = useTestingFormat();
  const WideParts parts{.year = testing || forceWideYear_ || isOutsideHundredYears(*date),
                        .month = testing || forceWideMonth_,
                        .day = testing || forceWideDay_,
                        .dashes = testing};
  if (!parts.any()) return NSDateFormatter::stringForObjectValue(object);
  return stringUnderFormat(widenedFormat(dateFormat(), parts), *date);
}

const NSKeyTable& ORLFDateFormatter::keyTable() const {
  static const NSKeyTable table(
      NSDateFormatter::keyTable(),
      {NSKey::readWrite<&ORLFDateFormatter::allowNilDates, &ORLFDateFormatter::setAllowNilDates>(
           "allowNilDates"),
       NSKey::readWrite<&ORLFDateFormatter::forceWideYear, &ORLFDateFormatter::setForceWideYear>(
           "forceWideYear"),
       NSKey::readWrite<&ORLFDateFormatter::forceWideMonth, &ORLFDateFormatter::setForceWideMonth>(
           "forceWideMonth"),
       NSKey::readWrite<&ORLFDateFormatter::forceWideDay, &ORLFDateFormatter::setForceWideDay>(
           "forceWideDay"),
       NSKey::readWrite<&ORLFDateFormatter::minimunDate, &ORLFDateFormatter::setMinimunDate>(
           "minimunDate"),
       NSKey::readOnly<&ORLFDateFormatter::recognized>("recognized"),
       NSKey::readOnly<&ORLFDateFormatter::monthFirst>("monthFirst")});
  return table;
}

std::shared_ptr<NSObject> ORLFDateFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFDateFormatter>(Uninitialized());
}

std::shared_ptr<NSObject> ORLFDateFormatter::copy() {
  const std::lock_guard guard(lock());
  const auto made = std::static_pointer_cast<ORLFDateFormatter>(NSDateFormatter::copy());
  made->forceWideYear_ = forceWideYear_;
  made->forceWideMonth_ = forceWideMonth_;
  made->forceWideDay_ = forceWideDay_;
  made->allowNilDates_ = allowNilDates_;
  made->minimunDate_ = minimunDate_;
  made->updateFormatInfo();
  return made;
}

}  // namespace ORLFoundation

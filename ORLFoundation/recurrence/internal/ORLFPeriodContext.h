/// The date that picks a period, seen through a calendar, while the period's patterns are made.
/// Either may be nil: a nil calendar answers 0, false and nil, as does a question about a nil date.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>

namespace ORLFoundation::internal::recurrence {

class ORLFPeriodContext {
 public:
  ORLFPeriodContext(const NSCalendar* calendar, std::optional<NSDate> date, NSUInteger units)
      : calendar_(calendar), date_(date) {
    if (calendar_ && date_) fields_ = calendar_->components(units, *date_);
  }

  [[nodiscard]] const std::optional<NSDate>& date() const noexcept { return date_; }

  /// A field of the date; its unit must be among those that the context was made with.
  [[nodiscard]] NSInteger field(NSCalendarUnit unit) const noexcept {
    return calendar_ && date_ ? fields_.valueForComponent(unit) : 0;
  }
  /// Most patterns that do not match name another month, which must be among the fields.
  [[nodiscard]] bool matches(const NSDateComponents& pattern) const noexcept {
    const NSInteger month = pattern.month();
    return calendar_ && date_ && (month == NSDateComponentUndefined || month == fields_.month()) &&
           calendar_->date(*date_, pattern);
  }
  /// The highest value of a unit in the date's month.
  [[nodiscard]] NSInteger lastInMonth(NSCalendarUnit unit) const noexcept {
    return date_ ? lastInMonth(unit, *date_) : -1;
  }
  [[nodiscard]] NSInteger lastInMonth(NSCalendarUnit unit, NSDate date) const noexcept {
    if (!calendar_) return -1;
    const NSRange range = calendar_->rangeOfUnit(unit, NSCalendarUnitMonth, date);
    return static_cast<NSInteger>(static_cast<NSUInteger>(range.location) + range.length - 1);
  }
  [[nodiscard]] bool isValid(const NSDateComponents& pattern) const {
    return calendar_ && pattern.isValidDateInCalendar(*calendar_);
  }
  [[nodiscard]] std::optional<NSDate> resolve(const NSDateComponents& pattern) const noexcept {
    return calendar_ ? calendar_->dateFromComponents(pattern) : std::nullopt;
  }
  [[nodiscard]] bool isInWeekend(NSDate date) const noexcept {
    return calendar_ && calendar_->isDateInWeekend(date);
  }

 private:
  const NSCalendar* calendar_;
  std::optional<NSDate> date_;
  NSDateComponents fields_;
};

}  // namespace ORLFoundation::internal::recurrence

/// A calendar: the rules that turn instants into years, months, weeks and days in one time zone,
/// and back. Everything that asks a date question takes the calendar as an argument; none is
/// global.
///
///     auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
///     calendar->setTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
///     auto next = calendar->dateByAddingUnit(NSCalendarUnitMonth, 1, date, 0);
///
/// Operations on the Gregorian calendar allocate nothing. Dates whose seconds are not finite, or
/// whose year is beyond what 64 bits count safely, give nil (or false, or 0). Reading is safe on
/// any thread as long as no setter runs.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/time/NSCalendarUnit.h>
#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

inline constexpr std::string_view NSCalendarIdentifierGregorian = "gregorian";
inline constexpr std::string_view NSCalendarIdentifierISO8601 = "iso8601";

class NSCalendar : public NSObject {
 public:
  /// `initWithCalendarIdentifier:`  nil for an identifier that is unknown. The new calendar is in
  /// `NSTimeZone::defaultTimeZone`, its weeks begin on Sunday and its first week needs one day
  /// (Monday and four days for ISO 8601).
  [[nodiscard]] static std::shared_ptr<NSCalendar> initWithCalendarIdentifier(
      std::string_view identifier);

  [[nodiscard]] const std::string& calendarIdentifier() const noexcept;
  [[nodiscard]] const std::shared_ptr<NSTimeZone>& timeZone() const noexcept;
  void setTimeZone(std::shared_ptr<NSTimeZone> zone);
  /// 1 is Sunday, 7 is Saturday.
  [[nodiscard]] NSInteger firstWeekday() const noexcept;
  void setFirstWeekday(NSInteger weekday);
  /// How many days of the new year (or month) its first week must hold, 1 to 7.
  [[nodiscard]] NSInteger minimumDaysInFirstWeek() const noexcept;
  void setMinimumDaysInFirstWeek(NSInteger days);
  /// The locale's identifier ("en_US"); its region decides the weekend.
  [[nodiscard]] const std::string& localeIdentifier() const noexcept;
  void setLocaleIdentifier(std::string identifier);

  /// `components:fromDate:`
  [[nodiscard]] NSDateComponents components(NSUInteger unitFlags, NSDate fromDate) const noexcept;
  /// `component:fromDate:`
  [[nodiscard]] NSInteger component(NSCalendarUnit unit, NSDate fromDate) const noexcept;
  /// `components:fromDate:toDate:options:`
  [[nodiscard]] NSDateComponents components(NSUInteger unitFlags, NSDate fromDate, NSDate toDate,
                                            NSUInteger options) const noexcept;
  /// `dateByAddingUnit:value:toDate:options:`
  [[nodiscard]] std::optional<NSDate> dateByAddingUnit(NSCalendarUnit unit, NSInteger value,
                                                       NSDate toDate,
                                                       NSUInteger options) const noexcept;
  /// `dateByAddingComponents:toDate:options:`
  [[nodiscard]] std::optional<NSDate> dateByAddingComponents(const NSDateComponents& components,
                                                             NSDate toDate,
                                                             NSUInteger options) const noexcept;
  /// `dateFromComponents:`
  [[nodiscard]] std::optional<NSDate> dateFromComponents(
      const NSDateComponents& components) const noexcept;
  /// `dateBySettingUnit:value:ofDate:options:`
  [[nodiscard]] std::optional<NSDate> dateBySettingUnit(NSCalendarUnit unit, NSInteger value,
                                                        NSDate ofDate,
                                                        NSUInteger options) const noexcept;
  /// `rangeOfUnit:startDate:interval:forDate:`  Either output may be left out (nullptr).
  bool rangeOfUnit(NSCalendarUnit unit, NSDate* startDate, NSTimeInterval* interval,
                   NSDate forDate) const noexcept;
  /// `rangeOfUnit:inUnit:forDate:`  Location `NSNotFound` and length 0 for a pair that has none.
  [[nodiscard]] NSRange rangeOfUnit(NSCalendarUnit unit, NSCalendarUnit inUnit,
                                    NSDate forDate) const noexcept;
  /// `maximumRangeOfUnit:`
  [[nodiscard]] NSRange maximumRangeOfUnit(NSCalendarUnit unit) const noexcept;
  /// `minimumRangeOfUnit:`
  [[nodiscard]] NSRange minimumRangeOfUnit(NSCalendarUnit unit) const noexcept;
  /// `date:matchesComponents:`
  [[nodiscard]] bool date(NSDate date, const NSDateComponents& matchesComponents) const noexcept;
  /// `nextDateAfterDate:matchingComponents:options:`
  [[nodiscard]] std::optional<NSDate> nextDateAfterDate(NSDate date,
                                                        const NSDateComponents& matchingComponents,
                                                        NSUInteger options) const noexcept;
  /// `isDateInWeekend:`
  [[nodiscard]] bool isDateInWeekend(NSDate date) const noexcept;
};

}  // namespace ORLFoundation

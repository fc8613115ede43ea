/// A calendar: the rules that turn instants into years, months, weeks and days in one time zone,
/// and back. Everything that asks a date question takes the calendar as an argument; none is
/// global.
///
///     auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
///     calendar->setTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
///     auto next = calendar->dateByAddingUnit(NSCalendarUnitMonth, 1, date, 0);
///
/// The Gregorian calendar is extended to all time, before 1582 too; the year before 1 is 1 of era
/// 0. Its operations allocate nothing. Dates that are not finite, or further away than some 1.36
/// million years, have no fields and give nil (or false).
///
/// The other calendars count their eras, years and months as ICU does and answer within some ten
/// thousand years of 1970. They are slower, and allocate. Those with a thirteenth month (hebrew,
/// coptic, chinese) have no quarters. A leap month of the chinese calendar shows the number of the
/// month before it, and no components lead to it. Reading is safe on any thread as long as
/// no setter runs.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/time/NSCalendarUnit.h>
#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/time/internal/CalendarRules.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

namespace internal::time {
struct LocaleWeek;
class OtherCalendar;
}  // namespace internal::time

inline constexpr std::string_view NSCalendarIdentifierGregorian = "gregorian";
inline constexpr std::string_view NSCalendarIdentifierBuddhist = "buddhist";
inline constexpr std::string_view NSCalendarIdentifierChinese = "chinese";
inline constexpr std::string_view NSCalendarIdentifierCoptic = "coptic";
inline constexpr std::string_view NSCalendarIdentifierHebrew = "hebrew";
inline constexpr std::string_view NSCalendarIdentifierIndian = "indian";
inline constexpr std::string_view NSCalendarIdentifierIslamicUmmAlQura = "islamic-umalqura";
inline constexpr std::string_view NSCalendarIdentifierISO8601 = "iso8601";
inline constexpr std::string_view NSCalendarIdentifierJapanese = "japanese";
inline constexpr std::string_view NSCalendarIdentifierPersian = "persian";
inline constexpr std::string_view NSCalendarIdentifierRepublicOfChina = "roc";

class NSCalendar : public NSObject {
 public:
  /// `initWithCalendarIdentifier:`  nil for an identifier other than those above. The new
  /// calendar is in `NSTimeZone::defaultTimeZone`, its weeks begin on Sunday and its first week
  /// needs one day (Monday and four days for ISO 8601).
  [[nodiscard]] static std::shared_ptr<NSCalendar> initWithCalendarIdentifier(
      std::string_view identifier);

  [[nodiscard]] const std::string& calendarIdentifier() const noexcept;
  [[nodiscard]] const std::shared_ptr<NSTimeZone>& timeZone() const noexcept;
  /// nil takes `NSTimeZone::defaultTimeZone`.
  void setTimeZone(std::shared_ptr<NSTimeZone> zone);
  /// 1 is Sunday, 7 is Saturday; anything else is ignored.
  [[nodiscard]] NSInteger firstWeekday() const noexcept;
  void setFirstWeekday(NSInteger weekday);
  /// How many days of the new year (or month) its first week must hold, 1 to 7; anything else is
  /// ignored.
  [[nodiscard]] NSInteger minimumDaysInFirstWeek() const noexcept;
  void setMinimumDaysInFirstWeek(NSInteger days);
  /// The locale's identifier ("en_US"), empty until set. Its region decides the weekend, and the
  /// first weekday and minimum days where these were not set. The ISO 8601 calendar keeps its
  /// weeks.
  [[nodiscard]] const std::string& localeIdentifier() const noexcept;
  void setLocaleIdentifier(std::string identifier);

  /// `components:fromDate:`  The fields that the mask names; the others stay unset.
  [[nodiscard]] NSDateComponents components(NSUInteger unitFlags, NSDate fromDate) const noexcept;
  /// `component:fromDate:`  `NSDateComponentUndefined` for what is not a single unit.
  [[nodiscard]] NSInteger component(NSCalendarUnit unit, NSDate fromDate) const noexcept;
  /// `components:fromDate:toDate:options:`  For each masked unit from the largest, the most whole
  /// steps of `dateByAddingUnit` that do not pass the second date, counted from the date that the
  /// larger units have reached; negative when the second date is earlier. `yearForWeekOfYear`
  /// counts years here, where `dateByAddingUnit` steps through years of whole weeks. With
  /// `NSCalendarWrapComponents`, days and weeks asked for alone leave out days that the zone
  /// skipped; no other option changes anything.
  [[nodiscard]] NSDateComponents components(NSUInteger unitFlags, NSDate fromDate, NSDate toDate,
                                            NSUInteger options) const noexcept;
  /// `dateByAddingUnit:value:toDate:options:`  Days and larger units keep the time of day, hours
  /// and smaller ones are lengths of time. A month's end clamps: 31 January plus 1 month is the
  /// last of February. A time that a clock change leaves out is moved on by the gap; a doubled one
  /// is the first that is met on the way. nil for an era and for a result out of range.
  /// `NSCalendarWrapComponents` keeps larger units as they are.
  [[nodiscard]] std::optional<NSDate> dateByAddingUnit(NSCalendarUnit unit, NSInteger value,
                                                       NSDate toDate,
                                                       NSUInteger options) const noexcept {
    return dateOrNil(addUnitToDate(unit, value, toDate, options));
  }
  /// `dateByAddingComponents:toDate:options:`  Unit by unit from the largest, clamping after each;
  /// a `weekdayOrdinal` adds weeks. Empty components give the date unchanged.
  [[nodiscard]] std::optional<NSDate> dateByAddingComponents(const NSDateComponents& components,
                                                             NSDate toDate,
                                                             NSUInteger options) const noexcept {
    return dateOrNil(addComponentsToDate(components, toDate, options));
  }
  /// `dateFromComponents:`  Unset fields take their smallest value, a week without a weekday its
  /// first day; values out of range roll over. A day decides over a weekday's place, that over a
  /// week of the month; where none of month, day and week of the month is set, a week of the year
  /// does. A time that a clock change leaves out is moved on by the gap; a doubled one is its
  /// first.
  [[nodiscard]] std::optional<NSDate> dateFromComponents(
      const NSDateComponents& components) const noexcept {
    return dateOrNil(resolveComponents(components));
  }
  /// The date of components that describe one that exists (`isValidDateInCalendar`), nil for all
  /// others: both questions at the price of one.
  [[nodiscard]] std::optional<NSDate> dateFromValidComponents(
      const NSDateComponents& components) const noexcept {
    return dateOrNil(resolveValidComponents(components));
  }
  /// `dateBySettingUnit:value:ofDate:options:`  The date itself when it shows the value, else the
  /// start of the next unit that does. Where a month lacks the day, the day after its end stands
  /// for it (so does the clock change for a time left out), unless `NSCalendarMatchStrictly` asks
  /// to go on. nil for a value that no date has.
  [[nodiscard]] std::optional<NSDate> dateBySettingUnit(NSCalendarUnit unit, NSInteger value,
                                                        NSDate ofDate,
                                                        NSUInteger options) const noexcept {
    return dateOrNil(setUnitOfDate(unit, value, ofDate, options));
  }
  /// `rangeOfUnit:startDate:interval:forDate:`  Start and length in seconds of the unit that holds
  /// the date: days of 23 or 25 hours as they are, from the first instant of the day. False, with
  /// both left as they were, for an era. Either output may be left out (nullptr).
  bool rangeOfUnit(NSCalendarUnit unit, NSDate* startDate, NSTimeInterval* interval,
                   NSDate forDate) const noexcept;
  /// `rangeOfUnit:inUnit:forDate:`  Location `NSNotFound` and length 0 for a pair that has none.
  /// Weeks of a year (month) are all that hold a day of it: 53 or 54.
  [[nodiscard]] NSRange rangeOfUnit(NSCalendarUnit unit, NSCalendarUnit inUnit,
                                    NSDate forDate) const noexcept;
  /// `maximumRangeOfUnit:`  Length 0 for what is not a single unit.
  [[nodiscard]] NSRange maximumRangeOfUnit(NSCalendarUnit unit) const noexcept;
  /// `minimumRangeOfUnit:`
  [[nodiscard]] NSRange minimumRangeOfUnit(NSCalendarUnit unit) const noexcept;
  /// `date:matchesComponents:`  Whether the date shows every set field.
  [[nodiscard]] bool date(NSDate date, const NSDateComponents& matchesComponents) const noexcept;
  /// `nextDateAfterDate:matchingComponents:options:`  The nearest date after the given one (before
  /// it with `NSCalendarSearchBackwards`) that matches, at the start of the smallest unit named: a
  /// month or week alone at its first day, else the start of the day or of the time. nil when 400
  /// years hold no match; calendars beyond Gregorian and ISO 8601 search 61, from a named year on.
  /// A time that a clock change leaves out matches by `NSCalendarMatchNextTime` alone.
  [[nodiscard]] std::optional<NSDate> nextDateAfterDate(NSDate date,
                                                        const NSDateComponents& matchingComponents,
                                                        NSUInteger options) const noexcept {
    return dateOrNil(findDateAfterDate(date, matchingComponents, options));
  }
  /// `isDateInWeekend:`
  [[nodiscard]] bool isDateInWeekend(NSDate date) const noexcept;

  std::string className() const override;
  /// Equal identifier, zone, weeks and locale.
  bool isEqual(const NSObject* other) const override;
  NSUInteger hash() const override;
  std::string description() const override;
  /// A calendar of its own with the same settings.
  std::shared_ptr<NSObject> copy() override;

  /// What operations count with, for this folder's own helpers.
  [[nodiscard]] const internal::time::CalendarRules& rules() const noexcept { return rules_; }

  /// Use `initWithCalendarIdentifier`; the zone is not nil.
  NSCalendar(std::string identifier, std::shared_ptr<NSTimeZone> zone);

 private:
  // The operations that may give nil, which they tell by a date that is not a number: it travels in
  // a register, where an optional takes a detour through memory.
  [[nodiscard]] NSDate addUnitToDate(NSCalendarUnit unit, NSInteger value, NSDate toDate,
                                     NSUInteger options) const noexcept;
  [[nodiscard]] NSDate addComponentsToDate(const NSDateComponents& components, NSDate toDate,
                                           NSUInteger options) const noexcept;
  [[nodiscard]] NSDate resolveComponents(const NSDateComponents& components) const noexcept;
  [[nodiscard]] NSDate resolveValidComponents(const NSDateComponents& components) const noexcept;
  [[nodiscard]] NSDate setUnitOfDate(NSCalendarUnit unit, NSInteger value, NSDate ofDate,
                                     NSUInteger options) const noexcept;
  [[nodiscard]] NSDate findDateAfterDate(NSDate date, const NSDateComponents& matchingComponents,
                                         NSUInteger options) const noexcept;
  [[nodiscard]] static std::optional<NSDate> dateOrNil(NSDate date) noexcept {
    if (date == date) return date;
    return std::nullopt;
  }

  internal::time::CalendarRules rules_;
  std::shared_ptr<const internal::time::OtherCalendar> other_;  // null where years are Gregorian
  bool hasFirstWeekday_ = false;
  bool hasMinimumDays_ = false;
  std::shared_ptr<const internal::time::LocaleWeek> localeWeek_;  // null is the world's custom
  std::string identifier_;
  std::string localeIdentifier_;
  std::shared_ptr<NSTimeZone> zone_;
};

}  // namespace ORLFoundation

/// A flat record of calendar fields, each unset (`NSDateComponentUndefined`) until written. It is
/// plain memory: copied and compared without a look at any calendar.
///
///     NSDateComponents components;
///     components.setYear(2024);
///     components.setMonth(2);
///     components.setDay(29);
///     std::optional<NSDate> date = calendar.dateFromComponents(components);
#pragma once

#include <ORLFoundation/platform/time/NSCalendarUnit.h>

#include <array>
#include <cstddef>

namespace ORLFoundation {

class NSCalendar;

/// What an unset field holds.
inline constexpr NSInteger NSDateComponentUndefined = NSIntegerMax;

class NSDateComponents {
 public:
  constexpr NSDateComponents() noexcept { fields_.fill(NSDateComponentUndefined); }

  // Each accessor reads or writes the field of its name.
  [[nodiscard]] constexpr NSInteger era() const noexcept { return fields_[kEra]; }
  [[nodiscard]] constexpr NSInteger year() const noexcept { return fields_[kYear]; }
  [[nodiscard]] constexpr NSInteger month() const noexcept { return fields_[kMonth]; }
  [[nodiscard]] constexpr NSInteger day() const noexcept { return fields_[kDay]; }
  [[nodiscard]] constexpr NSInteger hour() const noexcept { return fields_[kHour]; }
  [[nodiscard]] constexpr NSInteger minute() const noexcept { return fields_[kMinute]; }
  [[nodiscard]] constexpr NSInteger second() const noexcept { return fields_[kSecond]; }
  [[nodiscard]] constexpr NSInteger nanosecond() const noexcept { return fields_[kNanosecond]; }
  [[nodiscard]] constexpr NSInteger weekday() const noexcept { return fields_[kWeekday]; }
  [[nodiscard]] constexpr NSInteger weekdayOrdinal() const noexcept {
    return fields_[kWeekdayOrdinal];
  }
  [[nodiscard]] constexpr NSInteger quarter() const noexcept { return fields_[kQuarter]; }
  [[nodiscard]] constexpr NSInteger weekOfMonth() const noexcept { return fields_[kWeekOfMonth]; }
  [[nodiscard]] constexpr NSInteger weekOfYear() const noexcept { return fields_[kWeekOfYear]; }
  [[nodiscard]] constexpr NSInteger yearForWeekOfYear() const noexcept {
    return fields_[kYearForWeekOfYear];
  }
  constexpr void setEra(NSInteger value) noexcept { fields_[kEra] = value; }
  constexpr void setYear(NSInteger value) noexcept { fields_[kYear] = value; }
  constexpr void setMonth(NSInteger value) noexcept { fields_[kMonth] = value; }
  constexpr void setDay(NSInteger value) noexcept { fields_[kDay] = value; }
  constexpr void setHour(NSInteger value) noexcept { fields_[kHour] = value; }
  constexpr void setMinute(NSInteger value) noexcept { fields_[kMinute] = value; }
  constexpr void setSecond(NSInteger value) noexcept { fields_[kSecond] = value; }
  constexpr void setNanosecond(NSInteger value) noexcept { fields_[kNanosecond] = value; }
  constexpr void setWeekday(NSInteger value) noexcept { fields_[kWeekday] = value; }
  constexpr void setWeekdayOrdinal(NSInteger value) noexcept { fields_[kWeekdayOrdinal] = value; }
  constexpr void setQuarter(NSInteger value) noexcept { fields_[kQuarter] = value; }
  constexpr void setWeekOfMonth(NSInteger value) noexcept { fields_[kWeekOfMonth] = value; }
  constexpr void setWeekOfYear(NSInteger value) noexcept { fields_[kWeekOfYear] = value; }
  constexpr void setYearForWeekOfYear(NSInteger value) noexcept {
    fields_[kYearForWeekOfYear] = value;
  }

  /// `valueForComponent:`  The field of a single unit; unset for anything else. The retired week
  /// unit reads `weekOfYear`.
  [[nodiscard]] constexpr NSInteger valueForComponent(NSCalendarUnit unit) const noexcept {
    const std::size_t index = fieldOfUnit(unit);
    return index < kFieldCount ? fields_[index] : NSDateComponentUndefined;
  }
  /// `setValue:forComponent:`  Writes the field of a single unit; anything else writes nothing.
  constexpr void setValueForComponent(NSInteger value, NSCalendarUnit unit) noexcept {
    const std::size_t index = fieldOfUnit(unit);
    if (index < kFieldCount) fields_[index] = value;
  }
  /// The mask of the units whose fields are set.
  [[nodiscard]] constexpr NSUInteger setUnits() const noexcept {
    NSUInteger mask = 0;
    for (std::size_t i = 0; i < kFieldCount; ++i)
      mask |= fields_[i] != NSDateComponentUndefined ? kUnits[i] : 0;
    return mask;
  }
  /// `isValidDateInCalendar:`  Whether the set fields describe a date that exists: not 31 April,
  /// not a weekday's fifth place in a month that holds four, not a time that a clock change leaves
  /// out. A day whose midnight is left out exists as long as no time is named.
  [[nodiscard]] bool isValidDateInCalendar(const NSCalendar& calendar) const;

  /// `isEqual:`  All fields, unset ones included.
  friend constexpr bool operator==(const NSDateComponents&, const NSDateComponents&) = default;

 private:
  enum Field : std::size_t {
    kEra,
    kYear,
    kMonth,
    kDay,
    kHour,
    kMinute,
    kSecond,
    kNanosecond,
    kWeekday,
    kWeekdayOrdinal,
    kQuarter,
    kWeekOfMonth,
    kWeekOfYear,
    kYearForWeekOfYear,
    kFieldCount,
  };
  [[nodiscard]] static constexpr std::size_t fieldOfUnit(NSCalendarUnit unit) noexcept {
    switch (unit) {
      case NSCalendarUnitEra:
        return kEra;
      case NSCalendarUnitYear:
        return kYear;
      case NSCalendarUnitMonth:
        return kMonth;
      case NSCalendarUnitDay:
        return kDay;
      case NSCalendarUnitHour:
        return kHour;
      case NSCalendarUnitMinute:
        return kMinute;
      case NSCalendarUnitSecond:
        return kSecond;
      case NSCalendarUnitNanosecond:
        return kNanosecond;
      case NSCalendarUnitWeekday:
        return kWeekday;
      case NSCalendarUnitWeekdayOrdinal:
        return kWeekdayOrdinal;
      case NSCalendarUnitQuarter:
        return kQuarter;
      case NSCalendarUnitWeekOfMonth:
        return kWeekOfMonth;
      case NSCalendarUnitWeek:
      case NSCalendarUnitWeekOfYear:
        return kWeekOfYear;
      case NSCalendarUnitYearForWeekOfYear:
        return kYearForWeekOfYear;
    }
    return kFieldCount;
  }

  /// By field.
  static constexpr NSUInteger kUnits[kFieldCount] = {
      NSCalendarUnitEra,        NSCalendarUnitYear,
      NSCalendarUnitMonth,      NSCalendarUnitDay,
      NSCalendarUnitHour,       NSCalendarUnitMinute,
      NSCalendarUnitSecond,     NSCalendarUnitNanosecond,
      NSCalendarUnitWeekday,    NSCalendarUnitWeekdayOrdinal,
      NSCalendarUnitQuarter,    NSCalendarUnitWeekOfMonth,
      NSCalendarUnitWeekOfYear, NSCalendarUnitYearForWeekOfYear};

  std::array<NSInteger, kFieldCount> fields_{};
};

}  // namespace ORLFoundation

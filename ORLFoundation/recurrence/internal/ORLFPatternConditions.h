/// The conditions of the expansion of patterns. A failed one is logged and remembered, since an
/// expansion that logs must be made anew wherever its result is wanted again.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <string_view>

namespace ORLFoundation::internal::recurrence {

/// A field that a stage writes, with what is logged when an earlier stage has written it. The older
/// expansion has its own spelling of the conditions, which is the log's.
struct ORLFPatternField {
  NSCalendarUnit unit;
  std::string_view condition;
  std::string_view olderCondition;
  std::string_view message;
};

inline constexpr ORLFPatternField kMonthField = {
    NSCalendarUnitMonth, "dateComponent.month == NSDateComponentUndefined",
    "dateComponenet.month == NSDateComponentUndefined",
    "NSDateComponents month should not be defined yet"};
inline constexpr ORLFPatternField kWeekOfYearField = {
    NSCalendarUnitWeekOfYear, "dateComponent.weekOfYear == NSDateComponentUndefined",
    "dateComponenet.weekOfYear == NSDateComponentUndefined",
    "NSDateComponents weekOfYear should not be defined yet"};
inline constexpr ORLFPatternField kDayField = {NSCalendarUnitDay,
                                               "dateComponent.day == NSDateComponentUndefined",
                                               "dateComponenet.day == NSDateComponentUndefined",
                                               "NSDateComponents day should not be defined yet"};
/// The older expansion writes the weekday first, and without a condition.
inline constexpr ORLFPatternField kWeekdayField = {
    NSCalendarUnitWeekday, "dateComponent.weekday == NSDateComponentUndefined", "",
    "NSDateComponents weekday should not be defined yet"};
inline constexpr ORLFPatternField kWeekdayOrdinalField = {
    NSCalendarUnitWeekdayOrdinal, "dateComponent.weekdayOrdinal == NSDateComponentUndefined",
    "dateComponenet.weekdayOrdinal == NSDateComponentUndefined",
    "NSDateComponents weekdayOrdinal should not be defined yet"};

class ORLFPatternConditions {
 public:
  void check(bool holds, std::string_view condition, std::string_view message) {
    ORLFConditionAssert(holds, condition, message);
    quiet_ = quiet_ && holds;
  }
  /// Writes a field, after the condition that it is not written yet.
  void write(NSDateComponents& pattern, const ORLFPatternField& field, NSInteger value) {
    check(pattern.valueForComponent(field.unit) == NSDateComponentUndefined, field.condition,
          field.message);
    pattern.setValueForComponent(value, field.unit);
  }

  void reset() noexcept { quiet_ = true; }
  /// No condition failed since the last reset.
  [[nodiscard]] bool quiet() const noexcept { return quiet_; }

 private:
  bool quiet_ = true;
};

}  // namespace ORLFoundation::internal::recurrence

/// The conditions of the expansion of patterns. A failed one is logged and remembered, since
/// whoever takes the patterns again, as if they were made anew, logs it again.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <boost/container/small_vector.hpp>
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

/// The texts of conditions that failed, in order. They outlive everything.
class ORLFFailedConditions {
 public:
  void clear() noexcept { texts_.clear(); }
  void add(std::string_view condition, std::string_view message) {
    texts_.push_back({condition, message});
  }
  void log() const {
    for (const Texts& texts : texts_) ORLFLogFailedCondition(texts.condition, texts.message);
  }

 private:
  struct Texts {
    std::string_view condition;
    std::string_view message;
  };
  boost::container::small_vector<Texts, 2> texts_;
};

class ORLFPatternConditions {
 public:
  void check(bool holds, std::string_view condition, std::string_view message) {
    if (holds) return;
    failed_.add(condition, message);
    ORLFLogFailedCondition(condition, message);
  }
  /// Writes a field, after the condition that it is not written yet.
  void write(NSDateComponents& pattern, const ORLFPatternField& field, NSInteger value) {
    check(pattern.valueForComponent(field.unit) == NSDateComponentUndefined, field.condition,
          field.message);
    pattern.setValueForComponent(value, field.unit);
  }

  void reset() noexcept { failed_.clear(); }
  /// Those since the last reset.
  [[nodiscard]] const ORLFFailedConditions& failed() const noexcept { return failed_; }

 private:
  ORLFFailedConditions failed_;
};

}  // namespace ORLFoundation::internal::recurrence

/// The main expansion: turns a rule's lists into the patterns of one period. It starts from one
/// pattern, the year of the period's date with the time of day of the reference date, and each
/// stage multiplies or narrows the set that the stage before it left.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <ORLFoundation/recurrence/internal/ORLFPatternConditions.h>
#include <ORLFoundation/recurrence/internal/ORLFPeriodContext.h>

#include <boost/container/small_vector.hpp>
#include <optional>
#include <vector>

namespace ORLFoundation::internal::recurrence {

class ORLFPatternExpansion {
 public:
  using Patterns = boost::container::small_vector<NSDateComponents, 6>;

  /// The rule and the calendar must outlive the expansion.
  ORLFPatternExpansion(const ORLFDateRecurrenceRule& rule, std::optional<NSDate> referenceDate,
                       const NSCalendar* calendar);
  ORLFPatternExpansion(const ORLFPatternExpansion&) = delete;
  ORLFPatternExpansion& operator=(const ORLFPatternExpansion&) = delete;

  /// The patterns of the period that the date picks, until the next call. Once the buffers have
  /// grown to the largest set of the rule, nothing is allocated.
  const Patterns& expand(std::optional<NSDate> date);
  /// What the last expansion logged.
  [[nodiscard]] const ORLFFailedConditions& failedConditions() const noexcept {
    return conditions_.failed();
  }

 private:
  // The stages, in order.
  void seed(const ORLFPeriodContext& period);
  void expandMonths();
  void expandWeeks();
  void expandDaysOfTheYear(const ORLFPeriodContext& period);
  void constrainMonth(const ORLFPeriodContext& period);
  void expandDaysOfTheMonth();
  void expandDaysOfTheWeek(const ORLFPeriodContext& period);
  void constrainDays(const ORLFPeriodContext& period);

  template <class Change>
  void expandBy(const std::vector<NSInteger>& values, Change change);
  void expandInto(const ORLFPatternField& field, const std::vector<NSInteger>& values);
  void add(const NSDateComponents& pattern);
  void takeExpanded() noexcept;

  const ORLFDateRecurrenceRule& rule_;
  const NSCalendar* calendar_;
  bool hasReference_;
  NSUInteger units_;
  NSDateComponents timeOfDay_;

  Patterns patterns_;
  Patterns expanded_;
  ORLFPatternConditions conditions_;
  /// `needsMonthConstraint`  No stage has fixed the month yet, so it comes from the date.
  bool needsMonthConstraint_ = false;
  /// `needsDayOfMonthConstraint`  No stage has fixed the day yet, so it comes from the date.
  bool needsDayOfMonthConstraint_ = false;
  /// `needsDayOfWeekConstraint`  No stage has fixed the weekday yet, so weekday and ordinal come
  /// from the date.
  bool needsDayOfWeekConstraint_ = false;
};

}  // namespace ORLFoundation::internal::recurrence

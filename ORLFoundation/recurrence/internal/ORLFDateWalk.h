/// The main enumeration: one window of time after the other, from the start date on, with the dates
/// of the rule that lie inside it.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <ORLFoundation/recurrence/internal/ORLFCivilWindows.h>
#include <ORLFoundation/recurrence/internal/ORLFPatternExpansion.h>

#include <optional>

namespace ORLFoundation::internal::recurrence {

class ORLFDateWalk {
 public:
  /// A walk gives the same dates with its fast path as without.
  enum class Paths { kAll, kGeneralOnly };

  /// What is given must outlive the walk; `exactPatternMatch` is not looked at.
  ORLFDateWalk(const ORLFDateRecurrenceRule& rule,
               const ORLFDateRecurrenceRule::EnumerateDatesStartDate& arguments,
               ORLFDateRecurrenceBlock usingBlock, Paths paths = Paths::kAll);

  /// Walks to the end and answers how many periods that took.
  NSUInteger run();

 private:
  using Dates = ORLFCivilWindows::Dates;
  /// The dates that the patterns of one period describe, inside a window or not.
  struct PeriodDates {
    Dates dates;
    ORLFFailedConditions failed;
    bool areMade = false;
  };

  [[nodiscard]] std::optional<NSDate> endOfWindow(NSInteger index) const noexcept;
  /// Whether the calendar goes on after it.
  [[nodiscard]] bool collectNextWindow(NSInteger index);
  void collectWindow(std::optional<NSDate> next);
  [[nodiscard]] bool isPassedOver(std::optional<NSDate> next) const noexcept;
  void resolvePatterns(NSDate date, PeriodDates& into);
  void keepDatesInWindow(const Dates& dates, NSDate next);
  void deliver();

  const ORLFDateRecurrenceRule::EnumerateDatesStartDate& arguments_;
  ORLFDateRecurrenceBlock usingBlock_;
  NSCalendarUnit unit_;
  std::optional<NSInteger> step_;
  bool simple_;

  std::optional<ORLFCivilWindows> civil_;
  ORLFPatternExpansion expansion_;
  PeriodDates ofCurrent_;
  PeriodDates ofNext_;
  Dates window_;
  std::optional<NSDate> current_;  // the near end, made where the general walk needs it
  NSUInteger delivered_ = 0;
  bool stop_ = false;
};

}  // namespace ORLFoundation::internal::recurrence

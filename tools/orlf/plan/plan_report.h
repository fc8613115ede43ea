/// The figures that `orlf plan` prints: balances and contributions on dates, highest and lowest
/// balance, and the answer to the inverse question.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/time/NSCalendarUnit.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <optional>
#include <vector>

#include "plan/plan_model.h"

namespace orlftool {

struct PlanRow {
  ORLFoundation::NSDate date;
  /// nil before the plan.
  std::optional<ORLFoundation::NSDecimalNumber> balance;
  /// What came in since the row above, since the plan's start in the first row.
  std::optional<ORLFoundation::NSDecimalNumber> contributions;
};

struct PlanExtreme {
  std::optional<ORLFoundation::NSDecimalNumber> balance;
  std::optional<ORLFoundation::NSDate> date;
};

struct PlanReport {
  std::vector<PlanRow> rows;
  PlanExtreme peak, trough;
};

/// Which dates a report is about.
struct PlanDates {
  std::vector<ORLFoundation::NSDate> on;
  /// A date every so often from `from` to `to`, both included.
  std::optional<ORLFoundation::NSCalendarUnit> every;
  ORLFoundation::NSDate from, to;
  /// `to` is the plan's end: it has a row of its own where no regular date falls on it.
  bool closes = false;
};

/// The dates in ascending order, each once. Throws JobFailure for more than 200,000 of them.
[[nodiscard]] std::vector<ORLFoundation::NSDate> listPlanDates(
    const PlanDates& dates, const ORLFoundation::NSCalendar& calendar);
/// Where one segment ends and the next starts, a balance is that of the next one, of the one before
/// when `exclusive`. Peak and trough are those between `from` and `to`. Throws JobFailure, which
/// names the date, for a balance that is no number.
[[nodiscard]] PlanReport makePlanReport(const PlanModel& model, const PlanDates& dates,
                                        bool exclusive);

struct SolvedPrincipal {
  ORLFoundation::NSDecimalNumber principal;
  std::optional<ORLFoundation::NSDecimalNumber> balance;  // which that principal leads to
};

/// The principal at the plan's start from which it reaches a balance on a date, to the plan's
/// rounding (two places where it has none). Throws JobFailure when there is none, and for a date
/// that the start has no influence on or that lies after the plan's end.
[[nodiscard]] SolvedPrincipal solvePrincipal(const PlanModel& model,
                                             const ORLFoundation::NSDecimalNumber& target,
                                             ORLFoundation::NSDate date);

}  // namespace orlftool

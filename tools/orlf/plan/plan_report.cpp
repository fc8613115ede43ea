#include "plan/plan_report.h"

#include <ORLFoundation/calendar/ORLFDateOrdering.h>

#include <algorithm>

#include "cli/failure.h"
#include "values/date_text.h"
#include "values/decimal_behavior.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::size_t kMostRows = 200000;

/// Dates are counted from the first one, so that month ends do not creep.
void appendRegularDates(const PlanDates& dates, const NSCalendar& calendar,
                        std::vector<NSDate>& list) {
  for (NSInteger index = 0;; ++index) {
    const std::optional<NSDate> date =
        calendar.dateByAddingUnit(*dates.every, index, dates.from, 0);
    if (!date || orlfIsBefore(dates.to, *date)) break;
    if (list.size() >= kMostRows)
      throw JobFailure(
          "the table would have more than 200000 rows (--every, --from and --to choose fewer)");
    list.push_back(*date);
  }
  if (dates.closes) list.push_back(dates.to);
}

/// Refuses what no projection can be printed as.
void requireNumber(const std::optional<NSDecimalNumber>& balance, NSDate date,
                   const NSCalendar& calendar) {
  if (!balance || balance->compare(NSDecimalNumber::notANumber()) != NSOrderedSame) return;
  throw JobFailure("the balance on " + shortDateText(date, calendar) +
                   " is no number: rates or amounts are out of proportion");
}

PlanExtreme findExtreme(const PlanModel& model, const PlanDates& dates, bool highest) {
  PlanExtreme extreme;
  const ORLFAmortizationPlan::BalanceBetweenDates arguments{
      .startDate = dates.from,
      .endDate = dates.to,
      .usingCalendar = model.calendar(),
      .roundingBehavior = model.rounding.get(),
      .peakDate = &extreme.date};
  extreme.balance = highest ? model.plan->plannedPeakBalanceBetweenStartDate(arguments)
                            : model.plan->plannedTroughBalanceBetweenStartDate(arguments);
  requireNumber(extreme.balance, extreme.date.value_or(dates.from), model.calendar());
  return extreme;
}

/// A principal that a later segment sets hides what came before it, and nothing moves after the
/// end.
void refuseHiddenStart(const PlanModel& model, NSDate date) {
  if (!orlfIsBefore(model.start(), date))
    throw JobFailure("--on: expected a date after the plan's start, " +
                     shortDateText(model.start(), model.calendar()));
  if (model.file.end && orlfIsBefore(*model.file.end, date))
    throw JobFailure("--on: expected a date that is not after the plan's end, " +
                     shortDateText(*model.file.end, model.calendar()));
  for (std::size_t i = 1; i < model.file.segments.size(); ++i) {
    const PlanTerms& terms = model.file.segments[i];
    if (!terms.principal || orlfIsBefore(date, terms.start)) continue;
    throw JobFailure("segments[" + std::to_string(i) + "] sets a principal of its own on " +
                     shortDateText(terms.start, model.calendar()) +
                     ": the starting principal has no influence after that");
  }
}

}  // namespace

std::vector<NSDate> listPlanDates(const PlanDates& dates, const NSCalendar& calendar) {
  std::vector<NSDate> list = dates.on;
  if (dates.every) appendRegularDates(dates, calendar, list);
  std::sort(list.begin(), list.end(), orlfIsBefore);
  list.erase(std::unique(list.begin(), list.end()), list.end());
  return list;
}

PlanReport makePlanReport(const PlanModel& model, const PlanDates& dates, bool exclusive) {
  PlanReport report;
  const NSDecimalNumberBehaviors* rounding = model.rounding.get();
  std::optional<NSDecimalNumber> before = NSDecimalNumber::zero();
  for (const NSDate date : listPlanDates(dates, model.calendar())) {
    PlanRow row;
    row.date = date;
    row.balance = model.plan->plannedBalanceOnDate(date, !exclusive, model.calendar(), rounding);
    requireNumber(row.balance, date, model.calendar());
    const std::optional<NSDecimalNumber> until = model.contributionsUntil(date);
    if (until && before) row.contributions = until->decimalNumberBySubtracting(*before, rounding);
    before = until;
    report.rows.push_back(row);
  }
  report.peak = findExtreme(model, dates, true);
  report.trough = findExtreme(model, dates, false);
  return report;
}

SolvedPrincipal solvePrincipal(const PlanModel& model, const NSDecimalNumber& target, NSDate date) {
  refuseHiddenStart(model, date);
  std::shared_ptr<NSDecimalNumberBehaviors> rounding = model.rounding;
  if (!rounding) rounding = makeBehavior({.scale = 2});
  const std::optional<NSDecimalNumber> principal =
      ORLFAmortizationPlan::startingPrincipalOnDate({.startDate = model.start(),
                                                     .forAmortizationPlan = *model.plan,
                                                     .toMatchPlannedBalance = target,
                                                     .onDate = date,
                                                     .usingCalendar = model.calendar(),
                                                     .roundingBehavior = rounding.get()});
  if (!principal)
    throw JobFailure("no starting principal leads to " + target.stringValue() + " on " +
                     shortDateText(date, model.calendar()));
  const auto solved = copyOf(model.plan);
  solved->firstSegment()->setCurrentPrincipal(*principal);
  return {*principal, solved->plannedBalanceOnDate(date, true, model.calendar(), rounding.get())};
}

}  // namespace orlftool

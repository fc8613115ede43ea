#include "plan/plan_model.h"

#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <utility>
#include <vector>

#include "values/decimal_behavior.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

std::shared_ptr<ORLFAmortizationPlanSegment> makeSegment(const PlanTerms& terms) {
  auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
  segment->setStartDate(terms.start);
  segment->setCurrentPrincipal(terms.principal);
  segment->setContribution(terms.contribution.value_or(NSDecimalNumber::zero()));
  segment->setContributionFrequncy(std::make_shared<ORLFDateRecurrencePeriod>(
      static_cast<ORLFDateRecurrenceFrequency>(terms.frequency), terms.interval));
  segment->setAnualCompoundingRate(terms.rate);
  segment->setAnualInflationRate(terms.inflation);
  return segment;
}

}  // namespace

NSDate PlanModel::horizon() const {
  constexpr NSInteger kYearsOfOpenPlan = 10;
  if (const std::optional<NSDate> end = plan->planEndDate()) return *end;
  const NSDate last = plan->lastIntrestingDate().value_or(start());
  return calendar().dateByAddingUnit(NSCalendarUnitYear, kYearsOfOpenPlan, last, 0).value_or(last);
}

std::optional<NSDecimalNumber> PlanModel::contributionsUntil(NSDate date) const {
  return plan->plannedContributionsFromStartDate({.startDate = start(),
                                                  .toEndDate = date,
                                                  .usingCalendar = calendar(),
                                                  .roundingBehavior = rounding.get()});
}

PlanModel makePlanModel(PlanFile file) {
  PlanModel model;
  std::vector<ORLFAmortizationPlan::Segment> segments;
  for (const PlanTerms& terms : file.segments) segments.push_back(makeSegment(terms));
  model.plan = std::make_shared<ORLFAmortizationPlan>();
  model.plan->setSegments(std::move(segments));
  model.plan->setEndDate(file.end.value_or(NSDate::distantFuture()));
  if (file.rounding) model.rounding = makeBehavior({file.rounding->scale, file.rounding->mode});
  model.file = std::move(file);
  return model;
}

std::vector<std::string> planWarnings(const PlanFile& file) {
  std::vector<std::string> warnings;
  for (std::size_t i = 0; i < file.segments.size(); ++i) {
    const PlanTerms& terms = file.segments[i];
    if (!terms.rate) continue;
    const std::string place = "segments[" + std::to_string(i) + "]";
    if (terms.rate->compare(NSDecimalNumber::zero()) != NSOrderedDescending) {
      warnings.push_back(place +
                         ".rate: a rate of 0 or below counts as no growth, and inflation does not "
                         "count either (docs/plan-file.md)");
    } else if (terms.interval > 1) {
      warnings.push_back(place + ".interval: with growth only one contribution in " +
                         std::to_string(terms.interval) + " is counted (docs/plan-file.md)");
    }
  }
  return warnings;
}

std::string segmentName(const PlanFile& file, std::size_t index) {
  const std::string& name = file.segments[index].name;
  return name.empty() ? "Segment " + std::to_string(index + 1) : name;
}

}  // namespace orlftool

/// A plan file as a plan of the library, with the behaviour that its balances are rounded by.
#pragma once

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plan/plan_file.h"

namespace orlftool {

struct PlanModel {
  PlanFile file;
  std::shared_ptr<ORLFoundation::ORLFAmortizationPlan> plan;
  /// Null for a plan without a rounding rule.
  std::shared_ptr<ORLFoundation::NSDecimalNumberBehaviors> rounding;

  [[nodiscard]] const ORLFoundation::NSCalendar& calendar() const { return *file.calendar; }
  [[nodiscard]] ORLFoundation::NSDate start() const { return file.segments.front().start; }
  /// The end of the plan; of an open one, ten years after the last thing that changes.
  [[nodiscard]] ORLFoundation::NSDate horizon() const;
  /// What came in from the plan's start to a date. Contributions between two dates are the
  /// difference of two such sums: so they add up, whatever the dates.
  [[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> contributionsUntil(
      ORLFoundation::NSDate date) const;
};

[[nodiscard]] PlanModel makePlanModel(PlanFile file);
/// What the projection does with the plan that its reader may not expect, a line for each segment.
[[nodiscard]] std::vector<std::string> planWarnings(const PlanFile& file);
/// The name of a segment, "Segment 2" for one without.
[[nodiscard]] std::string segmentName(const PlanFile& file, std::size_t index);

}  // namespace orlftool

/// The chart of a plan: a line of balances for each segment, and beside them what the contributions
/// alone would come to.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <string>

#include "chart/chart.h"
#include "plan/plan_model.h"

namespace orlftool {

/// The chart between two dates, cut to the plan.
[[nodiscard]] Chart makePlanChart(const PlanModel& model, ORLFoundation::NSDate from,
                                  ORLFoundation::NSDate to, const std::string& locale);

}  // namespace orlftool

/// What `orlf schedule` was asked for, checked: a usual payment schedule and the dates of it that
/// are wanted.
#pragma once

#include <ORLFoundation/amortization/ORLFPaymentSchedules.h>

#include <memory>
#include <optional>
#include <string>

#include "dates/dates_request.h"

namespace orlftool {

/// The options as they were typed.
struct ScheduleArguments {
  std::string pattern;
  std::optional<std::string> weekday;
  std::optional<std::string> day, secondDay, month, secondMonth;
  bool lastDay = false;
  std::optional<std::string> including, andDate;
  std::optional<std::string> start, until;
  std::optional<std::string> count;
};

/// The rule is `dates.rule`. Throws UsageFailure for an unknown pattern, for options that the
/// pattern does not take, and for numbers out of range. A schedule that includes a date starts on
/// it where no start is given. Its dates are days: times of day are dropped.
///
/// Dates come from the main walk, but for the schedules whose phase or months only the older walk
/// heeds: the biweekly ones, and the quarterly one that includes a date.
[[nodiscard]] DatesRequest readScheduleRequest(const ScheduleArguments& arguments,
                                               std::shared_ptr<ORLFoundation::NSCalendar> calendar);

}  // namespace orlftool

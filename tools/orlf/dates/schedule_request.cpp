

#include "dates/schedule_request.h"

#include <ORLFoundation/calendar/ORLFCalendarRounding.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/failure.h"
#include "cli/option_checks.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Arguments = ScheduleArguments;

constexpr std::int64_t kDefaultCount = 12, kMostDates = 1000000, kLastFirstOfTwoDays = 17;

/// The dates of --including and --and.
struct IncludedDates {
  NSDate first;
  std::optional<NSDate> second;
};

std::optional<NSInteger> weekdayOf(const Arguments& arguments) {
  if (!arguments.weekday) return std::nullopt;
  const auto weekday = readWeekday(*arguments.weekday);
  if (!weekday || weekday->dayOfTheWeek() < 1 || weekday->weekNumber() != 0)
    throw UsageFailure("--weekday: expected one of SU, MO, TU, WE, TH, FR, SA, got '" +
                       *arguments.weekday + "'");
  return weekday->dayOfTheWeek();
}

ORLFPaymentSchedule semiMonthly(const Arguments& arguments) {
  if (!arguments.secondDay && arguments.day.value_or(1) > kLastFirstOfTwoDays)
    throw UsageFailure("--second-day is required where --day is above 17");
  return scheduleForSemiMonthlyPayments(arguments.day, arguments.secondDay);
}

ORLFPaymentSchedule monthly(const Arguments& arguments) {
  refuseTogether(arguments.lastDay, "--last-day", arguments.day.has_value(), "--day");
  return arguments.lastDay ? scheduleForLastDayOfMonth()
                           : scheduleForMonthlyPayments(arguments.day);
}

ORLFPaymentSchedule semiMonthlyIncluding(const IncludedDates& dates, const NSCalendar& calendar) {
  if (!dates.second) throw UsageFailure("--including needs --and, the second payment's date");
  return absoluteScheduleForSemiMonthlyPaymentsIncludingDate(dates.first, *dates.second, calendar);
}

/// The options that a pattern takes beside --including, --start, --until and --count.
enum Takes : unsigned {
  kWeekday = 1,
  kDay = 2,
  kSecondDay = 4,
  kMonth = 8,
  kSecondMonth = 16,
  kLastDay = 32,
  kAnd = 64,
};

struct Pattern {
  std::string_view name;
  unsigned takes;
  bool isOlderWalk, isOlderWalkIncluding;
  ORLFPaymentSchedule (*make)(const Arguments& arguments);
  ORLFPaymentSchedule (*makeIncluding)(const IncludedDates& dates, const NSCalendar& calendar);
};

const std::array kPatterns{
    Pattern{"weekly", kWeekday, false, false,
            [](const Arguments& a) { return scheduleForWeeklyPayments(weekdayOf(a)); },
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForWeeklyPaymentsIncludingDate(dates.first, calendar);
            }},
    Pattern{"biweekly", kWeekday, true, true,
            [](const Arguments& a) { return scheduleForBiweeklyPayments(weekdayOf(a)); },
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForBiweeklyPaymentsIncludingDate(dates.first, calendar);
            }},
    Pattern{"semimonthly", kDay | kSecondDay | kAnd, false, false, semiMonthly,
            semiMonthlyIncluding},
    Pattern{"monthly", kDay | kLastDay, false, false, monthly,
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForMonthlyPaymentsIncludingDate(dates.first, calendar);
            }},
    Pattern{"quarterly", 0, false, true,
            [](const Arguments&) { return scheduleForQuarterlyPayments(); },
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForQuarterlyPaymentsIncludingDate(dates.first, calendar);
            }},
    Pattern{"semiannual", kDay | kMonth | kSecondMonth | kAnd, false, false,
            [](const Arguments& a) {
              return scheduleForSemiAnnualPayments(a.day, a.month, a.secondMonth);
            },
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForSemiAnnualPaymentsIncludingDate(dates.first, dates.second,
                                                                        calendar);
            }},
    Pattern{"annual", kDay | kMonth, false, false,
            [](const Arguments& a) { return scheduleForAnnualPayments(a.month, a.day); },
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForAnnualPaymentsIncludingDate(dates.first, calendar);
            }},
};

const Pattern& patternNamed(const std::string& name) {
  const auto* found = std::find_if(kPatterns.begin(), kPatterns.end(),
                                   [&](const Pattern& row) { return row.name == name; });
  if (found != kPatterns.end()) return *found;
  throw UsageFailure(
      "PATTERN: expected weekly, biweekly, semimonthly, monthly, quarterly, semiannual or annual, "
      "got '" +
      name + "'");
}

void checkOptions(const Arguments& arguments, const Pattern& pattern) {
  struct Given {
    std::string_view option;
    bool isGiven;
    unsigned bit;
  };
  for (const Given& row : {Given{"--weekday", arguments.weekday.has_value(), kWeekday},
                           Given{"--day", arguments.day.has_value(), kDay},
                           Given{"--second-day", arguments.secondDay.has_value(), kSecondDay},
                           Given{"--month", arguments.month.has_value(), kMonth},
                           Given{"--second-month", arguments.secondMonth.has_value(), kSecondMonth},
                           Given{"--last-day", arguments.lastDay, kLastDay},
                           Given{"--and", arguments.andDate.has_value(), kAnd}}) {
    if (row.isGiven && (pattern.takes & row.bit) == 0)
      throw UsageFailure(std::string(row.option) + " does not go together with " +
                         std::string(pattern.name));
    refuseTogether(arguments.including && row.bit != kAnd, "--including", row.isGiven, row.option);
  }
  if (arguments.andDate && !arguments.including) throw UsageFailure("--and needs --including");
}

void checkNumbers(const Arguments& arguments) {
  if (arguments.day) checkRange("--day", *arguments.day, 1, 31);
  if (arguments.secondDay) checkRange("--second-day", *arguments.secondDay, 1, 31);
  if (arguments.month) checkRange("--month", *arguments.month, 1, 12);
  if (arguments.secondMonth) checkRange("--second-month", *arguments.secondMonth, 1, 12);
  if (arguments.count) checkRange("--count", *arguments.count, 1, kMostDates);
}

/// Dates of the older walk stand at the start of their day.
NSDate startOfDay(NSDate date, const NSCalendar& calendar) {
  return orlfDateByRoundingDateDownToCalendarUnit(calendar, date, NSCalendarUnitDay).value_or(date);
}

/// Where the older walk, which leaves out its first period, has to begin for all dates from the
/// start on.
NSDate yearBefore(NSDate start, const NSCalendar& calendar) {
  return calendar.dateByAddingUnit(NSCalendarUnitYear, -1, start, 0).value_or(start);
}

}  // namespace

DatesRequest readScheduleRequest(const ScheduleArguments& arguments,
                                 std::shared_ptr<NSCalendar> calendar) {
  const Pattern& pattern = patternNamed(arguments.pattern);
  checkOptions(arguments, pattern);
  checkNumbers(arguments);
  const auto date = [&](std::string_view option, const std::optional<std::string>& text) {
    return text ? std::optional(readDateOption(option, *text, *calendar)) : std::nullopt;
  };
  const std::optional<NSDate> including = date("--including", arguments.including);
  const std::optional<NSDate> start = date("--start", arguments.start);
  if (!start && !including) throw UsageFailure("--start or --including is required");
  DatesRequest request;
  request.rule =
      including ? pattern.makeIncluding({*including, date("--and", arguments.andDate)}, *calendar)
                : pattern.make(arguments);
  request.start = start ? *start : *including;
  request.until = date("--until", arguments.until);
  request.count = arguments.count;
  if (!request.count && !request.until) request.count = kDefaultCount;
  request.older = including ? pattern.isOlderWalkIncluding : pattern.isOlderWalk;
  if (request.older) {
    request.start = startOfDay(request.start, *calendar);
    request.reference = yearBefore(request.start, *calendar);
  }
  request.eachOnce = true;
  request.calendar = std::move(calendar);
  return request;
}

}  // namespace orlftool

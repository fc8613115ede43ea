#include "dates/schedule_request.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "cli/failure.h"
#include "values/date_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kDefaultEvents = 12, kMostEvents = 1000000, kLastFirstOfTwoDays = 17;

/// The dates of --including and --and.
struct IncludedDates {
  NSDate first;
  std::optional<NSDate> second;
};

/// The options that make a schedule without a date in it, read.
struct Arguments {
  std::optional<NSInteger> weekday, day, secondDay, month, secondMonth;
  bool lastDay = false;
};

std::optional<NSInteger> readWeekdayOption(const ScheduleArguments& arguments) {
  if (!arguments.weekday) return std::nullopt;
  const auto weekday = readWeekday(*arguments.weekday);
  if (!weekday || weekday->dayOfTheWeek() < 1 || weekday->weekNumber() != 0)
    throw UsageFailure("--weekday: expected one of SU, MO, TU, WE, TH, FR, SA, got '" +
                       *arguments.weekday + "'");
  return weekday->dayOfTheWeek();
}

Arguments readArguments(const ScheduleArguments& typed) {
  const auto number = [](std::string_view option, const std::optional<std::string>& text,
                         std::int64_t most) {
    return text ? std::optional(readWholeArgument(option, *text, 1, most)) : std::nullopt;
  };
  return {.weekday = readWeekdayOption(typed),
          .day = number("--day", typed.day, 31),
          .secondDay = number("--second-day", typed.secondDay, 31),
          .month = number("--month", typed.month, 12),
          .secondMonth = number("--second-month", typed.secondMonth, 12),
          .lastDay = typed.lastDay};
}

ORLFPaymentSchedule semiMonthly(const Arguments& arguments) {
  if (!arguments.secondDay && arguments.day.value_or(1) > kLastFirstOfTwoDays)
    throw UsageFailure("--second-day is required where --day is above 17");
  return scheduleForSemiMonthlyPayments(arguments.day, arguments.secondDay);
}

ORLFPaymentSchedule monthly(const Arguments& arguments) {
  return arguments.lastDay ? scheduleForLastDayOfMonth()
                           : scheduleForMonthlyPayments(arguments.day);
}

ORLFPaymentSchedule semiMonthlyIncluding(const IncludedDates& dates, const NSCalendar& calendar) {
  if (!dates.second) throw UsageFailure("--including needs --and, the second payment's date");
  return absoluteScheduleForSemiMonthlyPaymentsIncludingDate(dates.first, *dates.second, calendar);
}

/// The rule with another number in place of the month 0, which no month is: the library counts the
/// third month of a quarter and a December as 0, and dates of such months would be left out.
ORLFPaymentSchedule withMonthForZero(const ORLFPaymentSchedule& rule, NSInteger month) {
  std::vector<NSInteger> months = rule->monthsOfTheYear().value_or(std::vector<NSInteger>());
  std::replace(months.begin(), months.end(), NSInteger{0}, month);
  return std::make_shared<ORLFDateRecurrenceRule>(
      ORLFDateRecurrenceRule::Recurrence{.frequency = rule->frequency(),
                                         .interval = rule->interval(),
                                         .anchorIndex = rule->anchorIndex(),
                                         .absolute = rule->absolute(),
                                         .daysOfTheMonth = rule->daysOfTheMonth(),
                                         .monthsOfTheYear = std::move(months)});
}

ORLFPaymentSchedule quarterlyIncluding(const IncludedDates& dates, const NSCalendar& calendar) {
  constexpr NSInteger kThirdMonth = 3;
  return withMonthForZero(absoluteScheduleForQuarterlyPaymentsIncludingDate(dates.first, calendar),
                          kThirdMonth);
}

ORLFPaymentSchedule semiAnnualIncluding(const IncludedDates& dates, const NSCalendar& calendar) {
  constexpr NSInteger kDecember = 12;
  return withMonthForZero(
      absoluteScheduleForSemiAnnualPaymentsIncludingDate(dates.first, dates.second, calendar),
      kDecember);
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
            [](const Arguments& a) { return scheduleForWeeklyPayments(a.weekday); },
            [](const IncludedDates& dates, const NSCalendar& calendar) {
              return absoluteScheduleForWeeklyPaymentsIncludingDate(dates.first, calendar);
            }},
    Pattern{"biweekly", kWeekday, true, true,
            [](const Arguments& a) { return scheduleForBiweeklyPayments(a.weekday); },
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
            [](const Arguments&) { return scheduleForQuarterlyPayments(); }, quarterlyIncluding},
    Pattern{"semiannual", kDay | kMonth | kSecondMonth | kAnd, false, false,
            [](const Arguments& a) {
              return scheduleForSemiAnnualPayments(a.day, a.month, a.secondMonth);
            },
            semiAnnualIncluding},
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

void checkOptions(const ScheduleArguments& arguments, const Pattern& pattern) {
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
    if (row.isGiven && arguments.including && row.bit != kAnd)
      throw UsageFailure("--including does not go together with " + std::string(row.option));
  }
  if (arguments.lastDay && arguments.day)
    throw UsageFailure("--last-day does not go together with --day");
  if (arguments.andDate && !arguments.including) throw UsageFailure("--and needs --including");
}

/// Where the older walk, which leaves out its first period, has to begin for all dates from the
/// start on.
NSDate yearBefore(NSDate start, const NSCalendar& calendar) {
  return calendar.dateByAddingUnit(NSCalendarUnitYear, -1, start, 0).value_or(start);
}

}  // namespace

DatesRequest readScheduleRequest(const ScheduleArguments& arguments,
                                 std::shared_ptr<NSCalendar> calendar) {
  DatesRequest request;
  const Pattern& pattern = patternNamed(arguments.pattern);
  checkOptions(arguments, pattern);
  const Arguments options = readArguments(arguments);
  if (arguments.count)
    request.count = readWholeArgument("--count", *arguments.count, 1, kMostEvents);
  const auto date = [&](std::string_view option, const std::optional<std::string>& text) {
    return text ? std::optional(readDateOption(option, *text, *calendar)) : std::nullopt;
  };
  const std::optional<NSDate> including = date("--including", arguments.including);
  const std::optional<NSDate> start = date("--start", arguments.start);
  if (!start && !including) throw UsageFailure("--start or --including is required");
  request.rule =
      including ? pattern.makeIncluding({*including, date("--and", arguments.andDate)}, *calendar)
                : pattern.make(options);
  request.wholeDays = true;
  request.start = startOfDay(start ? *start : *including, *calendar);
  if (const auto until = date("--until", arguments.until)) request.until = DateBound{*until};
  if (!request.count && !request.until) request.count = kDefaultEvents;
  request.older = including ? pattern.isOlderWalkIncluding : pattern.isOlderWalk;
  if (request.older) request.reference = yearBefore(request.start, *calendar);
  request.eachOnce = true;
  request.calendar = std::move(calendar);
  return request;
}

}  // namespace orlftool

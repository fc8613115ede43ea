#include <ORLFoundation/calendar/ORLFCalendarFiscal.h>

#include <array>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"
#include "values/date_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct FiscalArguments {
  std::string date;
  std::string yearStart;
};

struct MonthDay {
  NSInteger month = 1, day = 1;
};

std::optional<NSInteger> readNumber(std::string_view text, NSInteger most) {
  const std::optional<std::int64_t> number = readWholeNumber(text);
  return number && *number >= 1 && *number <= most ? number : std::nullopt;
}

/// "7-1", "07-01": a month and a day that it has in some year.
MonthDay readYearStart(const std::string& text) {
  constexpr std::array<NSInteger, 12> kDays{31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const std::size_t dash = text.find('-');
  if (dash != std::string::npos) {
    const auto month = readNumber(std::string_view(text).substr(0, dash), 12);
    if (month) {
      const NSInteger length = kDays.at(static_cast<std::size_t>(*month - 1));
      const auto day = readNumber(std::string_view(text).substr(dash + 1), length);
      if (day) return {*month, *day};
    }
  }
  throw UsageFailure("--year-start: expected a month and a day such as 7-1, got '" + text + "'");
}

struct FiscalDate {
  NSDateComponents fields;
  NSDate yearStart, quarterStart, monthStart;
};

FiscalDate fiscalDate(NSDate date, MonthDay start, const NSCalendar& calendar) {
  FiscalDate answer;
  answer.fields = orlfComponents(
      calendar,
      NSCalendarUnitYear | NSCalendarUnitQuarter | NSCalendarUnitMonth | NSCalendarUnitWeekOfYear,
      date, start.month, start.day);
  const std::optional<NSDate> yearStart = orlfStartOfYear(calendar, date, start.month, start.day);
  if (!yearStart) throw JobFailure("the fiscal year lies outside of the calendar");
  answer.yearStart = *yearStart;
  const auto monthsOn = [&](NSInteger months) {
    return calendar.dateByAddingUnit(NSCalendarUnitMonth, months, answer.yearStart, 0)
        .value_or(answer.yearStart);
  };
  answer.monthStart = monthsOn(answer.fields.month() - 1);
  answer.quarterStart = monthsOn(3 * (answer.fields.quarter() - 1));
  return answer;
}

void printFiscal(Session& session, const FiscalArguments& arguments) {
  const auto calendar = session.calendar;
  const MonthDay start = readYearStart(arguments.yearStart);
  const FiscalDate answer =
      fiscalDate(readDateOption("DATE", arguments.date, *calendar), start, *calendar);
  const auto day = [&](NSDate date) { return shortDateText(date, *calendar); };
  if (session.options.json) {
    const Json json{{"year", answer.fields.year()},
                    {"quarter", answer.fields.quarter()},
                    {"month", answer.fields.month()},
                    {"week", answer.fields.weekOfYear()},
                    {"yearStart", dateTimeText(answer.yearStart, *calendar)},
                    {"quarterStart", dateTimeText(answer.quarterStart, *calendar)},
                    {"monthStart", dateTimeText(answer.monthStart, *calendar)}};
    printJson(session.out, json);
    return;
  }
  session.out << "Year:     " << answer.fields.year() << ", from " << day(answer.yearStart) << '\n'
              << "Quarter:  " << answer.fields.quarter() << ", from " << day(answer.quarterStart)
              << '\n'
              << "Month:    " << answer.fields.month() << ", from " << day(answer.monthStart)
              << '\n'
              << "Week:     " << answer.fields.weekOfYear() << '\n';
}

}  // namespace

Job declareFiscalCommand(Options& options) {
  options.describe(
      "Print year, quarter, month and week of a date in a fiscal year. A fiscal year is called\n"
      "after the year in which it ends, but on its first day after the one in which it begins.");
  auto arguments = std::make_shared<FiscalArguments>();
  options.required("DATE", arguments->date, "ISO 8601 date");
  options.required("--year-start", arguments->yearStart,
                   "Month and day on which the year begins, 7-1 for July 1st");
  return [arguments](Session& session) { printFiscal(session, *arguments); };
}

}  // namespace orlftool

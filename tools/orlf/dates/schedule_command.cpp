#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "cli/common_options.h"
#include "commands.h"
#include "dates/dates_walk.h"
#include "dates/schedule_request.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Json = nlohmann::ordered_json;

void printSchedule(Session& session, const ScheduleArguments& arguments) {
  const DatesRequest request =
      readScheduleRequest(arguments, makeCalendar(session.options.zone, session.options.locale));
  const NSUInteger payments = numberOfPaymentPeriodsPerYear(*request.rule);
  if (!session.options.json) session.out << "Payments a year: " << payments << '\n';
  Json dates = Json::array();
  walkDates(request, [&](NSDate date) {
    if (session.options.json) {
      dates.push_back(dateTimeText(date, *request.calendar));
    } else {
      session.out << shortDateText(date, *request.calendar) << '\n';
    }
  });
  if (!session.options.json) return;
  session.out << Json({{"pattern", arguments.pattern},
                       {"zone", request.calendar->timeZone()->name()},
                       {"paymentsPerYear", payments},
                       {"dates", std::move(dates)}})
                     .dump(2)
              << '\n';
}

}  // namespace

Command addScheduleCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "schedule", "Print the dates of a usual payment schedule and its payments a year.");
  auto arguments = std::make_shared<ScheduleArguments>();
  parser
      ->add_option("PATTERN", arguments->pattern,
                   "weekly, biweekly, semimonthly, monthly, quarterly, semiannual or annual")
      ->required();
  parser->add_option("--start", arguments->start, "Print dates from this one on");
  parser->add_option("--until", arguments->until, "Print dates before this one");
  parser->add_option("--count", arguments->count,
                     "Most dates to print (12 where --until is not given)");
  parser->add_option("--weekday", arguments->weekday, "Weekly, biweekly: SU to SA (FR)");
  parser->add_option("--day", arguments->day,
                     "Day of the month, the first of two when semimonthly (1)");
  parser->add_option("--second-day", arguments->secondDay,
                     "Semimonthly: the other day (14 days after the first)");
  parser->add_flag("--last-day", arguments->lastDay, "Monthly: the last day of each month");
  parser->add_option("--month", arguments->month, "Semiannual, annual: the month (1)");
  parser->add_option("--second-month", arguments->secondMonth,
                     "Semiannual: the other month (six on, or 12)");
  parser->add_option("--including", arguments->including,
                     "A date that belongs to the schedule, in place of days and months");
  parser->add_option("--and", arguments->andDate,
                     "Semimonthly, semiannual: another date that belongs to it");
  return {parser, [arguments](Session& session) { printSchedule(session, *arguments); }};
}

}  // namespace orlftool

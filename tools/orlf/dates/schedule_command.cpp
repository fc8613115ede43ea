#include <memory>
#include <ostream>
#include <utility>

#include "cli/command_line.h"
#include "cli/json_output.h"
#include "commands.h"
#include "dates/dates_notes.h"
#include "dates/dates_walk.h"
#include "dates/schedule_request.h"
#include "session.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printSchedule(Session& session, const ScheduleArguments& arguments) {
  const DatesRequest request = readScheduleRequest(arguments, session.calendar);
  const NSUInteger payments = numberOfPaymentPeriodsPerYear(*request.rule);
  if (!session.options.json) session.out << "Payments a year: " << payments << '\n';
  Json dates = Json::array();
  bool isEmpty = true;
  walkDates(request, [&](NSDate date) {
    isEmpty = false;
    if (session.options.json) {
      dates.push_back(dateTimeText(date, *request.calendar));
    } else {
      session.out << shortDateText(date, *request.calendar) << '\n';
    }
  });
  if (isEmpty)
    for (const std::string& note : notesOnDates(request, isEmpty)) printNote(session, note);
  if (!session.options.json) return;
  printJson(session.out, {{"pattern", arguments.pattern},
                          {"zone", request.calendar->timeZone()->name()},
                          {"paymentsPerYear", payments},
                          {"dates", std::move(dates)}});
}

}  // namespace

Job declareScheduleCommand(Options& options) {
  options.describe("Print the dates of a usual payment schedule and its payments a year.");
  auto arguments = std::make_shared<ScheduleArguments>();
  options.required("PATTERN", arguments->pattern,
                   "weekly, biweekly, semimonthly, monthly, quarterly, semiannual or annual");
  options.text("--start", arguments->start, "Print dates from this one on");
  options.text("--until", arguments->until, "Print dates before this one");
  options.text("--count", arguments->count, "Most dates to print (12 where --until is not given)");
  options.text("--weekday", arguments->weekday, "Weekly, biweekly: SU to SA (FR)");
  options.text("--day", arguments->day, "Day of the month, the first of two when semimonthly (1)");
  options.text("--second-day", arguments->secondDay,
               "Semimonthly: the other day (14 days after the first)");
  options.flag("--last-day", arguments->lastDay, "Monthly: the last day of each month");
  options.text("--month", arguments->month, "Semiannual, annual: the month (1)");
  options.text("--second-month", arguments->secondMonth,
               "Semiannual: the other month (six on, or 12)");
  options.text("--including", arguments->including,
               "A date that belongs to the schedule, in place of days and months");
  options.text("--and", arguments->andDate,
               "Semimonthly, semiannual: another date that belongs to it");
  return [arguments](Session& session) { printSchedule(session, *arguments); };
}

}  // namespace orlftool

#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "cli/command_line.h"
#include "cli/json_output.h"
#include "commands.h"
#include "dates/dates_notes.h"
#include "dates/dates_request.h"
#include "dates/dates_walk.h"
#include "session.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printDates(Session& session, const DatesArguments& arguments) {
  const DatesRequest request = readDatesRequest(arguments, session.calendar);
  Json dates = Json::array();
  bool isEmpty = true;
  walkDates(request, [&](NSDate date) {
    isEmpty = false;
    const std::string text = dateTimeText(date, *request.calendar);
    if (session.options.json) {
      dates.push_back(text);
    } else {
      session.out << text << '\n';
    }
  });
  for (const std::string& note : notesOnDates(request, isEmpty)) printNote(session, note);
  if (!session.options.json) return;
  printJson(session.out,
            {{"zone", request.calendar->timeZone()->name()}, {"dates", std::move(dates)}});
}

void addWalkOptions(Options& options, DatesArguments& arguments) {
  options.required("--start", arguments.start, "First date");
  options.text("--from", arguments.from, "Range of dates: its beginning");
  options.text("--to", arguments.to, "Range of dates: its end");
  options.flag("--inclusive", arguments.inclusive, "Dates on --to or --until count too");
  options.text("--reference", arguments.reference, "A date of the series, where --start is none");
  options.text("--count", arguments.count,
               "Most dates to print (20 where no other bound is given)");
  options.text("--until", arguments.until, "Print dates before this one");
  options.flag("--backwards", arguments.backwards, "Walk back in time");
  options.flag("--exact", arguments.exact,
               "Only dates that repeat the start's day: no 30 April for a start on the 31st");
  options.flag("--older", arguments.older,
               "The older walk, which heeds --set-pos, --anchor and --absolute");
}

}  // namespace

Job declareDatesCommand(Options& options) {
  options.describe("Print the dates of a recurrence rule, one ISO 8601 date and time a line.");
  auto arguments = std::make_shared<DatesArguments>();
  options.text(
      "--rule", arguments->rule,
      "iCalendar text, 'RRULE:FREQ=...', in place of the options below; WKST, BYSETPOS and\n"
      "times of day in it are passed over");
  addRuleOptions(options, *arguments, "--rule");
  addFurtherRuleOptions(options, *arguments, "--rule");
  addWalkOptions(options, *arguments);
  return [arguments](Session& session) { printDates(session, *arguments); };
}

}  // namespace orlftool

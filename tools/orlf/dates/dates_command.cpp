#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <utility>

#include "cli/common_options.h"
#include "commands.h"
#include "dates/dates_request.h"
#include "dates/dates_walk.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printDates(Session& session, const DatesArguments& arguments) {
  const DatesRequest request =
      readDatesRequest(arguments, makeCalendar(session.options.zone, session.options.locale));
  nlohmann::ordered_json dates = nlohmann::ordered_json::array();
  walkDates(request, [&](NSDate date) {
    const std::string text = dateTimeText(date, *request.calendar);
    if (session.options.json) {
      dates.push_back(text);
    } else {
      session.out << text << '\n';
    }
  });
  if (!session.options.json) return;
  const nlohmann::ordered_json answer{{"zone", request.calendar->timeZone()->name()},
                                      {"dates", std::move(dates)}};
  session.out << answer.dump(2) << '\n';
}

void addWalkOptions(CLI::App& parser, DatesArguments& arguments) {
  parser.add_option("--start", arguments.start, "First date")->required();
  parser.add_option("--from", arguments.from, "Range of dates: its beginning");
  parser.add_option("--to", arguments.to, "Range of dates: its end");
  parser.add_flag("--inclusive", arguments.inclusive, "Dates on --to or --until count too");
  parser.add_option("--reference", arguments.reference,
                    "A date of the series, where --start is none");
  parser.add_option("--count", arguments.count,
                    "Most dates to print (20 where no other bound is given)");
  parser.add_option("--until", arguments.until, "Print dates before this one");
  parser.add_flag("--backwards", arguments.backwards, "Walk back in time");
  parser.add_flag("--exact", arguments.exact,
                  "Only dates that repeat the start's day: no 30 April for a start on the 31st");
  parser.add_flag("--older", arguments.older,
                  "The older walk, which heeds --set-pos, --anchor and --absolute");
}

}  // namespace

Command addDatesCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "dates", "Print the dates of a recurrence rule, one ISO 8601 date and time a line.");
  auto arguments = std::make_shared<DatesArguments>();
  CLI::Option* text = parser->add_option(
      "--rule", arguments->rule,
      "iCalendar text, 'RRULE:FREQ=...', in place of the options below; COUNT, UNTIL, WKST,\n"
      "BYSETPOS and times of day in it are passed over");
  addRuleOptions(*parser, *arguments, *text);
  addFurtherRuleOptions(*parser, *arguments, *text);
  addWalkOptions(*parser, *arguments);
  return {parser, [arguments](Session& session) { printDates(session, *arguments); }};
}

}  // namespace orlftool

#include <ORLFoundation/recurrence/ORLFCalendarRecurrence.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <utility>

#include "commands.h"
#include "common_options.h"
#include "date_text.h"
#include "dates_request.h"
#include "failure.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr double kMostPeriods = 2e6;
constexpr int kMostDatesPassedOver = 2000000;

double secondsOfFrequency(ORLFDateRecurrenceFrequency frequency) {
  constexpr double kDay = 86400, kYear = 365.2425 * kDay;
  switch (frequency) {
    case ORLFDateRecurrenceFrequencyDaily:
      return kDay;
    case ORLFDateRecurrenceFrequencyWeekly:
      return 7 * kDay;
    case ORLFDateRecurrenceFrequencyMonthly:
      return kYear / 12;
    case ORLFDateRecurrenceFrequencyQuarterly:
      return kYear / 4;
    case ORLFDateRecurrenceFrequencyYearly:
      return kYear;
  }
  return kDay;
}

/// Walks cost a step for each period between the dates that they are asked about.
void refuseLongWalk(const DatesRequest& request) {
  NSDate first = request.start;
  NSDate last = request.start;
  for (const auto& date : {request.from, request.to, request.reference, request.until}) {
    if (!date) continue;
    if (date->compare(first) == NSOrderedAscending) first = *date;
    if (date->compare(last) == NSOrderedDescending) last = *date;
  }
  const double period =
      secondsOfFrequency(request.rule->frequency()) * static_cast<double>(request.rule->interval());
  if (last.timeIntervalSinceDate(first) / period > kMostPeriods)
    throw JobFailure("the dates asked about lie more than 2000000 periods of the rule apart");
}

/// Prints dates as they come, or collects them for JSON.
class DatePrinter {
 public:
  DatePrinter(Session& session, const DatesRequest& request)
      : session_(session), request_(request) {}

  /// Whether another date is wanted after this one.
  bool take(NSDate date) {
    if (isBeyondUntil(date)) return false;
    const std::string text = dateTimeText(date, *request_.calendar);
    if (session_.options.json) {
      dates_.push_back(text);
    } else {
      session_.out << text << '\n';
    }
    ++taken_;
    return !request_.count || taken_ < *request_.count;
  }

  void finish() {
    if (!session_.options.json) return;
    const nlohmann::ordered_json answer{{"zone", request_.calendar->timeZone()->name()},
                                        {"dates", std::move(dates_)}};
    session_.out << answer.dump(2) << '\n';
  }

 private:
  [[nodiscard]] bool isBeyondUntil(NSDate date) const {
    if (!request_.until) return false;
    const NSComparisonResult order = date.compare(*request_.until);
    if (order == NSOrderedSame) return !request_.inclusive;
    return order == (request_.backwards ? NSOrderedAscending : NSOrderedDescending);
  }

  Session& session_;
  const DatesRequest& request_;
  std::int64_t taken_ = 0;
  nlohmann::ordered_json dates_ = nlohmann::ordered_json::array();
};

/// The callback of a walk: passes over dates on the far side of the start, and over all that come
/// after the last wanted one, which the older walk still delivers.
auto walkInto(DatePrinter& printer, const DatesRequest& request) {
  return [&printer, &request, done = false, passedOver = 0](NSDate date, NSUInteger,
                                                            bool& stop) mutable {
    const NSComparisonResult far = request.backwards ? NSOrderedDescending : NSOrderedAscending;
    if (!done && date.compare(request.start) != far) {
      done = !printer.take(date);
    } else if (++passedOver > kMostDatesPassedOver) {
      throw JobFailure("the walk passed over 2000000 dates that were not asked for");
    }
    if (done) stop = true;
  };
}

void printRange(DatePrinter& printer, const DatesRequest& request) {
  const std::vector<NSDate> dates = datesForRecurrenceRule(
      *request.calendar, {.recurrenceRule = *request.rule,
                          .fromDate = *request.from,
                          .toDate = *request.to,
                          .referenceDate = request.reference.value_or(request.start),
                          .inclusive = request.inclusive});
  for (const NSDate date : dates)
    if (!printer.take(date)) return;
}

void printWalk(DatePrinter& printer, const DatesRequest& request) {
  auto block = walkInto(printer, request);
  if (request.older) {
    request.rule->enumerateDatesForCalendarRefernceDate(
        {.calendar = *request.calendar,
         .refernceDate = request.reference.value_or(request.start),
         .backwards = request.backwards,
         .usingBlock = block});
  } else if (request.reference) {
    enumerateDatesUsingRecurrenceRule(*request.calendar, {.recurrenceRule = *request.rule,
                                                          .startDate = request.start,
                                                          .backwards = request.backwards,
                                                          .referenceDate = request.reference,
                                                          .usingBlock = block});
  } else {
    request.rule->enumerateDatesForCalendarStartDate({.calendar = *request.calendar,
                                                      .startDate = request.start,
                                                      .backwards = request.backwards,
                                                      .exactPatternMatch = request.exact,
                                                      .usingBlock = block});
  }
}

void printDates(Session& session, const DatesArguments& arguments) {
  const DatesRequest request =
      readDatesRequest(arguments, makeCalendar(session.options.zone, session.options.locale));
  refuseLongWalk(request);
  DatePrinter printer(session, request);
  if (request.asksForRange()) {
    printRange(printer, request);
  } else {
    printWalk(printer, request);
  }
  printer.finish();
}

void addRuleOptions(CLI::App& parser, DatesArguments& arguments) {
  parser.add_option("--freq", arguments.frequency, "daily, weekly, monthly, quarterly or yearly")
      ->required();
  parser.add_option("--interval", arguments.interval, "Periods between dates, from 1 on")
      ->capture_default_str();
  parser
      .add_option("--by-weekday", arguments.weekdays,
                  "Weekdays: MO, 2TU, -1FR, day, weekday, -1weekend ...")
      ->delimiter(',');
  parser.add_option("--by-monthday", arguments.monthDays, "Days of the month")->delimiter(',');
  parser.add_option("--by-month", arguments.months, "Months, 1 to 12")->delimiter(',');
  parser.add_option("--by-yearday", arguments.yearDays, "Days of the year")->delimiter(',');
  parser.add_option("--by-week", arguments.weeks, "Weeks of the year")->delimiter(',');
  parser
      .add_option("--set-pos", arguments.setPositions,
                  "Places among the dates of a period, -1 the last (with --older)")
      ->delimiter(',');
  parser.add_option("--anchor", arguments.anchor,
                    "Slot of the interval that dates fall in (with --older)");
  parser.add_flag("--absolute", arguments.absolute,
                  "Count slots from 1 January 2012, not from the start (with --older)");
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
  addRuleOptions(*parser, *arguments);
  addWalkOptions(*parser, *arguments);
  return {parser, [arguments](Session& session) { printDates(session, *arguments); }};
}

}  // namespace orlftool

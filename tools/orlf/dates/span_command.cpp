#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/datetext/intervals/ORLFDateIntervalFormatter.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/scoped_locale.h"
#include "cli/scoped_zone.h"
#include "commands.h"
#include "session.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Style = NSDateIntervalFormatterStyle;

struct SpanArguments {
  std::string from, to;
  std::string dateStyle = "medium";
  std::optional<std::string> timeStyle;
  bool isCompact = false;
  bool includesEnd = false;
};

constexpr std::string_view kStyleWords = "none, short, medium, long or full";

Style readStyle(std::string_view option, std::string_view word) {
  constexpr std::array<std::string_view, 5> kWords{"none", "short", "medium", "long", "full"};
  const auto* const found = std::find(kWords.begin(), kWords.end(), word);
  if (found == kWords.end())
    throw UsageFailure(std::string(option) + ": expected " + std::string(kStyleWords) + ", got " +
                       quotedForMessage(word));
  return static_cast<Style>(found - kWords.begin());
}

struct Span {
  NSDate from, to;
  Style dateStyle, timeStyle;
};

/// Times are told where the dates have some.
Style usualTimeStyle(NSDate from, NSDate to, const NSCalendar& calendar) {
  const bool areDays = startOfDay(from, calendar) == from && startOfDay(to, calendar) == to;
  return areDays ? NSDateIntervalFormatterNoStyle : NSDateIntervalFormatterShortStyle;
}

/// What an end that is no part of the span moves back by.
NSCalendarUnit unitOf(const Span& span) {
  if (span.timeStyle == NSDateIntervalFormatterNoStyle) return NSCalendarUnitDay;
  return span.timeStyle <= NSDateIntervalFormatterMediumStyle ? NSCalendarUnitMinute
                                                              : NSCalendarUnitSecond;
}

NSDate startOfUnit(NSCalendarUnit unit, NSDate date, const NSCalendar& calendar) {
  NSDate start = date;
  calendar.rangeOfUnit(unit, &start, nullptr, date);
  return start;
}

void refuseEmpty(const Span& span, bool includesEnd, const NSCalendar& calendar) {
  if (orlfIsBefore(span.to, span.from))
    throw UsageFailure("TO: expected a date that is not before FROM");
  if (includesEnd) return;
  const NSCalendarUnit unit = unitOf(span);
  const std::optional<NSDate> last = calendar.dateByAddingUnit(unit, -1, span.to, 0);
  if (!last ||
      orlfIsBefore(startOfUnit(unit, *last, calendar), startOfUnit(unit, span.from, calendar)))
    throw UsageFailure("TO: the span holds nothing before it; --include-end makes it a part");
}

Span readSpan(const SpanArguments& arguments, const NSCalendar& calendar) {
  Span span{readDateOption("FROM", arguments.from, calendar),
            readDateOption("TO", arguments.to, calendar),
            readStyle("--date-style", arguments.dateStyle), NSDateIntervalFormatterNoStyle};
  span.timeStyle = arguments.timeStyle ? readStyle("--time-style", *arguments.timeStyle)
                                       : usualTimeStyle(span.from, span.to, calendar);
  if (span.dateStyle == NSDateIntervalFormatterNoStyle &&
      span.timeStyle == NSDateIntervalFormatterNoStyle)
    throw UsageFailure("--date-style and --time-style cannot both be none");
  refuseEmpty(span, arguments.includesEnd, calendar);
  return span;
}

void printSpan(Session& session, const SpanArguments& arguments) {
  const ScopedLocale locale(session.options.locale);
  const ScopedZone zone(session.calendar->timeZone());
  const Span span = readSpan(arguments, *session.calendar);
  ORLFDateIntervalFormatter formatter;
  // The locale's own calendar tells the span; whether it is whole is a question to that too.
  formatter.setDateStyle(span.dateStyle);
  formatter.setTimeStyle(span.timeStyle);
  formatter.setUseCompactFormat(arguments.isCompact);
  formatter.setIncludeEndDateInRange(arguments.includesEnd);
  const std::optional<std::string> text = formatter.stringFromDate(span.from, span.to);
  if (!text) throw JobFailure("the calendar does not hold these dates");
  if (!session.options.json) {
    session.out << *text << '\n';
    return;
  }
  printJson(session.out, {{"from", dateTimeText(span.from, *session.calendar)},
                          {"to", dateTimeText(span.to, *session.calendar)},
                          {"text", *text}});
}

}  // namespace

Job declareSpanCommand(Options& options) {
  options.describe(
      "Print a span of dates in the words of the locale. TO is its end, which is no part of it:\n"
      "2024-01-01 2025-01-01 is the year 2024.");
  auto arguments = std::make_shared<SpanArguments>();
  options.required("FROM", arguments->from, "ISO 8601 date or date-time");
  options.required("TO", arguments->to, "ISO 8601 date or date-time");
  options.flag("--compact", arguments->isCompact,
               "Whole years and months in short: 2024, 2022 - 2024, MAR 2024");
  options.flag("--include-end", arguments->includesEnd, "Make TO a part of the span");
  options.text("--date-style", arguments->dateStyle, std::string(kStyleWords));
  options.text("--time-style", arguments->timeStyle,
               "The same; short where the dates have times, else none");
  return [arguments](Session& session) { printSpan(session, *arguments); };
}

}  // namespace orlftool

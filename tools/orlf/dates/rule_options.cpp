#include "dates/rule_options.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/words.h"
#include "dates/rule_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Integers = std::vector<NSInteger>;

constexpr std::int64_t kLongestInterval = 100000, kFarthestPlace = 366;

struct WeekdayWord {
  std::string_view word;
  NSInteger dayOfTheWeek;
};

constexpr std::array kWeekdays{
    WeekdayWord{"su", 1},       WeekdayWord{"mo", 2},   WeekdayWord{"tu", 3},
    WeekdayWord{"we", 4},       WeekdayWord{"th", 5},   WeekdayWord{"fr", 6},
    WeekdayWord{"sa", 7},       WeekdayWord{"day", -1}, WeekdayWord{"weekday", -2},
    WeekdayWord{"weekend", -3},
};

/// Takes a number off the front of the text: nil when there is one that is 0 or too far, 0 when
/// there is none.
std::optional<NSInteger> takePlace(std::string_view& text) {
  const std::size_t letters = text.find_first_not_of("+-0123456789");
  const std::string_view digits = text.substr(0, letters);
  text.remove_prefix(digits.size());
  if (digits.empty()) return 0;
  const std::optional<std::int64_t> place = readWholeNumber(digits);
  if (!place || *place == 0 || *place < -kFarthestPlace || *place > kFarthestPlace)
    return std::nullopt;
  return place;
}

std::vector<std::shared_ptr<ORLFDateRecurrenceDayOfWeek>> readWeekdays(
    const std::vector<std::string>& texts) {
  std::vector<std::shared_ptr<ORLFDateRecurrenceDayOfWeek>> weekdays;
  for (const std::string& text : texts) {
    weekdays.push_back(readWeekday(text));
    if (!weekdays.back())
      throw UsageFailure(
          "--by-weekday: expected a weekday such as MO, 2TU, -1FR, day, weekday or weekend, got '" +
          text + "'");
  }
  return weekdays;
}

/// Numbers of days and weeks: negative ones are taken too, 0 is not.
Integers readPlaces(const std::string& option, const std::vector<std::string>& texts,
                    std::int64_t most) {
  Integers places;
  for (const std::string& text : texts) {
    places.push_back(readWholeArgument(option, text, -most, most));
    if (places.back() == 0) throw UsageFailure(option + ": expected no 0");
  }
  return places;
}

Integers readMonths(const std::vector<std::string>& texts) {
  Integers months;
  for (const std::string& text : texts)
    months.push_back(readWholeArgument("--by-month", text, 1, 12));
  return months;
}

std::shared_ptr<ORLFDateRecurrenceRule> ruleOfText(const std::string& text,
                                                   const std::string& textName) {
  auto rule = ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(ruleLine(text));
  if (!rule)
    throw UsageFailure(textName +
                       ": expected an iCalendar rule such as RRULE:FREQ=MONTHLY;BYDAY=-1FR, got '" +
                       text + "'");
  return rule;
}

std::shared_ptr<ORLFDateRecurrenceRule> ruleOfOptions(const RuleArguments& arguments) {
  const std::optional<NSCalendarUnit> unit = frequencyNamed(arguments.frequency);
  if (!unit)
    throw UsageFailure("--freq: expected daily, weekly, monthly, quarterly or yearly, got '" +
                       arguments.frequency + "'");
  return std::make_shared<ORLFDateRecurrenceRule>(ORLFDateRecurrenceRule::Recurrence{
      .frequency = static_cast<ORLFDateRecurrenceFrequency>(*unit),
      .interval = readWholeArgument("--interval", arguments.interval, 1, kLongestInterval),
      .anchorIndex = readWholeArgument("--anchor", arguments.anchor.value_or("0"),
                                       -kLongestInterval, kLongestInterval),
      .absolute = arguments.absolute,
      .daysOfTheWeek = readWeekdays(arguments.weekdays),
      .daysOfTheMonth = readPlaces("--by-monthday", arguments.monthDays, 31),
      .monthsOfTheYear = readMonths(arguments.months),
      .weeksOfTheYear = readPlaces("--by-week", arguments.weeks, 53),
      .daysOfTheYear = readPlaces("--by-yearday", arguments.yearDays, 366),
      .setPositions = readPlaces("--set-pos", arguments.setPositions, kFarthestPlace)});
}

}  // namespace

std::shared_ptr<ORLFDateRecurrenceDayOfWeek> readWeekday(std::string_view text) {
  const std::optional<NSInteger> place = takePlace(text);
  if (!place) return nullptr;
  const auto* found = std::find_if(kWeekdays.begin(), kWeekdays.end(), [&](const WeekdayWord& row) {
    return internal::base::equalsLower(text, row.word);
  });
  if (found == kWeekdays.end()) return nullptr;
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(found->dayOfTheWeek, *place);
}

std::shared_ptr<ORLFDateRecurrenceRule> readRule(const RuleArguments& arguments,
                                                 const std::string& textName) {
  if (arguments.rule) return ruleOfText(*arguments.rule, textName);
  if (arguments.frequency.empty())
    throw UsageFailure("--freq or " + textName + " is required (--help tells more)");
  return ruleOfOptions(arguments);
}

void addRuleOptions(Options& options, RuleArguments& arguments, const std::string& textName) {
  options.text("--freq", arguments.frequency, "daily, weekly, monthly, quarterly or yearly");
  options.text("--interval", arguments.interval, "Periods between dates, from 1 on");
  options.list("--by-weekday", arguments.weekdays,
               "Weekdays: MO, 2TU, -1FR, day, weekday, -1weekend ...");
  options.list("--by-monthday", arguments.monthDays, "Days of the month");
  options.list("--by-month", arguments.months, "Months, 1 to 12");
  for (const char* name : {"--freq", "--interval", "--by-weekday", "--by-monthday", "--by-month"})
    options.exclude(textName, name);
}

void addFurtherRuleOptions(Options& options, RuleArguments& arguments,
                           const std::string& textName) {
  options.list("--by-yearday", arguments.yearDays, "Days of the year");
  options.list("--by-week", arguments.weeks, "Weeks of the year");
  options.list("--set-pos", arguments.setPositions,
               "Places among the dates of a period, -1 the last (with --older)");
  options.text("--anchor", arguments.anchor,
               "Slot of the interval that dates fall in (with --older)");
  options.flag("--absolute", arguments.absolute,
               "Count slots from 1 January 2012, not from the start (with --older)");
  for (const char* name : {"--by-yearday", "--by-week", "--set-pos", "--anchor", "--absolute"})
    options.exclude(textName, name);
}

}  // namespace orlftool

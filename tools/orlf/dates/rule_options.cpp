

#include "dates/rule_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "cli/failure.h"
#include "cli/option_checks.h"
#include "cli/words.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Integers = ORLFDateRecurrenceRule::Integers;

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

/// Takes a number off the front of the text: nil when there is one that is 0 or too far.
std::optional<NSInteger> takePlace(std::string_view& text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  NSInteger place = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), place);
  if (error == std::errc::invalid_argument) return 0;
  if (error != std::errc() || place == 0 || std::abs(place) > kFarthestPlace) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
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
void checkPlaces(std::string_view option, const std::vector<std::int64_t>& values,
                 std::int64_t most) {
  for (const std::int64_t value : values) {
    checkRange(option, value, -most, most);
    if (value == 0) throw UsageFailure(std::string(option) + ": expected no 0");
  }
}

/// What messages call the numbers of a rule.
struct NumberNames {
  std::string interval, monthDays, months, yearDays, weeks;
};

void checkNumbers(const ORLFDateRecurrenceRule& rule, const NumberNames& names) {
  const std::vector<NSInteger> none;
  checkRange(names.interval, rule.interval(), 1, kLongestInterval);
  checkPlaces(names.monthDays, rule.daysOfTheMonth().value_or(none), 31);
  checkPlaces(names.yearDays, rule.daysOfTheYear().value_or(none), 366);
  checkPlaces(names.weeks, rule.weeksOfTheYear().value_or(none), 53);
  for (const NSInteger month : rule.monthsOfTheYear().value_or(none))
    checkRange(names.months, month, 1, 12);
}

std::shared_ptr<ORLFDateRecurrenceRule> ruleOfText(const std::string& text,
                                                   std::string_view textName) {
  auto rule = ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(text);
  if (!rule)
    throw UsageFailure(std::string(textName) +
                       ": expected an iCalendar rule such as RRULE:FREQ=MONTHLY;BYDAY=-1FR, got '" +
                       text + "'");
  return rule;
}

std::shared_ptr<ORLFDateRecurrenceRule> ruleOfOptions(const RuleArguments& arguments) {
  const std::optional<NSCalendarUnit> unit = frequencyNamed(arguments.frequency);
  if (!unit)
    throw UsageFailure("--freq: expected daily, weekly, monthly, quarterly or yearly, got '" +
                       arguments.frequency + "'");
  checkRange("--interval", arguments.interval, 1, kLongestInterval);
  checkRange("--anchor", arguments.anchor, -kLongestInterval, kLongestInterval);
  checkPlaces("--set-pos", arguments.setPositions, kFarthestPlace);
  auto rule = std::make_shared<ORLFDateRecurrenceRule>(ORLFDateRecurrenceRule::Recurrence{
      .frequency = static_cast<ORLFDateRecurrenceFrequency>(*unit),
      .interval = arguments.interval,
      .anchorIndex = arguments.anchor,
      .absolute = arguments.absolute,
      .daysOfTheWeek = readWeekdays(arguments.weekdays),
      .daysOfTheMonth = arguments.monthDays,
      .monthsOfTheYear = arguments.months,
      .weeksOfTheYear = arguments.weeks,
      .daysOfTheYear = arguments.yearDays,
      .setPositions = arguments.setPositions});
  checkNumbers(*rule, {"--interval", "--by-monthday", "--by-month", "--by-yearday", "--by-week"});
  return rule;
}

}  // namespace

std::shared_ptr<ORLFDateRecurrenceDayOfWeek> readWeekday(std::string_view text) {
  const std::optional<NSInteger> place = takePlace(text);
  if (!place) return nullptr;
  std::string word(text);
  std::transform(word.begin(), word.end(), word.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto* found = std::find_if(kWeekdays.begin(), kWeekdays.end(),
                                   [&](const WeekdayWord& row) { return row.word == word; });
  if (found == kWeekdays.end()) return nullptr;
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(found->dayOfTheWeek, *place);
}

std::shared_ptr<ORLFDateRecurrenceRule> readRule(const RuleArguments& arguments,
                                                 std::string_view textName) {
  if (arguments.rule) return ruleOfText(*arguments.rule, textName);
  if (arguments.frequency.empty())
    throw UsageFailure("--freq or " + std::string(textName) + " is required (--help tells more)");
  return ruleOfOptions(arguments);
}

void checkNumbersOfText(const ORLFDateRecurrenceRule& rule, std::string_view textName) {
  const std::string name = std::string(textName) + ": ";
  checkNumbers(rule, {name + "INTERVAL", name + "BYMONTHDAY", name + "BYMONTH", name + "BYYEARDAY",
                      name + "BYWEEKNO"});
  if (!rule.daysOfTheWeek()) return;
  for (const auto& day : *rule.daysOfTheWeek())
    checkRange(name + "BYDAY", day->weekNumber(), -kFarthestPlace, kFarthestPlace);
}

void addRuleOptions(CLI::App& parser, RuleArguments& arguments, CLI::Option& text) {
  parser.add_option("--freq", arguments.frequency, "daily, weekly, monthly, quarterly or yearly")
      ->excludes(&text);
  parser.add_option("--interval", arguments.interval, "Periods between dates, from 1 on")
      ->capture_default_str()
      ->excludes(&text);
  parser
      .add_option("--by-weekday", arguments.weekdays,
                  "Weekdays: MO, 2TU, -1FR, day, weekday, -1weekend ...")
      ->delimiter(',')
      ->excludes(&text);
  parser.add_option("--by-monthday", arguments.monthDays, "Days of the month")
      ->delimiter(',')
      ->excludes(&text);
  parser.add_option("--by-month", arguments.months, "Months, 1 to 12")
      ->delimiter(',')
      ->excludes(&text);
}

void addFurtherRuleOptions(CLI::App& parser, RuleArguments& arguments, CLI::Option& text) {
  parser.add_option("--by-yearday", arguments.yearDays, "Days of the year")
      ->delimiter(',')
      ->excludes(&text);
  parser.add_option("--by-week", arguments.weeks, "Weeks of the year")
      ->delimiter(',')
      ->excludes(&text);
  parser
      .add_option("--set-pos", arguments.setPositions,
                  "Places among the dates of a period, -1 the last (with --older)")
      ->delimiter(',')
      ->excludes(&text);
  parser
      .add_option("--anchor", arguments.anchor,
                  "Slot of the interval that dates fall in (with --older)")
      ->excludes(&text);
  parser
      .add_flag("--absolute", arguments.absolute,
                "Count slots from 1 January 2012, not from the start (with --older)")
      ->excludes(&text);
}

}  // namespace orlftool

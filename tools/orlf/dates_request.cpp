#include "dates_request.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "date_text.h"
#include "failure.h"
#include "words.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kLongestInterval = 100000, kDefaultCount = 20, kMostDates = 1000000;
constexpr std::int64_t kFarthestPlace = 366;

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

void checkRange(std::string_view option, std::int64_t value, std::int64_t least,
                std::int64_t most) {
  if (value >= least && value <= most) return;
  throw UsageFailure(std::string(option) + ": expected a number from " + std::to_string(least) +
                     " to " + std::to_string(most) + ", got " + std::to_string(value));
}

/// Numbers of days and weeks: negative ones are taken too, 0 is not.
void checkPlaces(std::string_view option, const std::vector<std::int64_t>& values,
                 std::int64_t most) {
  for (const std::int64_t value : values) {
    checkRange(option, value, -most, most);
    if (value == 0) throw UsageFailure(std::string(option) + ": expected no 0");
  }
}

void refuseTogether(bool first, std::string_view firstName, bool second,
                    std::string_view secondName) {
  if (first && second)
    throw UsageFailure(std::string(firstName) + " does not go together with " +
                       std::string(secondName));
}

void checkCombinations(const DatesArguments& arguments) {
  const bool range = arguments.from || arguments.to;
  if (arguments.from.has_value() != arguments.to.has_value())
    throw UsageFailure("--from and --to are given together or not at all");
  refuseTogether(range, "--from", arguments.until.has_value(), "--until");
  refuseTogether(range, "--from", arguments.backwards, "--backwards");
  refuseTogether(range, "--from", arguments.exact, "--exact");
  refuseTogether(range, "--from", arguments.older, "--older");
  refuseTogether(arguments.older, "--older", arguments.exact, "--exact");
  refuseTogether(arguments.reference.has_value(), "--reference", arguments.exact, "--exact");
  if (arguments.inclusive && !range && !arguments.until)
    throw UsageFailure("--inclusive needs --to or --until");
}

void checkNumbers(const DatesArguments& arguments) {
  checkRange("--interval", arguments.interval, 1, kLongestInterval);
  checkRange("--anchor", arguments.anchor, -kLongestInterval, kLongestInterval);
  checkPlaces("--by-monthday", arguments.monthDays, 31);
  checkPlaces("--by-yearday", arguments.yearDays, 366);
  checkPlaces("--by-week", arguments.weeks, 53);
  checkPlaces("--set-pos", arguments.setPositions, kFarthestPlace);
  for (const std::int64_t month : arguments.months) checkRange("--by-month", month, 1, 12);
  if (arguments.count) checkRange("--count", *arguments.count, 1, kMostDates);
}

std::shared_ptr<ORLFDateRecurrenceRule> makeRule(const DatesArguments& arguments) {
  const std::optional<NSCalendarUnit> unit = frequencyNamed(arguments.frequency);
  if (!unit)
    throw UsageFailure("--freq: expected daily, weekly, monthly, quarterly or yearly, got '" +
                       arguments.frequency + "'");
  return std::make_shared<ORLFDateRecurrenceRule>(ORLFDateRecurrenceRule::Recurrence{
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

DatesRequest readDatesRequest(const DatesArguments& arguments,
                              std::shared_ptr<NSCalendar> calendar) {
  checkCombinations(arguments);
  checkNumbers(arguments);
  const auto date = [&](std::string_view option, const std::optional<std::string>& text) {
    return text ? std::optional(readDateOption(option, *text, *calendar)) : std::nullopt;
  };
  DatesRequest request;
  request.rule = makeRule(arguments);
  request.start = readDateOption("--start", arguments.start, *calendar);
  request.from = date("--from", arguments.from);
  request.to = date("--to", arguments.to);
  request.reference = date("--reference", arguments.reference);
  request.until = date("--until", arguments.until);
  request.inclusive = arguments.inclusive;
  request.count = arguments.count;
  if (!request.count && !request.until && !request.from) request.count = kDefaultCount;
  request.backwards = arguments.backwards;
  request.exact = arguments.exact;
  request.older = arguments.older;
  request.calendar = std::move(calendar);
  return request;
}

}  // namespace orlftool

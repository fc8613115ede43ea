
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/text/NSStringNumbers.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

// Reading the recurrence line of an iCalendar event. Each function that reads a value answers
// whether it could; one that could not fails the whole text.
namespace ORLFoundation {
namespace {

using Recurrence = ORLFDateRecurrenceRule::Recurrence;
using Integers = ORLFDateRecurrenceRule::Integers;

struct FrequencyWord {
  std::string_view word;
  ORLFDateRecurrenceFrequency frequency;
};
constexpr FrequencyWord kFrequencies[] = {
    {"DAILY", ORLFDateRecurrenceFrequencyDaily},
    {"WEEKLY", ORLFDateRecurrenceFrequencyWeekly},
    {"MONTHLY", ORLFDateRecurrenceFrequencyMonthly},
    {"YEARLY", ORLFDateRecurrenceFrequencyYearly},
};

constexpr std::string_view kWeekdays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

// Calls `take` with each piece of a text between the marks, empty ones included, until one is
// refused.
template <class Take>
bool everyPiece(std::string_view text, char mark, Take&& take) {
  for (;;) {
    const std::size_t end = text.find(mark);
    if (!take(text.substr(0, end))) return false;
    if (end == std::string_view::npos) return true;
    text.remove_prefix(end + 1);
  }
}

bool readFrequency(std::string_view value, Recurrence& rule) {
  const auto* found = std::find_if(std::begin(kFrequencies), std::end(kFrequencies),
                                   [value](const FrequencyWord& row) { return row.word == value; });
  if (found == std::end(kFrequencies)) return false;
  rule.frequency = found->frequency;
  return true;
}

bool readInterval(std::string_view value, Recurrence& rule) {
  rule.interval = integerValue(value);
  return rule.interval != 0;
}

bool readDay(std::string_view item, Recurrence& rule) {
  constexpr std::size_t kNameLength = 2;
  // An item shorter than a name is all number, and no name is left of it.
  const std::string_view number = item.substr(0, item.size() - kNameLength);
  const auto* found =
      std::find(std::begin(kWeekdays), std::end(kWeekdays), item.substr(number.size()));
  if (found == std::end(kWeekdays)) return false;
  const NSInteger weekNumber = number.empty() ? 0 : integerValue(number);
  if (weekNumber == 0 && !number.empty()) return false;
  rule.daysOfTheWeek->push_back(std::make_shared<ORLFDateRecurrenceDayOfWeek>(
      std::distance(std::begin(kWeekdays), found) + 1, weekNumber));
  return true;
}

bool readDays(std::string_view value, Recurrence& rule) {
  return everyPiece(value, ',', [&rule](std::string_view item) { return readDay(item, rule); });
}

template <Integers Recurrence::*list>
bool readIntegers(std::string_view value, Recurrence& rule) {
  return everyPiece(value, ',', [&rule](std::string_view item) {
    (rule.*list)->push_back(integerValue(item));
    return (rule.*list)->back() != 0;
  });
}

// The keys that mean something here; others are passed over with their values unread.
struct Key {
  std::string_view name;
  bool (*read)(std::string_view value, Recurrence& rule);
};
constexpr Key kKeys[] = {
    {"FREQ", readFrequency},
    {"INTERVAL", readInterval},
    {"BYDAY", readDays},
    {"BYMONTH", readIntegers<&Recurrence::monthsOfTheYear>},
    {"BYMONTHDAY", readIntegers<&Recurrence::daysOfTheMonth>},
    {"BYWEEKNO", readIntegers<&Recurrence::weeksOfTheYear>},
    {"BYYEARDAY", readIntegers<&Recurrence::daysOfTheYear>},
};

bool readPart(std::string_view part, Recurrence& rule) {
  const std::size_t sign = part.find('=');
  if (sign == std::string_view::npos || part.find('=', sign + 1) != std::string_view::npos) {
    return false;
  }
  const std::string_view name = part.substr(0, sign);
  const auto* key = std::find_if(std::begin(kKeys), std::end(kKeys),
                                 [name](const Key& row) { return row.name == name; });
  return key == std::end(kKeys) || key->read(part.substr(sign + 1), rule);
}

// What holds before the first part is read: yearly, every list empty.
Recurrence startingFields() {
  Recurrence rule;
  rule.frequency = ORLFDateRecurrenceFrequencyYearly;
  rule.anchorIndex = 1;
  rule.daysOfTheWeek.emplace();
  rule.daysOfTheMonth.emplace();
  rule.monthsOfTheYear.emplace();
  rule.weeksOfTheYear.emplace();
  rule.daysOfTheYear.emplace();
  return rule;
}

}  // namespace

std::shared_ptr<ORLFDateRecurrenceRule>
ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(std::string_view text) {
  constexpr std::string_view kProperty = "RRULE:";
  const std::size_t start = text.find(kProperty);
  if (start == std::string_view::npos) return nullptr;
  Recurrence rule = startingFields();
  const bool read = everyPiece(text.substr(start + kProperty.size()), ';',
                               [&rule](std::string_view part) { return readPart(part, rule); });
  return read ? std::make_shared<ORLFDateRecurrenceRule>(std::move(rule)) : nullptr;
}

}  // namespace ORLFoundation

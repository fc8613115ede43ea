/// What the tests of rules share: short names, and rules and ends in the form that vector files
/// write them.
#pragma once

#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <tests/support/VectorFile.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

/// The words that the tests of rules are written in: `using namespace orlftest`.
using Rule = ORLFoundation::ORLFDateRecurrenceRule;

inline constexpr auto kDaily = ORLFoundation::ORLFDateRecurrenceFrequencyDaily;
inline constexpr auto kWeekly = ORLFoundation::ORLFDateRecurrenceFrequencyWeekly;
inline constexpr auto kMonthly = ORLFoundation::ORLFDateRecurrenceFrequencyMonthly;
inline constexpr auto kQuarterly = ORLFoundation::ORLFDateRecurrenceFrequencyQuarterly;
inline constexpr auto kYearly = ORLFoundation::ORLFDateRecurrenceFrequencyYearly;
/// A unit that is no frequency.
inline constexpr auto kHourly = static_cast<ORLFoundation::ORLFDateRecurrenceFrequency>(32);

/// Entries of a weekday and its number.
inline Rule::DaysOfTheWeek weekdays(
    std::initializer_list<std::pair<ORLFoundation::NSInteger, ORLFoundation::NSInteger>> entries) {
  Rule::DaysOfTheWeek days(std::in_place);
  for (const auto& [day, number] : entries)
    days->push_back(std::make_shared<ORLFoundation::ORLFDateRecurrenceDayOfWeek>(day, number));
  return days;
}

inline Rule::Integers integersFromVector(const Json& list) {
  if (list.is_null()) return std::nullopt;
  return list.get<std::vector<ORLFoundation::NSInteger>>();
}

inline Rule::DaysOfTheWeek daysOfTheWeekFromVector(const Json& list) {
  using namespace ORLFoundation;
  if (list.is_null()) return std::nullopt;
  std::vector<std::shared_ptr<ORLFDateRecurrenceDayOfWeek>> days;
  for (const Json& pair : list)
    days.push_back(std::make_shared<ORLFDateRecurrenceDayOfWeek>(pair.at(0).get<NSInteger>(),
                                                                 pair.at(1).get<NSInteger>()));
  return days;
}

/// The fields as they are stored; nothing is normalized.
inline std::shared_ptr<Rule> ruleFromVector(const Json& rule) {
  using namespace ORLFoundation;
  if (rule.is_null()) return nullptr;
  return Rule::ruleWithFields(
      {.frequency = static_cast<ORLFDateRecurrenceFrequency>(rule.at("frequency").get<NSInteger>()),
       .interval = rule.at("interval").get<NSInteger>(),
       .anchorIndex = rule.at("anchorIndex").get<NSInteger>(),
       .absolute = rule.at("absolute").get<bool>(),
       .daysOfTheWeek = daysOfTheWeekFromVector(rule.at("daysOfTheWeek")),
       .daysOfTheMonth = integersFromVector(rule.at("daysOfTheMonth")),
       .monthsOfTheYear = integersFromVector(rule.at("monthsOfTheYear")),
       .weeksOfTheYear = integersFromVector(rule.at("weeksOfTheYear")),
       .daysOfTheYear = integersFromVector(rule.at("daysOfTheYear")),
       .setPositions = integersFromVector(rule.at("setPositions"))});
}

inline Json vectorFromIntegers(const Rule::Integers& list) { return list ? Json(*list) : Json(); }

inline Json vectorFromRule(const Rule* rule) {
  if (!rule) return {};
  Json days;
  if (rule->daysOfTheWeek()) {
    days = Json::array();
    for (const auto& day : *rule->daysOfTheWeek())
      days.push_back(Json::array({day->dayOfTheWeek(), day->weekNumber()}));
  }
  return {{"frequency", static_cast<ORLFoundation::NSInteger>(rule->frequency())},
          {"interval", rule->interval()},
          {"anchorIndex", rule->anchorIndex()},
          {"absolute", rule->absolute()},
          {"daysOfTheWeek", days},
          {"daysOfTheMonth", vectorFromIntegers(rule->daysOfTheMonth())},
          {"monthsOfTheYear", vectorFromIntegers(rule->monthsOfTheYear())},
          {"weeksOfTheYear", vectorFromIntegers(rule->weeksOfTheYear())},
          {"daysOfTheYear", vectorFromIntegers(rule->daysOfTheYear())},
          {"setPositions", vectorFromIntegers(rule->setPositions())}};
}

/// {"count": n} or {"date": text}; nil for null.
inline std::shared_ptr<ORLFoundation::ORLFDateRecurrenceEnd> endFromVector(const Json& end) {
  using namespace ORLFoundation;
  if (end.is_null()) return nullptr;
  if (end.contains("count"))
    return ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(end["count"].get<NSUInteger>());
  return ORLFDateRecurrenceEnd::initEndWithEndDate(dateFromVector(end.at("date")).value());
}

}  // namespace orlftest

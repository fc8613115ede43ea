/// Rules and their ends in the form that vector files write them.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <tests/support/VectorCodec.h>

#include <memory>
#include <string>
#include <vector>

namespace orlftest {

inline ORLFoundation::ORLFDateRecurrenceRule::Integers integersFromVector(const Json& list) {
  if (list.is_null()) return std::nullopt;
  return list.get<std::vector<ORLFoundation::NSInteger>>();
}

inline ORLFoundation::ORLFDateRecurrenceRule::DaysOfTheWeek daysOfTheWeekFromVector(
    const Json& list) {
  using namespace ORLFoundation;
  if (list.is_null()) return std::nullopt;
  std::vector<std::shared_ptr<ORLFDateRecurrenceDayOfWeek>> days;
  for (const Json& pair : list)
    days.push_back(std::make_shared<ORLFDateRecurrenceDayOfWeek>(pair.at(0).get<NSInteger>(),
                                                                 pair.at(1).get<NSInteger>()));
  return days;
}

/// The fields as they are stored; nothing is normalized.
inline std::shared_ptr<ORLFoundation::ORLFDateRecurrenceRule> ruleFromVector(const Json& rule) {
  using namespace ORLFoundation;
  if (rule.is_null()) return nullptr;
  return ORLFDateRecurrenceRule::ruleWithFields(
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

inline Json vectorFromIntegers(const ORLFoundation::ORLFDateRecurrenceRule::Integers& list) {
  return list ? Json(*list) : Json();
}

inline Json vectorFromRule(const ORLFoundation::ORLFDateRecurrenceRule* rule) {
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

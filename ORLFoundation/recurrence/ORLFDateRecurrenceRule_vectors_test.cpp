// The rows of the vector files on rules: both enumerations, anchors, queries and the model.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/recurrence/ORLFCalendarRecurrence.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>
#include <ORLFoundation/recurrence/internal/ORLFDateWalk.h>
#include <gtest/gtest.h>
#include <tests/support/KnownDisagreements.h>

#include <cmath>

namespace {

using namespace ORLFoundation;
using namespace orlftest;

Json jsonFromDates(const std::vector<NSDate>& dates) {
  Json list = Json::array();
  for (const NSDate date : dates) list.push_back(orlftest::vectorFromDate(date));
  return list;
}

Json jsonFromDate(std::optional<NSDate> date) {
  return date ? Json(orlftest::vectorFromDate(date)) : Json();
}

/// Collects dates until there are enough.
struct Collector {
  NSUInteger stopAfter;
  std::vector<NSDate> dates;
  std::vector<NSUInteger> counts;
  bool stopped = false;

  void operator()(NSDate date, NSUInteger count, bool& stop) {
    dates.push_back(date);
    counts.push_back(count);
    if (dates.size() >= stopAfter) stop = stopped = true;
  }
};

std::string enumerated(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  const LogCapture log;
  Collector collector{in.at("stopAfter").get<NSUInteger>(), {}, {}, false};
  ORLFDateRecurrenceRule::EnumerateDatesStartDate arguments{
      .calendar = *calendar,
      .startDate = orlftest::dateFromVector(in.at("start")).value(),
      .end = orlftest::endFromVector(in.at("end")),
      .backwards = in.at("backwards").get<bool>(),
      .exactPatternMatch = in.at("exactPatternMatch").get<bool>()};
  rule->enumerateDatesForCalendarStartDate(arguments, collector);
  Json answer = {{"conditions", log.distinctLines()},
                 {"dates", jsonFromDates(collector.dates)},
                 {"lastCount", collector.counts.empty() ? Json() : Json(collector.counts.back())},
                 {"stoppedByCallback", collector.stopped}};

  // Once more through the walk itself, which tells its periods.
  auto walked = rule;
  if (arguments.exactPatternMatch && rule->isSimpleRecurrence())
    walked = rule->dateRecurrenceRuleForExactMatchToReferenceDate(arguments.startDate, *calendar);
  collector.dates.clear();
  answer["periods"] = internal::recurrence::ORLFDateWalk(*walked, arguments, collector).run();
  return orlftest::disagreement(out, answer);
}

TEST(ORLFDateRecurrenceRule, AgreesWithVectorsOfDates) {
  orlftest::runJsonVectors("rules_dates", {{"enumerate", enumerated}});
}

std::string enumeratedOlder(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  const LogCapture log;
  Collector collector{in.at("stopAfter").get<NSUInteger>(), {}, {}, false};
  rule->enumerateDatesForCalendarRefernceDate(
      {.calendar = *calendar,
       .refernceDate = orlftest::dateFromVector(in.at("reference")),
       .end = orlftest::endFromVector(in.at("end")),
       .backwards = in.at("backwards").get<bool>()},
      collector);
  return orlftest::disagreement(out, Json{{"conditions", log.distinctLines()},
                                          {"dates", jsonFromDates(collector.dates)},
                                          {"stoppedByCallback", collector.stopped}});
}

TEST(ORLFDateRecurrenceRule, AgreesWithVectorsOfOlderDates) {
  // A match more than ten years back, which the calendar finds and the row does not.
  orlftest::runJsonVectorsBut({"dates_older-0682"}, "rules_dates_older",
                              {{"enumerateOlder", enumeratedOlder}});
}

Json fieldsOf(const NSDateComponents& pattern) {
  static const std::map<std::string, NSCalendarUnit> kFields = {
      {"month", NSCalendarUnitMonth},     {"weekOfYear", NSCalendarUnitWeekOfYear},
      {"day", NSCalendarUnitDay},         {"weekdayOrdinal", NSCalendarUnitWeekdayOrdinal},
      {"weekday", NSCalendarUnitWeekday},
  };
  Json fields = Json::object();
  for (const auto& [name, unit] : kFields)
    if (pattern.valueForComponent(unit) != NSDateComponentUndefined)
      fields[name] = pattern.valueForComponent(unit);
  return fields;
}

std::string matchedOlder(const Json& in, const Json& out) {
  const auto patterns = orlftest::ruleFromVector(in.at("rule"))->matchingDateComponentsOld();
  Json answer;
  if (patterns) {
    answer = Json::array();
    for (const NSDateComponents& pattern : *patterns) answer.push_back(fieldsOf(pattern));
  }
  return orlftest::disagreement(out, answer);
}

TEST(ORLFDateRecurrenceRule, AgreesWithVectorsOfBounds) {
  const LogCapture quiet;
  const auto calendarOf = [](const Json& in) {
    return orlftest::calendarFromVector(in.at("calendar"));
  };
  const auto dateOf = [](const Json& in) { return orlftest::dateFromVector(in.at("date")); };
  const auto ruleOf = [](const Json& in) { return orlftest::ruleFromVector(in.at("rule")); };
  // A match eighteen years back, which the calendar finds and the row does not.
  orlftest::runJsonVectorsBut(
      {"bounds-0781"}, "rules_bounds",
      {{"universalAnchorDate",
        [&](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out,
              jsonFromDate(ORLFDateRecurrenceRule::universalAnchorDateInCalendar(*calendarOf(in))));
        }},
       {"anchorIndex",
        [&](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out,
              Json(ORLFDateRecurrenceRule::anchorIndexForAbsoluteRecurrenceWithFrequency(
                  static_cast<ORLFDateRecurrenceFrequency>(in.at("frequency").get<NSInteger>()),
                  in.at("interval").get<NSInteger>(), dateOf(in).value(), *calendarOf(in))));
        }},
       {"canonicalReferenceDate",
        [&](const Json& in, const Json& out) {
          return orlftest::disagreement(out, jsonFromDate(ruleOf(in)->canonicalReferenceDateForDate(
                                                 dateOf(in), *calendarOf(in))));
        }},
       {"boundingDates",
        [&](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out, jsonFromDates(
                       ruleOf(in)->boundingDatesForReferenceDate(dateOf(in), *calendarOf(in))));
        }},
       {"exactMatchRule",
        [&](const Json& in, const Json& out) {
          const auto exact = ruleOf(in)->dateRecurrenceRuleForExactMatchToReferenceDate(
              dateOf(in).value(), *calendarOf(in));
          return orlftest::disagreement(out, orlftest::vectorFromRule(exact.get()));
        }},
       {"matchingDateComponentsOld", matchedOlder}});
}

std::string queriedRange(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  return orlftest::disagreement(
      out, jsonFromDates(datesForRecurrenceRule(
               *calendar, {.recurrenceRule = *rule,
                           .fromDate = orlftest::dateFromVector(in.at("from")).value(),
                           .toDate = orlftest::dateFromVector(in.at("to")).value(),
                           .referenceDate = orlftest::dateFromVector(in.at("reference")),
                           .inclusive = in.at("inclusive").get<bool>()})));
}

std::string queriedBefore(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  return orlftest::disagreement(
      out, jsonFromDate(dateBeforeDate(
               *calendar, {.date = orlftest::dateFromVector(in.at("date")).value(),
                           .usingRecurrenceRule = *rule,
                           .count = in.at("count").get<NSUInteger>(),
                           .referenceDate = orlftest::dateFromVector(in.at("reference")),
                           .exactPatternMatch = in.at("exact").get<bool>()})));
}

std::string queriedAfter(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  return orlftest::disagreement(
      out, jsonFromDate(dateAfterDate(
               *calendar, {.date = orlftest::dateFromVector(in.at("date")).value(),
                           .usingRecurrenceRule = *rule,
                           .count = in.at("count").get<NSUInteger>(),
                           .referenceDate = orlftest::dateFromVector(in.at("reference")),
                           .exactMatch = in.at("exact").get<bool>()})));
}

std::string queriedInclusion(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  return orlftest::disagreement(
      out, Json(recurrenceRuleIncludesDate(*calendar, *rule,
                                           orlftest::dateFromVector(in.at("date")).value(),
                                           orlftest::dateFromVector(in.at("reference")))));
}

std::string queriedWalk(const Json& in, const Json& out) {
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  const auto rule = orlftest::ruleFromVector(in.at("rule"));
  Collector collector{in.at("stopAfter").get<NSUInteger>(), {}, {}, false};
  enumerateDatesUsingRecurrenceRule(
      *calendar,
      {.recurrenceRule = *rule,
       .startDate = orlftest::dateFromVector(in.at("startDate")).value(),
       .backwards = in.at("backwards").get<bool>(),
       .referenceDate = orlftest::dateFromVector(in.at("reference"))},
      collector);
  return orlftest::disagreement(
      out,
      Json{{"dates", jsonFromDates(collector.dates)},
           {"firstCount", collector.counts.empty() ? Json() : Json(collector.counts.front())}});
}

TEST(ORLFCalendarRecurrence, AgreesWithVectorsOfQueries) {
  const LogCapture quiet;
  orlftest::runJsonVectors("rules_queries", {{"datesForRecurrenceRule", queriedRange},
                                             {"dateBeforeDate", queriedBefore},
                                             {"dateAfterDate", queriedAfter},
                                             {"includesDate", queriedInclusion},
                                             {"enumerateDates", queriedWalk}});
}

std::string modelledPeriod(const Json& in, const Json& out) {
  const ORLFDateRecurrencePeriod period(
      static_cast<ORLFDateRecurrenceFrequency>(in.at("frequency").get<NSInteger>()),
      in.at("interval").get<NSInteger>());
  const double perYear = period.frequencyPerYear();
  Json number = perYear;
  if (std::isnan(perYear)) number = "nan";
  if (std::isinf(perYear)) number = perYear > 0 ? "inf" : "-inf";
  const Json answer = {{"frequencyPerYear", number},
                       {"description", period.description()},
                       {"hash", std::to_string(period.hash())}};
  return orlftest::disagreement(out, answer);
}

std::string modelledStep(const Json& in, const Json& out) {
  const ORLFDateRecurrencePeriod period(
      static_cast<ORLFDateRecurrenceFrequency>(in.at("frequency").get<NSInteger>()),
      in.at("interval").get<NSInteger>());
  const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
  return orlftest::disagreement(out, jsonFromDate(dateByAddingRecurrencePeriod(
                                         *calendar, period, in.at("value").get<NSInteger>(),
                                         orlftest::dateFromVector(in.at("date")).value(), 0)));
}

TEST(ORLFDateRecurrenceRule, AgreesWithVectorsOfTheModel) {
  orlftest::runJsonVectors("rules_model",
                           {{"normalizedAnchorIndex",
                             [](const Json& in, const Json& out) {
                               const ORLFDateRecurrenceRule rule(ORLFDateRecurrenceRule::Recurrence{
                                   .interval = in.at("interval").get<NSInteger>(),
                                   .anchorIndex = in.at("anchorIndex").get<NSInteger>()});
                               return orlftest::disagreement(out, Json(rule.anchorIndex()));
                             }},
                            {"period", modelledPeriod},
                            {"dateByAddingRecurrencePeriod", modelledStep}});
}

}  // namespace

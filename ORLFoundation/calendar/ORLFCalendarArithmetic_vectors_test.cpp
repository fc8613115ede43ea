// The rows of the vector files on calendar arithmetic.

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>

#include <ORLFoundation/calendar/ORLFCalendarQuarters.h>
#include <ORLFoundation/calendar/ORLFCalendarRounding.h>
#include <ORLFoundation/calendar/ORLFCompareCalendarUnits.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cmath>

namespace {

using namespace ORLFoundation;
using orlftest::Json;

std::shared_ptr<NSCalendar> calendarOf(const Json& in) {
  return orlftest::calendarFromVector(in.at("calendar"));
}
NSDate dateOf(const Json& in, const char* key) {
  return orlftest::dateFromVector(in.at(key)).value();
}
NSCalendarUnit unitIn(const Json& in) {
  return static_cast<NSCalendarUnit>(in.at("unit").get<NSUInteger>());
}

TEST(ORLFCompareCalendarUnits, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "planning_units",
      {{"ORLFCompareCalendarUnits", [](const Json& in, const Json& out) {
          const NSComparisonResult result =
              ORLFCompareCalendarUnits(in.at(0).get<NSUInteger>(), in.at(1).get<NSUInteger>());
          return orlftest::disagreement(out, Json(static_cast<NSInteger>(result)));
        }}});
}

TEST(ORLFCalendarArithmetic, AgreesWithVectorsOfSingleOperations) {
  orlftest::runJsonVectors(
      "planning_calendar",
      {{"orlfQuartersForDateSince1970",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out, Json(orlfQuartersForDateSince1970(*calendarOf(in), dateOf(in, "date"))));
        }},
       {"orlfQuarterForDate",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out, Json(orlfQuarterForDate(*calendarOf(in), dateOf(in, "date"))));
        }},
       {"orlfDateByAddingInterval",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              orlftest::dateFromVector(out),
              orlfDateByAddingInterval(*calendarOf(in), in.at("interval").get<NSInteger>(),
                                       unitIn(in), dateOf(in, "date")));
        }},
       {"orlfDate:onSameDayAsDate:", [](const Json& in, const Json& out) {
          const NSComparisonResult result =
              orlfDateOnSameDayAsDate(*calendarOf(in), orlftest::dateFromVector(in.at("dates")[0]),
                                      orlftest::dateFromVector(in.at("dates")[1]));
          return orlftest::disagreement(out, Json(static_cast<NSInteger>(result)));
        }}});
}

TEST(ORLFCalendarRounding, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "planning_rounding",
      {{"down",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(orlftest::dateFromVector(out),
                                        orlfDateByRoundingDateDownToCalendarUnit(
                                            *calendarOf(in), dateOf(in, "date"), unitIn(in)));
        }},
       {"up", [](const Json& in, const Json& out) {
          return orlftest::disagreement(orlftest::dateFromVector(out),
                                        orlfDateByRoundingDateUpToCalendarUnit(
                                            *calendarOf(in), dateOf(in, "date"), unitIn(in)));
        }}});
}

std::string counted(const Json& in, const Json& out) {
  const LogCapture log;
  const double expected = out.at("count").get<double>();
  const double count =
      orlfCountOfCalendarUnit(*calendarOf(in), unitIn(in), dateOf(in, "from"), dateOf(in, "to"));
  constexpr double kRelativeTolerance = 1e-12;
  if (!(std::abs(count - expected) <= kRelativeTolerance * std::abs(expected)))
    return orlftest::disagreement(expected, count);
  return orlftest::disagreement(out.at("log"), Json(log.lines()));
}

TEST(ORLFCalendarArithmetic, AgreesWithVectorsOfCounts) {
  orlftest::runJsonVectors(
      "planning_counting",
      {{"orlfIntervalInCalendarUnit",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out, Json(orlfIntervalInCalendarUnit(*calendarOf(in), unitIn(in), dateOf(in, "from"),
                                                   dateOf(in, "to"))));
        }},
       {"orlfCountOfCalendarUnit", counted}});
}

}  // namespace

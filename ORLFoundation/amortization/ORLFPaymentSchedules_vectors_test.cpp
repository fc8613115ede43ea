#include <ORLFoundation/amortization/ORLFPaymentSchedules.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using Number = std::optional<NSInteger>;

Number numberFrom(const Json& value) {
  return value.is_null() ? std::nullopt : Number(value.get<NSInteger>());
}

/// The fields that the rows name.
std::string scheduleDisagreement(const Json& out, const ORLFPaymentSchedule& schedule) {
  if (out.is_null() || !schedule)
    return out.is_null() == !schedule ? "" : "expected and got differ in nil";
  Json fields = orlftest::vectorFromRule(schedule.get());
  fields["numberOfPaymentPeriodsPerYear"] = numberOfPaymentPeriodsPerYear(*schedule);
  if (!fields.at("setPositions").is_null() || !fields.at("weeksOfTheYear").is_null())
    return "a list that no schedule has";
  fields.erase("setPositions");
  fields.erase("weeksOfTheYear");
  return orlftest::disagreement(out, fields);
}

template <class Schedule>
orlftest::JsonCheck fromNumbers(Schedule schedule) {
  return [schedule](const Json& in, const Json& out) {
    return scheduleDisagreement(out, schedule(in));
  };
}

template <class Schedule>
orlftest::JsonCheck fromDate(Schedule schedule) {
  return [schedule](const Json& in, const Json& out) {
    const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
    return scheduleDisagreement(out,
                                schedule(*orlftest::dateFromVector(in.at("date")), in, *calendar));
  };
}

std::string periodsDisagreement(const Json& in, const Json& out) {
  const auto list = [&in](const char* name) { return in.contains(name) ? in.at(name) : Json(); };
  const auto rule = ORLFDateRecurrenceRule::ruleWithFields(
      {.frequency = static_cast<ORLFDateRecurrenceFrequency>(in.at("frequency").get<NSInteger>()),
       .interval = in.at("interval").get<NSInteger>(),
       .daysOfTheWeek = orlftest::daysOfTheWeekFromVector(list("daysOfTheWeek")),
       .daysOfTheMonth = orlftest::integersFromVector(list("daysOfTheMonth")),
       .monthsOfTheYear = orlftest::integersFromVector(list("monthsOfTheYear")),
       .weeksOfTheYear = orlftest::integersFromVector(list("weeksOfTheYear")),
       .daysOfTheYear = orlftest::integersFromVector(list("daysOfTheYear"))});
  return orlftest::disagreement(out.get<NSUInteger>(), numberOfPaymentPeriodsPerYear(*rule));
}

TEST(ORLFPaymentSchedules, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "planning_schedules",
      {{"scheduleForWeeklyPayments:", fromNumbers([](const Json& in) {
          return scheduleForWeeklyPayments(numberFrom(in.at(0)));
        })},
       {"scheduleForBiweeklyPayments:", fromNumbers([](const Json& in) {
          return scheduleForBiweeklyPayments(numberFrom(in.at(0)));
        })},
       {"scheduleForSemiMonthlyPayments:secondPayment:", fromNumbers([](const Json& in) {
          return scheduleForSemiMonthlyPayments(numberFrom(in.at(0)), numberFrom(in.at(1)));
        })},
       {"scheduleForMonthlyPayments:", fromNumbers([](const Json& in) {
          return scheduleForMonthlyPayments(numberFrom(in.at(0)));
        })},
       {"scheduleForLastDayOfMonth",
        fromNumbers([](const Json& /*in*/) { return scheduleForLastDayOfMonth(); })},
       {"scheduleForQuarterlyPayments",
        fromNumbers([](const Json& /*in*/) { return scheduleForQuarterlyPayments(); })},
       {"scheduleForSemiAnnualPayments:secondPayment:", fromNumbers([](const Json& in) {
          return scheduleForSemiAnnualPayments(numberFrom(in.at(0)), numberFrom(in.at(1)));
        })},
       {"scheduleForSemiAnnualPayments:month1:month2:", fromNumbers([](const Json& in) {
          return scheduleForSemiAnnualPayments(numberFrom(in.at(0)), numberFrom(in.at(1)),
                                               numberFrom(in.at(2)));
        })},
       {"scheduleForAnnualPayments:day:", fromNumbers([](const Json& in) {
          return scheduleForAnnualPayments(numberFrom(in.at(0)), numberFrom(in.at(1)));
        })},
       {"absoluteScheduleForWeeklyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForWeeklyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForBiweeklyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForBiweeklyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForMonthlyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForMonthlyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForSemiMonthlyPaymentsIncludingDate:andDate:inCalendar:",
        fromDate([](NSDate date, const Json& in, const NSCalendar& calendar) {
          return absoluteScheduleForSemiMonthlyPaymentsIncludingDate(
              date, *orlftest::dateFromVector(in.at("second")), calendar);
        })},
       {"absoluteScheduleForQuarterlyPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForQuarterlyPaymentsIncludingDate(date, calendar);
        })},
       {"absoluteScheduleForSemiAnnualPaymentsIncludingDate:andDate:inCalendar:",
        fromDate([](NSDate date, const Json& in, const NSCalendar& calendar) {
          return absoluteScheduleForSemiAnnualPaymentsIncludingDate(
              date, orlftest::dateFromVector(in.at("second")), calendar);
        })},
       {"absoluteScheduleForAnnualPaymentsIncludingDate:inCalendar:",
        fromDate([](NSDate date, const Json&, const NSCalendar& calendar) {
          return absoluteScheduleForAnnualPaymentsIncludingDate(date, calendar);
        })},
       {"numberOfPaymentPeriodsPerYear", periodsDisagreement}});
}

}  // namespace
}  // namespace ORLFoundation

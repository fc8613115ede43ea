/// The usual payment schedules of loans and savings plans as recurrence rules: from day numbers,
/// with defaults for those left out, or so that a given date belongs to the schedule.
///
///     auto paydays = scheduleForSemiMonthlyPayments(15, std::nullopt);  // the 15th and the 29th
///     numberOfPaymentPeriodsPerYear(*paydays);                          // 24
///
/// Days of the week run from 1, Sunday, to 7. Other numbers out of range are kept as they come;
/// what they generate is the rule's affair.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>

namespace ORLFoundation {

class NSCalendar;
class ORLFDateRecurrenceRule;

using ORLFPaymentSchedule = std::shared_ptr<ORLFDateRecurrenceRule>;

/// `scheduleForWeeklyPayments:`  nil is Friday; a day outside 1 to 7 gives no schedule.
[[nodiscard]] ORLFPaymentSchedule scheduleForWeeklyPayments(std::optional<NSInteger> dayOfTheWeek);
/// `scheduleForBiweeklyPayments:`  As the weekly one, every second week, in absolute phase.
[[nodiscard]] ORLFPaymentSchedule scheduleForBiweeklyPayments(
    std::optional<NSInteger> dayOfTheWeek);
/// `scheduleForSemiMonthlyPayments:secondPayment:`  The first day is 1 when left out, the second
/// one 14 days after the first, or -1 where a month may not hold that day.
[[nodiscard]] ORLFPaymentSchedule scheduleForSemiMonthlyPayments(
    std::optional<NSInteger> firstPayment, std::optional<NSInteger> secondPayment);
/// `scheduleForMonthlyPayments:`  nil is day 1.
[[nodiscard]] ORLFPaymentSchedule scheduleForMonthlyPayments(std::optional<NSInteger> day);
/// `scheduleForLastDayOfMonth`
[[nodiscard]] ORLFPaymentSchedule scheduleForLastDayOfMonth();
/// `scheduleForQuarterlyPayments`
[[nodiscard]] ORLFPaymentSchedule scheduleForQuarterlyPayments();
/// `scheduleForSemiAnnualPayments:secondPayment:`  Two days of the year; the first is 1 when left
/// out, the second one 182 days after the first, or -1 where the year may not hold that day.
[[nodiscard]] ORLFPaymentSchedule scheduleForSemiAnnualPayments(
    std::optional<NSInteger> firstPayment, std::optional<NSInteger> secondPayment);
/// `scheduleForSemiAnnualPayments:month1:month2:`  A day in two months. Day and first month are 1
/// when left out; the second month is six after the first, or 12 where the year ends before.
[[nodiscard]] ORLFPaymentSchedule scheduleForSemiAnnualPayments(std::optional<NSInteger> day,
                                                                std::optional<NSInteger> month1,
                                                                std::optional<NSInteger> month2);
/// `scheduleForAnnualPayments:day:`  Both are 1 when left out.
[[nodiscard]] ORLFPaymentSchedule scheduleForAnnualPayments(std::optional<NSInteger> month,
                                                            std::optional<NSInteger> day);

// Schedules that a date belongs to, by its day in the calendar given. In spite of the names only
// the weekly, biweekly and monthly ones are absolute. A date that the calendar cannot place (not a
// number, infinite, beyond its years) gives no schedule.

/// `absoluteScheduleForWeeklyPaymentsIncludingDate:inCalendar:`
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForWeeklyPaymentsIncludingDate(
    NSDate date, const NSCalendar& inCalendar);
/// `absoluteScheduleForBiweeklyPaymentsIncludingDate:inCalendar:`  In the week slot of the date.
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForBiweeklyPaymentsIncludingDate(
    NSDate date, const NSCalendar& inCalendar);
/// `absoluteScheduleForMonthlyPaymentsIncludingDate:inCalendar:`
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForMonthlyPaymentsIncludingDate(
    NSDate date, const NSCalendar& inCalendar);
/// `absoluteScheduleForSemiMonthlyPaymentsIncludingDate:andDate:inCalendar:`
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForSemiMonthlyPaymentsIncludingDate(
    NSDate date, NSDate andDate, const NSCalendar& inCalendar);
/// `absoluteScheduleForQuarterlyPaymentsIncludingDate:inCalendar:`  Its month list holds the place
/// in the quarter, 0 to 2 (0 for March), and not a month of the year: required as it is.
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForQuarterlyPaymentsIncludingDate(
    NSDate date, const NSCalendar& inCalendar);
/// `absoluteScheduleForSemiAnnualPaymentsIncludingDate:andDate:inCalendar:`  The day of the first
/// date, in the months of both. Without a second date its month is the first plus 6, modulo 12,
/// so that June pairs with 0: required as it is.
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForSemiAnnualPaymentsIncludingDate(
    NSDate date, std::optional<NSDate> andDate, const NSCalendar& inCalendar);
/// `absoluteScheduleForAnnualPaymentsIncludingDate:inCalendar:`
[[nodiscard]] ORLFPaymentSchedule absoluteScheduleForAnnualPaymentsIncludingDate(
    NSDate date, const NSCalendar& inCalendar);

/// `numberOfPaymentPeriodsPerYear`  Whole periods of a year of 12 months, 52 weeks or 365 days,
/// times the days that the rule names in each. 0 for a yearly rule whose interval is above 1, for
/// an interval of 0 or less and for an unknown frequency.
[[nodiscard]] NSUInteger numberOfPaymentPeriodsPerYear(const ORLFDateRecurrenceRule& rule);

}  // namespace ORLFoundation

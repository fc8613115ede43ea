
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>

#include <cmath>

namespace ORLFoundation {
namespace {

using namespace orlftest;

std::shared_ptr<ORLFDateRecurrencePeriod> every(NSInteger interval,
                                                ORLFDateRecurrenceFrequency frequency) {
  return std::make_shared<ORLFDateRecurrencePeriod>(frequency, interval);
}

struct PeriodCase {
  ORLFDateRecurrenceFrequency frequency;
  NSInteger interval;
  double perYear;
  const char* description;
};
constexpr PeriodCase kPeriods[] = {
    {ORLFDateRecurrenceFrequencyYearly, 1, 1, "1 year"},
    {ORLFDateRecurrenceFrequencyMonthly, 2, 6, "2 month"},
    {ORLFDateRecurrenceFrequencyDaily, 5, 73, "5 day"},
    {ORLFDateRecurrenceFrequencyQuarterly, 3, 4.0 / 3, "3 quarter"},
    {ORLFDateRecurrenceFrequencyWeekly, 1, 26, "1 week"},
    {ORLFDateRecurrenceFrequencyWeekly, -2, -13, "-2 week"},
    {kHourly, 7, 0, "7 "},
};

TEST(ORLFDateRecurrencePeriod, TellsItsNumberInAYearAndItsText) {
  for (const PeriodCase& row : kPeriods) {
    const auto period = every(row.interval, row.frequency);
    EXPECT_EQ(period->frequencyPerYear(), row.perYear) << row.description;
    EXPECT_EQ(period->description(), row.description);
  }
}

TEST(ORLFDateRecurrencePeriod, DividesByAnIntervalOfZeroWithoutAGuard) {
  EXPECT_EQ(every(0, ORLFDateRecurrenceFrequencyYearly)->frequencyPerYear(), HUGE_VAL);
  EXPECT_TRUE(std::isnan(every(0, kHourly)->frequencyPerYear()));
}

TEST(ORLFDateRecurrencePeriod, IsEqualByFrequencyAndInterval) {
  const auto period = every(2, ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_TRUE(period->isEqual(every(2, ORLFDateRecurrenceFrequencyMonthly).get()));
  EXPECT_TRUE(period->isEqualToRecurrencePeriod(period.get()));
  EXPECT_FALSE(period->isEqual(every(3, ORLFDateRecurrenceFrequencyMonthly).get()));
  EXPECT_FALSE(period->isEqual(every(2, ORLFDateRecurrenceFrequencyDaily).get()));
  EXPECT_FALSE(period->isEqual(std::make_shared<NSObject>().get()));
  EXPECT_FALSE(period->isEqual(nullptr));
  EXPECT_FALSE(period->isEqualToRecurrencePeriod(nullptr));
}

TEST(ORLFDateRecurrencePeriod, HashesFrequencyAndShiftedInterval) {
  EXPECT_EQ(every(3, ORLFDateRecurrenceFrequencyMonthly)->hash(), 8U + (3U << 16));
  EXPECT_EQ(every(-1, ORLFDateRecurrenceFrequencyMonthly)->hash(),
            NSUInteger{8} + (~NSUInteger{0} << 16));
}

class SpecialPeriod final : public ORLFDateRecurrencePeriod {
 public:
  using ORLFDateRecurrencePeriod::ORLFDateRecurrencePeriod;
  [[nodiscard]] std::string className() const override { return "SpecialPeriod"; }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<SpecialPeriod>(kYearly, 1);
  }
};

TEST(ORLFDateRecurrencePeriod, CopiesToItselfAlthoughItHasSetters) {
  const auto period = every(1, ORLFDateRecurrenceFrequencyMonthly);
  const auto copy = copyOf(period);
  EXPECT_EQ(copy, period);
  period->setInterval(6);
  period->setFrequency(ORLFDateRecurrenceFrequencyDaily);
  EXPECT_EQ(copy->interval(), 6);
  EXPECT_EQ(copy->frequency(), ORLFDateRecurrenceFrequencyDaily);
}

TEST(ORLFDateRecurrencePeriod, CopiesASubclassToANewPeriodOfItsClass) {
  const auto special = std::make_shared<SpecialPeriod>(kWeekly, 4);
  const auto copy = special->copy();
  EXPECT_NE(copy, special);
  EXPECT_TRUE(special->isEqual(copy.get()));
  EXPECT_EQ(copy->className(), "SpecialPeriod");
}

TEST(ORLFDateRecurrencePeriod, CopiesOneOnTheStackToAnEqualPeriod) {
  ORLFDateRecurrencePeriod period(kWeekly, 4);
  EXPECT_TRUE(period.copy()->isEqual(&period));
}

TEST(ORLFDateRecurrencePeriod, HandsItsOptionsToTheCalendarWhateverTheirBits) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate start = at(*calendar, 2024, 1, 31, 9, 30);
  const auto period = every(1, kMonthly);
  for (const NSUInteger options :
       {NSUInteger{0}, NSUInteger{1}, NSUInteger{6}, NSUInteger{1} << 63, ~NSUInteger{0}})
    EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *period, 1, start, options),
              calendar->dateByAddingUnit(NSCalendarUnitMonth, 1, start, options))
        << options;
  // Wrapping keeps to the year.
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *period, 12, start, NSCalendarWrapComponents),
            start);
}

TEST(ORLFDateRecurrencePeriod, IsReadSetAndObservedByKey) {
  const auto period = every(2, ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_EQ(period->className(), "ORLFDateRecurrencePeriod");
  int changes = 0;
  const auto token = period->addObserver("frequencyPerYear", NSKeyValueObservingOptionNew,
                                         [&](const NSKeyValueChange&) { ++changes; });
  period->setValueForKey(3, "interval");
  period->setFrequency(ORLFDateRecurrenceFrequencyYearly);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(period->valueForKey("interval").as<NSInteger>(), 3);
  EXPECT_EQ(period->valueForKey("frequency").as<NSInteger>(), 4);
}

TEST(ORLFDateRecurrencePeriod, AddsPeriodsToADate) {
  const auto calendar = calendarIn("America/New_York");
  const NSDate start = at(*calendar, 2024, 1, 31, 9, 30);
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *every(1, ORLFDateRecurrenceFrequencyMonthly),
                                         1, start, 0),
            at(*calendar, 2024, 2, 29, 9, 30));
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *every(2, ORLFDateRecurrenceFrequencyQuarterly),
                                         -1, start, 0),
            at(*calendar, 2023, 7, 31, 9, 30));
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *every(3, ORLFDateRecurrenceFrequencyWeekly), 2,
                                         start, 0),
            at(*calendar, 2024, 3, 13, 9, 30));
}

TEST(ORLFDateRecurrencePeriod, AddsNothingBeyondTheCalendar) {
  const auto calendar = calendarIn("UTC");
  const auto period = every(NSIntegerMax, ORLFDateRecurrenceFrequencyDaily);
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *period, 2, NSDate(), 0), std::nullopt);
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *period, 1, NSDate(), 0), std::nullopt);
  // Wrapping brings any number of months into the year, but a product that does not fit is none.
  const auto months = every(NSIntegerMax, kMonthly);
  EXPECT_NE(dateByAddingRecurrencePeriod(*calendar, *months, 1, NSDate(), NSCalendarWrapComponents),
            std::nullopt);
  EXPECT_EQ(dateByAddingRecurrencePeriod(*calendar, *months, 2, NSDate(), NSCalendarWrapComponents),
            std::nullopt);
}

TEST(ORLFDateRecurrencePeriod, CountsPeriodsBetweenDates) {
  const auto calendar = calendarIn("UTC");
  const NSDate from = at(*calendar, 2024, 1, 1);
  const NSDate to = at(*calendar, 2024, 8, 16);
  const auto bimonthly = every(2, ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_EQ(intervalInRecurrencePeriod(*calendar, *bimonthly, from, to), 3);
  EXPECT_EQ(intervalInRecurrencePeriod(*calendar, *bimonthly, to, from), -3);
  EXPECT_EQ(countInRecurrencePeriod(*calendar, *bimonthly, from, to), (7.0 + 15.0 / 31) / 2);
}

TEST(ORLFDateRecurrencePeriod, CountsWithAnIntervalOfZeroOrLess) {
  const auto calendar = calendarIn("UTC");
  const NSDate from = at(*calendar, 2024, 1, 1);
  const NSDate to = at(*calendar, 2024, 8, 1);
  const auto never = every(0, ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_EQ(intervalInRecurrencePeriod(*calendar, *never, from, to), 0);
  EXPECT_EQ(countInRecurrencePeriod(*calendar, *never, from, to), HUGE_VAL);
  EXPECT_EQ(intervalInRecurrencePeriod(*calendar, *every(-1, ORLFDateRecurrenceFrequencyMonthly),
                                       from, to),
            -7);
  EXPECT_EQ(intervalInRecurrencePeriod(*calendar, *every(-2, ORLFDateRecurrenceFrequencyMonthly),
                                       from, to),
            -3);
}

}  // namespace
}  // namespace ORLFoundation

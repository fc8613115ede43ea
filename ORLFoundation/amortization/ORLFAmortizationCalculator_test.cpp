
#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>

#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cmath>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using Calculator = ORLFAmortizationCalculator;
using Decimal = Optional;

// Closed forms from tests/data/reference/rates.py.
struct PeriodRateCase {
  const char* rate;
  std::int32_t compounding, payments;
  double periodRate;
};
const PeriodRateCase kPeriodRates[] = {
    {"0.12", 12, 12, 0.01},
    {"0.06", 2, 12, 0.004938622031196978},
    {"0.05", 365, 12, 0.004175072737602566},
    {"0.08", 1, 52, 0.001481115792001733},
    {"-0.1", 4, 1, -0.096312109375},
    {"0", 12, 12, 0},
};

TEST(PaymentPeriodRate, IsTheClosedForm) {
  for (const PeriodRateCase& row : kPeriodRates)
    EXPECT_NEAR(Calculator::paymentPeriodRateForIntervalRate(number(row.rate), row.compounding,
                                                             row.payments)
                    ->doubleValue(),
                row.periodRate, 1e-14);
}

TEST(PaymentPeriodRate, NilGivesNilAndCountsOfZeroRaise) {
  EXPECT_FALSE(Calculator::paymentPeriodRateForIntervalRate(std::nullopt, 12, 12));
  EXPECT_THROW((void)Calculator::paymentPeriodRateForIntervalRate(number("0.05"), 0, 12),
               NSException);
  EXPECT_THROW((void)Calculator::paymentPeriodRateForIntervalRate(number("0.05"), 12, 0),
               NSException);
}

// Level payments by the closed formula, from tests/data/reference/rates.py.
struct PaymentCase {
  const char *principal, *rate;
  std::int32_t periods;
  double payment;
};
const PaymentCase kPayments[] = {
    {"1000", "0.01", 12, 88.8487886783417073},
    {"250000", "0.00375", 360, 1266.7132745647017},
    {"-1000", "0.01", 12, -88.8487886783417073},
    {"1000", "0.01", 1, 1010},
    {"18500", "0.0725", 7, 3462.7121133227943145},
    {"100", "-0.01", 10, 9.4582901175912352},
    {"0", "0.01", 12, 0},
};

TEST(PaymentOnInitialPrincipal, IsTheAnnuityPayment) {
  for (const PaymentCase& row : kPayments)
    EXPECT_NEAR(
        Calculator::paymentOnInitialPrincipal(number(row.principal), number(row.rate), row.periods)
            ->doubleValue(),
        row.payment, std::fabs(row.payment) * 1e-14);
}

struct ExactPaymentCase {
  const char *principal, *rate;
  std::int32_t periods;
  const char* payment;
};
// Each step rounded to 38 digits, the rate and its growth multiplied before the principal: other
// orders of the same formula end in other digits.
const ExactPaymentCase kExactPayments[] = {
    {"813821.93", "0.00014807", 245, "3382.5836434765707533910483459532615502"},
    {"349099.06", "0.00578539", 124, "3952.6667257831308002802694679444263774"},
    {"727082.85", "0.00878093", 286, "6955.1585268259357250289799983636509784"},
    {"558268.38", "0.00916162", 65, "11436.542567436510721425109562469965498"},
    {"1000", "0.01", -12, "-78.848788678341707339987831227886528977"},
};

TEST(PaymentOnInitialPrincipal, IsCalculatedInOneOrderTo38Digits) {
  for (const ExactPaymentCase& row : kExactPayments)
    EXPECT_EQ(
        Calculator::paymentOnInitialPrincipal(number(row.principal), number(row.rate), row.periods)
            ->stringValue(),
        row.payment);
}

TEST(PaymentPeriodRate, TakesNegativeCountsByTheirBits) {
  const auto rate = [](const char* yearly, std::int32_t compounding, std::int32_t payments) {
    return Calculator::paymentPeriodRateForIntervalRate(number(yearly), compounding, payments)
        ->stringValue();
  };
  // -1 is -18446744073709551615: 12 over it is next to no exponent, and a rate over it next to
  // no rate.
  EXPECT_EQ(rate("0.05", 12, -1), "0");
  EXPECT_EQ(rate("0.05", -1, 12), "0");
  // Both negative: the exponent is 1 again, but the rate was divided by the huge count.
  EXPECT_EQ(rate("18446744073709551615", -1, -1), "-1");
  EXPECT_EQ(rate("36893488147419103230", -1, -1), "-2");
}

TEST(PaymentPeriodRate, KeepsTheFullPrecisionOfTheDouble) {
  const double growth = std::pow(1.0625, 1.0 / 3);
  const NSDecimalNumber expected = NSDecimalNumber(NSDecimal::fromDouble(growth))
                                       .decimalNumberBySubtracting(NSDecimalNumber::one());
  const Decimal rate = Calculator::paymentPeriodRateForIntervalRate(number("0.0625"), 1, 3);
  EXPECT_EQ(rate, expected);
  EXPECT_GT(rate->stringValue().size(), 30U);
}

TEST(PaymentOnInitialPrincipal, PaysTheLoanOffToTheLastCent) {
  const NSDecimalNumber rate = number("0.00375");
  NSDecimalNumber balance = number("250000");
  const NSDecimalNumber payment = *Calculator::paymentOnInitialPrincipal(balance, rate, 360);
  for (int period = 0; period < 360; ++period) {
    const Decimal interest = Calculator::interestForCurrentPrincipal(balance, rate);
    balance = balance.decimalNumberByAdding(*interest).decimalNumberBySubtracting(payment);
  }
  EXPECT_LT(std::fabs(balance.doubleValue()), 1e-20);
}

TEST(PaymentOnInitialPrincipal, NilGivesNilAndARateOfZeroRaises) {
  EXPECT_FALSE(Calculator::paymentOnInitialPrincipal(std::nullopt, number("0.01"), 12));
  EXPECT_FALSE(Calculator::paymentOnInitialPrincipal(number("1000"), std::nullopt, 12));
  EXPECT_THROW(
      (void)Calculator::paymentOnInitialPrincipal(number("1000"), NSDecimalNumber::zero(), 12),
      NSException);
}

TEST(InterestForCurrentPrincipal, MultipliesAndGivesNilForNil) {
  EXPECT_EQ(Calculator::interestForCurrentPrincipal(number("1000"), number("0.01")), number("10"));
  EXPECT_FALSE(Calculator::interestForCurrentPrincipal(std::nullopt, number("0.01")));
  EXPECT_FALSE(Calculator::interestForCurrentPrincipal(number("1000"), std::nullopt));
}

TEST(AnnualInterval, CountsYearsOf365Days) {
  const auto calendar =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}});
  const auto years = [&](const char* from, const char* to) {
    return Calculator::annualIntervalFromDate(orlftest::dateFromVector(from),
                                              orlftest::dateFromVector(to), calendar.get());
  };
  EXPECT_EQ(years("2023-01-01T00:00:00Z", "2024-01-01T00:00:00Z"), 1.0);
  EXPECT_EQ(years("2024-01-01T00:00:00Z", "2025-01-01T00:00:00Z"), 366 / 365.0);
  EXPECT_EQ(years("2024-01-01T00:00:00Z", "2023-01-01T00:00:00Z"), -1.0);
}

TEST(AnnualInterval, CountsADayThatTheZoneLeftOut) {
  const auto calendar = orlftest::calendarIn("Pacific/Apia");
  EXPECT_EQ(
      Calculator::annualIntervalFromDate(orlftest::at(*calendar, 2011, 12, 1),
                                         orlftest::at(*calendar, 2012, 1, 31), calendar.get()),
      61 / 365.0);
}

TEST(AnnualInterval, IsZeroForNil) {
  const auto date = orlftest::dateFromVector("2024-01-01T00:00:00Z");
  const auto calendar =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}});
  EXPECT_EQ(Calculator::annualIntervalFromDate(std::nullopt, date, calendar.get()), 0.0);
  EXPECT_EQ(Calculator::annualIntervalFromDate(date, std::nullopt, calendar.get()), 0.0);
  EXPECT_EQ(Calculator::annualIntervalFromDate(date, date, nullptr), 0.0);
}

TEST(AnnualInterval, IsZeroForDatesThatTheCalendarCannotPlace) {
  const auto date = orlftest::dateFromVector("2024-01-01T00:00:00Z");
  const auto calendar =
      orlftest::calendarFromVector(Json{{"zone", "UTC"}, {"first_weekday", 1}, {"min_days", 1}});
  for (const double seconds : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300}) {
    const NSDate far = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_EQ(Calculator::annualIntervalFromDate(far, date, calendar.get()), 0.0) << seconds;
    EXPECT_EQ(Calculator::annualIntervalFromDate(date, far, calendar.get()), 0.0) << seconds;
  }
}

}  // namespace
}  // namespace ORLFoundation

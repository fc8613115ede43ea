
#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>

#include <ORLFoundation/amortization/net_present_value.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <stdexcept>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using Calculator = ORLFAmortizationCalculator;
using Decimal = Optional;
using Doubles = std::vector<double>;

Decimal decimalFrom(const Json& value) {
  if (value.is_null()) return std::nullopt;
  return number(value.get<std::string>());
}

std::shared_ptr<NSArray> indexes(std::size_t count) {
  std::vector<id> members;
  for (std::size_t i = 0; i < count; ++i) members.emplace_back(static_cast<NSInteger>(i));
  return std::make_shared<NSArray>(members);
}

Decimal rateOf(const Doubles& times, const Doubles& values, NSUInteger options = 0) {
  return Calculator::internalRateOfReturnForDataset(
      *indexes(times.size()), options, [&](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
        return ORLFCashFlowPoint{times[index], values[index]};
      });
}

std::string resultDisagreement(const Json& out, const Decimal& result, double tolerance) {
  if (out.is_null() || !result)
    return out.is_null() == !result ? "" : "expected and got differ in nil";
  return orlftest::realDisagreement(out.get<double>(), result->doubleValue(), tolerance);
}

std::string checkRate(const Json& in, const Json& out) {
  const auto times = in.at("times").get<Doubles>();
  const auto values = in.at("values").get<Doubles>();
  for (const NSUInteger options : {NSUInteger{0}, NSUInteger{NSEnumerationReverse}}) {
    const std::string message = resultDisagreement(out, rateOf(times, values, options), 1e-12);
    if (!message.empty()) return message;
  }
  return "";
}

TEST(ORLFAmortizationCalculator, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "planning_calculator",
      {{"paymentPeriodRateForIntervalRate",
        [](const Json& in, const Json& out) {
          return resultDisagreement(out,
                                    Calculator::paymentPeriodRateForIntervalRate(
                                        decimalFrom(in.at("rate")),
                                        in.at("compoundingPeriodsPerInterval").get<std::int32_t>(),
                                        in.at("paymentPeriodsPerInterval").get<std::int32_t>()),
                                    1e-11);
        }},
       {"paymentOnInitialPrincipal",
        [](const Json& in, const Json& out) {
          return resultDisagreement(out,
                                    Calculator::paymentOnInitialPrincipal(
                                        decimalFrom(in.at("principal")), decimalFrom(in.at("rate")),
                                        in.at("numberOfPeriods").get<std::int32_t>()),
                                    1e-11);
        }},
       {"net_present_value",
        [](const Json& in, const Json& out) {
          const auto times = in.at("times").get<Doubles>();
          const auto values = in.at("values").get<Doubles>();
          return orlftest::realDisagreement(
              out.get<double>(),
              net_present_value(times.data(), values.data(),
                                static_cast<std::int64_t>(times.size()),
                                in.at("rate").get<double>()),
              1e-11);
        }},
       {"internalRateOfReturn", checkRate},
       {"annualIntervalFromDate", [](const Json& in, const Json& out) {
          const auto calendar = orlftest::calendarFromVector(in.at("calendar"));
          return orlftest::realDisagreement(
              out.get<double>(),
              Calculator::annualIntervalFromDate(orlftest::dateFromVector(in.at("from")),
                                                 orlftest::dateFromVector(in.at("to")),
                                                 calendar.get()),
              1e-12);
        }}});
}

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

TEST(InternalRateOfReturn, FindsTheRateOfAYearlyGain) {
  EXPECT_NEAR(rateOf({0, 1}, {-100, 110})->doubleValue(), 0.1, 0.00001);
}

TEST(InternalRateOfReturn, FlowsOfOneSignHaveNone) {
  EXPECT_FALSE(rateOf({0, 1, 2}, {100, 110, 5}));
  EXPECT_FALSE(rateOf({0, 1}, {-100, -1}));
}

TEST(InternalRateOfReturn, EmptyListGivesTheMidpointOfTheWidestBracket) {
  double high = 0.2;
  for (int step = 0; step < 50; ++step) high = high + 1.6 * (high - 0.0);
  const Decimal rate = rateOf({}, {});
  ASSERT_TRUE(rate);
  EXPECT_DOUBLE_EQ(rate->doubleValue(), high + (0.0 - high) * 0.5);
}

TEST(InternalRateOfReturn, AsksForEachMemberOnce) {
  for (const NSUInteger options :
       {NSUInteger{0}, NSUInteger{NSEnumerationReverse}, NSUInteger{NSEnumerationConcurrent}}) {
    std::vector<std::atomic<int>> asked(1000);
    const auto rate = Calculator::internalRateOfReturnForDataset(
        *indexes(asked.size()), options, [&](const id& object, NSUInteger index, bool& /*stop*/) {
          ++asked[index];
          EXPECT_EQ(object.as<NSNumber>()->integerValue(), static_cast<NSInteger>(index));
          return ORLFCashFlowPoint{static_cast<double>(index), index == 0 ? -100.0 : 1.0};
        });
    EXPECT_TRUE(rate);
    for (const auto& count : asked) EXPECT_EQ(count, 1);
  }
}

TEST(InternalRateOfReturn, HasSeventeenPlaces) {
  const std::string text = rateOf({0, 1}, {-100, 90})->stringValue();
  EXPECT_LE(text.size() - text.find('.') - 1, 17U) << text;
  EXPECT_GE(text.size() - text.find('.') - 1, 15U) << text;
}

// Whole flows against rates from an independent solver (tests/data/reference/rates.py: bisection
// in decimal arithmetic of 60 digits), and against the search's own steps, done there in doubles.
struct RateCase {
  const char* name;
  Doubles times, values;
  double rate;
  const char* found;
};
const RateCase kRates[] = {
    {"Ruin", {0, 1}, {-1000, 20}, -0.98, "-0.97999250888824452"},
    {"Lottery", {0, 1}, {-1, 500}, 499, "498.99968885559633236"},
    {"Borrowing", {0, 1, 2}, {1000, -600, -600}, 0.130662386292, "0.13065795898437499"},
    {"Bond",
     {0, 1, 2, 3, 4, 5},
     {-950, 40, 40, 40, 40, 1040},
     0.051599861525,
     "0.05160522460937501"},
    {"Saving",
     {0, 0.25, 0.5, 0.75, 1},
     {-100, -100, -100, -100, 412},
     0.048284596985,
     "0.048284912109375"},
    {"Loss", {0, 1, 2}, {-1000, 200, 300}, -0.343223563717, "-0.34322738647460932"},
    {"Doubling", {0, 10}, {-1, 2}, 0.071773462536, "0.07177124023437502"},
};

TEST(InternalRateOfReturn, AgreesWithAnIndependentSolver) {
  for (const RateCase& row : kRates) {
    const Decimal rate = rateOf(row.times, row.values);
    ASSERT_TRUE(rate) << row.name;
    // The search ends within 0.00001 of the rate or of the worth.
    const double worth =
        net_present_value(row.times.data(), row.values.data(),
                          static_cast<std::int64_t>(row.times.size()), rate->doubleValue());
    EXPECT_TRUE(std::fabs(rate->doubleValue() - row.rate) < 0.00002 || std::fabs(worth) < 0.00001)
        << row.name << ": " << rate->stringValue();
    EXPECT_NEAR(rate->doubleValue(), row.rate, 0.001) << row.name;
    EXPECT_EQ(rate, number(row.found)) << row.name;
  }
}

TEST(InternalRateOfReturn, IsNilWhereTheSignsChangeButNoRateIs) {
  EXPECT_FALSE(rateOf({0, 1, 2}, {100, -150, 100}));
}

TEST(InternalRateOfReturn, IsNilForFlowsThatAreNoNumbers) {
  EXPECT_FALSE(rateOf({0, 1}, {-100, std::nan("")}));
}

TEST(InternalRateOfReturn, ConcurrentVisitGivesTheSame) {
  Doubles times, values;
  for (int i = 0; i < 5000; ++i) {
    times.push_back(i / 365.0);
    values.push_back(i == 0 ? -100000 : 25);
  }
  const Decimal inOrder = rateOf(times, values);
  ASSERT_TRUE(inOrder);
  EXPECT_EQ(rateOf(times, values, NSEnumerationConcurrent), inOrder);
  EXPECT_EQ(rateOf(times, values, NSEnumerationReverse), inOrder);
  EXPECT_EQ(rateOf(times, values, NSEnumerationConcurrent | NSEnumerationReverse), inOrder);
}

TEST(InternalRateOfReturn, StopEndsTheVisit) {
  NSUInteger visited = 0;
  const auto rate = Calculator::internalRateOfReturnForDataset(
      *indexes(100), 0, [&](const id& /*object*/, NSUInteger index, bool& stop) {
        ++visited;
        stop = index == 1;
        return ORLFCashFlowPoint{static_cast<double>(index), index == 0 ? -100.0 : 110.0};
      });
  EXPECT_EQ(visited, 2U);
  EXPECT_NEAR(rate->doubleValue(), 0.1, 0.00001);
}

TEST(InternalRateOfReturn, ConcurrentStopEndsTheVisit) {
  // Each thread stops at its first member, all others count as no flow.
  const std::size_t threads = std::max(2U, std::thread::hardware_concurrency());
  std::atomic<std::size_t> visited{0};
  const auto rate = Calculator::internalRateOfReturnForDataset(
      *indexes(10000), NSEnumerationConcurrent,
      [&](const id& /*object*/, NSUInteger /*index*/, bool& stop) {
        ++visited;
        stop = true;
        return ORLFCashFlowPoint{1, 100};
      });
  EXPECT_GE(visited, 1U);
  EXPECT_LE(visited, threads);
  EXPECT_FALSE(rate);  // flows of one sign
}

TEST(InternalRateOfReturn, ExceptionOfTheGeneratorReachesTheCaller) {
  for (const NSUInteger options : {NSUInteger{0}, NSUInteger{NSEnumerationConcurrent}}) {
    EXPECT_THROW((void)Calculator::internalRateOfReturnForDataset(
                     *indexes(500), options,
                     [](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
                       if (index == 300) throw std::runtime_error("no such flow");
                       return ORLFCashFlowPoint{};
                     }),
                 std::runtime_error);
  }
}

TEST(InternalRateOfReturn, GeneratorGetsTheMemberAtItsIndex) {
  const auto rate = Calculator::internalRateOfReturnForDataset(
      *NSArray::arrayWithObjects({id(-100.0), id(110.0)}), NSEnumerationReverse,
      [](const id& object, NSUInteger index, bool& /*stop*/) {
        return ORLFCashFlowPoint{static_cast<double>(index), object.as<NSNumber>()->doubleValue()};
      });
  EXPECT_NEAR(rate->doubleValue(), 0.1, 0.00001);
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

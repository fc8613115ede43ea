#include <ORLFoundation/amortization/ORLFAmortizationCalculator_testing.h>
#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/amortization/net_present_value.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <string>

namespace ORLFoundation {
namespace {

using orlftest::decimalFrom;
using orlftest::Doubles;
using orlftest::Json;
using orlftest::rateOf;
using Calculator = ORLFAmortizationCalculator;
using Decimal = Optional;

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

}  // namespace
}  // namespace ORLFoundation

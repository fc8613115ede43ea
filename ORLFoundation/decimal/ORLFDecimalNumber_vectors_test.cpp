
#include <ORLFoundation/decimal/ORLFDecimalNumber.h>

#include <ORLFoundation/decimal/ORLFDecimalAmount.h>
#include <ORLFoundation/decimal/ORLFDecimalSolver.h>
#include <ORLFoundation/decimal/ORLFRoundingBehavior.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::TsvRow;

/// Answers all errors with nil.
ORLFRoundingBehavior rounding(NSUInteger mode, std::int16_t scale) {
  return ORLFRoundingBehavior(static_cast<NSRoundingMode>(mode), scale,
                              ORLFDecimalErrorBehaviorReturnNil);
}

Optional decimalFrom(const Json& value) {
  if (value.is_null()) return std::nullopt;
  return NSDecimalNumber::decimalNumberWithString(value.get<std::string>());
}

std::string compared(const Json& expected, const Optional& actual) {
  return orlftest::disagreement(textOf(decimalFrom(expected)), textOf(actual));
}

/// A check of an operation on one decimal, or on the integer in a text.
template <class Operation>
orlftest::JsonCheck onOne(Operation operation) {
  return [operation](const Json& in, const Json& out) {
    return compared(out, operation(*decimalFrom(in)));
  };
}

template <class Operation>
orlftest::JsonCheck onInteger(Operation operation) {
  return [operation](const Json& in, const Json& out) {
    return compared(out, operation(std::stoll(in.get<std::string>())));
  };
}

template <class Operation>
orlftest::JsonCheck onSign(Operation operation) {
  return [operation](const Json& in, const Json& out) {
    return orlftest::disagreement(out.dump(), Json(operation(*decimalFrom(in))).dump());
  };
}

/// A check of an operation on two, under a behaviour where the row gives one.
template <class Operation>
orlftest::JsonCheck onTwo(Operation operation) {
  return [operation](const Json& in, const Json& out) {
    const Optional left = decimalFrom(in.at(0));
    const Optional right = decimalFrom(in.at(1));
    if (in.size() == 2) return compared(out, operation(left, right, nullptr));
    const auto behavior = rounding(in.at(2).get<NSUInteger>(), in.at(3).get<std::int16_t>());
    return compared(out, operation(left, right, &behavior));
  };
}

/// The larger and the smaller of two.
template <class Operation>
orlftest::JsonCheck onPair(Operation operation) {
  return [operation](const Json& in, const Json& out) {
    return compared(out, operation(*decimalFrom(in.at(0)), *decimalFrom(in.at(1))));
  };
}

orlftest::JsonChecks utilityChecks() {
  orlftest::JsonChecks checks{
      {"orlfOne", [](const Json&, const Json& out) { return compared(out, orlfOne()); }},
      {"orlfDecimalNumberWithInteger:", onInteger(&orlfDecimalNumberWithInteger)},
      {"orlfDecimalNumberWithLong:", onInteger(&orlfDecimalNumberWithLong)},
      {"orlfDecimalNumberWithInt:", onInteger([](std::int64_t value) {
         return orlfDecimalNumberWithInt(static_cast<std::int32_t>(value));
       })},
      {"orlfDecimalNumberWithString:",
       [](const Json& in, const Json& out) {
         if (in.is_null()) return compared(out, orlfDecimalNumberWithString(std::nullopt));
         return compared(out, orlfDecimalNumberWithString(in.get<std::string>()));
       }},
      {"orlfAbsoluteValue", onOne(&orlfAbsoluteValue)},
      {"orlfDecimalNumberByNegatingNumber", onOne(&orlfDecimalNumberByNegatingNumber)},
      {"orlfLargerDecimalNumber:", onPair(&orlfLargerDecimalNumber)},
      {"orlfSmallerDecimalNumber:", onPair(&orlfSmallerDecimalNumber)},
  };
  using Sign = bool (*)(const NSDecimalNumber&) noexcept;
  const std::map<std::string, Sign> signs{
      {"orlfIsPositiveNumber", &orlfIsPositiveNumber},
      {"orlfIsNegativeNumber", &orlfIsNegativeNumber},
      {"orlfIsNegitiveNumber", &orlfIsNegitiveNumber},
      {"orlfIsZero", &orlfIsZero},
      {"orlfIsPositiveNumberOrZero", &orlfIsPositiveNumberOrZero},
      {"orlfIsNegativeNumberOrZero", &orlfIsNegativeNumberOrZero},
      {"orlfIsNegitiveNumberOrZero", &orlfIsNegitiveNumberOrZero},
  };
  for (const auto& [name, test] : signs) checks[name] = onSign(test);
  checks["orlfCompareWithZero"] =
      onSign([](const NSDecimalNumber& value) { return NSInteger{orlfCompareWithZero(value)}; });
  using Sum = Optional (*)(const Optional&, const Optional&, const NSDecimalNumberBehaviors*);
  const std::map<std::string, Sum> sums{
      {"orlfDecimalNumberByAdding:", &orlfDecimalNumberByAdding},
      {"orlfDecimalNumberBySubtracting:", &orlfDecimalNumberBySubtracting},
      {"orlfDecimalNumberByMultiplyingBy:", &orlfDecimalNumberByMultiplyingBy},
      {"orlfDecimalNumberByDividingBy:", &orlfDecimalNumberByDividingBy},
      {"orlfDecimalNumberByAdding:to:", &orlfDecimalNumberByAddingTo},
      {"orlfDecimalNumberBySubtracting:from:", &orlfDecimalNumberBySubtractingFrom},
  };
  for (const auto& [name, sum] : sums) checks[name] = checks[name + "withBehavior:"] = onTwo(sum);
  return checks;
}

TEST(ORLFDecimalNumber, AgreesWithVectorsOfUtilities) {
  orlftest::runJsonVectors("decimals_utilities", utilityChecks());
}

TEST(ORLFDecimalNumber, AgreesWithVectorsOfDoubles) {
  orlftest::runTsvVectors("decimals_from_double", [](const TsvRow& row) {
    return orlftest::disagreement(row.text("decimal"),
                                  orlfDecimalNumberWithDouble(row.real("double")).stringValue());
  });
}

TEST(ORLFDecimalAmount, AgreesWithVectorsOfAmounts) {
  orlftest::runTsvVectors("decimals_amount", [](const TsvRow& row) {
    LogCapture log;
    const Optional amount = orlfDecimalNumberWithFormattedString(row["text"]);
    const std::string value = orlftest::disagreement(row["value"].value_or("nil"), textOf(amount));
    if (!value.empty()) return value;
    std::string logged;
    for (const std::string& line : log.lines()) logged += line;
    return orlftest::disagreement(row["log"].value_or(""), logged);
  });
}

/// The functions whose values the solver's rows search.
NSDecimalNumber functionOf(const std::string& name, const NSDecimalNumber& x) {
  if (name == "linear") return x;
  if (name == "double") return x.decimalNumberByAdding(x).decimalNumberByAdding(orlfOne());
  if (name == "cubic") return x.decimalNumberByRaisingToPower(3);
  throw std::invalid_argument("unknown function " + name);
}

std::string checkSolver(const Json& in, const Json& out) {
  const auto behavior =
      rounding(in.at("roundingMode").get<NSUInteger>(), in.at("scale").get<std::int16_t>());
  const NSDecimalNumber target = *decimalFrom(in.at("target"));
  const Json& stopAt = in.at("stopAtCall");
  Json came{{"calls", 0}, {"candidates", Json::array()}, {"result", nullptr}};
  NSInteger calls = 0;
  const auto test = [&](const NSDecimalNumber& candidate, bool& stop) -> NSInteger {
    ++calls;
    came["candidates"].push_back(candidate.stringValue());
    if (!stopAt.is_null() && calls == stopAt.get<NSInteger>()) stop = true;
    return functionOf(in.at("function").get<std::string>(), candidate).compare(target);
  };
  const Optional result = aproximateValueUsingLinearRegressionLowerBound(
      decimalFrom(in.at("lower")), decimalFrom(in.at("upper")), &behavior, test);
  came["calls"] = calls;
  if (result) came["result"] = result->stringValue();
  return orlftest::disagreement(out.dump(), came.dump());
}

TEST(ORLFDecimalSolver, AgreesWithVectorsOfSearches) {
  orlftest::runJsonVectors("decimals_solver", {{"solve", checkSolver}});
}

}  // namespace
}  // namespace ORLFoundation

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Behavior = const NSDecimalNumberBehaviors*;

struct DecimalArguments {
  std::string operation, left, right;
  DecimalRuleWords rules;
};

NSDecimalNumber readRight(const std::string& text) { return readDecimalArgument("B", text); }

/// A sum as a function of its operands; it reads B in its own way.
using Sum = DecimalOperation (*)(const NSDecimalNumber& a, const std::string& b);

DecimalOperation add(const NSDecimalNumber& a, const std::string& b) {
  return [a, other = readRight(b)](Behavior behavior) {
    return a.decimalNumberByAdding(other, behavior);
  };
}

DecimalOperation subtract(const NSDecimalNumber& a, const std::string& b) {
  return [a, other = readRight(b)](Behavior behavior) {
    return a.decimalNumberBySubtracting(other, behavior);
  };
}

DecimalOperation multiply(const NSDecimalNumber& a, const std::string& b) {
  return [a, other = readRight(b)](Behavior behavior) {
    return a.decimalNumberByMultiplyingBy(other, behavior);
  };
}

DecimalOperation divide(const NSDecimalNumber& a, const std::string& b) {
  return [a, other = readRight(b)](Behavior behavior) {
    return a.decimalNumberByDividingBy(other, behavior);
  };
}

DecimalOperation power(const NSDecimalNumber& a, const std::string& b) {
  constexpr std::int64_t kLargestPower = 1000000;
  return [a, exponent = readWholeArgument("B", b, -kLargestPower, kLargestPower)](
             Behavior behavior) { return a.decimalNumberByRaisingToPower(exponent, behavior); };
}

DecimalOperation shift(const NSDecimalNumber& a, const std::string& b) {
  constexpr std::int64_t kLargestShift = 1000;
  const std::int64_t places = readWholeArgument("B", b, -kLargestShift, kLargestShift);
  return [a, exponent = static_cast<std::int16_t>(places)](Behavior behavior) {
    return a.decimalNumberByMultiplyingByPowerOf10(exponent, behavior);
  };
}

DecimalOperation compare(const NSDecimalNumber& a, const std::string& b) {
  return [order = a.compare(readRight(b))](Behavior) -> std::optional<NSDecimalNumber> {
    if (order == NSOrderedSame) return NSDecimalNumber::zero();
    return NSDecimalNumber::decimalNumberWithMantissa(1, 0, order == NSOrderedAscending);
  };
}

struct NamedSum {
  std::string_view name;
  Sum sum;
};

constexpr std::array kSums{NamedSum{"add", &add},           NamedSum{"subtract", &subtract},
                           NamedSum{"multiply", &multiply}, NamedSum{"divide", &divide},
                           NamedSum{"power", &power},       NamedSum{"shift", &shift},
                           NamedSum{"compare", &compare}};

Sum sumNamed(const std::string& name) {
  std::string names;
  for (const NamedSum& row : kSums) {
    if (row.name == name) return row.sum;
    names.append(names.empty() ? "" : ", ").append(row.name);
  }
  throw UsageFailure("OP: expected one of " + names + ", got '" + name + "'");
}

void printResult(Session& session, Json question, const std::optional<NSDecimalNumber>& result) {
  if (!session.options.json) {
    session.out << (result ? result->stringValue() : "nil") << '\n';
    return;
  }
  question["result"] = nullptr;
  if (result) question["result"] = result->stringValue();
  printJson(session.out, question);
}

void runDecimal(Session& session, const DecimalArguments& arguments) {
  const Sum sum = sumNamed(arguments.operation);
  const DecimalRules rules = readDecimalRules(arguments.rules);
  if (sum == &compare && arguments.rules.isGiven())
    throw UsageFailure("compare goes without --scale, --mode and --on-error");
  const NSDecimalNumber left = readDecimalArgument("A", arguments.left);
  printResult(session,
              {{"operation", arguments.operation}, {"a", arguments.left}, {"b", arguments.right}},
              calculate(rules, sum(left, arguments.right)));
}

}  // namespace

Job declareDecimalCommand(Options& options) {
  options.describe("Calculate with two decimals and print the result.");
  auto arguments = std::make_shared<DecimalArguments>();
  options.required("OP", arguments->operation,
                   "add, subtract, multiply, divide, power (B is a whole number), shift (by B\n"
                   "powers of ten), compare (-1, 0 or 1)");
  options.required("A", arguments->left, "Decimal");
  options.required("B", arguments->right, "Decimal");
  options.text("--scale", arguments->rules.scale, "Digits kept after the point (all)");
  options.text("--mode", arguments->rules.mode, kRoundingModeHelp);
  options.text("--on-error", arguments->rules.onError,
               "What overflow, underflow and division by zero give: raise, nil or zero");
  return [arguments](Session& session) { runDecimal(session, *arguments); };
}

}  // namespace orlftool

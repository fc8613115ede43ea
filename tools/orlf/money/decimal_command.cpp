#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "commands.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Behavior = const NSDecimalNumberBehaviors*;

struct DecimalArguments {
  std::string operation, left, right;
  DecimalRuleWords rules;
};

std::int64_t readWholeNumber(const std::string& text, std::int64_t most) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < -most || number > most)
    throw UsageFailure("B: expected a whole number from -" + std::to_string(most) + " to " +
                       std::to_string(most) + ", got '" + text + "'");
  return number;
}

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
  return [a, exponent = readWholeNumber(b, kLargestPower)](Behavior behavior) {
    return a.decimalNumberByRaisingToPower(exponent, behavior);
  };
}

DecimalOperation shift(const NSDecimalNumber& a, const std::string& b) {
  constexpr std::int64_t kLargestShift = 1000;
  return [a, exponent =
                 static_cast<std::int16_t>(readWholeNumber(b, kLargestShift))](Behavior behavior) {
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

void printResult(Session& session, nlohmann::ordered_json question,
                 const std::optional<NSDecimalNumber>& result) {
  if (!session.options.json) {
    session.out << (result ? result->stringValue() : "nil") << '\n';
    return;
  }
  question["result"] = nullptr;
  if (result) question["result"] = result->stringValue();
  session.out << question.dump(2) << '\n';
}

void runDecimal(Session& session, const DecimalArguments& arguments) {
  const Sum sum = sumNamed(arguments.operation);
  const DecimalRules rules = readDecimalRules(arguments.rules);
  const NSDecimalNumber left = readDecimalArgument("A", arguments.left);
  printResult(session,
              {{"operation", arguments.operation}, {"a", arguments.left}, {"b", arguments.right}},
              calculate(rules, sum(left, arguments.right)));
}

}  // namespace

Command addDecimalCommand(CLI::App& tool) {
  CLI::App* parser =
      tool.add_subcommand("decimal", "Calculate with two decimals and print the result.");
  auto arguments = std::make_shared<DecimalArguments>();
  parser
      ->add_option("OP", arguments->operation,
                   "add, subtract, multiply, divide, power (B is a whole number), shift (by B\n"
                   "powers of ten), compare (-1, 0 or 1)")
      ->required();
  parser->add_option("A", arguments->left, "Decimal")->required();
  parser->add_option("B", arguments->right, "Decimal")->required();
  parser->add_option("--scale", arguments->rules.scale, "Digits kept after the point (all)");
  parser->add_option("--mode", arguments->rules.mode, std::string(kRoundingModeHelp))
      ->capture_default_str();
  parser
      ->add_option("--on-error", arguments->rules.onError,
                   "What overflow, underflow and division by zero give: raise, nil or zero")
      ->capture_default_str();
  return {parser, [arguments](Session& session) { runDecimal(session, *arguments); }};
}

}  // namespace orlftool

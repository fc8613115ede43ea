#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "cli/common_options.h"
#include "commands.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct RoundArguments {
  std::string value;
  DecimalRuleWords rules;
};

void runRound(Session& session, const RoundArguments& arguments) {
  const DecimalRules rules = readDecimalRules(arguments.rules);
  const NSDecimalNumber value = readDecimalArgument("VALUE", arguments.value);
  const std::optional<NSDecimalNumber> rounded =
      calculate(rules, [&value](const NSDecimalNumberBehaviors* behavior) {
        return value.decimalNumberByRoundingAccordingToBehavior(behavior);
      });
  const std::string text = rounded ? rounded->stringValue() : "nil";
  if (!session.options.json) {
    session.out << text << '\n';
    return;
  }
  const nlohmann::ordered_json answer{{"value", arguments.value},
                                      {"scale", arguments.rules.scale},
                                      {"mode", arguments.rules.mode},
                                      {"result", text}};
  session.out << answer.dump(2) << '\n';
}

}  // namespace

Command addRoundCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand("round", "Round a decimal and print it.");
  auto arguments = std::make_shared<RoundArguments>();
  parser->add_option("VALUE", arguments->value, "Decimal")->required();
  parser
      ->add_option("--scale", arguments->rules.scale,
                   "Digits kept after the point; negative ones round before it")
      ->required();
  parser->add_option("--mode", arguments->rules.mode, std::string(kRoundingModeHelp))
      ->capture_default_str();
  return {parser, [arguments](Session& session) { runRound(session, *arguments); }};
}

}  // namespace orlftool

#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct RoundArguments {
  std::string value, scale, mode = "plain";
};

void runRound(Session& session, const RoundArguments& arguments) {
  const DecimalRules rules = readDecimalRules({.scale = arguments.scale, .mode = arguments.mode});
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
  const Json answer{{"value", arguments.value},
                    {"scale", rules.scale},
                    {"mode", arguments.mode},
                    {"result", text}};
  printJson(session.out, answer);
}

}  // namespace

Job declareRoundCommand(Options& options) {
  options.describe("Round a decimal and print it.");
  auto arguments = std::make_shared<RoundArguments>();
  options.required("VALUE", arguments->value, "Decimal");
  options.required("--scale", arguments->scale,
                   "Digits kept after the point; negative ones round before it");
  options.text("--mode", arguments->mode, kRoundingModeHelp);
  return [arguments](Session& session) { runRound(session, *arguments); };
}

}  // namespace orlftool

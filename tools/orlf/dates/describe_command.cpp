#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "cli/common_options.h"
#include "cli/option_checks.h"
#include "commands.h"
#include "dates/rule_options.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// Months outside of the year have no word, which the sentence takes for a fault of its caller.
void checkMonths(const ORLFDateRecurrenceRule& rule) {
  if (!rule.monthsOfTheYear()) return;
  for (const NSInteger month : *rule.monthsOfTheYear()) checkRange("RULE: BYMONTH", month, 1, 12);
}

void printDescription(Session& session, const RuleArguments& arguments) {
  const auto rule = readRule(arguments, "RULE");
  checkMonths(*rule);
  const std::string sentence = rule->humanReadableDescription();
  if (!session.options.json) {
    session.out << sentence << '\n';
    return;
  }
  nlohmann::ordered_json answer;
  if (arguments.rule) answer["rule"] = *arguments.rule;
  answer["description"] = sentence;
  session.out << answer.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

Command addDescribeCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "describe", "Print a recurrence rule as an English sentence: 'repeats weekly on Monday'.");
  auto arguments = std::make_shared<RuleArguments>();
  CLI::Option* text = parser->add_option(
      "RULE", arguments->rule, "iCalendar text, 'RRULE:FREQ=...', in place of the options below");
  addRuleOptions(*parser, *arguments, *text);
  return {parser, [arguments](Session& session) { printDescription(session, *arguments); }};
}

}  // namespace orlftool

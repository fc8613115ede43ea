#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "dates/rule_options.h"
#include "dates/rule_text.h"
#include "session.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// Months outside of the year have no word, which the sentence takes for a fault of its caller.
void checkMonths(const ORLFDateRecurrenceRule& rule) {
  if (!rule.monthsOfTheYear()) return;
  for (const NSInteger month : *rule.monthsOfTheYear())
    (void)readWholeArgument("RULE: BYMONTH", std::to_string(month), 1, 12);
}

void printDescription(Session& session, const RuleArguments& arguments) {
  const auto rule = readRule(arguments, "RULE");
  checkMonths(*rule);
  const std::string sentence = rule->humanReadableDescription();
  const std::vector<std::string> untold =
      arguments.rule ? keysWithoutWords(*arguments.rule) : std::vector<std::string>();
  if (!untold.empty())
    printNote(session, "RULE: the sentence does not tell of " + joinedWithAnd(untold));
  if (!session.options.json) {
    session.out << sentence << '\n';
    return;
  }
  Json answer;
  if (arguments.rule) answer["rule"] = *arguments.rule;
  answer["description"] = sentence;
  printJson(session.out, answer);
}

}  // namespace

Job declareDescribeCommand(Options& options) {
  options.describe("Print a recurrence rule as an English sentence: 'repeats weekly on Monday'.");
  auto arguments = std::make_shared<RuleArguments>();
  options.text("RULE", arguments->rule,
               "iCalendar text, 'RRULE:FREQ=...', in place of the options below");
  addRuleOptions(options, *arguments, "RULE");
  return [arguments](Session& session) { printDescription(session, *arguments); };
}

}  // namespace orlftool

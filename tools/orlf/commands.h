/// The commands of the tool, one file each.
#pragma once

#include <functional>

namespace CLI {
class App;
}  // namespace CLI

namespace orlftool {

struct Session;

/// A command that has been added to the parser: `run` does its job with what was parsed.
struct Command {
  CLI::App* parser = nullptr;
  std::function<void(Session&)> run;
};

/// `orlf dates`  The dates of a recurrence rule.
[[nodiscard]] Command addDatesCommand(CLI::App& tool);
/// `orlf plan`  Balances and contributions of a plan file.
[[nodiscard]] Command addPlanCommand(CLI::App& tool);
/// `orlf amount`  Amounts as people type them.
[[nodiscard]] Command addAmountCommand(CLI::App& tool);
/// `orlf round`  A decimal rounded.
[[nodiscard]] Command addRoundCommand(CLI::App& tool);
/// `orlf decimal`  Sums on decimals.
[[nodiscard]] Command addDecimalCommand(CLI::App& tool);
/// `orlf link`  Which handler takes a link.
[[nodiscard]] Command addLinkCommand(CLI::App& tool);

/// `orlf describe`  The English sentence of a recurrence rule.
[[nodiscard]] Command addDescribeCommand(CLI::App& tool);
/// `orlf loan`  The level payment of a loan, and its amortization table.
[[nodiscard]] Command addLoanCommand(CLI::App& tool);
/// `orlf irr`  The internal rate of return of dated cash flows.
[[nodiscard]] Command addIrrCommand(CLI::App& tool);
/// `orlf schedule`  The dates of a usual payment schedule.
[[nodiscard]] Command addScheduleCommand(CLI::App& tool);
/// `orlf fiscal`  A date in a fiscal year.
[[nodiscard]] Command addFiscalCommand(CLI::App& tool);
/// `orlf axis`  The scale of a chart axis.
[[nodiscard]] Command addAxisCommand(CLI::App& tool);
/// `orlf title`  Texts in title case.
[[nodiscard]] Command addTitleCommand(CLI::App& tool);
/// `orlf email`  Whether texts are e-mail addresses.
[[nodiscard]] Command addEmailCommand(CLI::App& tool);
/// `orlf template-image`  A picture drawn in one color.
[[nodiscard]] Command addTemplateImageCommand(CLI::App& tool);

}  // namespace orlftool

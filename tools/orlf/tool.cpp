

#include "tool.h"

#include <ORLFoundation/platform/log/NSLog.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <ostream>
#include <set>
#include <string>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "commands.h"
#include "version.h"

namespace orlftool {
namespace {

constexpr std::array kAddCommands{&addDatesCommand,  &addDescribeCommand, &addScheduleCommand,
                                  &addFiscalCommand, &addPlanCommand,     &addLoanCommand,
                                  &addIrrCommand,    &addAxisCommand,     &addAmountCommand,
                                  &addRoundCommand,  &addDecimalCommand,  &addLinkCommand,
                                  &addTitleCommand,  &addEmailCommand,    &addTemplateImageCommand};

/// Sends what the library logs to a stream, each line once, for as long as it lives.
class LogToStream {
 public:
  explicit LogToStream(std::ostream& err)
      : before_(ORLFoundation::NSSetLogSink([this, &err](std::string_view message) {
          if (seen_.emplace(message).second) err << "orlf: " << message << '\n';
        })) {}
  ~LogToStream() { ORLFoundation::NSSetLogSink(std::move(before_)); }
  LogToStream(const LogToStream&) = delete;
  LogToStream& operator=(const LogToStream&) = delete;

 private:
  std::set<std::string, std::less<>> seen_;
  ORLFoundation::NSLogSink before_;
};

void addCommonOptions(CLI::App& tool, CommonOptions& options) {
  tool.add_flag("--json", options.json, "Print JSON instead of text");
  tool.add_option("--tz", options.zone, "Time zone")->capture_default_str();
  tool.add_option("--locale", options.locale, "Locale of numbers, months and weeks")
      ->capture_default_str();
}

/// A message of one line, whatever it quotes.
std::string oneLine(std::string message) {
  std::replace_if(
      message.begin(), message.end(), [](unsigned char c) { return c < ' ' || c == '\x7F'; }, ' ');
  return message;
}

int report(std::ostream& err, const std::string& command, const std::string& message,
           ExitCode code) {
  err << (command.empty() ? "orlf" : "orlf " + command) << ": " << oneLine(message) << '\n';
  return code;
}

const Command* chosenCommand(const std::vector<Command>& commands) {
  for (const Command& command : commands)
    if (command.parser->parsed()) return &command;
  return nullptr;
}

int runCommand(const Command& command, Session& session) {
  const std::string name = command.parser->get_name();
  try {
    const LogToStream log(session.err);
    command.run(session);
    if (!session.out.flush()) throw JobFailure("the output cannot be written");
    return session.exitCode;
  } catch (const UsageFailure& failure) {
    return report(session.err, name, failure.what(), kExitWrongUsage);
  } catch (const std::exception& failure) {
    return report(session.err, name, failure.what(), kExitFailedJob);
  }
}

}  // namespace

int runTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  CLI::App tool("Exact money, dates and plans.", "orlf");
  Session session{out, err, {}};
  addCommonOptions(tool, session.options);
  tool.set_version_flag("--version", std::string("orlf ") + kToolVersion);
  tool.require_subcommand(1);
  std::vector<Command> commands;
  for (const auto add : kAddCommands) {
    commands.push_back(add(tool));
    commands.back().parser->fallthrough();
    commands.back().parser->footer(
        "--json, --tz ZONE (UTC) and --locale ID (en_US) work before and after the command.");
  }
  try {
    tool.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return tool.exit(error, out, err);
    const Command* chosen = chosenCommand(commands);
    const std::vector<std::string> strangers = tool.remaining();
    if (chosen == nullptr && !strangers.empty())
      return report(err, "",
                    "unknown command or option '" + strangers.front() + "' (--help tells more)",
                    kExitWrongUsage);
    return report(err, chosen != nullptr ? chosen->parser->get_name() : "",
                  error.what() + std::string(" (--help tells more)"), kExitWrongUsage);
  }
  session.options.zoneWasGiven = tool.count("--tz") > 0;
  return runCommand(*chosenCommand(commands), session);
}

}  // namespace orlftool

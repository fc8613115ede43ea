#include "tool.h"

#include <ORLFoundation/platform/log/NSLog.h>

#include <array>
#include <map>
#include <ostream>
#include <set>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "commands.h"
#include "session.h"
#include "version.h"

namespace orlftool {
namespace {

struct Command {
  const char* name;
  Job (*declare)(Options& options);
};

constexpr std::array kCommands{
    Command{"dates", &declareDatesCommand},
    Command{"describe", &declareDescribeCommand},
    Command{"schedule", &declareScheduleCommand},
    Command{"fiscal", &declareFiscalCommand},
    Command{"infer-dates", &declareInferDatesCommand},
    Command{"date", &declareDateCommand},
    Command{"span", &declareSpanCommand},
    Command{"plan", &declarePlanCommand},
    Command{"loan", &declareLoanCommand},
    Command{"irr", &declareIrrCommand},
    Command{"axis", &declareAxisCommand},
    Command{"amount", &declareAmountCommand},
    Command{"calc", &declareCalcCommand},
    Command{"percent", &declarePercentCommand},
    Command{"round", &declareRoundCommand},
    Command{"decimal", &declareDecimalCommand},
    Command{"link", &declareLinkCommand},
    Command{"title", &declareTitleCommand},
    Command{"email", &declareEmailCommand},
    Command{"qif", &declareQifCommand},
    Command{"txf", &declareTxfCommand},
    Command{"csv", &declareCsvCommand},
    Command{"ofx2xml", &declareOfxToXmlCommand},
    Command{"xml-escape", &declareXmlEscapeCommand},
    Command{"xml-unescape", &declareXmlUnescapeCommand},
    Command{"xml-events", &declareXmlEventsCommand},
    Command{"process", &declareProcessCommand},
    Command{"watch", &declareWatchCommand},
    Command{"template-image", &declareTemplateImageCommand},
    Command{"mirror", &declareMirrorCommand},
    Command{"store-info", &declareStoreInfoCommand},
    Command{"same-file", &declareSameFileCommand},
};

constexpr const char* kFooter =
    "--json, --tz ZONE (UTC) and --locale ID (en_US) work before and after the command.";

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

void addCommonOptions(Options options, CommonOptions& values) {
  options.flag("--json", values.json, "Print JSON instead of text");
  options.text("--tz", values.zone, "Time zone (UTC)");
  options.text("--locale", values.locale, "Locale of numbers, months and weeks");
}

int fail(Session& session, std::string_view message, ExitCode code) {
  printNote(session, message);
  return code;
}

int runCommand(const Job& job, Session& session) {
  try {
    const LogToStream log(session.err);
    session.calendar = makeCalendar(session.options.zone.value_or("UTC"), session.options.locale);
    job(session);
    if (!session.out.flush()) throw JobFailure("the output cannot be written");
    return session.exitCode;
  } catch (const UsageFailure& failure) {
    return fail(session, failure.what(), kExitWrongUsage);
  } catch (const std::exception& failure) {
    return fail(session, failure.what(), kExitFailedJob);
  }
}

}  // namespace

int runTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  Session session{.out = out, .err = err};
  CommandLine line("orlf", "Exact money, dates and plans.", std::string("orlf ") + kToolVersion);
  addCommonOptions(line.commonOptions(), session.options);
  std::map<std::string, Job> jobs;
  for (const Command& command : kCommands) {
    Options options = line.addCommand(command.name, kFooter);
    jobs.emplace(command.name, command.declare(options));
  }
  const CommandLine::Reading reading = line.read(arguments, out);
  if (reading.isAnswered) return kExitSuccess;
  session.command = reading.command;
  if (!reading.fault.empty()) return fail(session, reading.fault, kExitWrongUsage);
  return runCommand(jobs.at(reading.command), session);
}

}  // namespace orlftool

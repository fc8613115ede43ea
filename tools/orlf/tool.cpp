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
#include "progress/job_progress.h"
#include "session.h"
#include "version.h"

namespace orlftool {
namespace {

/// A job that may take long runs beside a display of its progress. One that lasts until it is
/// ended, as `watch`, has none to show.
enum class Length : std::uint8_t { isShort, mayBeLong };

struct Command {
  const char* name;
  Job (*declare)(Options& options);
  Length length = Length::isShort;
};

constexpr std::array kCommands{
    Command{"dates", &declareDatesCommand, Length::mayBeLong},
    Command{"describe", &declareDescribeCommand},
    Command{"schedule", &declareScheduleCommand},
    Command{"fiscal", &declareFiscalCommand},
    Command{"infer-dates", &declareInferDatesCommand, Length::mayBeLong},
    Command{"date", &declareDateCommand, Length::mayBeLong},
    Command{"span", &declareSpanCommand},
    Command{"plan", &declarePlanCommand, Length::mayBeLong},
    Command{"loan", &declareLoanCommand, Length::mayBeLong},
    Command{"irr", &declareIrrCommand, Length::mayBeLong},
    Command{"axis", &declareAxisCommand},
    Command{"amount", &declareAmountCommand, Length::mayBeLong},
    Command{"calc", &declareCalcCommand, Length::mayBeLong},
    Command{"percent", &declarePercentCommand, Length::mayBeLong},
    Command{"round", &declareRoundCommand},
    Command{"decimal", &declareDecimalCommand},
    Command{"link", &declareLinkCommand},
    Command{"title", &declareTitleCommand, Length::mayBeLong},
    Command{"email", &declareEmailCommand, Length::mayBeLong},
    Command{"progress-demo", &declareProgressDemoCommand, Length::mayBeLong},
    Command{"qif", &declareQifCommand, Length::mayBeLong},
    Command{"txf", &declareTxfCommand, Length::mayBeLong},
    Command{"csv", &declareCsvCommand, Length::mayBeLong},
    Command{"ofx2xml", &declareOfxToXmlCommand, Length::mayBeLong},
    Command{"xml-escape", &declareXmlEscapeCommand, Length::mayBeLong},
    Command{"xml-unescape", &declareXmlUnescapeCommand, Length::mayBeLong},
    Command{"xml-events", &declareXmlEventsCommand, Length::mayBeLong},
    Command{"process", &declareProcessCommand, Length::mayBeLong},
    Command{"watch", &declareWatchCommand},
    Command{"template-image", &declareTemplateImageCommand, Length::mayBeLong},
    Command{"mirror", &declareMirrorCommand, Length::mayBeLong},
    Command{"archive", &declareArchiveCommand, Length::mayBeLong},
    Command{"extract", &declareExtractCommand, Length::mayBeLong},
    Command{"store-info", &declareStoreInfoCommand},
    Command{"same-file", &declareSameFileCommand},
    Command{"fetch", &declareFetchCommand, Length::mayBeLong},
    Command{"modified", &declareModifiedCommand, Length::mayBeLong},
    Command{"user-agent", &declareUserAgentCommand},
    Command{"reachable", &declareReachableCommand},
    Command{"query-string", &declareQueryStringCommand},
    Command{"store", &declareStoreCommand},
    Command{"keychain", &declareKeychainCommand},
    Command{"hash", &declareHashCommand},
    Command{"base64", &declareBase64Command},
    Command{"gzip", &declareGzipCommand},
};

constexpr const char* kFooter =
    "--json, --quiet, --tz ZONE (UTC) and --locale ID (en_US) work before and after the command.";

/// Sends what the library logs to a stream, each line once, for as long as it lives.
class LogToStream {
 public:
  explicit LogToStream(std::ostream& err)
      : before_(ORLFoundation::NSSetLogSink([this, &err](std::string_view message) {
          if (seen_.emplace(message).second) err << "orlf: " + std::string(message) + "\n";
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
  options.flag("--quiet", values.quiet, "Show no progress");
  options.text("--tz", values.zone, "Time zone (UTC)");
  options.text("--locale", values.locale, "Locale of numbers, months and weeks");
}

int fail(Session& session, std::string_view message, ExitCode code) {
  printNote(session, message);
  return code;
}

void runLogged(const Job& job, Session& session) {
  const LogToStream log(session.err);
  job(session);
}

int runCommand(const Job& job, Length length, Session& session) {
  try {
    session.calendar = makeCalendar(session.options.zone.value_or("UTC"), session.options.locale);
    const auto logged = [&job](Session& own) { runLogged(job, own); };
    if (length == Length::mayBeLong)
      runJobWithProgress(logged, session);
    else
      logged(session);
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
  std::map<std::string, std::pair<Job, Length>> jobs;
  for (const Command& command : kCommands) {
    Options options = line.addCommand(command.name, kFooter);
    jobs.emplace(command.name, std::pair(command.declare(options), command.length));
  }
  const CommandLine::Reading reading = line.read(arguments, out);
  if (reading.isAnswered) return kExitSuccess;
  session.command = reading.command;
  if (!reading.fault.empty()) return fail(session, reading.fault, kExitWrongUsage);
  const auto& [job, length] = jobs.at(reading.command);
  return runCommand(job, length, session);
}

}  // namespace orlftool

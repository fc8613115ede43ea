#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <thread>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "progress/work_progress.h"
#include "session.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

struct DemoPart {
  const char* message;
  int steps;
  bool isKnown;  // whether it tells how many steps there are
};
struct DemoJob {
  const char* message;
  std::array<DemoPart, 2> parts;
};
constexpr std::array kDemoJobs{
    DemoJob{"Collecting", {{{"Collecting names", 60, true}, {"Collecting amounts", 40, true}}}},
    DemoJob{"Sorting", {{{"Sorting by date", 50, true}, {"Looking for doubles", 50, false}}}},
    DemoJob{"Writing", {{{"Writing rows", 70, true}, {"Closing the books", 30, true}}}},
};
constexpr int kDemoSteps = 300;
constexpr double kMostSeconds = 3600;

void runDemoPart(const WorkProgress& job, const DemoPart& part,
                 std::chrono::duration<double> step) {
  const WorkProgress progress(job, part.message,
                              part.isKnown ? std::optional<double>(part.steps) : std::nullopt);
  for (int done = 1; done <= part.steps; ++done) {
    if (step.count() > 0) std::this_thread::sleep_for(step);
    progress.update(done);
  }
}

double secondsFrom(const std::string& text) {
  const double seconds = readDecimalArgument("--seconds", text).doubleValue();
  if (!(seconds >= 0 && seconds <= kMostSeconds))
    throw UsageFailure("--seconds: expected a number from 0 to 3600, got " +
                       quotedForMessage(text));
  return seconds;
}

void runDemo(Session& session, const std::string& seconds, bool fails) {
  const std::chrono::duration<double> step(secondsFrom(seconds) / kDemoSteps);
  int parts = 0;
  for (const DemoJob& job : kDemoJobs) {
    const WorkProgress progress(job.message, static_cast<double>(job.parts.size()));
    for (const DemoPart& part : job.parts) {
      runDemoPart(progress, part, step);
      ++parts;
    }
    if (fails) throw JobFailure(std::string(job.message) + ": this job was to fail");
  }
  if (session.options.json)
    printJson(session.out,
              Json{{"jobs", kDemoJobs.size()}, {"parts", parts}, {"steps", kDemoSteps}});
  else
    session.out << kDemoJobs.size() << " jobs, " << parts << " parts, " << kDemoSteps << " steps\n";
}

}  // namespace

Job declareProgressDemoCommand(Options& options) {
  options.describe(
      "Show how progress is shown: three jobs of two parts each that do nothing but take time, one "
      "part\n"
      "of unknown length. A line on the standard error where that is a terminal, plain lines "
      "where it\n"
      "is none, nothing with --quiet.");
  auto seconds = std::make_shared<std::string>("5");
  auto fails = std::make_shared<bool>(false);
  options.text("--seconds", *seconds, "How long it takes, 0 to 3600");
  options.flag("--fail", *fails, "Fail after the first job");
  return [seconds, fails](Session& session) { runDemo(session, *seconds, *fails); };
}

}  // namespace orlftool

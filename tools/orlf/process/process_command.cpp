#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/message_text.h"
#include "cli/scoped_locale.h"
#include "commands.h"
#include "io/atomic_file.h"
#include "process/process_check.h"
#include "process/process_file.h"
#include "process/process_graph.h"
#include "process/process_walk.h"
#include "session.h"

namespace orlftool {
namespace {

struct ProcessArguments {
  std::string action;
  std::string file;
  std::optional<std::string> output;
};

void drawProcess(Session& session, const ProcessArguments& arguments) {
  const std::string path = arguments.output.value_or("");
  const bool isSvg = path.ends_with(".svg");
  if (arguments.output && !isSvg && !path.ends_with(".dot"))
    throw UsageFailure("-o: expected a file that ends in .svg or .dot, got " +
                       quotedForMessage(path));
  const std::string dot = dotOfProcess(readProcessFile(arguments.file));
  if (isSvg) {
    drawSvg(dot, path);
  } else if (arguments.output) {
    writeFileAtomically(path, dot);
  } else {
    session.out << dot;
  }
}

void walkProcess(Session& session, const ProcessArguments& arguments) {
  if (arguments.file == "-")
    throw UsageFailure("FILE: expected a file, got '-': the standard input holds the commands");
  walkProcessFile(session, arguments.file);
}

void runProcess(Session& session, const ProcessArguments& arguments) {
  const ScopedLocale locale(session.options.locale);
  const bool isCheck = arguments.action == "check";
  const bool isGraph = arguments.action == "graph";
  if (!isCheck && !isGraph && arguments.action != "run")
    throw UsageFailure("ACTION: expected check, graph or run, got " +
                       quotedForMessage(arguments.action));
  if (session.options.json && !isCheck)
    throw UsageFailure("--json goes with check, not with " + arguments.action);
  if (arguments.output && !isGraph)
    throw UsageFailure("-o goes with graph, not with " + arguments.action);
  if (isCheck) return checkProcessFile(session, arguments.file);
  if (isGraph) return drawProcess(session, arguments);
  walkProcess(session, arguments);
}

}  // namespace

Job declareProcessCommand(Options& options) {
  options.describe(
      "Check, draw or walk a process definition.\n"
      "  check  prints file:line:column and what is wrong there: broken rules, references to\n"
      "         nothing and to themselves, missing first steps and targets, responses that no\n"
      "         group takes, steps that nothing leads to; ends with 1 when there is anything\n"
      "  graph  prints the process as a graph in DOT, or writes it to -o FILE.dot; -o FILE.svg\n"
      "         is drawn by Graphviz where that is installed\n"
      "  run    walks the process by the lines of the standard input: transitions, back, forward\n"
      "         and others that 'help' tells; from a pipe ends with 1 when one was refused");
  auto arguments = std::make_shared<ProcessArguments>();
  options.required("ACTION", arguments->action, "check, graph or run");
  options.required("FILE", arguments->file, "Process definition, - for the standard input");
  options.text("-o,--output", arguments->output, "The .dot or .svg file that graph writes");
  return [arguments](Session& session) { runProcess(session, *arguments); };
}

}  // namespace orlftool

#include "process/process_check.h"

#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/process/definition/ORLFProcessDefinitionCheck.h>

#include <array>
#include <cstddef>
#include <ostream>
#include <string_view>
#include <vector>

#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "io/input_file.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Findings = std::vector<ORLFProcessDefinitionFinding>;

/// By the numbers of the kinds.
constexpr std::array<std::string_view, 13> kKindNames = {
    "not-well-formed",     "broken-rule",        "missing-attribute", "replaced",
    "missing-root-step",   "dangling-reference", "cyclic-reference",  "too-many-steps",
    "missing-first-step",  "missing-target",     "untaken-response",  "unreachable-step",
    "unusable-identifier",
};

void printText(std::ostream& out, const std::string& name, const Findings& findings) {
  for (const ORLFProcessDefinitionFinding& finding : findings)
    out << name << ':' << finding.place.line << ':' << finding.place.column << ": "
        << oneLine(finding.message) << '\n';
  if (findings.empty()) out << name << ": nothing is wrong\n";
}

Json jsonOf(const std::string& name, const Findings& findings) {
  Json rows = Json::array();
  for (const ORLFProcessDefinitionFinding& finding : findings)
    rows.push_back({{"kind", kKindNames.at(static_cast<std::size_t>(finding.kind))},
                    {"line", finding.place.line},
                    {"column", finding.place.column},
                    {"message", finding.message}});
  return {{"file", name}, {"findings", rows}};
}

}  // namespace

void checkProcessFile(Session& session, const std::string& path) {
  const std::string definition = readInputFile(path, "a process definition");
  const std::string name = path == "-" ? "standard input" : path;
  const Findings findings =
      ORLFProcessDefinitionCheck::findingsOfData(NSData(std::string_view(definition)));
  if (!findings.empty()) session.exitCode = kExitFailedJob;
  if (session.options.json) {
    printJson(session.out, jsonOf(name, findings));
  } else {
    printText(session.out, name, findings);
  }
}

}  // namespace orlftool

#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void testAddresses(Session& session, const std::vector<std::string>& texts) {
  Json rows = Json::array();
  for (const std::string& text : texts) {
    const bool isAddress = isEmailAddress(text);
    if (!isAddress) session.exitCode = kExitFailedJob;
    if (session.options.json) {
      rows.push_back({{"text", text}, {"isEmailAddress", isAddress}});
    } else {
      session.out << (isAddress ? "yes" : "no") << '\n';
    }
  }
  if (session.options.json) printJson(session.out, rows);
}

}  // namespace

Job declareEmailCommand(Options& options) {
  options.describe(
      "Tell of each text whether it is an e-mail address, yes or no, a line for each. Ends with 1\n"
      "when one of them is none. Put -- before texts that begin with a dash.");
  auto texts = std::make_shared<std::vector<std::string>>();
  options.requiredList("TEXT", *texts, "Texts");
  return [texts](Session& session) { testAddresses(session, *texts); };
}

}  // namespace orlftool

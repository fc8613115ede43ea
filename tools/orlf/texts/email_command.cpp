#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "commands.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void testAddresses(Session& session, const std::vector<std::string>& texts) {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const std::string& text : texts) {
    const bool isAddress = isEmailAddress(text);
    if (!isAddress) session.exitCode = kExitFailedJob;
    if (session.options.json) {
      rows.push_back({{"text", text}, {"isEmailAddress", isAddress}});
    } else {
      session.out << (isAddress ? "yes" : "no") << '\n';
    }
  }
  if (session.options.json)
    session.out << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

Command addEmailCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "email",
      "Tell of each text whether it is an e-mail address, yes or no, a line for each. Ends with 1\n"
      "when one of them is none. Put -- before texts that begin with a dash.");
  auto texts = std::make_shared<std::vector<std::string>>();
  parser->add_option("TEXT", *texts, "Texts")->required();
  return {parser, [texts](Session& session) { testAddresses(session, *texts); }};
}

}  // namespace orlftool

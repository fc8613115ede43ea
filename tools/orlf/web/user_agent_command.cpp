#include <ORLFoundation/web/agent/ORLFHTTPUserAgent.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "session.h"
#include "version.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct AgentArguments {
  std::string name = "orlf";
  std::string version = kToolVersion;
  std::string network = kToolVersion;
};

/// A header ends at a line end, so no part of it may hold one.
void expectOneLine(const char* option, const std::string& text) {
  if (text.empty()) throw UsageFailure(std::string(option) + ": expected a text, got none");
  for (const char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
      throw UsageFailure(std::string(option) +
                         ": expected a text without control characters, got " +
                         quotedForMessage(text));
}

void printAgent(Session& session, const AgentArguments& arguments) {
  expectOneLine("--app", arguments.name);
  expectOneLine("--app-version", arguments.version);
  expectOneLine("--network-version", arguments.network);
  ORLFHTTPUserAgent agent;
  agent.setAppName(arguments.name);
  agent.setAppVersion(arguments.version);
  agent.setCFNetworkVersionNumber(arguments.network);
  if (!session.options.json) {
    session.out << agent.userAgentString() << '\n';
    return;
  }
  printJson(session.out, {{"userAgent", agent.userAgentString()},
                          {"app", agent.appNameAndVersion()},
                          {"device", agent.deviceName().value_or("")},
                          {"system", agent.deviceVersion()},
                          {"network", agent.CFNetworkVersion()},
                          {"kernel", agent.darwinVersion()}});
}

}  // namespace

Job declareUserAgentCommand(Options& options) {
  options.describe("Print the User-Agent text by which an application tells servers what it is.");
  auto arguments = std::make_shared<AgentArguments>();
  options.text("--app", arguments->name, "The application's name");
  options.text("--app-version", arguments->version, "The application's version");
  options.text("--network-version", arguments->network, "The version of what loads addresses");
  return [arguments](Session& session) { printAgent(session, *arguments); };
}

}  // namespace orlftool

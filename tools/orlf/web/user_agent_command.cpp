#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/web/agent/ORLFHTTPUserAgent.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

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

bool isControl(char32_t c) {
  constexpr char32_t kLineSeparator = 0x2028, kParagraphSeparator = 0x2029;
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == kLineSeparator || c == kParagraphSeparator;
}

/// A header ends at a line end, so no part of it may hold one.
void expectOneLine(const char* option, const std::string& text) {
  if (text.empty()) throw UsageFailure(std::string(option) + ": expected a text, got none");
  for (std::string_view rest = text; !rest.empty();) {
    const auto first = internal::base::firstUTF8Character(rest);
    rest.remove_prefix(first.length);
    if (first.isBroken || isControl(first.codePoint))
      throw UsageFailure(std::string(option) + ": expected UTF-8 without control characters, got " +
                         quotedForMessage(text));
  }
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

#include <ORLFoundation/platform/value/NSURLComponents.h>
#include <ORLFoundation/support/links/ORLFAppLinkManger.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "links/link_handlers.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct LinkArguments {
  std::string handlers;
  std::string url;
};

struct LinkAnswer {
  std::vector<std::string> order;
  std::vector<LinkHandler> asked;
  bool handled = false;
};

LinkAnswer route(const std::vector<LinkHandler>& handlers, const NSURL& url) {
  ORLFAppLinkManger manager;
  LinkAnswer answer;
  for (const LinkHandler& handler : handlers) {
    const auto block = [&answer, accepts = handler.accepts](const std::string& prefix,
                                                            const NSURL& /*url*/) {
      answer.asked.push_back({prefix, accepts});
      return accepts;
    };
    manager.registerAppLinkHandler(std::make_shared<ORLFAppLinkHander>(handler.prefix, block));
  }
  for (const auto& handler : manager.handlers())
    answer.order.push_back(handler->pathPrefixForMatchingInAppLinkManager(manager));
  NSUserActivity activity(NSUserActivityTypeBrowsingWeb);
  activity.setWebpageURL(url);
  answer.handled = manager.handleAppLinkUserActivity(activity);
  return answer;
}

void printText(std::ostream& out, const LinkAnswer& answer) {
  for (const LinkHandler& handler : answer.asked)
    out << (handler.accepts ? "accepted by " : "declined by ") << handler.prefix << '\n';
  if (!answer.handled) out << "no handler takes it\n";
}

Json jsonOf(const NSURL& url, const LinkAnswer& answer) {
  Json asked = Json::array();
  for (const LinkHandler& handler : answer.asked)
    asked.push_back({{"prefix", handler.prefix}, {"accepted", handler.accepts}});
  Json root{{"url", url.absoluteString()}, {"path", nullptr},
            {"order", answer.order},       {"asked", asked},
            {"handled", answer.handled},   {"handler", nullptr}};
  if (const auto path = NSURLComponents::componentsWithURL(url, true)->path()) root["path"] = *path;
  if (answer.handled) root["handler"] = answer.asked.back().prefix;
  return root;
}

void runLink(Session& session, const LinkArguments& arguments) {
  const auto url = NSURL::URLWithString(arguments.url);
  if (!url)
    throw UsageFailure("URL: expected an address such as https://example.com/a, got " +
                       quotedForMessage(arguments.url));
  const LinkAnswer answer = route(readLinkHandlers(arguments.handlers), *url);
  if (session.options.json) {
    printJson(session.out, jsonOf(*url, answer));
  } else {
    printText(session.out, answer);
  }
}

}  // namespace

Job declareLinkCommand(Options& options) {
  options.describe(
      "Tell which handler takes a link into an application, and which were asked before it. The\n"
      "handler with the longest prefix of the link's path is asked first.");
  auto arguments = std::make_shared<LinkArguments>();
  options.required("URL", arguments->url, "The link's address");
  options.required("--handlers", arguments->handlers,
                   "File with a handler on each line: 'accept PREFIX' or 'decline PREFIX'");
  return [arguments](Session& session) { runLink(session, *arguments); };
}

}  // namespace orlftool

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/web/agent/ORLFReachability.h>

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
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct ReachableArguments {
  std::string host;
  std::string timeout = "30";
};

/// The flags once they can be read: the name has been looked up by then.
std::optional<SCNetworkReachabilityFlags> flagsWithin(const ORLFReachability& place,
                                                      double seconds) {
  const NSDate end = NSDate::date().dateByAddingTimeInterval(seconds);
  while (true) {
    const auto flags = SCNetworkReachabilityGetFlags(place.reachabilityRef());
    if (flags || NSDate::date().compare(end) != NSOrderedAscending) return flags;
    NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode,
                                         NSDate::date().dateByAddingTimeInterval(0.05));
  }
}

void tellWhetherReachable(Session& session, const ReachableArguments& arguments) {
  constexpr std::int64_t kLongest = 3600;
  const std::int64_t seconds = readWholeArgument("--timeout", arguments.timeout, 0, kLongest);
  const auto place = ORLFReachability::reachabilityWithHostName(arguments.host);
  if (!place)
    throw UsageFailure("HOST: expected a name or an address, got " +
                       quotedForMessage(arguments.host));
  // Listens, so that the end of a look-up wakes the loop.
  if (!place->startNotifier()) throw JobFailure("the system does not tell of its network");
  const auto flags = flagsWithin(*place, static_cast<double>(seconds));
  place->stopNotifier();
  if (!flags)
    throw JobFailure(quotedForMessage(arguments.host) + " could not be looked up within " +
                     std::to_string(seconds) + " s");
  const bool isReachable = place->networkStatusForFlags(*flags) == Reachable;
  if (!isReachable) session.exitCode = kExitFailedJob;
  const auto has = [&flags](SCNetworkReachabilityFlags bit) { return (*flags & bit) != 0; };
  if (session.options.json) {
    printJson(session.out,
              {{"host", arguments.host},
               {"reachable", isReachable},
               {"flags", *flags},
               {"connectionRequired", has(kSCNetworkReachabilityFlagsConnectionRequired)},
               {"local", has(kSCNetworkReachabilityFlagsIsLocalAddress)},
               {"direct", has(kSCNetworkReachabilityFlagsIsDirect)}});
  } else {
    session.out << (isReachable ? "yes" : "no") << '\n';
  }
}

}  // namespace

Job declareReachableCommand(Options& options) {
  options.describe(
      "Tell whether the system has a way to a host, yes or no; ends with 1 for no. Nothing is "
      "sent\n"
      "to the host itself, which may be down all the same.");
  auto arguments = std::make_shared<ReachableArguments>();
  options.required("HOST", arguments->host, "Name, IPv4 or IPv6 address; 0.0.0.0 is the internet");
  options.text("--timeout", arguments->timeout, "Seconds that a look-up may take");
  return [arguments](Session& session) { tellWhetherReachable(session, *arguments); };
}

}  // namespace orlftool

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/web/agent/ORLFReachability.h>
#include <arpa/inet.h>

#include <algorithm>
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
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct ReachableArguments {
  std::string host;
  std::string timeout = "30";
};

bool isAddress(int family, const std::string& text) {
  in6_addr address{};
  return ::inet_pton(family, text.c_str(), &address) == 1;
}

/// Letters, digits, "-" and "_", or letters beyond ASCII, up to 63 bytes.
bool isLabel(std::string_view label) {
  constexpr std::size_t kLongest = 63;
  return !label.empty() && label.size() <= kLongest && std::ranges::all_of(label, [](char c) {
    return internal::base::isLetterOrDigit(c) || c == '-' || c == '_' ||
           !internal::base::isASCII(c);
  });
}

/// Digits, or "0x" and hexadecimal ones.
bool isNumber(std::string_view label) {
  if (label.starts_with("0x") || label.starts_with("0X"))
    return std::ranges::all_of(label.substr(2),
                               [](char c) { return internal::base::hexDigitValue(c) >= 0; });
  return std::ranges::all_of(label, internal::base::isDigit<char>);
}

/// Whether a text is a name, "127.0.0.1" or "fe80::1%eth0". What ends in a number and is no such
/// address ("010.0.0.1", "1.2.3") is neither: the system would read it as an address that nobody
/// meant.
bool isHost(std::string_view text) {
  constexpr std::size_t kLongest = 253;
  if (text.find(':') != std::string_view::npos)
    return isAddress(AF_INET6, std::string(text.substr(0, text.find('%'))));
  if (isAddress(AF_INET, std::string(text))) return true;
  if (text.ends_with('.')) text.remove_suffix(1);
  if (text.size() > kLongest || !internal::base::isUTF8(text)) return false;
  std::string_view label;
  for (std::size_t begin = 0; begin <= text.size(); begin += label.size() + 1) {
    label = text.substr(begin, text.find('.', begin) - begin);
    if (!isLabel(label)) return false;
  }
  return !isNumber(label);
}

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
  const auto place =
      isHost(arguments.host) ? ORLFReachability::reachabilityWithHostName(arguments.host) : nullptr;
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


#include <ORLFoundation/web/agent/ORLFReachability.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <netinet/in.h>

#include <utility>

namespace ORLFoundation {
namespace {

std::shared_ptr<ORLFReachability> reachabilityOf(SCNetworkReachabilityRef reference) {
  return reference ? std::make_shared<ORLFReachability>(std::move(reference)) : nullptr;
}

void ORLFReachabilityCallback(const std::shared_ptr<ORLFReachability>& sender) {
  NSNotificationCenter::defaultCenter()->postNotificationName(kReachabilityChangedNotification,
                                                              sender);
}

}  // namespace

std::shared_ptr<ORLFReachability> ORLFReachability::reachabilityWithHostName(
    std::string_view hostName) {
  return reachabilityOf(SCNetworkReachabilityCreateWithName(hostName));
}

std::shared_ptr<ORLFReachability> ORLFReachability::reachabilityWithAddress(
    const sockaddr* address) {
  return reachabilityOf(SCNetworkReachabilityCreateWithAddress(address));
}

std::shared_ptr<ORLFReachability> ORLFReachability::reachabilityForInternetConnection() {
  sockaddr_in zero{};
  zero.sin_family = AF_INET;
  return reachabilityWithAddress(reinterpret_cast<const sockaddr*>(&zero));
}

ORLFReachability::ORLFReachability(SCNetworkReachabilityRef reference)
    : reachabilityRef_(std::move(reference)) {}

ORLFReachability::~ORLFReachability() { stopNotifier(); }

bool ORLFReachability::startNotifier() {
  const std::weak_ptr<NSObject> weak = weak_from_this();
  SCNetworkReachabilitySetCallback(reachabilityRef_, [weak](SCNetworkReachabilityFlags) {
    if (const auto self = std::dynamic_pointer_cast<ORLFReachability>(weak.lock()))
      ORLFReachabilityCallback(self);
  });
  return SCNetworkReachabilityScheduleWithRunLoop(reachabilityRef_, NSRunLoop::currentRunLoop(),
                                                  NSDefaultRunLoopMode);
}

void ORLFReachability::stopNotifier() {
  SCNetworkReachabilityUnscheduleFromRunLoop(reachabilityRef_, NSRunLoop::currentRunLoop(),
                                             NSDefaultRunLoopMode);
}

NetworkStatus ORLFReachability::networkStatusForFlags(
    SCNetworkReachabilityFlags flags) const noexcept {
  const auto has = [flags](SCNetworkReachabilityFlags bits) { return (flags & bits) != 0; };
  if (!has(kSCNetworkReachabilityFlagsReachable)) return NotReachable;
  if (!has(kSCNetworkReachabilityFlagsConnectionRequired)) return Reachable;
  const bool connectsByItself = has(kSCNetworkReachabilityFlagsConnectionOnTraffic |
                                    kSCNetworkReachabilityFlagsConnectionOnDemand);
  return connectsByItself && !has(kSCNetworkReachabilityFlagsInterventionRequired) ? Reachable
                                                                                   : NotReachable;
}

bool ORLFReachability::connectionRequired() const {
  const auto flags = SCNetworkReachabilityGetFlags(reachabilityRef_);
  return flags && (*flags & kSCNetworkReachabilityFlagsConnectionRequired) != 0;
}

NetworkStatus ORLFReachability::currentReachabilityStatus() const {
  const auto flags = SCNetworkReachabilityGetFlags(reachabilityRef_);
  return flags ? networkStatusForFlags(*flags) : NotReachable;
}

}  // namespace ORLFoundation

/// Whether the kernel has a way to a place in the network, told by flags, and a callback on a run
/// loop when they change. Nothing is sent to the place, so a host beyond the next router may be
/// down all the same.
///
///     const auto bank = SCNetworkReachabilityCreateWithName("example.com");
///     SCNetworkReachabilitySetCallback(bank, [](SCNetworkReachabilityFlags flags) { ... });
///     SCNetworkReachabilityScheduleWithRunLoop(bank, NSRunLoop::currentRunLoop(),
///                                              NSDefaultRunLoopMode);
///
/// A name is looked up on a thread of its own, when the object is made and again after each change
/// of the network; nobody waits for it. Numbers ("127.0.0.1", "::1") are no names and need no
/// look-up. docs/web.md has the table of what each flag comes from.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sockaddr;

namespace ORLFoundation {

class NSRunLoop;
class SCNetworkReachability;

/// A place in the network, opaque; null for none.
using SCNetworkReachabilityRef = std::shared_ptr<SCNetworkReachability>;
/// Bits, those below and others.
using SCNetworkReachabilityFlags = std::uint32_t;

/// What is known of the way to a place.
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsTransientConnection = 0x1;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsReachable = 0x2;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsConnectionRequired = 0x4;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsConnectionOnTraffic = 0x8;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsInterventionRequired = 0x10;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsConnectionOnDemand = 0x20;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsIsLocalAddress = 0x10000;
inline constexpr SCNetworkReachabilityFlags kSCNetworkReachabilityFlagsIsDirect = 0x20000;

/// Called on a run loop's thread with the flags as they are by then.
using SCNetworkReachabilityCallBack = std::function<void(SCNetworkReachabilityFlags flags)>;

/// null for an empty name and one with a zero byte in it.
[[nodiscard]] SCNetworkReachabilityRef SCNetworkReachabilityCreateWithName(
    std::string_view nodename);
/// The address is an IPv4 or IPv6 one, whole; null for null and for any other. 0.0.0.0 and :: stand
/// for the way on to everywhere, the default route.
[[nodiscard]] SCNetworkReachabilityRef SCNetworkReachabilityCreateWithAddress(
    const sockaddr* address);
/// The flags of this moment: of a name, those of the first of its addresses that is reached, 0
/// where none is, and where it has none. nil where they cannot be read: a name is being looked up
/// for the first time, or the kernel gives no answer. Any thread.
[[nodiscard]] std::optional<SCNetworkReachabilityFlags> SCNetworkReachabilityGetFlags(
    const SCNetworkReachabilityRef& target);
/// Takes the place of the callback before; an empty one ends it. Any thread.
void SCNetworkReachabilitySetCallback(const SCNetworkReachabilityRef& target,
                                      SCNetworkReachabilityCallBack callout);
/// From now on the callback hears of changes, on the thread that runs the loop in the mode: once
/// for each, however many messages of the kernel told of it, and not when the flags come out as
/// before. Scheduled on several loops, it is called on one of them. Twice is as good as once. false
/// where the kernel cannot be listened to.
bool SCNetworkReachabilityScheduleWithRunLoop(const SCNetworkReachabilityRef& target,
                                              const std::shared_ptr<NSRunLoop>& runLoop,
                                              const std::string& runLoopMode);
/// false where it was not scheduled so.
bool SCNetworkReachabilityUnscheduleFromRunLoop(const SCNetworkReachabilityRef& target,
                                                const std::shared_ptr<NSRunLoop>& runLoop,
                                                const std::string& runLoopMode);

}  // namespace ORLFoundation

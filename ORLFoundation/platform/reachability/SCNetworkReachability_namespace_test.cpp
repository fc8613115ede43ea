
#include <ORLFoundation/platform/reachability/SCNetworkReachability.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/reachability/RouteSocket_testing.h>
#include <gtest/gtest.h>
#include <linux/veth.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <tests/support/ChildProcess.h>

#include <iostream>

namespace ORLFoundation {
namespace {

using internal::reachability::Descriptor;

/// The network of a process of its own, whose links a test makes and switches.
class Network {
 public:
  /// Whether the machine lets the process have one.
  [[nodiscard]] static bool enter() {
    return ::unshare(::geteuid() == 0 ? CLONE_NEWNET : CLONE_NEWUSER | CLONE_NEWNET) == 0;
  }

  [[nodiscard]] bool makePair(const char* one, const char* other) const {
    std::string peer(sizeof(ifinfomsg), '\0');
    orlftest::appendAttribute(peer, IFLA_IFNAME, other);
    std::string data;
    orlftest::appendAttribute(data, VETH_INFO_PEER, peer);
    std::string link;
    orlftest::appendAttribute(link, IFLA_INFO_KIND, "veth");
    orlftest::appendAttribute(link, IFLA_INFO_DATA, data);
    std::string body(sizeof(ifinfomsg), '\0');
    orlftest::appendAttribute(body, IFLA_IFNAME, one);
    orlftest::appendAttribute(body, IFLA_LINKINFO, link);
    int error = 0;
    return internal::reachability::askRoutes(
        orlftest::messageOf(RTM_NEWLINK, NLM_F_REQUEST | NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL,
                            body),
        [](std::uint16_t, std::string_view) {}, error);
  }

  [[nodiscard]] bool setUp(const char* name, bool isUp) const {
    ifreq request = named(name);
    request.ifr_flags = isUp ? IFF_UP : 0;
    return ::ioctl(socket_.number(), SIOCSIFFLAGS, &request) == 0;
  }

  [[nodiscard]] bool setAddress(const char* name, const std::string& numbers) const {
    ifreq request = named(name);
    const sockaddr_storage address = orlftest::addressOf(numbers);
    std::memcpy(&request.ifr_addr, &address, sizeof request.ifr_addr);
    if (::ioctl(socket_.number(), SIOCSIFADDR, &request) != 0) return false;
    const sockaddr_storage mask = orlftest::addressOf("255.255.255.0");
    std::memcpy(&request.ifr_netmask, &mask, sizeof request.ifr_netmask);
    return ::ioctl(socket_.number(), SIOCSIFNETMASK, &request) == 0;
  }

 private:
  static ifreq named(const char* name) {
    ifreq request{};
    std::strncpy(request.ifr_name, name, IFNAMSIZ - 1);
    return request;
  }

  const Descriptor socket_{::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)};
};

/// Counts what is told of a place.
class Listening {
 public:
  explicit Listening(const char* numbers) : target_(SCNetworkReachabilityCreateWithName(numbers)) {
    SCNetworkReachabilitySetCallback(target_, [this](SCNetworkReachabilityFlags flags) {
      ++calls_;
      flags_ = flags;
    });
    SCNetworkReachabilityScheduleWithRunLoop(target_, NSRunLoop::currentRunLoop(),
                                             NSDefaultRunLoopMode);
  }

  /// "" once so many calls have come, the last with these flags, and no more follow at once.
  std::string expect(int calls, SCNetworkReachabilityFlags flags) {
    const NSDate end = NSDate::date().dateByAddingTimeInterval(10);
    while (calls_ < calls && NSDate::date().compare(end) == NSOrderedAscending) run(0.05);
    run(0.2);
    if (calls_ == calls && flags_ == flags && SCNetworkReachabilityGetFlags(target_) == flags)
      return "";
    return std::to_string(calls_) + " calls, flags " + std::to_string(flags_) + "; ";
  }

 private:
  static void run(double seconds) {
    NSRunLoop::currentRunLoop()->runUntilDate(NSDate::date().dateByAddingTimeInterval(seconds));
  }

  const SCNetworkReachabilityRef target_;
  int calls_ = 0;
  SCNetworkReachabilityFlags flags_ = 0;
};

std::string switchLinks() {
  if (!Network::enter()) return "forbidden";
  const Network network;
  Listening loopback("127.0.0.1"), neighbour("10.9.8.7"), internet("0.0.0.0");
  if (!network.setUp("lo", true)) return "no loopback";
  std::string told = loopback.expect(1, 0x30002);
  if (!network.makePair("one", "two")) return told + "forbidden";
  if (!network.setAddress("one", "10.9.8.1") || !network.setUp("two", true) ||
      !network.setUp("one", true))
    return "no links";
  told += neighbour.expect(1, 0x20002);
  if (!network.setUp("two", false)) return "cannot switch";
  told += neighbour.expect(2, 0);
  if (!network.setUp("two", true)) return "cannot switch";
  told += neighbour.expect(3, 0x20002);
  told += loopback.expect(1, 0x30002);
  return told + internet.expect(0, 0);
}

TEST(SCNetworkReachability, HearsOnceOfEachChangeOfTheKernelsLinks) {
  const std::string told = orlftest::inChild(switchLinks);
  if (told == "forbidden")
    std::cout << "this machine lets no process have links of its own" << std::endl;
  else
    EXPECT_EQ(told, "");
}

}  // namespace
}  // namespace ORLFoundation


#include <ORLFoundation/platform/reachability/RouteFlags.h>

#include <ORLFoundation/platform/reachability/RouteSocket_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation::internal::reachability {
namespace {

using orlftest::addressOf;
using orlftest::ScriptedKernel;
using testing::IsEmpty;

constexpr std::uint32_t kRuns = IFF_UP | IFF_RUNNING;
constexpr std::uint32_t kDialled = IFF_POINTOPOINT;

struct FlagCase {
  const char* name;
  std::uint8_t type;
  bool hasGateway;
  std::uint32_t link;
  SCNetworkReachabilityFlags flags;
};
const FlagCase kFlagCases[] = {
    {"Gateway", RTN_UNICAST, true, kRuns, 0x2},
    {"Direct", RTN_UNICAST, false, kRuns, 0x20002},
    {"Local", RTN_LOCAL, false, kRuns, 0x30002},
    {"Broadcast", RTN_BROADCAST, false, kRuns, 0x20002},
    {"Anycast", RTN_ANYCAST, false, kRuns, 0x20002},
    {"Multicast", RTN_MULTICAST, false, kRuns, 0x20002},
    {"Unreachable", RTN_UNREACHABLE, false, kRuns, 0},
    {"Blackhole", RTN_BLACKHOLE, false, kRuns, 0},
    {"Prohibit", RTN_PROHIBIT, false, kRuns, 0},
    {"Throw", RTN_THROW, false, kRuns, 0},
    {"Unspecified", RTN_UNSPEC, false, kRuns, 0},
    {"LinkIsDown", RTN_UNICAST, true, IFF_RUNNING, 0},
    {"NoCarrier", RTN_UNICAST, true, IFF_UP, 0},
    {"Dialled", RTN_UNICAST, true, kRuns | kDialled, 0x3},
    {"DialledOnTraffic", RTN_UNICAST, true, IFF_UP | IFF_DORMANT | kDialled, 0xF},
    {"WaitsForItsUser", RTN_UNICAST, true, IFF_UP | IFF_DORMANT, 0x16},
    {"DormantAndRuns", RTN_UNICAST, true, kRuns | IFF_DORMANT, 0x16},
    {"DormantAndDown", RTN_UNICAST, true, IFF_DORMANT | kDialled, 0},
    {"OtherFlags", RTN_UNICAST, true, kRuns | IFF_LOOPBACK | IFF_PROMISC, 0x2},
};

TEST(RouteFlags, ComeFromTheRouteAndItsLink) {
  for (const FlagCase& row : kFlagCases)
    EXPECT_EQ(flagsOfRoute({row.type, 32, row.hasGateway, 0, 1}, row.link), row.flags) << row.name;
}

TEST(RouteFlags, AreAskedOfTheKernel) {
  ScriptedKernel kernel;
  kernel.setLink(2, kRuns);
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  kernel.setRoutes("2001:db8::7", {{RTN_LOCAL, 128, false, 0, 2}});
  EXPECT_EQ(flagsOfAddress(addressOf("192.0.2.7")), 0x2U);
  EXPECT_EQ(flagsOfAddress(addressOf("2001:db8::7")), 0x30002U);
  EXPECT_EQ(flagsOfAddress(addressOf("192.0.2.8")), 0U);
  EXPECT_EQ(flagsOfAddress(addressOf("2001:db8::8")), 0U);
}

TEST(RouteFlags, AreNoneWhereTheLinkHasGone) {
  ScriptedKernel kernel;
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  EXPECT_EQ(flagsOfAddress(addressOf("192.0.2.7")), 0U);
}

TEST(RouteFlags, OfEverywhereAreThoseOfTheFirstDefaultRouteThatWorks) {
  ScriptedKernel kernel;
  EXPECT_EQ(flagsOfAddress(addressOf("0.0.0.0")), 0U);
  kernel.setLink(1, kRuns);
  kernel.setLink(2, IFF_UP);
  kernel.setLink(3, kRuns | kDialled);
  kernel.setRoutes("", {{RTN_UNICAST, 24, false, 0, 1},     // to a part only
                        {RTN_UNREACHABLE, 0, false, 0, 1},  // to nowhere
                        {RTN_UNICAST, 0, true, 200, 1},
                        {RTN_UNICAST, 0, true, 100, 3},
                        {RTN_UNICAST, 0, true, 50, 2}});  // without a carrier
  EXPECT_EQ(flagsOfAddress(addressOf("0.0.0.0")), 0x3U);
  EXPECT_EQ(flagsOfAddress(addressOf("::")), 0x3U);
  kernel.setLink(3, 0);
  EXPECT_EQ(flagsOfAddress(addressOf("0.0.0.0")), 0x2U);
  kernel.setLink(1, 0);
  EXPECT_EQ(flagsOfAddress(addressOf("0.0.0.0")), 0U);
}

TEST(RouteFlags, AreNilWhereTheKernelGivesNoAnswer) {
  ScriptedKernel kernel;
  for (const int error : {EPERM, ENOBUFS, EIO}) {
    kernel.refuse(error);
    EXPECT_EQ(flagsOfAddress(addressOf("192.0.2.7")), std::nullopt) << error;
    EXPECT_EQ(flagsOfAddress(addressOf("0.0.0.0")), std::nullopt) << error;
  }
  for (const int error : {ENETUNREACH, EHOSTUNREACH, EACCES, EINVAL}) {
    kernel.refuse(error);
    EXPECT_EQ(flagsOfAddress(addressOf("192.0.2.7")), 0U) << error;
  }
  kernel.setOpen(false);
  EXPECT_EQ(flagsOfAddress(addressOf("192.0.2.7")), std::nullopt);
}

TEST(RouteFlags, ReadOneRouteForEachNextHop) {
  rtmsg record{};
  record.rtm_type = RTN_UNICAST;
  std::string hops;
  for (const int link : {4, 5}) {
    rtnexthop hop{};
    hop.rtnh_len = sizeof hop;
    hop.rtnh_ifindex = link;
    std::string gateway;
    if (link == 5) orlftest::appendNumber(gateway, RTA_GATEWAY, std::uint32_t{1});
    hop.rtnh_len = static_cast<std::uint16_t>(hop.rtnh_len + gateway.size());
    orlftest::appendBytes(hops, hop);
    hops += gateway;
  }
  std::string body;
  orlftest::appendBytes(body, record);
  orlftest::appendAttribute(body, RTA_MULTIPATH, hops);
  orlftest::appendNumber(body, RTA_PRIORITY, std::uint32_t{9});
  const auto routes = routesInMessage(body);
  ASSERT_EQ(routes.size(), 2U);
  EXPECT_EQ(routes[0].link, 4);
  EXPECT_FALSE(routes[0].hasGateway);
  EXPECT_EQ(routes[1].link, 5);
  EXPECT_TRUE(routes[1].hasGateway);
  EXPECT_EQ(routes[1].priority, 9U);
}

TEST(RouteFlags, ReadNothingBeyondTheEndOfAMessage) {
  const std::string whole = orlftest::bodyOf({RTN_UNICAST, 24, true, 7, 3});
  EXPECT_THAT(routesInMessage(""), IsEmpty());
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_LE(routesInMessage(whole.substr(0, length)).size(), 1U);
  EXPECT_EQ(routesInMessage(whole).front().link, 3);
  EXPECT_EQ(linkFlagsInMessage("short"), std::nullopt);
  EXPECT_EQ(linkFlagsInMessage(orlftest::bodyOfLink(1, kRuns)), kRuns);
}

}  // namespace
}  // namespace ORLFoundation::internal::reachability

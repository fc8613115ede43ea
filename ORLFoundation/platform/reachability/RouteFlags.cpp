
#include <ORLFoundation/platform/reachability/RouteFlags.h>

#include <ORLFoundation/platform/reachability/RouteSocket.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

namespace ORLFoundation::internal::reachability {
namespace {

/// A record at the beginning of bytes; nil where they are too short.
template <class Record>
std::optional<Record> recordIn(std::string_view bytes) {
  Record record{};
  if (bytes.size() < sizeof record) return std::nullopt;
  std::memcpy(&record, bytes.data(), sizeof record);
  return record;
}

/// Calls for each attribute, up to the first that is cut short.
template <class Visit>
void visitAttributes(std::string_view bytes, const Visit& visit) {
  while (const auto head = recordIn<rtattr>(bytes)) {
    if (head->rta_len < sizeof(rtattr) || head->rta_len > bytes.size()) return;
    visit(head->rta_type, bytes.substr(sizeof(rtattr), head->rta_len - sizeof(rtattr)));
    bytes.remove_prefix(std::min<std::size_t>(bytes.size(), RTA_ALIGN(head->rta_len)));
  }
}

std::string_view behind(std::string_view bytes, std::size_t record) {
  return bytes.substr(std::min(bytes.size(), std::size_t{NLMSG_ALIGN(record)}));
}

template <class Record>
void append(std::string& message, const Record& record) {
  message.append(reinterpret_cast<const char*>(&record), sizeof record);
}

void appendAttribute(std::string& message, std::uint16_t type, std::string_view value) {
  const rtattr head{static_cast<std::uint16_t>(sizeof(rtattr) + value.size()), type};
  append(message, head);
  message += value;
  message.resize(NLMSG_ALIGN(message.size()));
}

/// A question with its head, which tells its length.
template <class Record>
std::string question(std::uint16_t type, std::uint16_t flags, const Record& record,
                     const std::string& attributes) {
  nlmsghdr head{};
  head.nlmsg_len = static_cast<std::uint32_t>(sizeof head + sizeof record + attributes.size());
  head.nlmsg_type = type;
  head.nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | flags);
  head.nlmsg_seq = 1;
  std::string message;
  append(message, head);
  append(message, record);
  return message + attributes;
}

struct Destination {
  std::string_view bytes;
  std::uint32_t link = 0;  // of an address that holds on one link alone
};

/// The address's bytes, which it must outlive.
Destination destinationOf(const sockaddr_storage& address) {
  if (address.ss_family == AF_INET) {
    const auto& four = reinterpret_cast<const sockaddr_in&>(address);
    return {{reinterpret_cast<const char*>(&four.sin_addr), sizeof four.sin_addr}};
  }
  const auto& six = reinterpret_cast<const sockaddr_in6&>(address);
  return {{reinterpret_cast<const char*>(&six.sin6_addr), sizeof six.sin6_addr}, six.sin6_scope_id};
}

/// Whether the kernel has answered that there is no way, which is an answer too.
bool saysNoWay(int error) {
  constexpr int kNoWay[] = {ENETUNREACH, EHOSTUNREACH, EACCES, EINVAL, ENETDOWN, EAFNOSUPPORT};
  return std::ranges::find(kNoWay, error) != std::end(kNoWay);
}

/// The route that a packet to the address would take, if there is one.
std::optional<std::vector<Route>> routesTo(std::uint8_t family, const Destination& destination) {
  rtmsg record{};
  record.rtm_family = family;
  record.rtm_dst_len = static_cast<std::uint8_t>(destination.bytes.size() * 8);
  std::string attributes;
  appendAttribute(attributes, RTA_DST, destination.bytes);
  if (destination.link != 0)
    appendAttribute(attributes, RTA_OIF,
                    {reinterpret_cast<const char*>(&destination.link), sizeof destination.link});
  std::vector<Route> routes;
  int error = 0;
  const bool isAnswered = askRoutes(
      question(RTM_GETROUTE, 0, record, attributes),
      [&](std::uint16_t type, std::string_view body) {
        if (type == RTM_NEWROUTE) routes = routesInMessage(body);
      },
      error);
  if (!isAnswered && !saysNoWay(error)) return std::nullopt;
  return routes;
}

/// The routes to everywhere, those of higher priority first.
std::optional<std::vector<Route>> defaultRoutes(std::uint8_t family) {
  rtmsg record{};
  record.rtm_family = family;
  std::vector<Route> routes;
  int error = 0;
  const bool isAnswered = askRoutes(
      question(RTM_GETROUTE, NLM_F_DUMP, record, ""),
      [&](std::uint16_t type, std::string_view body) {
        if (type != RTM_NEWROUTE) return;
        for (const Route& route : routesInMessage(body))
          if (route.destinationBits == 0 && route.type == RTN_UNICAST) routes.push_back(route);
      },
      error);
  if (!isAnswered) return std::nullopt;
  std::ranges::stable_sort(routes, {}, &Route::priority);
  return routes;
}

std::optional<std::uint32_t> flagsOfLink(std::int32_t link) {
  ifinfomsg record{};
  record.ifi_index = link;
  std::optional<std::uint32_t> flags;
  int error = 0;
  const bool isAnswered = askRoutes(
      question(RTM_GETLINK, 0, record, ""),
      [&](std::uint16_t type, std::string_view body) {
        if (type == RTM_NEWLINK) flags = linkFlagsInMessage(body);
      },
      error);
  if (isAnswered) return flags;
  // The link has gone since the route was asked for.
  return error == ENODEV ? std::optional<std::uint32_t>(0) : std::nullopt;
}

}  // namespace

std::vector<Route> routesInMessage(std::string_view body) {
  const auto record = recordIn<rtmsg>(body);
  if (!record) return {};
  Route route;
  route.type = record->rtm_type;
  route.destinationBits = record->rtm_dst_len;
  std::vector<Route> hops;
  visitAttributes(behind(body, sizeof(rtmsg)), [&](std::uint16_t type, std::string_view value) {
    if (type == RTA_OIF) route.link = recordIn<std::int32_t>(value).value_or(0);
    if (type == RTA_PRIORITY) route.priority = recordIn<std::uint32_t>(value).value_or(0);
    if (type == RTA_GATEWAY || type == RTA_VIA) route.hasGateway = true;
    if (type != RTA_MULTIPATH) return;
    while (const auto hop = recordIn<rtnexthop>(value)) {
      if (hop->rtnh_len < sizeof(rtnexthop) || hop->rtnh_len > value.size()) return;
      Route way = route;
      way.link = hop->rtnh_ifindex;
      way.hasGateway = hop->rtnh_len > sizeof(rtnexthop);
      hops.push_back(way);
      value.remove_prefix(std::min<std::size_t>(value.size(), RTNH_ALIGN(hop->rtnh_len)));
    }
  });
  for (Route& hop : hops) hop.priority = route.priority;
  return hops.empty() ? std::vector{route} : hops;
}

std::optional<std::uint32_t> linkFlagsInMessage(std::string_view body) {
  const auto record = recordIn<ifinfomsg>(body);
  return record ? std::optional<std::uint32_t>(record->ifi_flags) : std::nullopt;
}

SCNetworkReachabilityFlags flagsOfRoute(const Route& route, std::uint32_t linkFlags) {
  constexpr std::uint8_t kWays[] = {RTN_UNICAST, RTN_LOCAL, RTN_BROADCAST, RTN_ANYCAST,
                                    RTN_MULTICAST};
  const bool leadsOn = std::ranges::find(kWays, route.type) != std::end(kWays);
  const bool isDormant = (linkFlags & IFF_DORMANT) != 0;
  if (!leadsOn || (linkFlags & IFF_UP) == 0) return 0;
  if (!isDormant && (linkFlags & IFF_RUNNING) == 0) return 0;
  const bool isDialled = (linkFlags & IFF_POINTOPOINT) != 0;
  SCNetworkReachabilityFlags flags = kSCNetworkReachabilityFlagsReachable;
  if (isDialled) flags |= kSCNetworkReachabilityFlagsTransientConnection;
  if (isDormant)
    flags |= kSCNetworkReachabilityFlagsConnectionRequired |
             (isDialled ? kSCNetworkReachabilityFlagsConnectionOnTraffic
                        : kSCNetworkReachabilityFlagsInterventionRequired);
  if (route.type == RTN_LOCAL) flags |= kSCNetworkReachabilityFlagsIsLocalAddress;
  if (!route.hasGateway) flags |= kSCNetworkReachabilityFlagsIsDirect;
  return flags;
}

std::optional<SCNetworkReachabilityFlags> flagsOfAddress(const sockaddr_storage& address) {
  const Destination destination = destinationOf(address);
  const bool isEverywhere = std::ranges::count(destination.bytes, '\0') ==
                            static_cast<std::ptrdiff_t>(destination.bytes.size());
  const auto family = static_cast<std::uint8_t>(address.ss_family);
  const auto routes = isEverywhere ? defaultRoutes(family) : routesTo(family, destination);
  if (!routes) return std::nullopt;
  for (const Route& route : *routes) {
    const auto link = flagsOfLink(route.link);
    if (!link) return std::nullopt;
    if (const SCNetworkReachabilityFlags flags = flagsOfRoute(route, *link)) return flags;
  }
  return 0;
}

}  // namespace ORLFoundation::internal::reachability

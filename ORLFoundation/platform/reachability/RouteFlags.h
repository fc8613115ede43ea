/// The flags of an address: what the kernel's route to it, and the link that the route goes out by,
/// come to.
#pragma once

#include <ORLFoundation/platform/reachability/SCNetworkReachability.h>
#include <sys/socket.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::reachability {

/// A route as the kernel tells of it.
struct Route {
  std::uint8_t type = 0;  // RTN_UNICAST, RTN_LOCAL ...
  std::uint8_t destinationBits = 0;
  bool hasGateway = false;
  std::uint32_t priority = 0;
  std::int32_t link = 0;  // 0 for none
};

/// The routes that the body of a message names: one, or one for each of its next hops. None for
/// what is no route.
[[nodiscard]] std::vector<Route> routesInMessage(std::string_view body);
/// The flags of a link (IFF_UP ...) in the body of a message; nil for what is no link.
[[nodiscard]] std::optional<std::uint32_t> linkFlagsInMessage(std::string_view body);
/// What a route over a link with such flags comes to.
[[nodiscard]] SCNetworkReachabilityFlags flagsOfRoute(const Route& route, std::uint32_t linkFlags);

/// Asks the kernel. nil where it does not answer.
[[nodiscard]] std::optional<SCNetworkReachabilityFlags> flagsOfAddress(
    const sockaddr_storage& address);

}  // namespace ORLFoundation::internal::reachability

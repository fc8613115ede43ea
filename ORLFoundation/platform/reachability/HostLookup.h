/// Names of hosts looked up beside the caller, who goes on at once.
#pragma once

#include <sys/socket.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation::internal::reachability {

using Addresses = std::vector<sockaddr_storage>;
/// Takes as long as it takes. Empty for a name that has none.
using HostResolver = std::function<Addresses(const std::string& name)>;
/// Replaces the resolver and gives back the one before; an empty one stands for the system's.
HostResolver exchangeHostResolver(HostResolver resolver);

/// The address that a text writes in numbers; nil for a name.
[[nodiscard]] std::optional<sockaddr_storage> addressOfNumbers(const std::string& text);

/// Looks a name up and hands over its addresses, on one of a few threads of the process: a resolver
/// that is stuck holds up further names, and no caller. Neither is waited for when the process
/// ends.
void lookUpHost(const std::string& name, std::function<void(Addresses)> found);

}  // namespace ORLFoundation::internal::reachability

/// Sockets to the kernel's tables of routes and links (rtnetlink), and a door for tests, which play
/// the kernel.
#pragma once

#include <ORLFoundation/platform/base/Descriptor.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::reachability {

using base::Descriptor;

/// Gives a socket of messages that hears the groups of changes, 0 for questions alone; -1 for none.
using RouteSocketOpener = std::function<int(std::uint32_t groups)>;
/// Replaces what opens sockets and gives back the one before; an empty one stands for the kernel's.
RouteSocketOpener exchangeRouteSocketOpener(RouteSocketOpener opener);

/// The groups that tell of links, addresses and routes.
[[nodiscard]] std::uint32_t groupsOfChanges() noexcept;
[[nodiscard]] Descriptor openRouteSocket(std::uint32_t groups);

/// One message of an answer: its type, and what follows its head.
using RouteMessage = std::function<void(std::uint16_t type, std::string_view body)>;
/// Sends a question, head included, and calls for each message of the answer. false where the
/// socket fails, the kernel refuses, or the answer does not end within two seconds. `error` is what
/// the kernel refuses with, as errno has it, else 0.
[[nodiscard]] bool askRoutes(std::string_view question, const RouteMessage& message, int& error);

/// Reads away what a socket of changes has to tell.
void drainChanges(int socket);

}  // namespace ORLFoundation::internal::reachability


#include <ORLFoundation/platform/reachability/RouteSocket.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <utility>

namespace ORLFoundation::internal::reachability {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestAnswer{2};
constexpr std::size_t kLargestMessage = std::size_t{64} << 10;

constinit base::ReplaceableFunction<RouteSocketOpener> openers;

int openKernelSocket(std::uint32_t groups) {
  const int socket = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = groups;
  if (socket < 0 ||
      ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
    return socket;
  ::close(socket);
  return -1;
}

/// The bytes of the next message; nil where none comes by then.
std::optional<std::string_view> receive(int socket, std::span<char> buffer,
                                        Clock::time_point until) {
  while (true) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
    pollfd wanted{socket, POLLIN, 0};
    const int ready = left.count() > 0 ? ::poll(&wanted, 1, static_cast<int>(left.count())) : 0;
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return std::nullopt;
    const ssize_t length = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (length < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (length <= 0) return std::nullopt;
    return std::string_view(buffer.data(), static_cast<std::size_t>(length));
  }
}

enum class Reading : std::uint8_t { GoesOn, Ended, Failed };

/// Reads the messages that came at once.
Reading read(std::string_view bytes, const RouteMessage& message, int& error) {
  Reading reading = Reading::Ended;
  while (bytes.size() >= sizeof(nlmsghdr)) {
    nlmsghdr head{};
    std::memcpy(&head, bytes.data(), sizeof head);
    if (head.nlmsg_len < sizeof head || head.nlmsg_len > bytes.size()) return Reading::Failed;
    const std::string_view body = bytes.substr(sizeof head, head.nlmsg_len - sizeof head);
    if (head.nlmsg_type == NLMSG_DONE) return Reading::Ended;
    if (head.nlmsg_type == NLMSG_ERROR) {
      nlmsgerr refusal{};
      if (body.size() < sizeof refusal.error) return Reading::Failed;
      std::memcpy(&refusal.error, body.data(), sizeof refusal.error);
      error = -refusal.error;
      return error == 0 ? Reading::Ended : Reading::Failed;
    }
    message(head.nlmsg_type, body);
    if ((head.nlmsg_flags & NLM_F_MULTI) != 0) reading = Reading::GoesOn;
    bytes.remove_prefix(std::min<std::size_t>(bytes.size(), NLMSG_ALIGN(head.nlmsg_len)));
  }
  return reading;
}

}  // namespace

RouteSocketOpener exchangeRouteSocketOpener(RouteSocketOpener opener) {
  return openers.exchange(std::move(opener));
}

std::uint32_t groupsOfChanges() noexcept {
  return RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_IFADDR |
         RTMGRP_IPV6_ROUTE;
}

Descriptor openRouteSocket(std::uint32_t groups) {
  const auto opener = openers.current();
  return Descriptor(opener ? (*opener)(groups) : openKernelSocket(groups));
}

bool askRoutes(std::string_view question, const RouteMessage& message, int& error) {
  error = 0;
  const Descriptor socket = openRouteSocket(0);
  if (!socket.isOpen() || ::send(socket.number(), question.data(), question.size(), MSG_NOSIGNAL) !=
                              static_cast<ssize_t>(question.size()))
    return false;
  std::vector<char> buffer(kLargestMessage);
  const Clock::time_point until = Clock::now() + kLongestAnswer;
  while (const auto bytes = receive(socket.number(), buffer, until)) {
    const Reading reading = read(*bytes, message, error);
    if (reading != Reading::GoesOn) return reading == Reading::Ended;
  }
  return false;
}

void drainChanges(int socket) {
  std::array<char, 8192> bytes{};
  // Messages that were lost, ENOBUFS, are a change like any other. A stream of them has an end here
  // too: what is left wakes the loop again.
  for (int i = 0; i < 1000; ++i) {
    const ssize_t length = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (length == 0 || (length < 0 && errno != EINTR && errno != ENOBUFS)) return;
  }
}

}  // namespace ORLFoundation::internal::reachability

/// Sockets to the kernel's tables of routes and links (rtnetlink), and a door for tests, which play
/// the kernel.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::reachability {

/// A descriptor that is closed when its owner dies.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) noexcept : number_(number) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int number() const noexcept { return number_; }
  [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }

 private:
  int number_;
};

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

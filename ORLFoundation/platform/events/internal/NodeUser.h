/// One user of a watched file or folder.
#pragma once

#include <ORLFoundation/platform/events/NodeWatcher.h>
#include <ORLFoundation/platform/events/internal/NodeState.h>
#include <ORLFoundation/platform/events/internal/SettledTracker.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace ORLFoundation::internal::events {

/// Belongs to the watcher and its locks.
struct NodeUser {
  explicit NodeUser(NodeRequest asked) : request(std::move(asked)) {}

  /// The path by which the kernel is told of the descriptor's file.
  [[nodiscard]] std::string handle() const;
  /// inotify's mask for what is asked.
  [[nodiscard]] std::uint32_t mask() const noexcept;
  /// Notes what befell the node for `flagsSinceLook`; a mask of 0 asks for no more than a look.
  void touch(std::uint32_t eventMask);
  /// Looks at the node and gives the asked flags of everything noted since the last look.
  [[nodiscard]] std::uint64_t flagsSinceLook(KernelQueue& queue);

  const NodeRequest request;
  int watch = -1;  ///< The kernel's number, -1 while there is none.
  NodeState state;
  std::optional<std::string> name;  ///< The path at the last look.
  /// Whether the mount is one of the table, which it is to leave.
  bool isMounted = false;

  /// A folder that is removed tells of it only through the folder around it, where a second user
  /// stands guard.
  std::shared_ptr<NodeUser> guard;
  std::weak_ptr<NodeUser> guarded;
  [[nodiscard]] bool isGuard() const noexcept { return request.descriptor < 0; }

  /// While it is being added: what happens is not noted.
  bool isNew = false;

  /// Noted since the last look.
  bool isTouched = false;
  bool hasLostEvents = false;
  std::uint64_t noted = 0;
  std::uint32_t events = 0;
  /// What is to be reported.
  std::uint64_t due = 0;

  bool isEnded = false;

 private:
  [[nodiscard]] bool isWriteAlone(std::uint32_t mask) const noexcept;
  /// After lost events a write counts as closed: its close may be among them.
  [[nodiscard]] std::uint64_t flagsLost(const NodeState& now, const NodeName& held);

  SettledTracker settled_;
};

}  // namespace ORLFoundation::internal::events

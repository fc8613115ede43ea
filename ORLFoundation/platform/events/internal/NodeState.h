/// What a watched file or folder looks like, and what has befallen it between two looks.
#pragma once

#include <sys/inotify.h>

#include <cstdint>
#include <optional>
#include <string>

namespace ORLFoundation::internal::events {

/// What a name in a folder tells of the folder.
inline constexpr std::uint32_t kNamesCameOrWent =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

/// Nanoseconds since 1970, or any other order of instants that a file system keeps.
using NodeTime = std::int64_t;

struct NodeState {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::uint64_t mount = 0;  ///< The mount it was opened through; 0 where the kernel tells of none.
  std::uint64_t size = 0;
  std::uint32_t links = 0;
  std::uint32_t mode = 0;
  std::uint32_t user = 0;
  std::uint32_t group = 0;
  NodeTime modified = 0;
  NodeTime changed = 0;
  NodeTime seen = 0;  ///< When this was read, by the machine's clock.

  [[nodiscard]] bool isFolder() const noexcept;
  [[nodiscard]] bool isSameNode(const NodeState& other) const noexcept {
    return device == other.device && number == other.number;
  }
};

/// nil, with errno, for what is no descriptor.
[[nodiscard]] std::optional<NodeState> stateOfDescriptor(int descriptor);
/// Of what a path leads to, behind links.
[[nodiscard]] std::optional<NodeState> stateOfPath(const std::string& path);

/// Answers questions about the name by which a node is held that cost a call to the kernel.
class NodeName {
 public:
  virtual ~NodeName() = default;
  /// Whether the name that the node is held by leads to it no longer.
  [[nodiscard]] virtual bool isGone() const = 0;
  /// Whether the node's name differs from the one of the last look.
  [[nodiscard]] virtual bool isChanged() const = 0;
};

/// The flags of a node whose kernel events (a mask of inotify's, of the node itself and not of
/// names in a folder but that they came and went) led from one state to the other.
///
/// The kernel hides the end of a file that is held behind a change of its attributes: no link left
/// is a deletion, and so is one link less when it was the name that the node is held by. A folder
/// that is held ends without any event of its own: the mask is 0 then. A move counts where it was
/// this name's; one of several names of a file that are moved or deleted are other holders' matter.
[[nodiscard]] std::uint64_t flagsOfEvents(std::uint32_t mask, const NodeState& before,
                                          const NodeState& now, const NodeName& name);

/// The flags of what must have happened, events or none, between two states: for the time when the
/// kernel lost events. A change that the file system's clock cannot tell from the last look counts
/// as one.
[[nodiscard]] std::uint64_t flagsOfDifference(const NodeState& before, const NodeState& now,
                                              const NodeName& name);

}  // namespace ORLFoundation::internal::events

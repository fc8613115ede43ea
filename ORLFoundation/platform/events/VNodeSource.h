/// Sources of files for rooms that know more about their descriptors than the descriptor.
#pragma once

#include <ORLFoundation/platform/events/dispatch_vnode_source.h>

#include <cstdint>
#include <optional>
#include <string>

namespace ORLFoundation::internal::events {

/// `dispatch_source_create` for a descriptor that was just opened by a path: where the path leads
/// to something else by the time the source begins, it tells of `DISPATCH_VNODE_RENAME` at once.
/// The mask may ask for `kNodeSettled`.
[[nodiscard]] dispatch_vnode_source_t makeVNodeSource(int descriptor, std::uint64_t mask,
                                                      const dispatch_queue_t& queue,
                                                      std::optional<std::string> openedAt);

}  // namespace ORLFoundation::internal::events

/// What `ORLFOperationQueue` keeps with an operation: its group, and whether it is a barrier. Both
/// are attached to the operation under the keys below, on whatever queue it is. Any thread.
///
///     orlfSetIsBarrierOperation(*import, true);
///     queue->addOperation(import);   // what is added from here on begins after it
#pragma once

#include <ORLFoundation/platform/operation/NSOperation.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

inline constexpr std::string_view ORLFOperationGroupIDKey = "ORLFOperationGroupIDKey";
inline constexpr std::string_view ORLFOperationBarrierKey = "ORLFOperationBarrierKey";

/// `orlfGroupID`  nil for an operation in no group. An empty text is a group like any other.
[[nodiscard]] std::optional<std::string> orlfGroupID(const NSOperation& operation);
/// `orlfSetGroupID:`
void orlfSetGroupID(NSOperation& operation, const std::optional<std::string>& groupID);

/// `orlfIsBarrierOperation`  Operations that are added while the barrier is unfinished begin when
/// it has finished. It does not itself wait for those before it: `pauseQueueWithBlock` does.
[[nodiscard]] bool orlfIsBarrierOperation(const NSOperation& operation);
/// `orlfSetIsBarrierOperation:`  Set on an operation that is on a queue, it holds what is added
/// from then on. Cleared, it lets go of what is added from then on; what waits already goes on
/// waiting.
void orlfSetIsBarrierOperation(NSOperation& operation, bool isBarrier);

}  // namespace ORLFoundation

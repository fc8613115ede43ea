#include <ORLFoundation/tasks/operations/ORLFOperationBarrier.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/tasks/operations/internal/LateBarriers.h>

#include <atomic>

namespace ORLFoundation {
namespace {

constinit std::atomic<std::uint64_t> lateBarriers{0};

}  // namespace

std::uint64_t internal::operations::lateBarrierCount() noexcept { return lateBarriers.load(); }

std::optional<std::string> orlfGroupID(const NSOperation& operation) {
  return operation.attachedValue(ORLFOperationGroupIDKey).as<std::string>();
}

void orlfSetGroupID(NSOperation& operation, const std::optional<std::string>& groupID) {
  operation.setAttachedValue(ORLFOperationGroupIDKey, id(groupID));
}

bool orlfIsBarrierOperation(const NSOperation& operation) {
  return operation.attachedValue(ORLFOperationBarrierKey).as<bool>().value_or(false);
}

void orlfSetIsBarrierOperation(NSOperation& operation, bool isBarrier) {
  operation.setAttachedValue(ORLFOperationBarrierKey, isBarrier ? id(true) : id());
  // An operation that is being added meanwhile is on its queue before the queue looks at the mark.
  if (isBarrier && operation.wasEnqueued()) lateBarriers.fetch_add(1);
}

}  // namespace ORLFoundation

/// What an operation has once it depends on another one or another one depends on it.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/operation/NSOperation.h>

#include <memory>
#include <vector>

namespace ORLFoundation::internal::operation {

struct OperationLinks {
  std::vector<std::shared_ptr<NSOperation>> dependencies;
  std::vector<std::weak_ptr<NSOperation>> dependents;
  std::vector<dispatch_semaphore_t> waiters;
};

/// Lets go of operations. A chain of them, each held by the next one alone, falls link by link and
/// not by recursion.
void dropOperations(std::vector<std::shared_ptr<NSOperation>> operations);

}  // namespace ORLFoundation::internal::operation

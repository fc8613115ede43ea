#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>
#include <ORLFoundation/tasks/operations/internal/LateBarriers.h>

#include <algorithm>
#include <typeinfo>
#include <utility>

namespace ORLFoundation {

using internal::operations::lateBarrierCount;

namespace {

constexpr const char* kLabel = "com.orlsoftware.foundation.ORLFOperationQueue";

const ORLFSingleInstanceOperation* singleInstance(const NSOperation& operation) {
  if (typeid(operation) == typeid(NSBlockOperation))
    return nullptr;  // The commonest, told at once.
  return dynamic_cast<const ORLFSingleInstanceOperation*>(&operation);
}

}  // namespace

ORLFOperationQueue::ORLFOperationQueue(std::shared_ptr<NSOperationQueue> targetQueue)
    : internalDispatchQueue_(dispatch_queue_create(kLabel, DISPATCH_QUEUE_SERIAL)),
      targetQueue_(std::move(targetQueue)),
      lateBarriersSeen_(lateBarrierCount()) {}

std::shared_ptr<NSOperationQueue> ORLFOperationQueue::targetQueue() const {
  const std::lock_guard guard(targetLock_);
  return targetQueue_;
}

void ORLFOperationQueue::setTargetQueue(std::shared_ptr<NSOperationQueue> value) {
  const std::lock_guard guard(targetLock_);
  targetQueue_.swap(value);
}

void ORLFOperationQueue::addOperation(std::shared_ptr<NSOperation> operation) {
  if (!operation) return;
  std::optional<std::int64_t> loggedSince;
  if (logsActivity()) {
    _ORLFDebugLog("ENQUEUING OPERATION: %@ (queue: %@)", operation, receiverOrReference());
    loggedSince = NSMonotonicClock::now();
  }
  const auto* const instance = singleInstance(*operation);
  replaceOlderInstances(instance);
  wrapCompletion(operation, loggedSince);
  Operations held;
  dispatch_sync(internalDispatchQueue_, [&] {
    dependOnBarriers(*operation, held);
    NSOperationQueue::addOperation(operation);
    remember(operation, instance != nullptr);
  });
}

void ORLFOperationQueue::addOperations(Operations operations, bool waitUntilFinished) {
  std::erase(operations, nullptr);
  if (operations.empty()) return;
  for (const auto& each : operations) {
    replaceOlderInstances(singleInstance(*each));
    wrapCompletion(each, std::nullopt);
  }
  Operations held;
  dispatch_sync(internalDispatchQueue_, [&] {
    for (const auto& each : operations) dependOnBarriers(*each, held);
    NSOperationQueue::addOperations(operations, false);
    for (const auto& each : operations) remember(each, singleInstance(*each) != nullptr);
    if (!waitUntilFinished) return;
    for (const auto& each : operations) each->waitUntilFinished();
  });
}

void ORLFOperationQueue::addOperation(std::shared_ptr<NSOperation> operation,
                                      const std::optional<std::string>& group,
                                      Completion completion) {
  if (!operation) return;
  orlfSetGroupID(*operation, group);
  operation->setCompletionBlock(
      [operation, own = operation->completionBlock(), completion = std::move(completion)] {
        if (own) own();
        if (completion) completion(operation, !operation->isCancelled());
        orlfSetGroupID(*operation, std::nullopt);
      });
  addOperation(std::move(operation));
}

void ORLFOperationQueue::addOperation(std::shared_ptr<NSOperation> operation,
                                      Completion completion) {
  addOperation(std::move(operation), std::nullopt, std::move(completion));
}

void ORLFOperationQueue::cancelAllOperationsForGroup(std::optional<std::string_view> group) {
  if (!group) return;
  Operations held;
  dispatch_sync(internalDispatchQueue_, [&] {
    held = operations();
    for (const auto& each : held)
      if (orlfGroupID(*each) == *group) each->cancel();
  });
}

void ORLFOperationQueue::cancelOperationForSingleInstanceID(
    std::optional<std::string_view> singleInstanceID) {
  if (!singleInstanceID) return;
  Operations held;
  dispatch_sync(internalDispatchQueue_, [&] {
    held = unfinishedInstances();
    for (const auto& each : held) {
      if (each->isFinished()) continue;
      if (singleInstance(*each)->enqueuedSingleInstanceID() == *singleInstanceID) each->cancel();
    }
  });
}

void ORLFOperationQueue::pauseQueueWithBlock(std::function<void()> block) {
  if (!block) return;
  const auto fence = NSBlockOperation::blockOperationWithBlock(std::move(block));
  orlfSetIsBarrierOperation(*fence, true);
  Operations held;
  dispatch_sync(internalDispatchQueue_, [&] {
    held = operations();
    for (const auto& each : held) fence->addDependency(each);
    NSOperationQueue::addOperation(fence);
    remember(fence, false);
  });
}

void ORLFOperationQueue::makeOperationDependOnAllBarrierOperations(
    const std::shared_ptr<NSOperation>& operation) {
  Operations held;
  if (operation) dependOnBarriers(*operation, held);
}

/// What the caller holds is to be let go of outside of all locks: it may be the last reference.
void ORLFOperationQueue::dependOnBarriers(NSOperation& operation, Operations& held) {
  if (!hasBarriers_ && lateBarriersSeen_ == lateBarrierCount()) return;
  const std::lock_guard guard(barrierLock_);
  lookForLateBarriers(held);
  std::erase_if(barriers_, [&](const auto& each) {
    auto barrier = each.lock();
    if (!barrier) return true;
    const bool holds = !barrier->isFinished() && orlfIsBarrierOperation(*barrier);
    if (holds) operation.addDependency(barrier);
    held.push_back(std::move(barrier));
    return !holds;
  });
  hasBarriers_ = !barriers_.empty();
}

void ORLFOperationQueue::replaceOlderInstances(const ORLFSingleInstanceOperation* instance) {
  if (instance) cancelOperationForSingleInstanceID(instance->enqueuedSingleInstanceID());
}

/// The wrapper holds the operation weakly and the queue strongly.
void ORLFOperationQueue::wrapCompletion(const std::shared_ptr<NSOperation>& operation,
                                        std::optional<std::int64_t> loggedSince) {
  auto own = operation->completionBlock();
  if (!own && !loggedSince) return;
  operation->setCompletionBlock(
      [operation = std::weak_ptr(operation), own = std::move(own), loggedSince,
       queue = std::static_pointer_cast<ORLFOperationQueue>(receiverOrReference())]() mutable {
        if (loggedSince) {
          [[maybe_unused]] const double seconds =
              static_cast<double>(NSMonotonicClock::now() - *loggedSince) / 1e9;
          const auto ended = operation.lock();
          if (ended && ended->isCancelled()) {
            _ORLFDebugLog("CANCELING OPERATION [%f]: %@ (queue: %@)", seconds, ended, queue);
          } else {
            _ORLFDebugLog("FINISHING OPERATION [%f]: %@ (queue: %@)", seconds, ended, queue);
          }
        }
        if (own) queue->complete(std::move(own));
      });
}

void ORLFOperationQueue::complete(std::function<void()> block) {
  if (const auto target = targetQueue()) {
    target->addOperationWithBlock(std::move(block));
  } else {
    block();
  }
}

/// Within internalDispatchQueue_.
void ORLFOperationQueue::remember(const std::shared_ptr<NSOperation>& operation,
                                  bool isSingleInstance) {
  if (isSingleInstance) {
    // Those that have gone leave the list before it has doubled, also when nobody looks through it.
    if (singleInstances_.size() >= 2 * instancesAtLastLook_ + 16) forgetGoneInstances();
    singleInstances_.emplace_back(operation);
  }
  if (!orlfIsBarrierOperation(*operation)) return;
  const std::lock_guard guard(barrierLock_);
  barriers_.emplace_back(operation);
  hasBarriers_ = true;
}

/// Within internalDispatchQueue_. Some may have finished, which then are forgotten.
NSOperationQueue::Operations ORLFOperationQueue::unfinishedInstances() {
  Operations found;
  std::erase_if(singleInstances_, [&](const auto& each) {
    auto operation = each.lock();
    if (!operation) return true;
    found.push_back(std::move(operation));
    return found.back()->isFinished();
  });
  instancesAtLastLook_ = singleInstances_.size();
  return found;
}

/// Within internalDispatchQueue_.
void ORLFOperationQueue::forgetGoneInstances() {
  std::erase_if(singleInstances_, [](const auto& each) { return each.expired(); });
  instancesAtLastLook_ = singleInstances_.size();
}

/// With barrierLock_ held.
void ORLFOperationQueue::lookForLateBarriers(Operations& held) {
  const std::uint64_t count = lateBarrierCount();
  if (count == lateBarriersSeen_) return;
  lateBarriersSeen_ = count;
  barriers_.clear();
  for (auto& each : operations()) {
    if (orlfIsBarrierOperation(*each)) barriers_.emplace_back(each);
    held.push_back(std::move(each));
  }
}

}  // namespace ORLFoundation

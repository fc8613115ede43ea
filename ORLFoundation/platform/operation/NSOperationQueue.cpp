#include <ORLFoundation/platform/operation/NSOperationQueue.h>

#include <ORLFoundation/platform/operation/internal/QueueCore.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

using internal::operation::QueueCore;

NSOperationQueue::NSOperationQueue() : NSOperationQueue(std::make_shared<QueueCore>(false)) {}

NSOperationQueue::NSOperationQueue(std::shared_ptr<QueueCore> core) : core_(std::move(core)) {}

const std::shared_ptr<NSOperationQueue>& NSOperationQueue::mainQueue() {
  // Never destroyed: operations may be added while the process ends.
  static const auto& queue = *new std::shared_ptr<NSOperationQueue>(
      new NSOperationQueue(std::make_shared<QueueCore>(true)));
  return queue;
}

std::shared_ptr<NSOperationQueue> NSOperationQueue::currentQueue() {
  const QueueCore* const core = QueueCore::current();
  return core ? std::static_pointer_cast<NSOperationQueue>(core->owner()) : nullptr;
}

void NSOperationQueue::addOperation(std::shared_ptr<NSOperation> operation) {
  if (!operation) return;
  rememberOwner();
  core_->add({&operation, 1});
}

void NSOperationQueue::addOperations(Operations operations, bool waitUntilFinished) {
  std::erase(operations, nullptr);
  rememberOwner();
  core_->add(operations);
  if (!waitUntilFinished) return;
  for (const auto& each : operations) each->waitUntilFinished();
}

void NSOperationQueue::addOperationWithBlock(std::function<void()> block) {
  if (block) addOperation(NSBlockOperation::blockOperationWithBlock(std::move(block)));
}

NSOperationQueue::Operations NSOperationQueue::operations() const { return core_->operations(); }

NSUInteger NSOperationQueue::operationCount() const { return core_->count(); }

void NSOperationQueue::cancelAllOperations() {
  for (const auto& each : operations()) each->cancel();
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() { core_->waitUntilEmpty(); }

NSInteger NSOperationQueue::maxConcurrentOperationCount() const { return core_->most(); }

void NSOperationQueue::setMaxConcurrentOperationCount(NSInteger value) {
  core_->setMost(std::max(value, NSOperationQueueDefaultMaxConcurrentOperationCount));
}

bool NSOperationQueue::isSuspended() const { return core_->isSuspended(); }

void NSOperationQueue::setSuspended(bool value) { core_->setSuspended(value); }

NSQualityOfService NSOperationQueue::qualityOfService() const { return core_->qualityOfService(); }

void NSOperationQueue::setQualityOfService(NSQualityOfService value) {
  core_->setQualityOfService(value);
}

void NSOperationQueue::rememberOwner() {
  std::call_once(isOwnerKnown_, [this] { core_->setOwner(weak_from_this()); });
}

}  // namespace ORLFoundation

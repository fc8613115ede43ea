/// An operation queue with groups that are cancelled together, single-instance operations of which
/// a newer one replaces an older one, barriers, and completion blocks that run where they are
/// wanted.
///
///     const auto queue = std::make_shared<ORLFOperationQueue>(NSOperationQueue::mainQueue());
///     queue->addOperation(download, "account 7", [](const auto& done, bool wasFinished) {
///       if (wasFinished) report(*done);   // on the main thread; false for a cancelled one
///     });
///     queue->pauseQueueWithBlock([] { report("all downloads so far have ended"); });
///     queue->cancelAllOperationsForGroup("account 7");
///
/// Additions and cancels of one queue come one after the other; each waits for those before it.
/// Nothing runs inside them, so that operations and completions may call the queue. Trap: with the
/// flag of `addOperations:waitUntilFinished:` such a call lasts until the batch has finished, and
/// so do all others that were made meanwhile, cancels included; an operation of the batch that
/// makes one waits for itself.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/operations/ORLFOperationBarrier.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// An operation of which a queue is to keep the newest alone derives from this too.
class ORLFSingleInstanceOperation {
 public:
  virtual ~ORLFSingleInstanceOperation() = default;
  /// `enqueuedSingleInstanceID`  nil makes it a plain operation. Asked when the operation is added,
  /// and for as long as it has not finished whenever another one is; it may not call the queue.
  [[nodiscard]] virtual std::optional<std::string> enqueuedSingleInstanceID() const = 0;
};

class ORLFOperationQueue : public NSOperationQueue {
 public:
  /// Takes the operation, and false when it was cancelled.
  using Completion = std::function<void(const std::shared_ptr<NSOperation>& operation, bool)>;

  /// `init`  Without a target queue.
  ORLFOperationQueue() : ORLFOperationQueue(nullptr) {}
  /// `initWithTargetQueue:`
  explicit ORLFOperationQueue(std::shared_ptr<NSOperationQueue> targetQueue);

  /// Whether operations that are added from now on are told to the debug log when they are added
  /// and when they end. One that has no completion block gets one then.
  [[nodiscard]] bool logsActivity() const noexcept { return logsActivity_; }
  void setLogsActivity(bool value) noexcept { logsActivity_ = value; }
  /// Where completion blocks run, read as each one is due; null for the thread that finishes the
  /// operation.
  [[nodiscard]] std::shared_ptr<NSOperationQueue> targetQueue() const;
  void setTargetQueue(std::shared_ptr<NSOperationQueue> value);
  /// `clearTargetQueue`  Also for operations that are on the queue.
  void clearTargetQueue() { setTargetQueue(nullptr); }

  /// `addOperation:`  Cancels those that are on the queue with the same single-instance ID, if it
  /// has one. Begins after the barriers that are on the queue. Null does nothing.
  void addOperation(std::shared_ptr<NSOperation> operation) override;
  /// `addOperations:waitUntilFinished:`  The same for a batch, whose members have no effect on each
  /// other: all of those with one single-instance ID run, and a barrier among them holds back none.
  /// Nothing is logged.
  void addOperations(Operations operations, bool waitUntilFinished) override;
  /// `addOperation:group:completion:`  Gives the operation the group, which it has until its
  /// completion returns, and calls that after the operation's own completion block, on the target
  /// queue.
  void addOperation(std::shared_ptr<NSOperation> operation, const std::optional<std::string>& group,
                    Completion completion);
  /// `addOperation:completion:`  In no group.
  void addOperation(std::shared_ptr<NSOperation> operation, Completion completion);

  /// `cancelAllOperationsForGroup:`  Case matters. nil does nothing.
  void cancelAllOperationsForGroup(std::optional<std::string_view> group);
  /// `cancelOperationForSingleInstanceID:`  All that have the ID now. nil does nothing.
  void cancelOperationForSingleInstanceID(std::optional<std::string_view> singleInstanceID);

  /// `pauseQueueWithBlock:`  Runs the block after all that was added before, and before all that is
  /// added later begins. Nothing is suspended: the queue takes operations meanwhile. An empty block
  /// does nothing.
  void pauseQueueWithBlock(std::function<void()> block);
  /// `makeOperationDependOnAllBarrierOperations:`  On those that are on this queue now.
  void makeOperationDependOnAllBarrierOperations(const std::shared_ptr<NSOperation>& operation);

  [[nodiscard]] std::string className() const override { return "ORLFOperationQueue"; }

 private:
  void replaceOlderInstances(const ORLFSingleInstanceOperation* instance);
  void wrapCompletion(const std::shared_ptr<NSOperation>& operation,
                      std::optional<std::int64_t> loggedSince);
  void complete(std::function<void()> block);
  void remember(const std::shared_ptr<NSOperation>& operation, bool isSingleInstance);
  void dependOnBarriers(NSOperation& operation, Operations& held);
  void lookForLateBarriers(Operations& held);
  [[nodiscard]] Operations unfinishedInstances();
  void forgetGoneInstances();

  std::atomic<bool> logsActivity_{false};
  const dispatch_queue_t internalDispatchQueue_;
  mutable std::mutex targetLock_;
  std::shared_ptr<NSOperationQueue> targetQueue_;

  // Within internalDispatchQueue_.
  std::vector<std::weak_ptr<NSOperation>> singleInstances_;
  std::size_t instancesAtLastLook_ = 0;

  std::mutex barrierLock_;
  std::vector<std::weak_ptr<NSOperation>> barriers_;
  std::atomic<bool> hasBarriers_{false};
  std::atomic<std::uint64_t> lateBarriersSeen_;
};

}  // namespace ORLFoundation

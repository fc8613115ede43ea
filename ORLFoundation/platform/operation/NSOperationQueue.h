/// Runs operations side by side, on as many threads as it takes, in the order in which they become
/// free to begin; of those that wait for a thread the most urgent first.
///
///     const auto queue = std::make_shared<NSOperationQueue>();
///     const auto load = NSBlockOperation::blockOperationWithBlock([] { report("loaded"); });
///     const auto show = NSBlockOperation::blockOperationWithBlock([] { report("shown"); });
///     show->addDependency(load);
///     queue->addOperations({load, show}, true);   // waits for both
///
/// What a queue costs to add to does not grow with what is on it. Operations go on when the queue
/// object is gone. Trap: what waits on a suspended queue that is let go of stays for ever.
/// Everything here is safe on any thread.
#pragma once

#include <ORLFoundation/platform/operation/NSBlockOperation.h>
#include <ORLFoundation/platform/operation/NSOperation.h>
#include <ORLFoundation/platform/operation/NSQualityOfService.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ORLFoundation {

inline constexpr NSInteger NSOperationQueueDefaultMaxConcurrentOperationCount = -1;

class NSOperationQueue : public NSObject {
 public:
  using Operations = std::vector<std::shared_ptr<NSOperation>>;

  NSOperationQueue();
  /// `mainQueue`  The one whose operations run on the main thread, one at a time.
  [[nodiscard]] static const std::shared_ptr<NSOperationQueue>& mainQueue();
  /// `currentQueue`  The queue that runs the operation which the caller is in, the innermost one.
  /// Null outside of operations, and when the queue object is gone.
  [[nodiscard]] static std::shared_ptr<NSOperationQueue> currentQueue();

  /// `addOperation:`  Null does nothing. Raises `NSInvalidArgumentException` for an operation that
  /// was added to a queue before, this one included, or has begun otherwise.
  virtual void addOperation(std::shared_ptr<NSOperation> operation);
  /// `addOperations:waitUntilFinished:`  All of them, or none where one of them raises. With the
  /// flag it returns when all have finished, though their completion blocks may still run; an
  /// operation must not wait so for what can only begin after it.
  virtual void addOperations(Operations operations, bool waitUntilFinished);
  /// `addOperationWithBlock:`  An empty block does nothing.
  virtual void addOperationWithBlock(std::function<void()> block);

  /// `operations`  Those that have not finished, in the order in which they were added.
  [[nodiscard]] Operations operations() const;
  [[nodiscard]] NSUInteger operationCount() const;
  /// `cancelAllOperations`  Cancels those that have not finished.
  void cancelAllOperations();
  /// `waitUntilAllOperationsAreFinished`  Returns once the queue is empty.
  void waitUntilAllOperationsAreFinished();

  /// `maxConcurrentOperationCount`  How many operations may run at a time; negative for any number,
  /// which is the default, 0 for none. With 1 operations run one after the other. That of the main
  /// queue is always 1.
  [[nodiscard]] NSInteger maxConcurrentOperationCount() const;
  void setMaxConcurrentOperationCount(NSInteger value);
  /// `isSuspended`  A suspended queue begins nothing; what has begun goes on.
  [[nodiscard]] bool isSuspended() const;
  void setSuspended(bool value);
  /// `qualityOfService`  That of operations which have none of their own.
  [[nodiscard]] NSQualityOfService qualityOfService() const;
  void setQualityOfService(NSQualityOfService value);

  [[nodiscard]] std::string className() const override { return "NSOperationQueue"; }

 private:
  explicit NSOperationQueue(std::shared_ptr<internal::operation::QueueCore> core);
  void rememberOwner();

  const std::shared_ptr<internal::operation::QueueCore> core_;
  std::once_flag isOwnerKnown_;
};

}  // namespace ORLFoundation

/// A piece of work that a queue runs once, off the caller's thread, when the operations that it
/// depends on have finished. Subclasses override `main`; for a single block there is
/// NSBlockOperation.
///
///     class Import final : public NSOperation {
///      public:
///       void main() override {
///         while (!isCancelled() && readRecord()) continue;
///       }
///     };
///     ...
///     const auto import = std::make_shared<Import>();
///     import->setCompletionBlock([] { report("done"); });
///     queue->addOperation(import);
///
/// An operation is held by a shared pointer; its queue holds it until it has finished. Everything
/// here is safe on any thread. What `main` or a completion block throws ends the process.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/operation/NSQualityOfService.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation {

namespace internal::operation {
class QueueCore;
struct Ending;
struct OperationLinks;

/// For sections of a few instructions: one byte, and no more than two writes while nobody else is
/// there.
class SpinLock {
 public:
  void lock() noexcept {
    if (isHeld_.exchange(true, std::memory_order_acquire)) lockSlowly();
  }
  void unlock() noexcept { isHeld_.store(false, std::memory_order_release); }

 private:
  void lockSlowly() noexcept;

  std::atomic<bool> isHeld_{false};
};
}  // namespace internal::operation

class NSOperation : public NSObject {
 public:
  NSOperation();
  ~NSOperation() override;

  /// `main`  The work; does nothing here. Runs on a thread of the queue's choice, at most once, and
  /// never when the operation was cancelled before it began.
  virtual void main();
  /// `start`  For an operation on no queue: runs `main` on the calling thread, then the completion
  /// block. Nothing for one that has begun. Raises `NSInvalidArgumentException` for one that is on
  /// a queue, and while it waits for another one that has not finished.
  void start();

  /// `cancel`  Sets the flag, for good. An operation that has begun has to look at it; one that has
  /// not leaves its queue without `main`, whatever it depends on, and still counts as finished for
  /// those who wait for it and for its completion block; a suspended queue, and one that runs as
  /// many as it may, keeps it until it can begin another. Nothing for one that has finished.
  virtual void cancel();

  /// Where the operation stands. Observers are not told of changes; the completion block is.
  [[nodiscard]] bool isCancelled() const noexcept {
    return isCancelled_.load(std::memory_order_acquire);
  }
  [[nodiscard]] bool isFinished() const noexcept { return phase() == Phase::finished; }
  [[nodiscard]] bool isExecuting() const noexcept { return phase() == Phase::executing; }
  /// `isReady`  Not finished, and free to begin: cancelled, or nothing that it depends on is
  /// unfinished.
  [[nodiscard]] bool isReady() const;

  /// `addDependency:`  Begins no sooner than the other has finished, cancelled or not, on whatever
  /// queue that is. No effect on one that has begun, and none of null. Operations that depend on
  /// each other in a circle, one on itself too, or on one that nobody adds to a queue, never begin.
  /// A circle holds itself until one of it is cancelled: that one leaves, and the others follow.
  void addDependency(const std::shared_ptr<NSOperation>& operation);
  /// `dependencies`  Each once, in order, finished ones too. Let go of when the operation has
  /// finished.
  [[nodiscard]] std::vector<std::shared_ptr<NSOperation>> dependencies() const;

  /// `completionBlock`  Runs once, on the thread that finishes the operation, when it has finished
  /// and left its queue and those who wait for it were told; then it is let go of. One that is set
  /// on a finished operation is let go of at once.
  [[nodiscard]] std::function<void()> completionBlock() const;
  void setCompletionBlock(std::function<void()> block);

  /// `qualityOfService`  Which of the operations that could begin does so first. The default leaves
  /// it to the queue. To be set before the operation is added.
  [[nodiscard]] NSQualityOfService qualityOfService() const noexcept { return qualityOfService_; }
  void setQualityOfService(NSQualityOfService value) noexcept { qualityOfService_ = value; }

  /// `waitUntilFinished`  Blocks the thread, for ever when the operation never begins. An operation
  /// must not wait for itself.
  void waitUntilFinished();
  /// Whether it was given to a queue, which it may have left meanwhile. It cannot be given again.
  [[nodiscard]] bool wasEnqueued() const;

  [[nodiscard]] std::string className() const override { return "NSOperation"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  friend class internal::operation::QueueCore;
  friend struct internal::operation::Ending;

  enum class Phase : std::uint8_t { idle, waiting, ready, executing, finished };
  [[nodiscard]] Phase phase() const noexcept { return phase_.load(std::memory_order_acquire); }
  [[nodiscard]] internal::operation::OperationLinks& links();
  [[nodiscard]] bool isFreeToBegin() const noexcept {
    return blockers_ == 0 || isCancelled_.load(std::memory_order_relaxed);
  }

  [[nodiscard]] bool addDependent(std::weak_ptr<NSOperation> operation);
  void dependencyFinished();

  /// Makes the operation the queue's; null when it was some queue's before or has begun, else why.
  [[nodiscard]] const char* claim(std::shared_ptr<internal::operation::QueueCore> queue);
  void unclaim();
  /// Whether it can begin now; else it waits.
  [[nodiscard]] bool settle();
  /// The same when its turn has come; what was added to its dependencies meanwhile makes it wait.
  [[nodiscard]] bool begin();
  void perform() noexcept;
  void end(internal::operation::Ending& ending);

  mutable internal::operation::SpinLock lock_;
  std::atomic<Phase> phase_{Phase::idle};
  std::atomic<bool> isCancelled_{false};
  NSQualityOfService qualityOfService_ = NSQualityOfServiceDefault;
  std::int64_t blockers_ = 0;  // Dependencies that have not finished.
  std::function<void()> completion_;
  std::unique_ptr<internal::operation::OperationLinks> links_;  // Plain ones do without.
  std::shared_ptr<internal::operation::QueueCore> queue_;

  // The queue's, under its lock.
  std::shared_ptr<NSOperation> self_;  // While it is on the queue.
  NSOperation* previous_ = nullptr;
  NSOperation* next_ = nullptr;
  NSOperation* nextReady_ = nullptr;
};

}  // namespace ORLFoundation

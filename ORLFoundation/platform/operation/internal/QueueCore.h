/// What an operation queue and its operations have in common. It outlives the queue object for as
/// long as operations are on it.
///
/// The queue's threads are items of the dispatch queue beneath: one that has begun serves
/// operations one after the other. While operations are ready and may begin, an item of their
/// urgency is under way that has not begun, so that an operation which blocks holds up no other.
#pragma once

#include <ORLFoundation/platform/base/BriefLock.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/operation/NSOperation.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace ORLFoundation::internal::operation {

/// What an operation that has finished leaves, to be told and dropped outside of all locks.
struct Ending {
  std::shared_ptr<NSOperation> operation;
  std::function<void()> completion;
  std::unique_ptr<OperationLinks> links;
  /// Those who wait for the queue to become empty.
  std::vector<dispatch_semaphore_t> queueWaiters;

  /// Lets go on whoever waits for the operation.
  void tellWaiters();
  /// Then the operation's completion block.
  void complete() noexcept;
};

/// The urgencies, the highest first.
inline constexpr std::size_t kLevels = 5;

class QueueCore : public std::enable_shared_from_this<QueueCore> {
 public:
  /// On the threads of the process, or on the main queue.
  explicit QueueCore(bool isMain) : isMain_(isMain), most_(isMain ? 1 : -1) {}

  /// Raises `NSInvalidArgumentException` for an operation that cannot be added, and then adds none.
  void add(std::span<const std::shared_ptr<NSOperation>> operations);
  /// An operation of this queue has become ready.
  void push(NSOperation& operation);

  [[nodiscard]] std::vector<std::shared_ptr<NSOperation>> operations() const;
  [[nodiscard]] std::size_t count() const;
  void waitUntilEmpty();

  [[nodiscard]] std::int64_t most() const;
  void setMost(std::int64_t value);
  [[nodiscard]] bool isSuspended() const;
  void setSuspended(bool value);
  [[nodiscard]] NSQualityOfService qualityOfService() const;
  void setQualityOfService(NSQualityOfService value);

  void setOwner(const std::weak_ptr<NSObject>& owner);
  [[nodiscard]] std::shared_ptr<NSObject> owner() const;
  /// The queue whose operation the calling thread is in, the innermost one; null for none.
  [[nodiscard]] static QueueCore* current() noexcept;

 private:
  struct List {
    NSOperation* first = nullptr;
    NSOperation* last = nullptr;
  };
  /// Levels for which items are to be given to the dispatch queue.
  using Items = std::array<bool, kLevels>;

  void link(const std::shared_ptr<NSOperation>& operation);
  void unlink(NSOperation& operation, Ending& ending);
  void appendReady(NSOperation& operation);
  [[nodiscard]] NSOperation* takeReady();
  [[nodiscard]] bool hasRoom() const noexcept {
    return !isSuspended_ && (most_ < 0 || running_ < most_);
  }
  [[nodiscard]] Items claimItems();
  void submit(const Items& items);
  void serve(std::size_t level);
  [[nodiscard]] NSOperation* goOn(NSOperation* done, bool mayTake, Ending& ending);

  const bool isMain_;
  mutable base::BriefLock<std::mutex> lock_;
  NSOperation* first_ = nullptr;  // Of those that have not finished, in the order of addition.
  NSOperation* last_ = nullptr;
  std::size_t count_ = 0;
  std::array<List, kLevels> ready_;
  Items isUnderWay_{};  // Whether an item of a level was submitted and has not begun.
  std::int64_t running_ = 0;
  std::int64_t most_;
  bool isSuspended_ = false;
  NSQualityOfService qualityOfService_ = NSQualityOfServiceDefault;
  std::vector<dispatch_semaphore_t> waiters_;
  std::weak_ptr<NSObject> owner_;
};

}  // namespace ORLFoundation::internal::operation

/// An idle queue that a thread takes for itself, for those who learn of something on a thread of
/// their own and would lose time by handing it to another.
///
///     if (auto turn = QueueTurn::tryTake(queue)) return turn->run(block);
///     dispatch_async(queue, block);
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <memory>

namespace ORLFoundation::internal::dispatch {

class QueueTurn {
 public:
  /// nullptr for a queue that has something to do, and for the main queue. What is given to the
  /// queue from here on waits until the turn dies; a concurrent queue lets it run beside.
  [[nodiscard]] static std::unique_ptr<QueueTurn> tryTake(dispatch_queue_t queue);
  ~QueueTurn();
  QueueTurn(const QueueTurn&) = delete;
  QueueTurn& operator=(const QueueTurn&) = delete;

  /// Runs the block in the queue, on this thread, which need not be the one that took the turn.
  /// What it throws ends the process.
  void run(const dispatch_block_t& block) const noexcept;

 private:
  explicit QueueTurn(dispatch_queue_t queue) : queue_(std::move(queue)) {}

  const dispatch_queue_t queue_;
};

}  // namespace ORLFoundation::internal::dispatch

/// Which queues the thread is in: one frame for each item and each synchronous entry, the innermost
/// first.
#pragma once

namespace ORLFoundation::internal::dispatch {

class Queue;

struct QueueFrame {
  const Queue* queue;
  const QueueFrame* outer;
  /// The thread's own frame before this one, where `outer` is another thread's.
  const QueueFrame* own;
};

/// The calling thread's innermost frame, null outside of all queues.
[[nodiscard]] const QueueFrame* innermostFrame() noexcept;
/// Whether an item of the queue is under way on this thread, or on one that waits for it, so that
/// entering the queue would wait for ever.
[[nodiscard]] bool isWithinQueue(const Queue* queue) noexcept;

/// The thread is in a queue while this lives.
class InQueue {
 public:
  explicit InQueue(const Queue* queue) noexcept : InQueue(queue, innermostFrame()) {}
  /// For an item that another thread waits for: that thread's frames count as the outer ones.
  InQueue(const Queue* queue, const QueueFrame* outer) noexcept;
  ~InQueue();
  InQueue(const InQueue&) = delete;
  InQueue& operator=(const InQueue&) = delete;

 private:
  const QueueFrame frame_;
  const QueueFrame* const before_;
};

}  // namespace ORLFoundation::internal::dispatch

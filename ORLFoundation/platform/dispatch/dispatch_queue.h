/// Queues of work. A serial queue runs one item at a time, in order; a concurrent one runs its
/// items side by side on the threads of the process; the main queue runs its items on the main
/// thread when that is served (NSMainQueue.h).
///
///     const auto queue = dispatch_queue_create("com.example.ledger", DISPATCH_QUEUE_SERIAL);
///     dispatch_async(queue, [store] { store->load(); });
///     const NSInteger found = dispatch_sync(queue, [&] { return store->count(); });  // after it
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_time.h>

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace ORLFoundation {

namespace internal::dispatch {
class Queue;
}  // namespace internal::dispatch

/// A queue; it lives until nobody holds it and its items have run.
using dispatch_queue_t = std::shared_ptr<internal::dispatch::Queue>;
/// An item.
using dispatch_block_t = std::function<void()>;

/// How urgent work is. What is ready begins in this order, the most urgent first.
enum dispatch_qos_class_t : std::int64_t {
  QOS_CLASS_USER_INTERACTIVE = 33,
  QOS_CLASS_USER_INITIATED = 25,
  QOS_CLASS_DEFAULT = 21,
  QOS_CLASS_UTILITY = 17,
  QOS_CLASS_BACKGROUND = 9,
  QOS_CLASS_UNSPECIFIED = 0,
};

/// The older names of urgencies, for `dispatch_get_global_queue`.
inline constexpr std::int64_t DISPATCH_QUEUE_PRIORITY_HIGH = 2;
inline constexpr std::int64_t DISPATCH_QUEUE_PRIORITY_DEFAULT = 0;
inline constexpr std::int64_t DISPATCH_QUEUE_PRIORITY_LOW = -2;
inline constexpr std::int64_t DISPATCH_QUEUE_PRIORITY_BACKGROUND = INT16_MIN;

/// What a new queue is like.
struct dispatch_queue_attr_t {
  bool isConcurrent = false;
  std::int64_t qualityOfService = QOS_CLASS_DEFAULT;
};
/// One item at a time.
inline constexpr dispatch_queue_attr_t DISPATCH_QUEUE_SERIAL{false, QOS_CLASS_DEFAULT};
/// Items side by side.
inline constexpr dispatch_queue_attr_t DISPATCH_QUEUE_CONCURRENT{true, QOS_CLASS_DEFAULT};
/// The same kind of queue with another urgency; a value that is none stands for the default.
[[nodiscard]] dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(
    dispatch_queue_attr_t attributes, std::int64_t qualityOfService) noexcept;

/// A new queue, with a copy of the label; null stands for "".
[[nodiscard]] dispatch_queue_t dispatch_queue_create(const char* label,
                                                     dispatch_queue_attr_t attributes);
/// The concurrent queue of an urgency, one for each; null for a value that names none, and for
/// flags other than 0.
[[nodiscard]] const dispatch_queue_t& dispatch_get_global_queue(std::int64_t identifier,
                                                                std::uint64_t flags);
/// The one queue of the main thread.
[[nodiscard]] const dispatch_queue_t& dispatch_get_main_queue();

/// Stands for the queue that the caller is in.
inline constexpr std::nullptr_t DISPATCH_CURRENT_QUEUE_LABEL = nullptr;
/// The queue's own copy of its label, the same pointer each time. null asks for the queue whose
/// item the caller is in, the innermost one; on the main thread outside of all items that is the
/// main queue, on any other thread it is none, and the answer null.
[[nodiscard]] const char* dispatch_queue_get_label(const dispatch_queue_t& queue) noexcept;

/// Runs the block on the queue, later, after all that were given before it. What it throws ends the
/// process, but on the main queue (NSMainQueue.h). The block is dropped when it has run, on the
/// queue.
void dispatch_async(const dispatch_queue_t& queue, dispatch_block_t block);
/// The same at a time, or as soon after it as the queue comes to it; `DISPATCH_TIME_FOREVER` never
/// comes.
void dispatch_after(dispatch_time_t when, const dispatch_queue_t& queue, dispatch_block_t block);

namespace internal::dispatch {
/// Runs the call on the queue before it returns. The queue is held meanwhile, whatever the call
/// lets go of.
void runOnQueue(const dispatch_queue_t& queue, void (*call)(void*), void* argument);
}  // namespace internal::dispatch

/// Runs the block on the queue and gives back what it returns, or throws what it throws. On a queue
/// of threads the block runs on the caller's thread: at once where the queue is idle or concurrent,
/// else when its turn comes. The main queue runs it on the main thread while the caller waits; a
/// line is logged when nobody serves that thread for 5 seconds. Entering a serial queue, or the
/// main queue, from within itself would wait for ever and is a fatal error.
template <std::invocable Block>
std::invoke_result_t<Block&> dispatch_sync(const dispatch_queue_t& queue, Block&& block) {
  using Result = std::invoke_result_t<Block&>;
  static_assert(!std::is_reference_v<Result>, "a block gives back values");
  if constexpr (std::is_void_v<Result>) {
    using Plain = std::remove_reference_t<Block>;
    internal::dispatch::runOnQueue(
        queue, [](void* plain) { (*static_cast<Plain*>(plain))(); },
        const_cast<void*>(static_cast<const void*>(std::addressof(block))));
  } else {
    std::optional<Result> result;
    dispatch_sync(queue, [&] { result.emplace(block()); });
    return *std::move(result);
  }
}

}  // namespace ORLFoundation

/// Events of a descriptor, handled on a queue.
///
///     const auto source = dispatch_source_create(DISPATCH_SOURCE_TYPE_READ, descriptor, 0, queue);
///     dispatch_source_set_event_handler(source, [descriptor] { drain(descriptor); });
///     dispatch_source_set_cancel_handler(source, [descriptor] { close(descriptor); });
///     dispatch_resume(source);
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <cstdint>
#include <memory>

namespace ORLFoundation {

namespace internal::dispatch {
class Source;
}  // namespace internal::dispatch

/// A source. From its resuming to its cancellation it lives even when nobody holds it.
using dispatch_source_t = std::shared_ptr<internal::dispatch::Source>;

/// What a source waits for.
enum dispatch_source_type_t : std::int64_t {
  DISPATCH_SOURCE_TYPE_READ = 0,   // The descriptor can be read, has ended, or has failed.
  DISPATCH_SOURCE_TYPE_WRITE = 1,  // It takes bytes, has been hung up, or has failed.
};

/// A source that has not been resumed. Null for a negative descriptor, a mask other than 0, another
/// type and a null queue. The descriptor is to stay open until the cancel handler has been called.
[[nodiscard]] dispatch_source_t dispatch_source_create(dispatch_source_type_t type, int descriptor,
                                                       std::uint64_t mask,
                                                       const dispatch_queue_t& queue);
/// The handlers, each called on the queue; to be set before the source is resumed. The event
/// handler is called once the descriptor is ready, and again as long as it still is when the
/// handler has returned; never twice at a time, even on a concurrent queue. What it throws ends the
/// process, but on the main queue, out of which it comes; the source goes on.
void dispatch_source_set_event_handler(const dispatch_source_t& source, dispatch_block_t block);
void dispatch_source_set_cancel_handler(const dispatch_source_t& source, dispatch_block_t block);
/// How many bytes can be read without waiting; 0 for a source that waits for something else.
[[nodiscard]] std::uint64_t dispatch_source_get_data(const dispatch_source_t& source);
/// Begins to wait; once.
void dispatch_resume(const dispatch_source_t& source);
/// Ends it: no event handler begins any more but one that has begun by now. Then the cancel handler
/// is called, once, after the event handler has returned, and both are dropped, on the queue. Any
/// thread; handlers included.
void dispatch_source_cancel(const dispatch_source_t& source);
/// Other than 0 for a source that was cancelled.
[[nodiscard]] std::int64_t dispatch_source_testcancel(const dispatch_source_t& source);

}  // namespace ORLFoundation

/// Work on one queue and what follows it on another.
///
///     orlfDispatch_async_continue_main(queue, [] { retry(); }, [] { report("done"); });
///
/// A null queue and an empty work callback do nothing. Callbacks that throw end the process, but on
/// the main queue. Any thread.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

namespace ORLFoundation {

/// `orlfDispatch_async_continue`  Runs the work on the queue, lets go of it, and hands the
/// continuation to its own queue, when there are both.
void orlfDispatch_async_continue(const dispatch_queue_t& queue, dispatch_block_t work,
                                 dispatch_queue_t continuationQueue, dispatch_block_t continuation);
/// `orlfDispatch_async_continue_main`  The same with the main queue for the continuation.
void orlfDispatch_async_continue_main(const dispatch_queue_t& queue, dispatch_block_t work,
                                      dispatch_block_t continuation);
/// `orlfDispatch_main_queue_check_and_dispatch_if_needed`  Calls the callback at once within the
/// main queue, else makes it an item of that queue. The queue decides, not the thread: within an
/// item of another queue that was entered synchronously from the main queue it is not called at
/// once.
void orlfDispatch_main_queue_check_and_dispatch_if_needed(dispatch_block_t callback);

}  // namespace ORLFoundation

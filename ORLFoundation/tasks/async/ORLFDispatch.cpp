#include <ORLFoundation/tasks/async/ORLFDispatch.h>

#include <utility>

namespace ORLFoundation {

void orlfDispatch_async_continue(const dispatch_queue_t& queue, dispatch_block_t work,
                                 dispatch_queue_t continuationQueue,
                                 dispatch_block_t continuation) {
  if (!queue || !work) return;
  dispatch_async(queue, [work = std::move(work), next = std::move(continuationQueue),
                         continuation = std::move(continuation)]() mutable {
    std::exchange(work, nullptr)();
    if (next && continuation) dispatch_async(next, std::move(continuation));
  });
}

void orlfDispatch_async_continue_main(const dispatch_queue_t& queue, dispatch_block_t work,
                                      dispatch_block_t continuation) {
  orlfDispatch_async_continue(queue, std::move(work), dispatch_get_main_queue(),
                              std::move(continuation));
}

void orlfDispatch_main_queue_check_and_dispatch_if_needed(dispatch_block_t callback) {
  if (!callback) return;
  // Labels are compared by pointer: another queue may bear the same text.
  if (dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL) ==
      dispatch_queue_get_label(dispatch_get_main_queue())) {
    callback();
  } else {
    dispatch_async(dispatch_get_main_queue(), std::move(callback));
  }
}

}  // namespace ORLFoundation

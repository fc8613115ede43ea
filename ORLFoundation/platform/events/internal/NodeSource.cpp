#include <ORLFoundation/platform/events/internal/NodeSource.h>

#include <ORLFoundation/platform/dispatch/QueueTurn.h>

#include <utility>

namespace ORLFoundation::internal::events {

bool NodeSource::watch(NodeWatcher& watcher, int descriptor, std::uint64_t flags,
                       std::optional<std::string> openedAt) {
  const auto self = shared();
  auto watch =
      watcher.watch({.descriptor = descriptor,
                     .flags = flags,
                     .openedAt = std::move(openedAt),
                     .report = [weak = std::weak_ptr(self)](std::uint64_t found, NodeTurn& turn) {
                       if (const auto source = weak.lock()) source->note(found, turn);
                     }});
  const std::lock_guard guard(lock_);
  watch_ = std::move(watch);
  return watch_ != nullptr;
}

void NodeSource::setEventHandler(dispatch_block_t handler) {
  auto shared = std::make_shared<const dispatch_block_t>(std::move(handler));
  const std::lock_guard guard(lock_);
  eventHandler_.swap(shared);
}

void NodeSource::setCancelHandler(dispatch_block_t handler) {
  const std::lock_guard guard(lock_);
  cancelHandler_.swap(handler);
}

void NodeSource::resume() {
  const std::lock_guard guard(lock_);
  isResumed_ = true;
  if (pending_ != 0) schedule();
}

void NodeSource::cancel() {
  std::unique_ptr<NodeWatch> watch;  // ends outside of the lock
  const std::lock_guard guard(lock_);
  if (std::exchange(isCancelled_, true)) return;
  watch = std::move(watch_);
  schedule();
}

std::uint64_t NodeSource::data() const {
  const std::lock_guard guard(lock_);
  return current_;
}

void NodeSource::note(std::uint64_t flags, NodeTurn& turn) {
  const std::lock_guard guard(lock_);
  if (isCancelled_) return;
  pending_ |= flags;
  if (!isResumed_ || isScheduled_) return;
  const std::shared_ptr<dispatch::QueueTurn> place =
      turn.isFree() ? dispatch::QueueTurn::tryTake(queue_) : nullptr;
  if (place == nullptr) return schedule();
  isScheduled_ = true;
  turn.take([place, self = shared()] { place->run([&self] { self->run(); }); });
}

void NodeSource::schedule() {
  if (std::exchange(isScheduled_, true)) return;
  dispatch_async(
      queue_, [self = std::static_pointer_cast<NodeSource>(shared_from_this())] { self->run(); });
}

void NodeSource::run() {
  std::shared_ptr<const dispatch_block_t> handler;
  {
    const std::lock_guard guard(lock_);
    if (!isCancelled_) {
      current_ = std::exchange(pending_, 0);
      handler = eventHandler_;
    }
  }
  try {
    if (handler && *handler) (*handler)();
  } catch (...) {  // Out of the main queue: the source goes on.
    conclude();
    throw;
  }
  conclude();
}

void NodeSource::conclude() {
  {
    const std::lock_guard guard(lock_);
    isScheduled_ = false;
    if (!isCancelled_) {
      if (pending_ != 0) schedule();
      return;
    }
    isScheduled_ = true;  // for ever
  }
  finish();
}

void NodeSource::finish() {
  std::shared_ptr<const dispatch_block_t> eventHandler;
  dispatch_block_t cancelHandler;
  {
    const std::lock_guard guard(lock_);
    eventHandler = std::move(eventHandler_);
    cancelHandler = std::move(cancelHandler_);
  }
  if (cancelHandler) cancelHandler();
}

}  // namespace ORLFoundation::internal::events

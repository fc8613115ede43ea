#include <ORLFoundation/platform/net/internal/Delivery.h>

#include <ORLFoundation/platform/operation/NSOperationQueue.h>

namespace ORLFoundation::internal::net {

void Delivery::push(std::function<void()> event) {
  {
    const std::lock_guard guard(lock_);
    events_.push_back(std::move(event));
    if (std::exchange(isRunning_, true)) return;
  }
  queue_->addOperationWithBlock([self = shared_from_this()] { self->run(); });
}

void Delivery::run() {
  while (true) {
    std::function<void()> event;
    {
      const std::lock_guard guard(lock_);
      isRunning_ = !events_.empty();
      if (!isRunning_) return;
      event = std::move(events_.front());
      events_.pop_front();
    }
    runNow(event);
  }
}

}  // namespace ORLFoundation::internal::net

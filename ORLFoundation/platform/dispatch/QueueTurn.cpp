#include <ORLFoundation/platform/dispatch/QueueTurn.h>

#include <ORLFoundation/platform/dispatch/internal/Queue.h>
#include <ORLFoundation/platform/dispatch/internal/QueueFrame.h>

#include <utility>

namespace ORLFoundation::internal::dispatch {

std::unique_ptr<QueueTurn> QueueTurn::tryTake(dispatch_queue_t queue) {
  if (!queue->tryTake()) return nullptr;
  return std::unique_ptr<QueueTurn>(new QueueTurn(std::move(queue)));
}

QueueTurn::~QueueTurn() { queue_->giveBack(); }

void QueueTurn::run(const dispatch_block_t& block) const noexcept {
  const InQueue inside(queue_.get());
  block();
}

}  // namespace ORLFoundation::internal::dispatch

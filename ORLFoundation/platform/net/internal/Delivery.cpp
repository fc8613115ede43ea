#include <ORLFoundation/platform/net/internal/Delivery.h>

#include <ORLFoundation/platform/operation/NSOperation.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>

namespace ORLFoundation::internal::net {
namespace {

/// So many events run before others' operations get their turn.
constexpr int kMostInATurn = 64;

}  // namespace

/// An operation that runs events. Nobody can cancel it: a task whose end were never told would hold
/// its session for good.
class Delivery::Turn final : public NSOperation {
 public:
  explicit Turn(std::shared_ptr<Delivery> delivery) : delivery_(std::move(delivery)) {}
  void main() override { delivery_->run(); }
  void cancel() override {}

 private:
  const std::shared_ptr<Delivery> delivery_;
};

void Delivery::push(std::function<void()> event) {
  {
    const std::lock_guard guard(lock_);
    events_.push_back(std::move(event));
    if (std::exchange(isRunning_, true)) return;
  }
  addTurn();
}

void Delivery::addTurn() { queue_->addOperation(std::make_shared<Turn>(shared_from_this())); }

void Delivery::run() {
  for (int left = kMostInATurn; left > 0; --left) {
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
  addTurn();
}

}  // namespace ORLFoundation::internal::net

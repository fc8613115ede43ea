
#include <ORLFoundation/platform/dispatch/internal/Queue.h>

#include <ORLFoundation/platform/dispatch/internal/QueueFrame.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>

#include <condition_variable>
#include <utility>

namespace ORLFoundation::internal::dispatch {
namespace {

/// Items that one turn in the pool runs before others of its urgency have theirs.
constexpr int kMostItemsInATurn = 64;

}  // namespace

/// A thread that waits until the queue is handed to it.
struct SerialQueue::Waiter {
  void wait() {
    std::unique_lock guard(lock);
    isOwner.wait(guard, [this] { return owns; });
  }
  [[nodiscard]] bool hasTurn() {
    const std::lock_guard guard(lock);
    return owns;
  }
  /// Within the lock: the waiter is gone as soon as it has seen that it owns the queue.
  void give() {
    const std::lock_guard guard(lock);
    owns = true;
    isOwner.notify_one();
  }

  std::mutex lock;
  std::condition_variable isOwner;
  bool owns = false;
};

/// The queue's owner, for the time of a call.
class SerialQueue::Owned {
 public:
  explicit Owned(SerialQueue& queue) : queue_(queue) {
    if (!queue_.tryTake()) queue_.waitForTurn();
  }
  ~Owned() { queue_.giveBack(); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;

 private:
  SerialQueue& queue_;
};

SerialQueue::SerialQueue(const char* label, WorkerPool& pool, Level level)
    : Queue(label), pool_(pool), level_(level) {
  turn_.run = serveTurn;
  turn_.queue = this;
}

std::shared_ptr<SerialQueue> SerialQueue::make(const char* label, WorkerPool& pool, Level level) {
  return {new SerialQueue(label, pool, level), &SerialQueue::letGo};
}

/// In place of its deletion when the last handle goes: an owner deletes it when he leaves it.
void SerialQueue::letGo(SerialQueue* queue) {
  if ((queue->state_.fetch_or(kUnheld, std::memory_order_acq_rel) & kBusy) == 0) delete queue;
}

void SerialQueue::run(void (*call)(void*), void* argument) {
  if (isWithinQueue(this))
    ORLFFatalError("dispatch_sync called on a queue that the caller is in", __FILE__, __LINE__);
  const Owned owned(*this);
  const InQueue inside(this);
  call(argument);
}

bool SerialQueue::tryTake() {
  std::uint32_t idle = 0;
  return state_.compare_exchange_strong(idle, kBusy, std::memory_order_acquire,
                                        std::memory_order_relaxed);
}

void SerialQueue::giveBack() {
  if (!leave()) handOn();
}

/// By the owner: answers false when items wait. Otherwise the queue is not his any more, and may be
/// gone.
bool SerialQueue::leave() {
  std::uint32_t found = kBusy;
  if (state_.compare_exchange_strong(found, 0, std::memory_order_release,
                                     std::memory_order_acquire))
    return true;
  if ((found & kPending) != 0) return false;
  delete this;
  return true;
}

void SerialQueue::async(dispatch_block_t block) {
  {
    const std::lock_guard guard(lock_);
    items_.push_back({.block = std::move(block)});
    // What waits is told of before the owner can have left.
    if ((state_.fetch_or(kBusy | kPending, std::memory_order_acq_rel) & kBusy) != 0) return;
  }
  submitTurn();
}

void SerialQueue::waitForTurn() {
  Waiter waiter;
  {
    const std::lock_guard guard(lock_);
    items_.push_back({.block = nullptr, .waiter = &waiter});
    if ((state_.fetch_or(kBusy | kPending, std::memory_order_acq_rel) & kBusy) == 0) {
      // The owner has left meanwhile; an idle queue has no items but this one.
      items_.pop_front();
      state_.fetch_and(~kPending, std::memory_order_relaxed);
      return;
    }
  }
  // At the process's end no thread of the pool comes: what is before the caller runs on its thread.
  while (!waiter.hasTurn() && pool_.takeBack(level_, &turn_)) serveTurn(&turn_);
  waiter.wait();
}

/// By the owner, when items wait.
void SerialQueue::handOn() {
  Waiter* next = nullptr;
  {
    const std::lock_guard guard(lock_);
    next = items_.front().waiter;
    if (next != nullptr) {
      items_.pop_front();
      if (items_.empty()) state_.fetch_and(~kPending, std::memory_order_relaxed);
    }
  }
  if (next != nullptr) {
    next->give();
  } else {
    submitTurn();
  }
}

/// By the owner: the turn owns the queue from here on.
void SerialQueue::submitTurn() { pool_.submit(level_, &turn_); }

/// The next item, or false when there is none and the queue was left.
bool SerialQueue::takeItem(Item& item) {
  do {
    const std::lock_guard guard(lock_);
    if (items_.empty()) continue;
    item = std::move(items_.front());
    items_.pop_front();
    if (items_.empty()) state_.fetch_and(~kPending, std::memory_order_relaxed);
    return true;
  } while (!leave());
  return false;
}

/// Answers whether the queue is still owned and is to have another turn.
bool SerialQueue::serveSome() {
  for (int left = kMostItemsInATurn; left > 0; --left) {
    Item item;
    if (!takeItem(item)) return false;
    if (item.waiter != nullptr) {
      item.waiter->give();
      return false;
    }
    const InQueue inside(this);
    item.block();
    item.block = nullptr;
    if (pool_.hasMoreUrgentThan(level_)) return true;
  }
  return true;
}

void SerialQueue::serveTurn(Work* work) noexcept {
  SerialQueue& queue = *static_cast<Turn*>(work)->queue;
  if (queue.serveSome()) queue.submitTurn();
}

}  // namespace ORLFoundation::internal::dispatch

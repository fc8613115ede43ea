/// The kinds of queues behind `dispatch_queue_t`.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/internal/WorkerPool.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

namespace ORLFoundation::internal::dispatch {

class Queue : public std::enable_shared_from_this<Queue> {
 public:
  explicit Queue(const char* label) : label_(label != nullptr ? label : "") {}
  virtual ~Queue() = default;
  Queue(const Queue&) = delete;
  Queue& operator=(const Queue&) = delete;

  [[nodiscard]] const char* label() const noexcept { return label_.c_str(); }
  virtual void async(dispatch_block_t block) = 0;
  virtual void after(std::int64_t due, dispatch_block_t block);
  virtual void run(void (*call)(void*), void* argument) = 0;
  /// Whether the calling thread got the queue for itself, without waiting; it gives it back.
  [[nodiscard]] virtual bool tryTake() { return false; }
  virtual void giveBack() {}

 private:
  const std::string label_;
};

/// One item at a time. Who sets the bit kBusy of the state owns the queue: a caller that runs its
/// own call in it, or the queue's turn in the pool, which goes on until nothing is left. An owner
/// hands the queue on; nobody takes it from one. While it is owned it lives, without its handles
/// too, so that an entry counts no references.
class SerialQueue final : public Queue {
 public:
  [[nodiscard]] static std::shared_ptr<SerialQueue> make(const char* label, WorkerPool& pool,
                                                         Level level);

  void async(dispatch_block_t block) override;
  void run(void (*call)(void*), void* argument) override;
  [[nodiscard]] bool tryTake() override;
  void giveBack() override;

 private:
  struct Waiter;
  struct Item {
    dispatch_block_t block;
    Waiter* waiter = nullptr;
  };
  struct Turn : Work {
    SerialQueue* queue = nullptr;
  };
  class Owned;

  static constexpr std::uint32_t kBusy = 1;
  static constexpr std::uint32_t kPending = 2;  // Items wait.
  static constexpr std::uint32_t kUnheld = 4;   // No handle is left.

  SerialQueue(const char* label, WorkerPool& pool, Level level);

  static void letGo(SerialQueue* queue);
  void waitForTurn();
  [[nodiscard]] bool leave();
  void handOn();
  void submitTurn();
  [[nodiscard]] bool takeItem(Item& item);
  [[nodiscard]] bool serveSome();
  static void serveTurn(Work* work) noexcept;

  std::atomic<std::uint32_t> state_{0};
  std::mutex lock_;
  std::deque<Item> items_;
  WorkerPool& pool_;
  const Level level_;
  Turn turn_;
};

/// Items side by side.
class ConcurrentQueue final : public Queue {
 public:
  ConcurrentQueue(const char* label, WorkerPool& pool, Level level)
      : Queue(label), pool_(pool), level_(level) {}

  void async(dispatch_block_t block) override;
  void run(void (*call)(void*), void* argument) override;
  /// There is room for everybody.
  [[nodiscard]] bool tryTake() override { return true; }

 private:
  WorkerPool& pool_;
  const Level level_;
};

/// Items on the main thread.
class MainQueue final : public Queue {
 public:
  MainQueue();

  void async(dispatch_block_t block) override;
  void after(std::int64_t due, dispatch_block_t block) override;
  void run(void (*call)(void*), void* argument) override;
};

}  // namespace ORLFoundation::internal::dispatch

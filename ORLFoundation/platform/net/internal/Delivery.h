/// How a session's events reach its delegate, one at a time and in order: on the operation queue
/// that was given, or where there is none at once, on the thread that loads.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace ORLFoundation {
class NSOperationQueue;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::net {

class Delivery : public std::enable_shared_from_this<Delivery> {
 public:
  explicit Delivery(std::shared_ptr<NSOperationQueue> queue) : queue_(std::move(queue)) {}

  /// Whether events run later than they are given.
  [[nodiscard]] bool isElsewhere() const noexcept { return queue_ != nullptr; }
  /// For the thread that loads. What an event throws ends the process.
  template <class Event>
  void deliver(Event&& event) {
    if (isElsewhere()) return push(std::forward<Event>(event));
    runNow(event);
  }

 private:
  class Turn;

  template <class Event>
  static void runNow(Event& event) noexcept {
    event();
  }
  void push(std::function<void()> event);
  void addTurn();
  void run();

  const std::shared_ptr<NSOperationQueue> queue_;
  std::mutex lock_;
  std::deque<std::function<void()>> events_;
  bool isRunning_ = false;  ///< Whether an operation is on the queue that runs events.
};

}  // namespace ORLFoundation::internal::net

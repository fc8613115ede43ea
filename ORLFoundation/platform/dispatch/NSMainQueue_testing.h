/// A main thread whose clock stands still but for the test's hand.
///
///     orlftest::VirtualMainLoop loop;
///     const auto& queue = dispatch_get_main_queue();
///     dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 250'000'000), queue, block);
///     loop.advance(249'000'000);   // nothing yet
///     loop.advance(1'000'000);     // runs it
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>
#include <ORLFoundation/platform/dispatch/internal/MainThread.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace orlftest {

/// For tests on the main thread. What another test left on the main queue runs when it is made.
class VirtualMainLoop {
 public:
  VirtualMainLoop() { runReady(); }

  /// Nanoseconds since it was made.
  [[nodiscard]] std::int64_t now() const { return clock_->nanoseconds() - start_; }
  /// Runs what waits and what is due until nothing is.
  void runReady() {
    while (ORLFoundation::pumpMainQueue(0)) {
    }
  }
  /// Runs the items of the main queue alone, whatever is due.
  void runItems() {
    static_cast<void>(loop().runItems(ORLFoundation::internal::dispatch::kDefaultMode));
  }
  /// Goes on from instant to instant at which something is due, and runs it there, until so many
  /// nanoseconds have passed.
  void advance(std::int64_t nanoseconds) {
    const std::int64_t end = clock_->nanoseconds() + nanoseconds;
    while (true) {
      runReady();
      const std::int64_t next = loop().nextDue(ORLFoundation::internal::dispatch::kDefaultMode);
      if (next > end) break;
      clock_->advanceTo(next);
    }
    clock_->advanceTo(end);
  }
  /// The clock moves on and nothing runs.
  void stayBusy(std::int64_t nanoseconds) {
    clock_->advanceTo(clock_->nanoseconds() + nanoseconds);
  }

  /// Items of the main queue that wait to run at once.
  [[nodiscard]] std::size_t waiting() const { return loop().postedCount(); }
  /// When the delayed items of the main queue are due, sorted, since it was made.
  [[nodiscard]] std::vector<std::int64_t> later() const {
    return dueTimes(ORLFoundation::internal::dispatch::TimedKind::item);
  }
  /// When the timers of the main run loop are due, those that are valid, sorted.
  [[nodiscard]] std::vector<std::int64_t> timers() const {
    return dueTimes(ORLFoundation::internal::dispatch::TimedKind::timer);
  }
  [[nodiscard]] ORLFoundation::NSVirtualMonotonicClock& clock() const { return *clock_; }

 private:
  [[nodiscard]] static ORLFoundation::internal::dispatch::Loop& loop() {
    return *ORLFoundation::internal::dispatch::mainLoop();
  }
  [[nodiscard]] std::vector<std::int64_t> dueTimes(
      ORLFoundation::internal::dispatch::TimedKind kind) const {
    std::vector<std::int64_t> times = loop().dueTimes(kind);
    for (std::int64_t& time : times) time -= start_;
    return times;
  }

  const std::shared_ptr<ORLFoundation::NSVirtualMonotonicClock> clock_ =
      std::make_shared<ORLFoundation::NSVirtualMonotonicClock>();
  const std::int64_t start_ = clock_->nanoseconds();
  const ORLFoundation::Replaced<std::shared_ptr<ORLFoundation::NSMonotonicClock>> installed_{
      ORLFoundation::NSMonotonicClock::setCurrentClock, clock_};
};

/// How long others wait for a main thread that nobody serves, instead of 5 seconds, while it lives.
class MainThreadPatience {
 public:
  explicit MainThreadPatience(std::chrono::nanoseconds span)
      : before_(ORLFoundation::internal::dispatch::setMainThreadPatience(span.count())) {}
  ~MainThreadPatience() { ORLFoundation::internal::dispatch::setMainThreadPatience(before_); }
  MainThreadPatience(const MainThreadPatience&) = delete;
  MainThreadPatience& operator=(const MainThreadPatience&) = delete;

 private:
  const std::int64_t before_;
};

}  // namespace orlftest

/// The thread that minds what belongs to no queue's own threads: delayed items, descriptors of
/// sources, and pools whose threads are all busy. It runs only while there is something to mind.
#pragma once

#include <ORLFoundation/platform/dispatch/internal/Loop.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace ORLFoundation::internal::dispatch {

class WorkerPool;

class Keeper {
 public:
  /// Never destroyed.
  [[nodiscard]] static Keeper& shared();

  /// Runs the call at an instant of the clock in use. It is to be short: it holds up all others.
  /// Throws `std::system_error`, as `watch` does, where the system has no thread for the keeper;
  /// the call is then made once there is one.
  void schedule(const std::shared_ptr<TimedCall>& call, std::int64_t due);
  void watch(const std::shared_ptr<Watch>& watch);
  void unwatch(const std::shared_ptr<Watch>& watch);
  /// Looks after a pool until no work waits in it. Answers false where the system has no thread.
  [[nodiscard]] bool lookAfter(WorkerPool& pool);
  /// Whether the thread is there.
  [[nodiscard]] bool isRunning() const;
  void stop();

 private:
  Keeper() = default;
  void start();
  void serve();
  [[nodiscard]] bool lookAfterPools();
  [[nodiscard]] Deadline nextLook(bool isLooking) const;
  [[nodiscard]] bool mayEnd();

  mutable std::mutex lock_;
  bool isRunning_ = false;
  bool isStopped_ = false;
  std::vector<WorkerPool*> pools_;
  std::atomic<int> hasNews_{0};  // Of pools, or of the end: there is no wait before they are seen.
  Loop loop_;
};

}  // namespace ORLFoundation::internal::dispatch

/// The threads behind all queues but the main one. Work of a higher level begins first, work of one
/// level in order. There are as many threads as processors; where they are all blocked and work
/// waits, more come within some milliseconds, and those that find nothing to do end. Where the
/// system has no more threads, work waits for those that there are.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace ORLFoundation::internal::dispatch {

/// Something that a thread of the pool does once. Who submits it owns it until it runs.
struct Work {
  Work* next = nullptr;
  void (*run)(Work* work) noexcept = nullptr;
};

/// The urgencies, the highest first.
enum class Level : std::uint8_t { interactive, initiated, standard, utility, background };
inline constexpr std::size_t kLevelCount = 5;
/// Less urgent than any.
inline constexpr Level kNoLevel{kLevelCount};

struct PoolLimits {
  /// Threads that run side by side as long as none is blocked.
  std::size_t width = 1;
  /// Threads in all.
  std::size_t most = 512;
  /// How long a thread looks for work before it ends.
  std::int64_t idleNanoseconds = 5'000'000'000;
};

/// Its threads keep it in use for ever: a pool is never destroyed.
class WorkerPool {
 public:
  explicit WorkerPool(PoolLimits limits);
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  /// The pool of the process, as wide as the machine.
  [[nodiscard]] static WorkerPool& shared();

  void submit(Level level, Work* work);
  /// Whether more urgent work waits; asked between pieces of work, so it may be a moment late.
  [[nodiscard]] bool hasMoreUrgentThan(Level level) const noexcept {
    return first_.load(std::memory_order_relaxed) < static_cast<std::size_t>(level);
  }
  [[nodiscard]] std::size_t threadCount() const;

  /// From here on no work begins; waits a moment for that which runs. For the process's end.
  void stop();
  /// Gives back work that a pool which has stopped will not begin any more; false for any other.
  [[nodiscard]] bool takeBack(Level level, Work* work);
  /// Whether work waits, or has a moment ago, so that whoever looks after the pool is to go on
  /// doing so. To be asked once for each look.
  [[nodiscard]] bool needsLooks();
  /// Adds threads for those that have been blocked since the last look.
  void look();

 private:
  struct Worker {
    int thread = 0;  // As the kernel numbers it.
    bool isBusy = false;
    bool isTold = false;      // Of work, while it is idle.
    std::uint64_t begun = 0;  // Pieces of work.
    std::uint64_t seen = 0;   // `begun` at the last look.
    std::condition_variable hasNews;
  };
  struct List {
    Work* first = nullptr;
    Work* last = nullptr;
  };

  void serve(const std::shared_ptr<Worker>& self);
  void watchForWork(std::unique_lock<std::mutex>& guard);
  [[nodiscard]] bool waitForWork(std::unique_lock<std::mutex>& guard,
                                 const std::shared_ptr<Worker>& self);
  [[nodiscard]] Work* take();
  void noteFirst();
  [[nodiscard]] bool beginsToNeedLooks();
  void haveItLookedAfter();
  [[nodiscard]] bool startThread();

  const PoolLimits limits_;
  mutable std::mutex lock_;
  std::condition_variable hasEnded_;
  std::array<List, kLevelCount> ready_;
  std::size_t readyCount_ = 0;
  std::atomic<std::size_t> first_{kLevelCount};  // The most urgent level with work.
  std::vector<std::shared_ptr<Worker>> workers_;
  std::vector<std::shared_ptr<Worker>> idle_;  // The last to become idle is the first to work.
  std::size_t surplus_ = 0;                    // Workers that are to end when their work is done.
  bool isWatched_ = false;                     // A worker without work watches for the next, awake.
  bool isLookedAfter_ = false;
  int quietLooks_ = 0;  // In a row, at which no work waited.
  bool isStopped_ = false;
};

}  // namespace ORLFoundation::internal::dispatch

/// What stands behind a run loop: items, timed calls, ordered performs and descriptors, each for
/// some modes, and a wait for all of them at once. Any thread may add; one thread serves.
#pragma once

#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>
#include <ORLFoundation/platform/dispatch/NSSelector.h>
#include <poll.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::dispatch {

inline constexpr std::string_view kDefaultMode = "kCFRunLoopDefaultMode";
inline constexpr std::string_view kCommonModes = "kCFRunLoopCommonModes";

class Queue;

using Modes = std::vector<std::string>;

/// What a delayed or ordered perform calls, and is cancelled by.
struct Request {
  NSSelector selector;
  std::shared_ptr<NSObject> target;
  id argument;
};

/// Why a timed call waits; tests tell them apart.
enum class TimedKind : std::uint8_t { timer, item, perform };

/// A call at an instant of the clock in use.
struct TimedCall {
  std::int64_t due = kNever;
  Modes modes;
  TimedKind kind = TimedKind::timer;
  std::function<void()> run;
  std::shared_ptr<const Request> request;  // Of performs.
  /// 0 while it is on no loop; the order among those that are due together. Under the loop's lock.
  std::uint64_t sequence = 0;
};

/// A call that waits for its turn of the loop.
struct OrderedCall {
  std::uint64_t order = 0;
  Modes modes;
  std::shared_ptr<const Request> request;
};

/// A descriptor and the events that are waited for, as poll(2) names them.
struct Watch {
  int descriptor = -1;
  short events = POLLIN;
  Modes modes;
  std::function<void(short events)> ready;
  bool isCalled = false;  // While `ready` runs: a loop within it leaves the descriptor alone.
  std::atomic<bool> isOn{false};
};

/// How long a wait may last.
struct Deadline {
  std::int64_t at = kNever;
  /// By the system's clock even when another one is in use.
  bool isReal = false;
  /// There is no wait when nothing but items can ever happen.
  bool isForMore = false;
  /// There is no wait while it is other than 0: looked at behind the clearing of the wake, so that
  /// who sets it and then wakes is never missed.
  const std::atomic<int>* end = nullptr;
};

class Loop {
 public:
  Loop();
  ~Loop();
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  /// An item of the loop's queue, which runs in the common modes, in order, once.
  void post(std::function<void()> item);
  /// The queue that items are in while they run.
  void setQueue(const Queue* queue) noexcept { queue_ = queue; }
  [[nodiscard]] std::size_t postedCount() const;

  /// Puts a call on the loop, or again after it ran. One that is on the loop moves to its new time.
  void schedule(const std::shared_ptr<TimedCall>& call, std::int64_t due);
  /// Answers false when the call was not on the loop: it has run, runs, or was cancelled.
  bool cancel(const std::shared_ptr<TimedCall>& call);
  /// Adds a mode to a call, unless it has it.
  void addMode(const std::shared_ptr<TimedCall>& call, std::string_view mode);
  /// The instants of the calls of a kind, in order.
  [[nodiscard]] std::vector<std::int64_t> dueTimes(TimedKind kind) const;
  /// The first instant at which something is due in a mode; `kNever` for none.
  [[nodiscard]] std::int64_t nextDue(std::string_view mode) const;

  void perform(std::shared_ptr<OrderedCall> call);
  bool cancel(const std::shared_ptr<OrderedCall>& call);
  /// What is on the loop for a target.
  [[nodiscard]] std::vector<std::shared_ptr<TimedCall>> delayedPerforms(
      const std::shared_ptr<NSObject>& target) const;
  [[nodiscard]] std::vector<std::shared_ptr<OrderedCall>> orderedPerforms(
      const std::shared_ptr<NSObject>& target) const;

  void watch(const std::shared_ptr<Watch>& watch);
  /// The call does not begin again after this has returned on the loop's own thread.
  void unwatch(const std::shared_ptr<Watch>& watch);

  void addCommonMode(std::string_view mode);

  /// Runs what is due, the performs and the items that are there when it begins, and what the
  /// descriptors bring; waits for the first of them, until the deadline, when there is nothing to
  /// do. Answers whether anything ran. What a call throws comes through; the rest stays in place.
  bool runOnce(std::string_view mode, Deadline deadline);
  /// Runs the items that are there when it begins, and nothing else. Answers whether there were
  /// any.
  bool runItems(std::string_view mode);
  /// The mode in which the loop runs, the innermost one; empty when it does not. For its thread.
  [[nodiscard]] std::string_view currentMode() const noexcept;
  /// Whether nothing can ever happen in the mode but items. A loop that waits is woken when it may
  /// have become so.
  [[nodiscard]] bool isIdle(std::string_view mode) const;
  /// Whether an item, a perform or a due call is ready now.
  [[nodiscard]] bool hasReady(std::string_view mode) const;

  /// Ends a wait. Any thread.
  void wake();
  /// Ends the waits of all loops, which look at the clock anew.
  static void wakeAll();

  /// A host's loop waits in this one's place: every call that the loop makes is preceded by a wake,
  /// so that a loop of the host's within the call goes on with the rest. Answers false for a second
  /// bridge.
  bool setBridged(bool isBridged) noexcept { return isBridged_.exchange(isBridged) != isBridged; }
  [[nodiscard]] bool isBridged() const noexcept { return isBridged_; }

  /// Readable after `wake` until `clearWake`, with which each turn begins. What was added before a
  /// wake that finds the loop woken already is seen by the turn that clears it.
  [[nodiscard]] int wakeDescriptor() const noexcept { return wakeDescriptor_; }
  void clearWake();
  /// The descriptors that are watched in a mode, with their events.
  [[nodiscard]] std::vector<pollfd> watchedDescriptors(std::string_view mode) const;

 private:
  class Running;
  using Key = std::pair<std::int64_t, std::uint64_t>;

  [[nodiscard]] bool serves(const Modes& modes, std::string_view mode) const;
  [[nodiscard]] std::shared_ptr<TimedCall> takeDue(std::string_view mode, std::int64_t now,
                                                   std::uint64_t before);
  [[nodiscard]] std::shared_ptr<OrderedCall> takePerform(const std::shared_ptr<OrderedCall>& call);
  bool runDue(std::string_view mode);
  bool runPerforms(std::string_view mode);
  bool serveDescriptors(std::string_view mode, Deadline deadline, bool mayWait);
  void beginCall();
  [[nodiscard]] std::int64_t nextDueLocked(std::string_view mode) const;

  mutable std::mutex lock_;
  std::deque<std::function<void()>> items_;
  std::map<Key, std::shared_ptr<TimedCall>> timed_;
  std::vector<std::shared_ptr<OrderedCall>> performs_;
  std::vector<std::shared_ptr<Watch>> watches_;
  std::vector<std::string_view> running_;  // The loop's own thread alone reads and writes it.
  Modes commonModes_{std::string(kDefaultMode)};
  std::uint64_t sequence_ = 0;
  std::atomic<const Queue*> queue_{nullptr};
  std::mutex wakeLock_;  // of the descriptor and the flag together
  std::atomic<bool> isWoken_{false};
  std::atomic<bool> isBridged_{false};
  int wakeDescriptor_ = -1;
};

}  // namespace ORLFoundation::internal::dispatch

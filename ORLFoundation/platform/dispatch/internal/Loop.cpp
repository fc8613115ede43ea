
#include <ORLFoundation/platform/dispatch/internal/Loop.h>

#include <ORLFoundation/platform/dispatch/internal/QueueFrame.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace ORLFoundation::internal::dispatch {
namespace {

struct Registry {
  std::mutex lock;
  std::vector<Loop*> loops;
};

/// Never destroyed: threads that end after `main` still leave it.
Registry& registry() {
  static Registry& loops = *new Registry;
  return loops;
}

bool isIn(const Modes& modes, std::string_view mode) {
  return std::find(modes.begin(), modes.end(), mode) != modes.end();
}

/// How long poll may wait, null for ever. Another clock than the system's wakes the loop when it
/// moves.
const timespec* spanUntil(Deadline deadline, std::int64_t due, timespec& span) {
  const bool isSystem = NSMonotonicClock::isSystemClock();
  const std::int64_t now = NSMonotonicClock::now();
  std::int64_t left = kNever;
  if (deadline.isReal && deadline.at != kNever)
    left = std::max<std::int64_t>(deadline.at - realNow(), 0);
  for (const std::int64_t instant : {due, deadline.isReal ? kNever : deadline.at})
    if (instant <= now || (isSystem && instant != kNever))
      left = std::min(left, std::max<std::int64_t>(instant - now, 0));
  if (left == kNever) return nullptr;
  constexpr std::int64_t kSecond = 1'000'000'000;
  span.tv_sec = static_cast<std::time_t>(left / kSecond);
  span.tv_nsec = static_cast<long>(left % kSecond);
  return &span;
}

class CalledWatch {
 public:
  explicit CalledWatch(Watch& watch) : watch_(watch) { watch_.isCalled = true; }
  ~CalledWatch() { watch_.isCalled = false; }
  CalledWatch(const CalledWatch&) = delete;
  CalledWatch& operator=(const CalledWatch&) = delete;

 private:
  Watch& watch_;
};

}  // namespace

Loop::Loop() : wakeDescriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
  if (wakeDescriptor_ < 0) ORLFFatalError("no descriptor for a run loop", __FILE__, __LINE__);
  const std::lock_guard guard(registry().lock);
  registry().loops.push_back(this);
}

Loop::~Loop() {
  {
    const std::lock_guard guard(registry().lock);
    std::erase(registry().loops, this);
  }
  // Whoever holds a call may put it on another loop.
  for (const auto& [key, call] : timed_) {
    call->sequence = 0;
    call->modes.clear();
  }
  ::close(wakeDescriptor_);
}

void Loop::wake() {
  if (isWoken_) return;
  const std::lock_guard guard(wakeLock_);
  if (isWoken_) return;
  const std::uint64_t one = 1;
  static_cast<void>(!::write(wakeDescriptor_, &one, sizeof one));
  isWoken_ = true;
}

void Loop::wakeAll() {
  const std::lock_guard guard(registry().lock);
  for (Loop* loop : registry().loops) loop->wake();
}

void Loop::clearWake() {
  if (!isWoken_) return;
  const std::lock_guard guard(wakeLock_);
  isWoken_ = false;
  std::uint64_t count = 0;
  static_cast<void>(!::read(wakeDescriptor_, &count, sizeof count));
}

/// Before each call out of the loop.
void Loop::beginCall() {
  if (isBridged_) wake();
}

void Loop::post(std::function<void()> item) {
  {
    const std::lock_guard guard(lock_);
    items_.push_back(std::move(item));
  }
  wake();
}

std::size_t Loop::postedCount() const {
  const std::lock_guard guard(lock_);
  return items_.size();
}

void Loop::schedule(const std::shared_ptr<TimedCall>& call, std::int64_t due) {
  {
    const std::lock_guard guard(lock_);
    if (call->sequence != 0) timed_.erase({call->due, call->sequence});
    call->due = due;
    call->sequence = ++sequence_;
    timed_.emplace(Key{due, call->sequence}, call);
  }
  wake();
}

bool Loop::cancel(const std::shared_ptr<TimedCall>& call) {
  {
    const std::lock_guard guard(lock_);
    if (call->sequence == 0) return false;
    timed_.erase({call->due, call->sequence});
    call->sequence = 0;
    if (!timed_.empty()) return true;
  }
  wake();
  return true;
}

void Loop::addMode(const std::shared_ptr<TimedCall>& call, std::string_view mode) {
  {
    const std::lock_guard guard(lock_);
    if (isIn(call->modes, mode)) return;
    call->modes.emplace_back(mode);
    if (call->sequence == 0) return;
  }
  wake();
}

std::vector<std::int64_t> Loop::dueTimes(TimedKind kind) const {
  const std::lock_guard guard(lock_);
  std::vector<std::int64_t> times;
  for (const auto& [key, call] : timed_)
    if (call->kind == kind) times.push_back(key.first);
  return times;
}

std::int64_t Loop::nextDue(std::string_view mode) const {
  const std::lock_guard guard(lock_);
  return nextDueLocked(mode);
}

std::int64_t Loop::nextDueLocked(std::string_view mode) const {
  for (const auto& [key, call] : timed_)
    if (serves(call->modes, mode)) return key.first;
  return kNever;
}

void Loop::perform(std::shared_ptr<OrderedCall> call) {
  {
    const std::lock_guard guard(lock_);
    const auto place = std::upper_bound(
        performs_.begin(), performs_.end(), call,
        [](const auto& left, const auto& right) { return left->order < right->order; });
    performs_.insert(place, std::move(call));
  }
  wake();
}

bool Loop::cancel(const std::shared_ptr<OrderedCall>& call) { return takePerform(call) != nullptr; }

std::shared_ptr<OrderedCall> Loop::takePerform(const std::shared_ptr<OrderedCall>& call) {
  const std::lock_guard guard(lock_);
  return std::erase(performs_, call) > 0 ? call : nullptr;
}

std::vector<std::shared_ptr<TimedCall>> Loop::delayedPerforms(
    const std::shared_ptr<NSObject>& target) const {
  const std::lock_guard guard(lock_);
  std::vector<std::shared_ptr<TimedCall>> calls;
  for (const auto& [key, call] : timed_)
    if (call->request && call->request->target == target) calls.push_back(call);
  return calls;
}

std::vector<std::shared_ptr<OrderedCall>> Loop::orderedPerforms(
    const std::shared_ptr<NSObject>& target) const {
  const std::lock_guard guard(lock_);
  std::vector<std::shared_ptr<OrderedCall>> calls;
  for (const auto& call : performs_)
    if (call->request->target == target) calls.push_back(call);
  return calls;
}

void Loop::watch(const std::shared_ptr<Watch>& watch) {
  {
    const std::lock_guard guard(lock_);
    if (watch->isOn.exchange(true)) return;
    watches_.push_back(watch);
  }
  wake();
}

void Loop::unwatch(const std::shared_ptr<Watch>& watch) {
  {
    const std::lock_guard guard(lock_);
    if (!watch->isOn.exchange(false)) return;
    std::erase(watches_, watch);
  }
  wake();
}

void Loop::addCommonMode(std::string_view mode) {
  {
    const std::lock_guard guard(lock_);
    if (!isIn(commonModes_, mode)) commonModes_.emplace_back(mode);
  }
  wake();
}

bool Loop::serves(const Modes& modes, std::string_view mode) const {
  return isIn(modes, mode) || (isIn(modes, kCommonModes) && isIn(commonModes_, mode));
}

std::shared_ptr<TimedCall> Loop::takeDue(std::string_view mode, std::int64_t now,
                                         std::uint64_t before) {
  const std::lock_guard guard(lock_);
  for (auto it = timed_.begin(); it != timed_.end() && it->first.first <= now; ++it) {
    std::shared_ptr<TimedCall> call = it->second;
    if (call->sequence > before || !serves(call->modes, mode)) continue;
    timed_.erase(it);
    call->sequence = 0;
    return call;
  }
  return nullptr;
}

bool Loop::runDue(std::string_view mode) {
  std::uint64_t before = 0;
  {
    const std::lock_guard guard(lock_);
    if (timed_.empty()) return false;
    before = sequence_;
  }
  const std::int64_t now = NSMonotonicClock::now();
  bool ran = false;
  while (const std::shared_ptr<TimedCall> call = takeDue(mode, now, before)) {
    ran = true;
    beginCall();
    if (call->kind == TimedKind::item) {
      const InQueue inside(queue_);
      call->run();
    } else {
      call->run();
    }
  }
  return ran;
}

bool Loop::runPerforms(std::string_view mode) {
  std::vector<std::shared_ptr<OrderedCall>> ready;
  {
    const std::lock_guard guard(lock_);
    for (const auto& call : performs_)
      if (serves(call->modes, mode)) ready.push_back(call);
  }
  bool ran = false;
  for (const auto& call : ready) {
    if (takePerform(call) == nullptr) continue;  // One before it cancelled it.
    ran = true;
    beginCall();
    call->request->selector.perform(call->request->target, call->request->argument);
  }
  return ran;
}

bool Loop::runItems(std::string_view mode) {
  std::unique_lock guard(lock_);
  if (!isIn(commonModes_, mode)) return false;
  bool ran = false;
  // Those that items add wait for the next turn, and a loop within an item may take some.
  for (std::size_t left = items_.size(); left > 0 && !items_.empty(); --left) {
    std::function<void()> item = std::move(items_.front());
    items_.pop_front();
    guard.unlock();
    ran = true;
    beginCall();
    {
      const InQueue inside(queue_);
      item();
      item = nullptr;  // Without the lock: what it held may post when it goes.
    }
    guard.lock();
  }
  return ran;
}

std::vector<pollfd> Loop::watchedDescriptors(std::string_view mode) const {
  const std::lock_guard guard(lock_);
  std::vector<pollfd> descriptors;
  for (const auto& watch : watches_)
    if (serves(watch->modes, mode)) descriptors.push_back({watch->descriptor, watch->events, 0});
  return descriptors;
}

bool Loop::serveDescriptors(std::string_view mode, Deadline deadline, bool mayWait) {
  std::vector<std::shared_ptr<Watch>> watches;
  std::vector<pollfd> descriptors{{wakeDescriptor_, POLLIN, 0}};
  std::int64_t due = 0;
  {
    const std::lock_guard guard(lock_);
    for (const auto& watch : watches_) {
      if (watch->isCalled || !serves(watch->modes, mode)) continue;
      watches.push_back(watch);
      descriptors.push_back({watch->descriptor, watch->events, 0});
    }
    due = nextDueLocked(mode);
  }
  if (!mayWait && watches.empty()) return false;
  timespec span{};
  const timespec* wait = mayWait ? spanUntil(deadline, due, span) : &span;
  const int count = ::ppoll(descriptors.data(), descriptors.size(), wait, nullptr);
  bool ran = false;
  for (std::size_t i = 0; count > 0 && i < watches.size(); ++i) {
    const short events = descriptors[i + 1].revents;
    if (events == 0 || !watches[i]->isOn) continue;
    ran = true;
    beginCall();
    const CalledWatch called(*watches[i]);
    if (watches[i]->ready) watches[i]->ready(events);
  }
  return ran;
}

bool Loop::hasReady(std::string_view mode) const {
  const std::int64_t now = NSMonotonicClock::now();
  const std::lock_guard guard(lock_);
  if (!items_.empty() && isIn(commonModes_, mode)) return true;
  if (nextDueLocked(mode) <= now) return true;
  return std::any_of(performs_.begin(), performs_.end(),
                     [&](const auto& call) { return serves(call->modes, mode); });
}

bool Loop::isIdle(std::string_view mode) const {
  const std::lock_guard guard(lock_);
  const auto isServed = [&](const auto& entry) { return serves(entry->modes, mode); };
  return nextDueLocked(mode) == kNever &&
         std::none_of(performs_.begin(), performs_.end(), isServed) &&
         std::none_of(watches_.begin(), watches_.end(), isServed);
}

/// The loop runs in a mode while this lives.
class Loop::Running {
 public:
  Running(Loop& loop, std::string_view mode) : loop_(loop) { loop_.running_.push_back(mode); }
  ~Running() { loop_.running_.pop_back(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  Loop& loop_;
};

std::string_view Loop::currentMode() const noexcept {
  return running_.empty() ? std::string_view() : running_.back();
}

bool Loop::runOnce(std::string_view mode, Deadline deadline) {
  const Running running(*this, mode);
  clearWake();  // First: what is added from here on wakes again.
  bool ran = runDue(mode);
  ran = runPerforms(mode) || ran;
  ran = runItems(mode) || ran;
  const bool isEnded =
      (deadline.end != nullptr && *deadline.end != 0) || (deadline.isForMore && isIdle(mode));
  const bool mayWait = !ran && !isEnded && !hasReady(mode);
  return serveDescriptors(mode, deadline, mayWait) || ran;
}

}  // namespace ORLFoundation::internal::dispatch

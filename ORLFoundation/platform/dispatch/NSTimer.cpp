
#include <ORLFoundation/platform/dispatch/NSTimer.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/internal/Loop.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

using internal::dispatch::kNever;
using internal::dispatch::laterBy;
using internal::dispatch::Loop;
using internal::dispatch::nanosecondsOf;
using internal::dispatch::TimedCall;

namespace {

constexpr std::int64_t kLeastNanoseconds = 100'000;

std::int64_t spanOf(NSTimeInterval seconds) {
  return std::max(nanosecondsOf(seconds), kLeastNanoseconds);
}

/// The first beat after now.
std::int64_t nextBeat(std::int64_t due, std::int64_t span, std::int64_t now) {
  const std::int64_t missed = now > due ? (now - due) / span : 0;
  return laterBy(due + missed * span, span);
}

NSTimerBlock blockOf(std::shared_ptr<NSObject> target, NSSelector selector) {
  return [target = std::move(target), selector = std::move(selector)](NSTimer& timer) {
    selector.perform(target, timer.shared_from_this());
  };
}

}  // namespace

struct NSTimer::State {
  mutable std::mutex lock;
  std::int64_t span = kLeastNanoseconds;
  bool repeats = false;
  bool isValid = true;
  std::int64_t due = kNever;
  std::shared_ptr<const NSTimerBlock> block;
  id userInfo;
  std::weak_ptr<Loop> loop;
  TimedCall call;
};

NSTimer::NSTimer(NSTimeInterval timeInterval, bool repeats, NSTimerBlock block, id userInfo)
    : state_(std::make_unique<State>()) {
  state_->span = spanOf(timeInterval);
  state_->repeats = repeats;
  state_->due = laterBy(NSMonotonicClock::now(), state_->span);
  state_->block = std::make_shared<const NSTimerBlock>(std::move(block));
  state_->userInfo = std::move(userInfo);
  state_->call.run = [this] { fireOnLoop(); };
}

NSTimer::~NSTimer() = default;

std::shared_ptr<NSTimer> NSTimer::make(NSTimeInterval timeInterval, bool repeats,
                                       NSTimerBlock block, id userInfo) {
  return std::shared_ptr<NSTimer>(
      new NSTimer(timeInterval, repeats, std::move(block), std::move(userInfo)));
}

std::shared_ptr<NSTimer> NSTimer::timerWithTimeInterval(NSTimeInterval timeInterval, bool repeats,
                                                        NSTimerBlock block) {
  return make(timeInterval, repeats, std::move(block), nullptr);
}

std::shared_ptr<NSTimer> NSTimer::timerWithTimeInterval(NSTimerArguments arguments) {
  return make(arguments.timeInterval, arguments.repeats,
              blockOf(std::move(arguments.target), std::move(arguments.selector)),
              std::move(arguments.userInfo));
}

std::shared_ptr<NSTimer> NSTimer::scheduledTimerWithTimeInterval(NSTimeInterval timeInterval,
                                                                 bool repeats, NSTimerBlock block) {
  auto timer = timerWithTimeInterval(timeInterval, repeats, std::move(block));
  NSRunLoop::currentRunLoop()->addTimer(timer, NSDefaultRunLoopMode);
  return timer;
}

std::shared_ptr<NSTimer> NSTimer::scheduledTimerWithTimeInterval(NSTimerArguments arguments) {
  auto timer = timerWithTimeInterval(std::move(arguments));
  NSRunLoop::currentRunLoop()->addTimer(timer, NSDefaultRunLoopMode);
  return timer;
}

/// The call as a loop holds it: with the timer, which so lives as long as it is on the loop.
std::shared_ptr<TimedCall> NSTimer::call() { return {shared_from_this(), &state_->call}; }

void NSTimer::addToLoop(const std::shared_ptr<Loop>& loop, const std::string& mode) {
  const std::lock_guard guard(state_->lock);
  if (!state_->isValid) return;
  const std::shared_ptr<Loop> before = state_->loop.lock();
  if (before != nullptr && before != loop) return;
  state_->loop = loop;
  loop->addMode(call(), mode);
  if (before == nullptr) loop->schedule(call(), state_->due);
}

void NSTimer::fireOnLoop() {
  /// The next beat comes also when the call throws.
  struct Beat {
    ~Beat() {
      const State& state = *timer.state_;
      const std::lock_guard guard(state.lock);
      if (!state.isValid || state.due != due) return;  // The call may have set another date.
      timer.state_->due = nextBeat(state.due, state.span, NSMonotonicClock::now());
      if (const auto loop = state.loop.lock()) loop->schedule(timer.call(), state.due);
    }
    NSTimer& timer;
    std::int64_t due = 0;
  } beat{.timer = *this};
  {
    const std::lock_guard guard(state_->lock);
    beat.due = state_->due;
  }
  fire();
}

void NSTimer::fire() {
  const auto held = weak_from_this().lock();  // The call may let go of the last that holds it.
  /// The only call was made also when it throws.
  struct Done {
    ~Done() {
      if (!timer.state_->repeats) timer.invalidate();
    }
    NSTimer& timer;
  };
  std::shared_ptr<const NSTimerBlock> block;
  {
    const std::lock_guard guard(state_->lock);
    if (!state_->isValid) return;
    block = state_->block;
  }
  const Done done{*this};
  if (*block) (*block)(*this);
}

void NSTimer::invalidate() {
  const auto held = weak_from_this().lock();  // The loop may be the last that holds it.
  std::shared_ptr<const NSTimerBlock> block;
  id userInfo;
  const std::lock_guard guard(state_->lock);
  if (!state_->isValid) return;
  state_->isValid = false;
  block = std::move(state_->block);
  userInfo = std::exchange(state_->userInfo, nullptr);
  if (const auto loop = state_->loop.lock(); loop && held) loop->cancel(call());
}

bool NSTimer::isValid() const {
  const std::lock_guard guard(state_->lock);
  return state_->isValid;
}

NSTimeInterval NSTimer::timeInterval() const noexcept {
  return state_->repeats ? static_cast<double>(state_->span) / 1e9 : 0;
}

id NSTimer::userInfo() const {
  const std::lock_guard guard(state_->lock);
  return state_->userInfo;
}

NSDate NSTimer::fireDate() const {
  const std::lock_guard guard(state_->lock);
  const auto left = static_cast<double>(state_->due - NSMonotonicClock::now());
  return NSDate::date().dateByAddingTimeInterval(left / 1e9);
}

void NSTimer::setFireDate(NSDate date) {
  const NSTimeInterval left = date.timeIntervalSinceDate(NSDate::date());
  const std::lock_guard guard(state_->lock);
  if (!state_->isValid) return;
  state_->due = laterBy(NSMonotonicClock::now(), nanosecondsOf(left));
  if (const auto loop = state_->loop.lock()) loop->schedule(call(), state_->due);
}

}  // namespace ORLFoundation

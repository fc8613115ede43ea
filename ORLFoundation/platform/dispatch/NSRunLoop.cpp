
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>

#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/internal/Loop.h>
#include <ORLFoundation/platform/dispatch/internal/MainThread.h>

#include <string_view>
#include <utility>

namespace ORLFoundation {

using internal::dispatch::kNever;
using internal::dispatch::laterBy;
using internal::dispatch::Loop;
using internal::dispatch::mainLoop;
using internal::dispatch::nanosecondsOf;
using internal::dispatch::OrderedCall;
using internal::dispatch::Request;
using internal::dispatch::ServingMain;
using internal::dispatch::Watch;

const std::string NSDefaultRunLoopMode(internal::dispatch::kDefaultMode);
const std::string NSRunLoopCommonModes(internal::dispatch::kCommonModes);

NSRunLoopDescriptor::NSRunLoopDescriptor(std::weak_ptr<Loop> loop, std::shared_ptr<Watch> watch)
    : loop_(std::move(loop)), watch_(std::move(watch)) {}

NSRunLoopDescriptor::~NSRunLoopDescriptor() { invalidate(); }

void NSRunLoopDescriptor::invalidate() {
  if (const auto loop = loop_.lock()) loop->unwatch(watch_);
}

bool NSRunLoopDescriptor::isValid() const noexcept { return watch_->isOn; }

struct NSRunLoop::State {
  const std::shared_ptr<Loop> loop;
};

NSRunLoop::NSRunLoop(std::shared_ptr<Loop> loop)
    : state_(std::make_unique<State>(State{.loop = std::move(loop)})) {}

NSRunLoop::~NSRunLoop() = default;

std::shared_ptr<NSRunLoop> NSRunLoop::currentRunLoop() {
  if (internal::dispatch::isMainThread()) return mainRunLoop();
  const std::shared_ptr<NSThread> thread = NSThread::currentThread();
  if (!thread->runLoop_) thread->runLoop_ = std::make_shared<NSRunLoop>(std::make_shared<Loop>());
  return thread->runLoop_;
}

const std::shared_ptr<NSRunLoop>& NSRunLoop::mainRunLoop() {
  static const auto& loop = *new auto(std::make_shared<NSRunLoop>(mainLoop()));
  return loop;
}

void NSRunLoop::addTimer(const std::shared_ptr<NSTimer>& timer, const std::string& forMode) {
  if (timer) timer->addToLoop(state_->loop, forMode);
}

std::shared_ptr<NSRunLoopDescriptor> NSRunLoop::addDescriptor(
    int descriptor, short events, const std::string& forMode,
    std::function<void(short events)> block) {
  const auto watch = std::make_shared<Watch>();
  watch->descriptor = descriptor;
  watch->events = events;
  watch->modes.push_back(forMode);
  watch->ready = std::move(block);
  state_->loop->watch(watch);
  return std::make_shared<NSRunLoopDescriptor>(state_->loop, watch);
}

void NSRunLoop::performSelector(NSOrderedPerform perform) {
  auto call = std::make_shared<OrderedCall>();
  call->order = perform.order;
  call->modes = std::move(perform.modes);
  call->request = std::make_shared<Request>(Request{.selector = std::move(perform.selector),
                                                    .target = std::move(perform.target),
                                                    .argument = std::move(perform.argument)});
  state_->loop->perform(std::move(call));
}

void NSRunLoop::cancelPerformSelector(const NSSelector& selector,
                                      const std::shared_ptr<NSObject>& target, const id& argument) {
  for (const auto& call : state_->loop->orderedPerforms(target))
    if (call->request->selector == selector && call->request->argument == argument)
      state_->loop->cancel(call);
}

void NSRunLoop::cancelPerformSelectorsWithTarget(const std::shared_ptr<NSObject>& target) {
  for (const auto& call : state_->loop->orderedPerforms(target)) state_->loop->cancel(call);
}

void NSRunLoop::addCommonMode(const std::string& mode) { state_->loop->addCommonMode(mode); }

std::optional<std::string> NSRunLoop::currentMode() const {
  const std::string_view mode = state_->loop->currentMode();
  return mode.empty() ? std::nullopt : std::optional<std::string>(mode);
}

bool NSRunLoop::runUntil(const std::string& mode, std::int64_t until) {
  const bool isMain = state_->loop == mainLoop();
  const auto hasMore = [&] { return isMain || !state_->loop->isIdle(mode); };
  if (!hasMore()) return false;
  std::optional<ServingMain> serving;
  if (isMain) serving.emplace();
  const internal::dispatch::Deadline deadline{.at = until, .isForMore = !isMain};
  while (!state_->loop->runOnce(mode, deadline) && NSMonotonicClock::now() < until && hasMore()) {
  }
  return true;
}

bool NSRunLoop::runMode(const std::string& mode, NSDate beforeDate) {
  const std::int64_t span = nanosecondsOf(beforeDate.timeIntervalSinceDate(NSDate::date()));
  return runUntil(mode, laterBy(NSMonotonicClock::now(), span));
}

void NSRunLoop::runUntilDate(NSDate date) {
  const std::int64_t span = nanosecondsOf(date.timeIntervalSinceDate(NSDate::date()));
  const std::int64_t until = laterBy(NSMonotonicClock::now(), span);
  while (runUntil(NSDefaultRunLoopMode, until) && NSMonotonicClock::now() < until) {
  }
}

void NSRunLoop::run() {
  while (runUntil(NSDefaultRunLoopMode, kNever)) {
  }
}

std::shared_ptr<Loop> internal::dispatch::currentLoop() {
  return NSRunLoop::currentRunLoop()->state_->loop;
}

}  // namespace ORLFoundation

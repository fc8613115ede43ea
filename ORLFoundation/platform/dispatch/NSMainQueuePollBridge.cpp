
#include <ORLFoundation/platform/dispatch/NSMainQueuePollBridge.h>

#include <ORLFoundation/platform/dispatch/internal/MainThread.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <map>
#include <optional>
#include <string>

namespace ORLFoundation {

using internal::dispatch::kDefaultMode;
using internal::dispatch::kNever;
using internal::dispatch::mainLoop;

namespace {

epoll_event eventOf(const pollfd& watched) {
  epoll_event event{};
  // The bits of both interfaces are the same.
  event.events = static_cast<std::uint32_t>(watched.events);
  event.data.fd = watched.fd;
  return event;
}

}  // namespace

struct NSMainQueuePollBridge::State {
  /// A descriptor that is closed with it.
  class Owned {
   public:
    explicit Owned(int descriptor) : descriptor_(descriptor) {
      if (descriptor < 0) throw NSException(NSGenericException, "no descriptor for a bridge");
    }
    ~Owned() { ::close(descriptor_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    [[nodiscard]] int get() const noexcept { return descriptor_; }

   private:
    const int descriptor_;
  };

  /// The one bridge that there may be.
  class OnlyBridge {
   public:
    OnlyBridge() {
      if (!mainLoop()->setBridged(true))
        throw NSException(NSGenericException, "the main queue has a bridge already");
    }
    ~OnlyBridge() { mainLoop()->setBridged(false); }
    OnlyBridge(const OnlyBridge&) = delete;
    OnlyBridge& operator=(const OnlyBridge&) = delete;
  };

  OnlyBridge only;
  std::optional<internal::dispatch::MainThreadClaim> claim;
  internal::dispatch::ServingMain serving;
  const Owned all{::epoll_create1(EPOLL_CLOEXEC)};
  const Owned timer{::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)};
  std::map<int, short> watched;  // The run loop's descriptors in `all`, with their events.

  /// Answers false for a descriptor that is ready at any time, as a file is: none can wait for it.
  [[nodiscard]] bool add(int descriptor, short events) const {
    epoll_event event = eventOf({descriptor, events, 0});
    return ::epoll_ctl(all.get(), EPOLL_CTL_ADD, descriptor, &event) == 0 || errno != EPERM;
  }
  void remove(int descriptor) const { ::epoll_ctl(all.get(), EPOLL_CTL_DEL, descriptor, nullptr); }

  /// The timer rings when the next timed call is due.
  void setTimer() const {
    const std::int64_t due = mainLoop()->nextDue(kDefaultMode);
    itimerspec at{};
    if (due != kNever && NSMonotonicClock::isSystemClock()) {
      constexpr std::int64_t kSecond = 1'000'000'000;
      // Zero would turn it off.
      const std::int64_t instant = std::max<std::int64_t>(due, 1);
      at.it_value.tv_sec = static_cast<std::time_t>(instant / kSecond);
      at.it_value.tv_nsec = static_cast<long>(instant % kSecond);
    }
    ::timerfd_settime(timer.get(), TFD_TIMER_ABSTIME, &at, nullptr);
  }
  /// The run loop's descriptors as they are now. All are set anew: one that was closed and opened
  /// again meanwhile left without a word. Answers whether one is ready at any time.
  [[nodiscard]] bool setWatched() {
    for (const auto& [descriptor, events] : watched) remove(descriptor);
    watched.clear();
    for (const pollfd& one : mainLoop()->watchedDescriptors(kDefaultMode))
      watched[one.fd] = static_cast<short>(watched[one.fd] | one.events);
    bool isOneReady = false;
    for (const auto& [descriptor, events] : watched)
      isOneReady = !add(descriptor, events) || isOneReady;
    return isOneReady;
  }
  /// In this order: what is added from the first step on is either seen by the others or wakes.
  void prepare() {
    mainLoop()->clearWake();
    setTimer();
    const bool isOneReady = setWatched();
    if (isOneReady || mainLoop()->hasReady(kDefaultMode)) mainLoop()->wake();
  }
};

NSMainQueuePollBridge::NSMainQueuePollBridge() : state_(std::make_shared<State>()) {
  if (!internal::dispatch::isMainThread()) state_->claim.emplace();
  static_cast<void>(state_->add(mainLoop()->wakeDescriptor(), POLLIN));
  static_cast<void>(state_->add(state_->timer.get(), POLLIN));
  state_->prepare();
}

NSMainQueuePollBridge::~NSMainQueuePollBridge() = default;

int NSMainQueuePollBridge::descriptor() const noexcept { return state_->all.get(); }

void NSMainQueuePollBridge::dispatch() noexcept {
  const std::weak_ptr<State> here = state_;
  try {
    mainLoop()->runOnce(kDefaultMode, {.at = 0, .isReal = true});
  } catch (const std::exception& exception) {
    NSLog(std::string("The main thread goes on after an exception: ") + exception.what());
  } catch (...) {
    NSLog("The main thread goes on after an exception of an unknown kind.");
  }
  if (const auto left = here.lock()) left->prepare();
}

}  // namespace ORLFoundation

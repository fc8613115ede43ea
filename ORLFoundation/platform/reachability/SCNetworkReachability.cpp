
#include <ORLFoundation/platform/reachability/SCNetworkReachability.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/reachability/HostLookup.h>
#include <ORLFoundation/platform/reachability/RouteFlags.h>
#include <ORLFoundation/platform/reachability/RouteSocket.h>
#include <netinet/in.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace ORLFoundation {

using namespace internal::reachability;

/// What stands behind a reference: the addresses of a place, the loops that listen for it, and what
/// was last told.
class SCNetworkReachability final : public NSObject {
 public:
  /// A name that is looked up, or an address.
  explicit SCNetworkReachability(std::string name);
  explicit SCNetworkReachability(const sockaddr_storage& address);
  ~SCNetworkReachability() override;

  /// Begins a look-up; where one is under way, another one follows it. Nothing for an address.
  void lookUp();
  [[nodiscard]] std::optional<SCNetworkReachabilityFlags> flags() const;
  void setCallback(SCNetworkReachabilityCallBack callback);
  bool schedule(const std::shared_ptr<NSRunLoop>& loop, const std::string& mode);
  bool unschedule(const std::shared_ptr<NSRunLoop>& loop, const std::string& mode);

  [[nodiscard]] std::string className() const override { return "SCNetworkReachability"; }

 private:
  /// A loop that listens: to the kernel, and to the end of look-ups.
  struct Listener {
    std::shared_ptr<NSRunLoop> loop;
    std::string mode;
    Descriptor changes, wake;
    std::shared_ptr<NSRunLoopDescriptor> changesOnLoop, wakeOnLoop;
  };
  using Listeners = std::vector<std::shared_ptr<Listener>>;

  void found(Addresses addresses);
  void tell();
  [[nodiscard]] Listeners::iterator find(const NSRunLoop& loop, const std::string& mode);
  [[nodiscard]] std::shared_ptr<Listener> makeListener(const std::shared_ptr<NSRunLoop>& loop,
                                                       const std::string& mode);
  void putOnLoop(const std::shared_ptr<Listener>& listener);

  const std::string name_;  // "" for an address

  mutable std::mutex lock_;  // over what follows, up to the next lock
  std::optional<Addresses> addresses_;
  bool isLookingUp_ = false, looksUpAgain_ = false;
  SCNetworkReachabilityCallBack callback_;
  Listeners listeners_;

  std::mutex telling_;  // held while flags are read and compared with those told before
  SCNetworkReachabilityFlags told_ = 0;
};

SCNetworkReachability::SCNetworkReachability(std::string name) : name_(std::move(name)) {}

SCNetworkReachability::SCNetworkReachability(const sockaddr_storage& address)
    : addresses_(Addresses{address}) {}

SCNetworkReachability::~SCNetworkReachability() = default;

void SCNetworkReachability::lookUp() {
  if (name_.empty()) return;
  {
    const std::lock_guard guard(lock_);
    looksUpAgain_ = isLookingUp_;
    if (std::exchange(isLookingUp_, true)) return;
  }
  const std::weak_ptr<NSObject> weak = weak_from_this();
  lookUpHost(name_, [weak](Addresses addresses) {
    if (const auto self = std::static_pointer_cast<SCNetworkReachability>(weak.lock()))
      self->found(std::move(addresses));
  });
}

/// On a thread of look-ups.
void SCNetworkReachability::found(Addresses addresses) {
  bool goesOn = false;
  {
    const std::lock_guard guard(lock_);
    addresses_ = std::move(addresses);
    isLookingUp_ = false;
    goesOn = std::exchange(looksUpAgain_, false);
    constexpr std::uint64_t kOne = 1;
    for (const auto& listener : listeners_)
      static_cast<void>(!::write(listener->wake.number(), &kOne, sizeof kOne));
  }
  if (goesOn) lookUp();
}

std::optional<SCNetworkReachabilityFlags> SCNetworkReachability::flags() const {
  std::optional<Addresses> addresses;
  {
    const std::lock_guard guard(lock_);
    addresses = addresses_;
  }
  if (!addresses) return std::nullopt;
  for (const sockaddr_storage& address : *addresses) {
    const auto flags = flagsOfAddress(address);
    if (!flags || *flags != 0) return flags;
  }
  return 0;
}

void SCNetworkReachability::setCallback(SCNetworkReachabilityCallBack callback) {
  const std::lock_guard guard(lock_);
  callback_.swap(callback);
}

SCNetworkReachability::Listeners::iterator SCNetworkReachability::find(const NSRunLoop& loop,
                                                                       const std::string& mode) {
  return std::find_if(listeners_.begin(), listeners_.end(), [&](const auto& listener) {
    return listener->loop.get() == &loop && listener->mode == mode;
  });
}

/// null where the kernel cannot be listened to.
std::shared_ptr<SCNetworkReachability::Listener> SCNetworkReachability::makeListener(
    const std::shared_ptr<NSRunLoop>& loop, const std::string& mode) {
  auto listener = std::make_shared<Listener>();
  listener->loop = loop;
  listener->mode = mode;
  listener->changes = openRouteSocket(groupsOfChanges());
  listener->wake = Descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  return listener->changes.isOpen() && listener->wake.isOpen() ? listener : nullptr;
}

void SCNetworkReachability::putOnLoop(const std::shared_ptr<Listener>& listener) {
  const std::weak_ptr<NSObject> weak = weak_from_this();
  const auto withSelf = [weak](const auto& action) {
    if (const auto self = std::static_pointer_cast<SCNetworkReachability>(weak.lock()))
      action(*self);
  };
  // The descriptors live as long as they are on the loop.
  const int changes = listener->changes.number();
  const int wake = listener->wake.number();
  listener->changesOnLoop = listener->loop->addDescriptor(
      changes, NSRunLoopDescriptorRead, listener->mode, [withSelf, changes](short) {
        drainChanges(changes);
        withSelf([](SCNetworkReachability& self) {
          self.lookUp();
          self.tell();
        });
      });
  listener->wakeOnLoop = listener->loop->addDescriptor(
      wake, NSRunLoopDescriptorRead, listener->mode, [withSelf, wake](short) {
        std::uint64_t count = 0;
        static_cast<void>(!::read(wake, &count, sizeof count));
        withSelf([](SCNetworkReachability& self) { self.tell(); });
      });
}

bool SCNetworkReachability::schedule(const std::shared_ptr<NSRunLoop>& loop,
                                     const std::string& mode) {
  if (!loop) return false;
  const auto listener = makeListener(loop, mode);
  if (!listener) return false;
  // The socket is open by now: no change is lost between the flags that are read here and those
  // that it tells of.
  const std::lock_guard telling(telling_);
  const auto before = flags();
  const std::lock_guard guard(lock_);
  if (find(*loop, mode) != listeners_.end()) return true;
  if (listeners_.empty()) told_ = before.value_or(0);
  putOnLoop(listener);
  listeners_.push_back(listener);
  return true;
}

bool SCNetworkReachability::unschedule(const std::shared_ptr<NSRunLoop>& loop,
                                       const std::string& mode) {
  if (!loop) return false;
  std::shared_ptr<Listener> dropped;  // outside of the lock
  const std::lock_guard guard(lock_);
  const auto place = find(*loop, mode);
  if (place == listeners_.end()) return false;
  dropped = *place;
  listeners_.erase(place);
  return true;
}

/// Calls the callback where the flags are not those that were told last.
void SCNetworkReachability::tell() {
  SCNetworkReachabilityCallBack callback;
  SCNetworkReachabilityFlags now = 0;
  {
    const std::lock_guard telling(telling_);
    const auto read = flags();
    if (!read || *read == told_) return;
    now = told_ = *read;
    const std::lock_guard guard(lock_);
    callback = callback_;
  }
  if (callback) callback(now);
}

SCNetworkReachabilityRef SCNetworkReachabilityCreateWithName(std::string_view nodename) {
  if (nodename.empty() || nodename.find('\0') != std::string_view::npos) return nullptr;
  const std::string name(nodename);
  if (const auto address = addressOfNumbers(name))
    return std::make_shared<SCNetworkReachability>(*address);
  auto target = std::make_shared<SCNetworkReachability>(name);
  target->lookUp();
  return target;
}

SCNetworkReachabilityRef SCNetworkReachabilityCreateWithAddress(const sockaddr* address) {
  if (address == nullptr) return nullptr;
  std::size_t length = 0;
  if (address->sa_family == AF_INET) length = sizeof(sockaddr_in);
  if (address->sa_family == AF_INET6) length = sizeof(sockaddr_in6);
  if (length == 0) return nullptr;
  sockaddr_storage copy{};
  std::memcpy(&copy, address, length);
  return std::make_shared<SCNetworkReachability>(copy);
}

std::optional<SCNetworkReachabilityFlags> SCNetworkReachabilityGetFlags(
    const SCNetworkReachabilityRef& target) {
  return target ? target->flags() : std::nullopt;
}

void SCNetworkReachabilitySetCallback(const SCNetworkReachabilityRef& target,
                                      SCNetworkReachabilityCallBack callout) {
  if (target) target->setCallback(std::move(callout));
}

bool SCNetworkReachabilityScheduleWithRunLoop(const SCNetworkReachabilityRef& target,
                                              const std::shared_ptr<NSRunLoop>& runLoop,
                                              const std::string& runLoopMode) {
  return target && target->schedule(runLoop, runLoopMode);
}

bool SCNetworkReachabilityUnscheduleFromRunLoop(const SCNetworkReachabilityRef& target,
                                                const std::shared_ptr<NSRunLoop>& runLoop,
                                                const std::string& runLoopMode) {
  return target && target->unschedule(runLoop, runLoopMode);
}

}  // namespace ORLFoundation

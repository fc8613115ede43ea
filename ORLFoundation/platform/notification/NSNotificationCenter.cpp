

#include <ORLFoundation/platform/notification/NSNotificationCenter.h>

#include <utility>

namespace ORLFoundation {

NSNotification::NSNotification(std::string_view name, id object,
                               std::shared_ptr<NSDictionary> userInfo)
    : name_(name), object_(std::move(object)), userInfo_(std::move(userInfo)) {}

NSNotificationObserver::NSNotificationObserver(std::optional<std::string> name,
                                               const std::shared_ptr<NSObject>& object,
                                               NSNotificationBlock block)
    : name_(std::move(name)),
      hasObject_(object != nullptr),
      object_(object),
      block_(std::move(block)) {}

bool NSNotificationObserver::wants(const NSNotification& notification) const {
  if (!isValid_.load(std::memory_order_acquire)) return false;
  if (name_ && *name_ != notification.name()) return false;
  if (!hasObject_) return true;
  const auto object = object_.lock();
  return object && object == notification.object().object();
}

const std::shared_ptr<NSNotificationCenter>& NSNotificationCenter::defaultCenter() {
  // Never destroyed: objects that post while the process ends still find it.
  static const auto& center = *new auto(std::make_shared<NSNotificationCenter>());
  return center;
}

std::shared_ptr<NSNotificationObserver> NSNotificationCenter::addObserverForName(
    std::optional<std::string> name, const std::shared_ptr<NSObject>& object,
    NSNotificationBlock usingBlock) {
  auto observer =
      std::make_shared<NSNotificationObserver>(std::move(name), object, std::move(usingBlock));
  const std::lock_guard guard(lock_);
  std::erase_if(observers_, [](const auto& held) { return held.expired(); });
  observers_.push_back(observer);
  return observer;
}

void NSNotificationCenter::removeObserver(const std::shared_ptr<NSNotificationObserver>& observer) {
  if (!observer) return;
  observer->isValid_.store(false, std::memory_order_release);
  const std::lock_guard guard(lock_);
  std::erase_if(observers_, [&](const auto& held) {
    return !held.owner_before(observer) && !observer.owner_before(held);
  });
}

void NSNotificationCenter::postNotificationName(std::string_view name, const id& object,
                                                std::shared_ptr<NSDictionary> userInfo) {
  const auto notification = std::make_shared<NSNotification>(name, object, std::move(userInfo));
  postNotification(*notification);
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
  std::vector<std::weak_ptr<NSNotificationObserver>> told;
  {
    const std::lock_guard guard(lock_);
    told = observers_;
  }
  for (const auto& held : told) {
    const auto observer = held.lock();
    if (observer && observer->wants(notification)) observer->block_(notification);
  }
}

}  // namespace ORLFoundation

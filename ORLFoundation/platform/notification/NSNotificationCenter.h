/// Notifications: a name, the object that it is about, and user information, handed to whoever
/// asked for them.
///
///     token = NSNotificationCenter::defaultCenter()->addObserverForName(
///         "AccountDidChange", account, [](const NSNotification& notification) { ... });
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSNotification final : public NSObject {
 public:
  NSNotification(std::string_view name, id object, std::shared_ptr<NSDictionary> userInfo);

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  [[nodiscard]] const id& object() const noexcept { return object_; }
  /// Null when the poster gave none.
  [[nodiscard]] const std::shared_ptr<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  [[nodiscard]] std::string className() const override { return "NSNotification"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr(
        [this] { return std::make_shared<NSNotification>(name_, object_, userInfo_); });
  }

 private:
  const std::string name_;
  const id object_;
  const std::shared_ptr<NSDictionary> userInfo_;
};

using NSNotificationBlock = std::function<void(const NSNotification& notification)>;

/// A registration. Dropping the last reference ends it, as does `removeObserver`.
class NSNotificationObserver {
 public:
  NSNotificationObserver(std::optional<std::string> name, const std::shared_ptr<NSObject>& object,
                         NSNotificationBlock block);

 private:
  friend class NSNotificationCenter;
  [[nodiscard]] bool wants(const NSNotification& notification) const;

  const std::optional<std::string> name_;
  const bool hasObject_;
  const std::weak_ptr<NSObject> object_;
  const NSNotificationBlock block_;
  std::atomic<bool> isValid_{true};
};

/// Safe on any thread. Blocks run on the posting thread, outside the centre's lock.
class NSNotificationCenter final : public NSObject {
 public:
  /// `defaultCenter`
  [[nodiscard]] static const std::shared_ptr<NSNotificationCenter>& defaultCenter();

  /// `addObserverForName:object:queue:usingBlock:`  nil for a name or an object takes any. The
  /// object is not held; once it has died the registration hears nothing more.
  [[nodiscard]] std::shared_ptr<NSNotificationObserver> addObserverForName(
      std::optional<std::string> name, const std::shared_ptr<NSObject>& object,
      NSNotificationBlock usingBlock);
  /// `removeObserver:`  Takes nil. No call begins on this thread afterwards.
  void removeObserver(const std::shared_ptr<NSNotificationObserver>& observer);
  /// `postNotificationName:object:userInfo:`  Calls the blocks one after the other in the order of
  /// their registration, and returns when all have run. One that is removed meanwhile is passed
  /// over; one that is added meanwhile hears the next notification.
  void postNotificationName(std::string_view name, const id& object,
                            std::shared_ptr<NSDictionary> userInfo = nullptr);
  /// `postNotification:`
  void postNotification(const NSNotification& notification);

  [[nodiscard]] std::string className() const override { return "NSNotificationCenter"; }

 private:
  std::mutex lock_;
  std::vector<std::weak_ptr<NSNotificationObserver>> observers_;
};

}  // namespace ORLFoundation

/// What an observer of a value receives, and the token that keeps a block's observation alive.
///
///     const auto options = NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew;
///     token = plan->addObserver("planEndDate", options,
///                               [](const NSKeyValueChange& change) { show(change.newValue); });
///
/// A key path is followed through the objects on it: when one of them is replaced, the observation
/// moves to its successor. A derived value is followed through the key paths that its class
/// declares for it. One change gives one call, by however many ways it reaches the observed value.
/// Blocks run on the changing thread, inside the change, in the order in which they were added;
/// they may add and remove observations, their own included.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

enum NSKeyValueObservingOptions : NSUInteger {
  NSKeyValueObservingOptionNew = 1,      // put the new value into the change
  NSKeyValueObservingOptionOld = 2,      // put the old value into the change
  NSKeyValueObservingOptionInitial = 4,  // call once at registration, without an old value
  NSKeyValueObservingOptionPrior = 8,    // call before the change too, without a new value
};

struct NSKeyValueChange {
  std::string_view keyPath;
  /// The object that the observation was added to.
  NSObject* object = nullptr;
  /// nil unless asked for. A value that is nil itself comes as nil too.
  id oldValue;
  id newValue;
  /// true for the call before the change.
  bool isPrior = false;
};

/// An observation. Dropping the last reference ends it.
class NSKeyValueObservation : public std::enable_shared_from_this<NSKeyValueObservation> {
 public:
  ~NSKeyValueObservation();
  NSKeyValueObservation(const NSKeyValueObservation&) = delete;
  NSKeyValueObservation& operator=(const NSKeyValueObservation&) = delete;

  /// Ends the observation: no call begins on this thread after it. Safe on any thread and more than
  /// once.
  void invalidate();

 private:
  friend class NSObject;

  /// A key of an object on the way, whose changes may change the observed value.
  struct Hook {
    std::weak_ptr<NSObject> object;
    std::string key;
  };
  using Hooks = std::vector<Hook>;

  NSKeyValueObservation(NSObject& root, std::string_view keyPath, NSUInteger options,
                        NSKeyValueBlock block);
  static std::shared_ptr<NSKeyValueObservation> start(NSObject& root, std::string_view keyPath,
                                                      NSUInteger options, NSKeyValueBlock block);
  [[nodiscard]] id currentValue() const;
  /// Makes the prior call; the old value, when it is asked for.
  [[nodiscard]] id begin() const;
  void end(id oldValue);
  void call(const NSKeyValueChange& change) const;
  void collectHooks(NSObject& object, std::string_view keyPath, Hooks& into, int depth);
  void replaceHooks(Hooks hooks);

  const std::weak_ptr<NSObject> root_;
  const std::string keyPath_;
  const NSUInteger options_;
  const NSKeyValueBlock block_;
  const std::uint64_t sequence_;
  /// No other object lies on the way: the hooks stay where they are.
  bool isFixed_ = true;
  std::atomic<bool> isValid_{true};
  std::mutex lock_;
  Hooks hooks_;
};

}  // namespace ORLFoundation

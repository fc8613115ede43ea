/// The root of every class of the library: identity, equality, description, copying, key-value
/// access, observation and attached values. Objects are made with `std::make_shared` and held by
/// `std::shared_ptr`. NSKeyTable.h tells how a class declares its keys, NSKeyValueObserving.h what
/// an observer receives.
///
///     void Account::setName(std::string name) {
///       changeValue("name", [&] { name_ = std::move(name); });   // observers hear of it
///     }
///     auto token = account->addObserver("owner.name", NSKeyValueObservingOptionNew, block);
///
/// An object that nobody observes and that carries no attached value pays one empty pointer.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

namespace internal::object {
struct NSObjectState;
}  // namespace internal::object

class id;
class NSKeyTable;
class NSKeyValueObservation;
struct NSKeyValueChange;

/// Called with each change of an observed value, on the thread that changed it.
using NSKeyValueBlock = std::function<void(const NSKeyValueChange& change)>;

class NSObject : public std::enable_shared_from_this<NSObject> {
 public:
  NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;
  virtual ~NSObject();

  /// The name of the object's class, "NSObject".
  [[nodiscard]] virtual std::string className() const;
  /// `isEqual:`  Identity unless a class says otherwise; nil equals nothing.
  [[nodiscard]] virtual bool isEqual(const NSObject* other) const;
  /// `hash`  Equal objects have equal hashes.
  [[nodiscard]] virtual NSUInteger hash() const;
  /// `description`  "<ClassName: 0x55d0c8>" unless a class says otherwise.
  [[nodiscard]] virtual std::string description() const;
  /// The receiver as its owners hold it; where no shared pointer owns it, as on the stack, a
  /// pointer that owns nothing and must not outlive it.
  [[nodiscard]] std::shared_ptr<NSObject> receiverOrReference() const;
  /// `copy`  The receiver itself for immutable classes, an equal object where that is on the stack;
  /// raises for classes that do not copy.
  [[nodiscard]] virtual std::shared_ptr<NSObject> copy();
  /// `mutableCopy`
  [[nodiscard]] virtual std::shared_ptr<NSObject> mutableCopy();

  /// The keys of the object's class, those of its base classes included.
  [[nodiscard]] virtual const NSKeyTable& keyTable() const;
  /// `valueForKey:`  The value under a key of the class; "self" is the object, for one on the stack
  /// by a pointer that does not keep it alive. Any other key goes to `valueForUndefinedKey`.
  [[nodiscard]] virtual id valueForKey(std::string_view key) const;
  /// `setValue:forKey:`  Observers of the key are told once, whether or not the setter tells them
  /// too. A value of the wrong kind, and nil for a number, raise `NSInvalidArgumentException`; a
  /// key without a setter goes to `setValueForUndefinedKey`.
  virtual void setValueForKey(const id& value, std::string_view key);
  /// `valueForKeyPath:`  Keys with points between them; nil anywhere on the way gives nil.
  [[nodiscard]] virtual id valueForKeyPath(std::string_view keyPath) const;
  /// `setValue:forKeyPath:`  A nil on the way takes the value without a trace.
  virtual void setValueForKeyPath(const id& value, std::string_view keyPath);
  /// `valueForUndefinedKey:`  Raises `NSUndefinedKeyException` unless a class knows better.
  [[nodiscard]] virtual id valueForUndefinedKey(std::string_view key) const;
  /// `setValue:forUndefinedKey:`  Raises `NSUndefinedKeyException` unless a class knows better.
  virtual void setValueForUndefinedKey(const id& value, std::string_view key);

  /// The value attached under a text key; nil when there is none. Safe on any thread, and costs a
  /// pointer's read where nothing was ever attached.
  [[nodiscard]] id attachedValue(std::string_view key) const;
  /// Attaches a value, which the object then owns; nil takes it away. Safe on any thread. Extra
  /// state is no part of the object's value, so constant objects take it too.
  void setAttachedValue(std::string_view key, id value) const;

  /// `addObserver:forKeyPath:options:context:`  Calls the block with each change of the value until
  /// the token is dropped or invalidated. Neither holds the object. A dead object, also one in the
  /// middle of the path, is no error: the path then ends in nil.
  [[nodiscard]] std::shared_ptr<NSKeyValueObservation> addObserver(std::string_view keyPath,
                                                                   NSUInteger options,
                                                                   NSKeyValueBlock block);
  /// The same for an observing object, which is not held: its `observeValueForKeyPath` is called
  /// until it dies or is removed. The context tells one's own observations from a base class's.
  void addObserver(const std::shared_ptr<NSObject>& observer, std::string_view forKeyPath,
                   NSUInteger options, const void* context = nullptr);
  /// `removeObserver:forKeyPath:context:`  The latest observation that fits; raises
  /// `NSRangeException` when there is none.
  void removeObserver(const NSObject& observer, std::string_view forKeyPath,
                      const void* context = nullptr);
  /// `observeValueForKeyPath:ofObject:change:context:`  For observing objects to override.
  virtual void observeValueForKeyPath(std::string_view keyPath, NSObject& ofObject,
                                      const NSKeyValueChange& change, const void* context);
  /// `keyPathsForValuesAffectingValueForKey:`  From the key table.
  [[nodiscard]] virtual std::vector<std::string> keyPathsForValuesAffectingValueForKey(
      std::string_view key) const;

  /// `willChangeValueForKey:`, `didChangeValueForKey:`  Around every change, in pairs that may
  /// nest.
  void willChangeValueForKey(std::string_view key);
  void didChangeValueForKey(std::string_view key);

  /// Makes a change between the two notices. A change that throws is not told of.
  template <class Change>
  void changeValue(std::string_view key, Change&& change) {
    if (!hasState()) return static_cast<void>(change());
    willChangeValueForKey(key);
    try {
      change();
    } catch (...) {
      abandonChange(key);
      throw;
    }
    didChangeValueForKey(key);
  }

 protected:
  /// The copy of what never changes: the receiver as its owners hold it, or, where no shared
  /// pointer owns it, as on the stack, the equal object that `make` gives.
  template <class Make>
  [[nodiscard]] std::shared_ptr<NSObject> receiverOr(const Make& make) {
    if (auto self = weak_from_this().lock()) return self;
    return make();
  }
  /// A new object of the receiver's class, in any state: the hook by which a base class makes
  /// copies that keep their class. The base class sets what it copies; the rest is as the hook left
  /// it. Each class that copies to new objects has one, and so does every subclass of it:
  ///
  ///     std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
  ///       return std::make_shared<Savings>();
  ///     }
  [[nodiscard]] virtual std::shared_ptr<NSObject> newObjectOfReceiversClass() const;
  /// What the hook makes, under the type of the base class that copies. Raises
  /// `NSInvalidArgumentException` where the receiver's class left the hook to its base class: a
  /// copy never loses its class in silence.
  template <class Base>
  [[nodiscard]] std::shared_ptr<Base> newObjectAs() const {
    return std::static_pointer_cast<Base>(newObjectOfExactClass());
  }

 private:
  friend class NSKeyValueObservation;

  [[nodiscard]] bool hasState() const noexcept {
    return state_.load(std::memory_order_acquire) != nullptr;
  }
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfExactClass() const;
  [[nodiscard]] internal::object::NSObjectState& state() const;
  void beginChange(std::string_view key, bool automatic);
  void abandonChange(std::string_view key) noexcept;

  mutable std::atomic<internal::object::NSObjectState*> state_{nullptr};
};

/// A copy under the object's own type; nil for nil.
template <class T>
[[nodiscard]] std::shared_ptr<T> copyOf(const std::shared_ptr<T>& object) {
  return object ? std::static_pointer_cast<T>(object->copy()) : nullptr;
}

}  // namespace ORLFoundation

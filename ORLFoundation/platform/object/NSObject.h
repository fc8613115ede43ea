/// The root of every class of the library: identity, equality, description, copying, key-value
/// access, observation and attached values. Objects are made with `std::make_shared` and held by
/// `std::shared_ptr`.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class id;

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
  /// `description`
  [[nodiscard]] virtual std::string description() const;
  /// `copy`  The receiver itself for immutable classes; raises for classes that do not copy.
  [[nodiscard]] virtual std::shared_ptr<NSObject> copy();
  /// `mutableCopy`
  [[nodiscard]] virtual std::shared_ptr<NSObject> mutableCopy();
};

/// A copy under the object's own type; nil for nil.
template <class T>
[[nodiscard]] std::shared_ptr<T> copyOf(const std::shared_ptr<T>& object) {
  return object ? std::static_pointer_cast<T>(object->copy()) : nullptr;
}

}  // namespace ORLFoundation

/// A plain record boxed as a value: a range, a point, a rectangle, or a reference that does not own
/// its object.
#pragma once

#include <ORLFoundation/platform/value/CGGeometry.h>
#include <ORLFoundation/platform/value/NSRange.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace ORLFoundation {

class NSObject;

class NSValue {
 public:
  /// `valueWithPoint:`
  [[nodiscard]] static NSValue valueWithPoint(CGPoint point) { return NSValue(point); }
  /// `valueWithRect:`
  [[nodiscard]] static NSValue valueWithRect(CGRect rect) { return NSValue(rect); }
  /// `valueWithRange:`
  [[nodiscard]] static NSValue valueWithRange(NSRange range) { return NSValue(range); }
  /// `valueWithNonretainedObject:`  Refers to the object without owning it; two of them are equal
  /// when they refer to one object. Also works inside of the object's destructor.
  [[nodiscard]] static NSValue valueWithNonretainedObject(const NSObject* object);

  /// `pointValue`, `rectValue`, `rangeValue`  All zeros when the value holds another record.
  [[nodiscard]] CGPoint pointValue() const noexcept { return recordOrZero<CGPoint>(); }
  [[nodiscard]] CGRect rectValue() const noexcept { return recordOrZero<CGRect>(); }
  [[nodiscard]] NSRange rangeValue() const noexcept { return recordOrZero<NSRange>(); }
  /// `nonretainedObjectValue`  The object; nil when it was destroyed or the value holds a record.
  [[nodiscard]] std::shared_ptr<NSObject> nonretainedObjectValue() const noexcept;

  /// The record of one kind, nil when the value holds another.
  template <class T>
  [[nodiscard]] std::optional<T> record() const noexcept {
    const T* held = std::get_if<T>(&record_);
    return held ? std::optional<T>(*held) : std::nullopt;
  }

  [[nodiscard]] NSUInteger hash() const noexcept;
  /// "NSRange: {1, 2}", "NSPoint: {1, 2.5}", "NSRect: {{0, 0}, {3, 4}}", "<NSValue: 0x55d0c8>" with
  /// the address of an object.
  [[nodiscard]] std::string description() const;

  /// Equal records of one kind.
  friend bool operator==(const NSValue&, const NSValue&) = default;

 private:
  /// The address alone tells objects apart: the weak reference no longer does in a destructor.
  struct Reference {
    const NSObject* address = nullptr;
    std::weak_ptr<NSObject> object;
    friend bool operator==(const Reference& left, const Reference& right) noexcept {
      return left.address == right.address;
    }
  };
  using Record = std::variant<NSRange, CGPoint, CGRect, Reference>;

  explicit NSValue(Record record) noexcept : record_(std::move(record)) {}
  template <class T>
  [[nodiscard]] T recordOrZero() const noexcept {
    return record<T>().value_or(T{});
  }

  Record record_;
};

}  // namespace ORLFoundation

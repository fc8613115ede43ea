/// A plain record boxed as a value: a range, a point, a rectangle, or a reference that does not own
/// its object.
#pragma once

#include <ORLFoundation/platform/value/CGGeometry.h>
#include <ORLFoundation/platform/value/NSRange.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

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

  /// The record of one kind, nil when the value holds another: of a range, a point or a rectangle.
  template <class T>
  [[nodiscard]] std::optional<T> record() const noexcept {
    if constexpr (std::is_same_v<T, NSRange>) {
      if (kind_ == Kind::Range) return range_;
    } else if constexpr (std::is_same_v<T, CGPoint>) {
      if (kind_ == Kind::Point) return rect_.origin;
    } else {
      static_assert(std::is_same_v<T, CGRect>);
      if (kind_ == Kind::Rect) return rect_;
    }
    return std::nullopt;
  }

  [[nodiscard]] NSUInteger hash() const noexcept;
  /// "NSRange: {1, 2}", "NSPoint: {1, 2.5}", "NSRect: {{0, 0}, {3, 4}}", "<NSValue: 0x55d0c8>" with
  /// the address of an object.
  [[nodiscard]] std::string description() const;

  /// Equal records of one kind.
  friend bool operator==(const NSValue& left, const NSValue& right) noexcept;

 private:
  enum class Kind : std::uint8_t { Range, Point, Rect, Reference };

  explicit NSValue(NSRange range) noexcept : kind_(Kind::Range), range_(range) {}
  explicit NSValue(CGPoint point) noexcept : kind_(Kind::Point), rect_{point, {}} {}
  explicit NSValue(CGRect rect) noexcept : kind_(Kind::Rect), rect_(rect) {}
  explicit NSValue(const NSObject* object);

  template <class T>
  [[nodiscard]] T recordOrZero() const noexcept {
    return record<T>().value_or(T{});
  }

  // Not a std::variant, which all that includes this header would pay for. What the kind does not
  // name is empty.
  Kind kind_;
  NSRange range_{};
  CGRect rect_{};  ///< A point is the origin of one.
  /// The address alone tells objects apart: the weak reference no longer does in a destructor.
  const NSObject* address_ = nullptr;
  std::weak_ptr<NSObject> object_;
};

}  // namespace ORLFoundation

/// `id`: any object or nil. It holds a plain value (number, text, date, data, address, identifier,
/// record), the marker `NSNull`, or a shared object, collections among them. Equality, hash,
/// description and the question whether it fits a property list are answered here, once for all.
///
///     id value = "text";                       // from any plain value, or a shared object
///     value.as<std::string>();                 // std::optional<std::string>
///     value.as<NSArray>();                     // std::shared_ptr<NSArray>, null for anything else
///     id list = NSArray::arrayWithObjects({1, "two", NSDate::date()});
#pragma once

#include <ORLFoundation/platform/object/NSNull.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/object/NSValue.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/platform/value/NSUUID.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ORLFoundation {

class NSObject;

template <class T>
concept NSObjectClass = std::is_convertible_v<T*, NSObject*> || std::is_same_v<T, NSObject>;

/// The plain values that an `id` stores as they are.
template <class T>
concept NSPlainValue = std::same_as<T, NSNumber> || std::same_as<T, std::string> ||
    std::same_as<T, NSDate> || std::same_as<T, NSData> || std::same_as<T, NSURL> ||
    std::same_as<T, NSUUID> || std::same_as<T, NSValue> || std::same_as<T, NSNull>;

class id {
 public:
  /// nil.
  id() noexcept;
  id(const id& other);
  id(id&& other) noexcept;
  id& operator=(const id& other);
  id& operator=(id&& other) noexcept;
  ~id();
  id(std::nullptr_t) noexcept : id() {}
  id(std::nullopt_t) noexcept : id() {}

  // Implicit, so that plain values stand wherever an object is asked for.
  template <NSPlainValue T>
  id(T value);
  /// nil for a null pointer.
  id(const char* text);
  id(std::string_view text);
  template <class T>
  requires std::is_arithmetic_v<T> id(T number) : id(NSNumber(number)) {}
  template <class T>
  requires std::is_enum_v<T> id(T code)
      : id(NSNumber(static_cast<std::underlying_type_t<T>>(code))) {}
  id(const NSDecimal& number) : id(NSNumber(number)) {}
  template <NSDecimalBoxing T>
  requires(!std::same_as<T, NSNumber>) id(const T& number) : id(NSNumber(number)) {}
  id(NSRange range) : id(NSValue::valueWithRange(range)) {}
  id(CGPoint point) : id(NSValue::valueWithPoint(point)) {}
  id(CGRect rect) : id(NSValue::valueWithRect(rect)) {}
  /// nil for an empty optional.
  template <class T>
  id(const std::optional<T>& value) : id() {
    if (value) *this = id(*value);
  }
  /// nil for a null pointer.
  template <class T>
  requires NSObjectClass<T> id(std::shared_ptr<T> object) : id() { hold(std::move(object)); }
  /// A constant object is held like any other; `id` itself changes nothing in it.
  template <class T>
  requires NSObjectClass<T> id(std::shared_ptr<const T> object)
      : id(std::const_pointer_cast<T>(std::move(object))) {}

  [[nodiscard]] bool isNil() const noexcept;
  /// true for the marker `NSNull`, not for nil.
  [[nodiscard]] bool isNull() const noexcept { return get<NSNull>() != nullptr; }
  [[nodiscard]] explicit operator bool() const noexcept { return !isNil(); }

  /// The plain value in place, null when it is of another kind.
  template <NSPlainValue T>
  [[nodiscard]] const T* get() const noexcept;
  /// The object, null for plain values and nil.
  [[nodiscard]] std::shared_ptr<NSObject> object() const;

  /// The value as a T: a shared pointer for classes, an optional for plain values. C++ numbers,
  /// enumerations and decimals convert from any kind of number as `NSNumber` tells. Nothing
  /// converts between text and numbers.
  template <class T>
  [[nodiscard]] auto as() const {
    if constexpr (NSObjectClass<T>) {
      return std::dynamic_pointer_cast<T>(object());
    } else {
      return plainValue<T>();
    }
  }

  /// `isEqual:`  By value; objects by their own `isEqual`. nil equals only nil.
  [[nodiscard]] bool isEqual(const id& other) const;
  /// One and the same object; plain values have no identity beyond their equality.
  [[nodiscard]] bool isIdenticalTo(const id& other) const;
  /// Equal values have equal hashes; nil has 0.
  [[nodiscard]] NSUInteger hash() const;
  /// `description`  Text as it is, with U+FFFD for bytes that are no UTF-8, nil "(null)", `NSNull`
  /// "<null>", collections over several lines.
  [[nodiscard]] std::string description() const;
  /// The description as a member of a collection that is itself `indent` levels deep: text that is
  /// not only ASCII letters and digits comes in quotes, with escapes.
  [[nodiscard]] std::string descriptionInCollection(NSUInteger indent) const;
  /// The class that the platform would name: "NSString", "NSNumber", "NSArray", ...; "" for nil.
  [[nodiscard]] std::string className() const;
  /// Whether this is text, a number, a date, data, or an array or a dictionary with text keys of
  /// such values, all the way down.
  [[nodiscard]] bool isPropertyList() const;

  /// `valueForKey:`, `valueForKeyPath:`  nil answers nil; a plain value knows only "self".
  [[nodiscard]] id valueForKey(std::string_view key) const;
  [[nodiscard]] id valueForKeyPath(std::string_view keyPath) const;

  friend bool operator==(const id& left, const id& right) { return left.isEqual(right); }

 private:
  void hold(std::shared_ptr<NSObject> object) noexcept;
  template <class T>
  [[nodiscard]] std::optional<T> plainValue() const;

  // A variant of all kinds, which only the source of this class names: every file that includes
  // this header would else spend its time on it.
  struct Stored;
  [[nodiscard]] Stored& stored() noexcept;
  [[nodiscard]] const Stored& stored() const noexcept;

  alignas(void*) std::byte bytes_[184];
};

template <class T>
std::optional<T> id::plainValue() const {
  if constexpr (NSPlainValue<T>) {
    const T* value = get<T>();
    return value ? std::optional<T>(*value) : std::nullopt;
  } else if constexpr (std::same_as<T, NSRange> || std::same_as<T, CGPoint> ||
                       std::same_as<T, CGRect>) {
    const NSValue* value = get<NSValue>();
    return value ? value->record<T>() : std::nullopt;
  } else {
    const NSNumber* number = get<NSNumber>();
    if (!number) return std::nullopt;
    if constexpr (std::same_as<T, bool>) {
      return number->boolValue();
    } else if constexpr (std::is_enum_v<T>) {
      return static_cast<T>(number->integerValue());
    } else if constexpr (std::signed_integral<T>) {
      return static_cast<T>(number->integerValue());
    } else if constexpr (std::unsigned_integral<T>) {
      return static_cast<T>(number->unsignedIntegerValue());
    } else if constexpr (std::floating_point<T>) {
      return static_cast<T>(number->doubleValue());
    } else {
      return T(number->decimalValue());
    }
  }
}

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::id> {
  std::size_t operator()(const ORLFoundation::id& value) const { return value.hash(); }
};

/// Types that convert to a value of a property list and back. The library knows `bool` (by
/// `NSNumber`), integers (by `NSNumber`), `std::string`, `NSDate`, `PlistDictionary`, what is kept
/// in one (PlistDictionaryStorage.h), types with a raw value that converts, and optionals of all
/// these.
///
/// A type of one's own names its raw value, which says how it is stored:
///
///     enum class Theme { kLight, kDark };
///
///     template <>
///     struct ORLFoundation::PlistRawValue<Theme>
///         : PlistRawValueTable<Theme, std::string> {
///       static constexpr Row kRows[] = {{Theme::kLight, "light"}, {Theme::kDark, "dark"}};
///     };
///
/// or specializes `PlistConversion` where there is no raw value.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ORLFoundation {

/// How a type converts: its `PlistType`, and two static operations. `plistValue` may throw;
/// `rawValue` answers nil for a value that does not fit.
template <class T>
struct PlistConversion {};

/// The raw value of a type: its type `RawValue`, `rawValue(value)`, which may throw, and
/// `initWithRawValue(raw)`, which answers nil for a raw value that the type does not have. A class
/// with members of these names needs no specialization.
template <class T>
struct PlistRawValue {};

template <class T>
requires std::is_class_v<T> && requires(const T& value, const typename T::RawValue& raw) {
  { value.rawValue() } -> std::convertible_to<typename T::RawValue>;
  { T::initWithRawValue(raw) } -> std::same_as<std::optional<T>>;
}
struct PlistRawValue<T> {
  using RawValue = typename T::RawValue;
  static RawValue rawValue(const T& value) { return value.rawValue(); }
  static std::optional<T> initWithRawValue(const RawValue& raw) { return T::initWithRawValue(raw); }
};

/// `PlistConvertible`  What converts to a property-list type.
template <class T>
concept PlistConvertible = requires(const T& value,
                                    const typename PlistConversion<T>::PlistType& plistValue) {
  // `plistValue(forRawValue:)`
  { PlistConversion<T>::plistValue(value) } -> std::same_as<typename PlistConversion<T>::PlistType>;
  // `rawValue(forPlistValue:)`
  { PlistConversion<T>::rawValue(plistValue) } -> std::same_as<std::optional<T>>;
};

/// A type that has a raw value, of which it can be made again.
template <class T>
concept PlistRawRepresentable = requires(const T& value,
                                         const typename PlistRawValue<T>::RawValue& raw) {
  { PlistRawValue<T>::rawValue(value) } -> std::convertible_to<typename PlistRawValue<T>::RawValue>;
  { PlistRawValue<T>::initWithRawValue(raw) } -> std::same_as<std::optional<T>>;
};

/// A value of a property list as the type that a conversion takes; nil when it is of another kind.
template <class PlistType>
[[nodiscard]] std::optional<PlistType> plistValueAs(const id& value) {
  if constexpr (requires { typename PlistType::element_type; }) {
    auto object = value.as<typename PlistType::element_type>();
    return object ? std::optional<PlistType>(std::move(object)) : std::nullopt;
  } else {
    return value.as<PlistType>();
  }
}

/// Any number; true unless it is 0.
template <>
struct PlistConversion<bool> {
  using PlistType = NSNumber;
  static NSNumber plistValue(bool value) { return value; }
  static std::optional<bool> rawValue(const NSNumber& value) { return value.boolValue(); }
};

/// A whole number that the type can hold.
template <std::integral T>
requires(!std::same_as<T, bool>) struct PlistConversion<T> {
  using PlistType = NSNumber;
  static NSNumber plistValue(T value) { return value; }
  static std::optional<T> rawValue(const NSNumber& value) {
    const T converted = std::is_signed_v<T> ? static_cast<T>(value.integerValue())
                                            : static_cast<T>(value.unsignedIntegerValue());
    return NSNumber(converted) == value ? std::optional(converted) : std::nullopt;
  }
};

template <class T>
requires std::same_as<T, std::string> || std::same_as<T, NSDate>
struct PlistConversion<T> {
  using PlistType = T;
  static T plistValue(const T& value) { return value; }
  static std::optional<T> rawValue(const T& value) { return value; }
};

template <class T>
requires PlistRawRepresentable<T> && PlistConvertible<typename PlistRawValue<T>::RawValue>
struct PlistConversion<T> {
  using Raw = PlistConversion<typename PlistRawValue<T>::RawValue>;
  using PlistType = typename Raw::PlistType;
  static PlistType plistValue(const T& value) {
    return Raw::plistValue(PlistRawValue<T>::rawValue(value));
  }
  static std::optional<T> rawValue(const PlistType& value) {
    const auto raw = Raw::rawValue(value);
    return raw ? PlistRawValue<T>::initWithRawValue(*raw) : std::nullopt;
  }
};

/// nil is nil on both sides. A value that does not fit the type inside does not fit at all.
template <PlistConvertible T>
struct PlistConversion<std::optional<T>> {
  using PlistType = std::optional<typename PlistConversion<T>::PlistType>;
  static PlistType plistValue(const std::optional<T>& value) {
    if (!value) return std::nullopt;
    return PlistConversion<T>::plistValue(*value);
  }
  static std::optional<std::optional<T>> rawValue(const PlistType& value) {
    if (!value) return std::optional<T>();
    auto raw = PlistConversion<T>::rawValue(*value);
    if (!raw) return std::nullopt;
    return std::optional<std::optional<T>>(std::in_place, std::move(raw));
  }
};

/// Raw values from a table of rows, for enumerations: a base of `PlistRawValue<T>`, which has the
/// rows as `kRows`. A value without a row raises `NSInvalidArgumentException` when it is written.
template <class T, class Raw>
struct PlistRawValueTable {
  using RawValue = Raw;
  struct Row {
    T value;
    std::conditional_t<std::same_as<Raw, std::string>, std::string_view, Raw> raw;
  };

  static RawValue rawValue(const T& value) {
    for (const Row& row : PlistRawValue<T>::kRows)
      if (row.value == value) return RawValue(row.raw);
    throw NSException(NSInvalidArgumentException, "a value without a raw value");
  }
  static std::optional<T> initWithRawValue(const RawValue& raw) {
    for (const Row& row : PlistRawValue<T>::kRows)
      if (row.raw == raw) return row.value;
    return std::nullopt;
  }
};

}  // namespace ORLFoundation

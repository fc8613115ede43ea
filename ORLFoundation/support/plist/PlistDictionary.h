/// A property-list dictionary with typed entries: keys carry the type of their value, and reading
/// converts. A plain value; copies are apart, though collections in them are shared.
///
///     const PlistDictionaryKey<std::string> kTitle{"title"};
///     const PlistDictionaryKey<std::optional<NSDate>> kOpened{"opened"};
///
///     PlistDictionary record;
///     record[kTitle] = "Household";
///     record[kTitle].value();           // std::optional<std::string>
///     record[kOpened] = std::nullopt;   // takes the entry away
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/support/plist/PlistConvertible.h>
#include <ORLFoundation/support/plist/PlistDictionaryKey.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ORLFoundation {

template <class T>
class PlistDictionaryEntry;

class PlistDictionary {
 public:
  using Values = std::map<std::string, id, std::less<>>;

  /// `init()`  No entries.
  PlistDictionary() = default;
  /// `init(values:)`  nil for nil, for a key that is no text and a value that is no property list.
  [[nodiscard]] static std::optional<PlistDictionary> initWithValues(
      const std::shared_ptr<NSDictionary>& values);

  [[nodiscard]] const Values& values() const noexcept { return values_; }
  /// The entries as a dictionary of the platform.
  [[nodiscard]] std::shared_ptr<NSDictionary> dictionary() const;

  /// The value under a key: nil when there is none, and when what is there does not convert. (An
  /// optional type is not wrapped once more.)
  template <PlistConvertible T>
  [[nodiscard]] auto valueForKey(const PlistDictionaryKey<T>& key) const {
    return reading<T>(find(key.name));
  }
  /// Sets the value under a key; nil takes the entry away. What the conversion throws comes
  /// through, and leaves the entry as it was.
  template <PlistConvertible T>
  void setValueForKey(const std::optional<std::type_identity_t<T>>& value,
                      const PlistDictionaryKey<T>& key) {
    if (!value.has_value()) return remove(key.name);
    set(key.name, PlistConversion<T>::plistValue(value.value()));
  }

  /// `subscript(PlistDictionaryKey)`  The value, as `valueForKey` reads it.
  template <PlistConvertible T>
  [[nodiscard]] auto operator[](const PlistDictionaryKey<T>& key) const {
    return valueForKey(key);
  }
  /// The entry, to be read or set. It must not outlive the dictionary or the key.
  template <PlistConvertible T>
  [[nodiscard]] PlistDictionaryEntry<T> operator[](const PlistDictionaryKey<T>& key) {
    return {*this, key};
  }

  friend bool operator==(const PlistDictionary&, const PlistDictionary&) = default;

 private:
  template <class T>
  struct IsOptional : std::false_type {};
  template <class T>
  struct IsOptional<std::optional<T>> : std::true_type {};

  template <class T>
  static auto reading(const id* value) {
    if constexpr (IsOptional<T>::value) {
      return reading<typename T::value_type>(value);
    } else {
      using Conversion = PlistConversion<T>;
      const auto plist =
          value ? plistValueAs<typename Conversion::PlistType>(*value) : std::nullopt;
      return plist ? Conversion::rawValue(*plist) : std::optional<T>();
    }
  }
  /// null when there is no entry of that name.
  [[nodiscard]] const id* find(std::string_view name) const;
  /// nil, which an optional type converts to, takes the entry away.
  void set(const std::string& name, id value);
  void remove(const std::string& name) { values_.erase(name); }

  Values values_;
};

/// One entry of a dictionary, as the subscript gives it.
template <class T>
class PlistDictionaryEntry {
 public:
  PlistDictionaryEntry(PlistDictionary& dictionary, const PlistDictionaryKey<T>& key)
      : dictionary_(dictionary), key_(key) {}
  PlistDictionaryEntry(const PlistDictionaryEntry&) = delete;

  [[nodiscard]] auto value() const { return std::as_const(dictionary_).valueForKey(key_); }
  PlistDictionaryEntry& operator=(const std::optional<T>& value) {
    dictionary_.setValueForKey(value, key_);
    return *this;
  }
  PlistDictionaryEntry& operator=(const PlistDictionaryEntry&) = delete;

  /// Compares the value.
  template <class Other>
  friend bool operator==(const PlistDictionaryEntry& entry, const Other& other) {
    return entry.value() == other;
  }

 private:
  PlistDictionary& dictionary_;
  const PlistDictionaryKey<T>& key_;
};

/// By way of an `NSDictionary`.
template <>
struct PlistConversion<PlistDictionary> {
  using PlistType = std::shared_ptr<NSDictionary>;
  static PlistType plistValue(const PlistDictionary& value) { return value.dictionary(); }
  static std::optional<PlistDictionary> rawValue(const PlistType& value) {
    return PlistDictionary::initWithValues(value);
  }
};

}  // namespace ORLFoundation

/// Types whose state is a `PlistDictionary`, and which therefore stand in others.
///
///     class Window {
///      public:
///       explicit Window(PlistDictionary dictionary) : dictionary_(std::move(dictionary)) {}
///       [[nodiscard]] const PlistDictionary& plistDictionary() const { return dictionary_; }
///
///      private:
///       PlistDictionary dictionary_;
///     };
///
///     const PlistDictionaryKey<Window> kWindow{"window"};
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/support/plist/PlistConvertible.h>
#include <ORLFoundation/support/plist/PlistDictionary.h>

#include <concepts>
#include <memory>
#include <optional>
#include <utility>

namespace ORLFoundation {

/// `PlistDictionaryStorage`  Made from a dictionary, and gives it back.
template <class T>
concept PlistDictionaryStorage = std::constructible_from<T, PlistDictionary> &&
    requires(const T& value) {
  { value.plistDictionary() } -> std::convertible_to<PlistDictionary>;
};

/// By way of an `NSDictionary`.
template <PlistDictionaryStorage T>
struct PlistConversion<T> {
  using PlistType = std::shared_ptr<NSDictionary>;
  static PlistType plistValue(const T& value) {
    return PlistDictionary(value.plistDictionary()).dictionary();
  }
  static std::optional<T> rawValue(const PlistType& value) {
    auto dictionary = PlistDictionary::initWithValues(value);
    return dictionary ? std::optional<T>(T(*std::move(dictionary))) : std::nullopt;
  }
};

}  // namespace ORLFoundation

/// What archives know of a class: its name, its superclass, whether it may be read under secure
/// coding, and how a new object is read.
///
/// A class that is archived derives from `NSSecureCoding` and defines its record once, in a static
/// operation:
///
///     const NSCodingClass& ORLFDateRecurrencePeriod::codingClass() {
///       static const NSCodingClass& record =
///           NSCodingClass::define<ORLFDateRecurrencePeriod>("ORLFDateRecurrencePeriod");
///       return record;
///     }
///
/// Naming the class where it is allowed, `decodeObjectOfClass<ORLFDateRecurrencePeriod>(key)`,
/// calls that operation, so a class is known before anything of it can be read: there is no list to
/// keep and nothing for a static linker to leave out. A subclass that shall be read where only its
/// superclass is named is made known by the superclass's `codingClass`, or, beside its operations
/// in its source, before the program begins:
///
///     const NSKnownCodingClass<Mortgage> kMortgagesAreKnown;
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

class id;
class NSArray;
class NSCoder;
class NSData;
class NSDate;
class NSDecimalNumber;
class NSDictionary;
struct NSNull;
class NSNumber;
class NSSet;
class NSURL;
class NSUUID;

class NSCodingClass {
 public:
  /// Reads a new object; nil when the coder failed or the class refuses what it read.
  using InitWithCoder = id (*)(NSCoder& coder);

  NSCodingClass(std::string_view name, const NSCodingClass* superclass, bool isSecure,
                InitWithCoder read)
      : name_(name), superclass_(superclass), isSecure_(isSecure), read_(read) {}

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  /// null for a class right below the root.
  [[nodiscard]] const NSCodingClass* superclass() const noexcept { return superclass_; }
  /// `supportsSecureCoding`
  [[nodiscard]] bool supportsSecureCoding() const noexcept { return isSecure_; }
  [[nodiscard]] InitWithCoder initWithCoder() const noexcept { return read_; }
  /// `isSubclassOfClass:`  A class is one of itself.
  [[nodiscard]] bool isSubclassOf(const NSCodingClass& other) const noexcept;

  /// The record of a class that has `initWithCoder` and `supportsSecureCoding`, made known under
  /// its name. A name that is taken keeps its record, which is answered. Any thread.
  template <class T>
  static const NSCodingClass& define(std::string_view name,
                                     const NSCodingClass* superclass = nullptr);
  /// The record under a name; null when none was defined. Any thread.
  [[nodiscard]] static const NSCodingClass* named(std::string_view name);

 private:
  static const NSCodingClass& defineRecord(std::string_view name, const NSCodingClass* superclass,
                                           bool isSecure, InitWithCoder read);
  // The second parameter lets `id` wait to be complete until this is used.
  template <class T, class Result>
  static Result readObject(NSCoder& coder) {
    return Result(T::initWithCoder(coder));
  }

  std::string name_;
  const NSCodingClass* superclass_;
  bool isSecure_;
  InitWithCoder read_;
};

template <class T>
const NSCodingClass& NSCodingClass::define(std::string_view name, const NSCodingClass* superclass) {
  return defineRecord(name, superclass, T::supportsSecureCoding(), &readObject<T, id>);
}

/// The classes that a reader allows. The records outlive every set of them.
using NSCodingClasses = std::span<const NSCodingClass* const>;

/// The record of a class: of the platform's own by specialization, else the class's `codingClass`.
template <class T>
[[nodiscard]] const NSCodingClass& NSCodingClassOf() {
  return T::codingClass();
}
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<std::string>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSNumber>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSDecimalNumber>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSDate>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSData>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSURL>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSUUID>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSNull>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSArray>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSDictionary>();
template <>
[[nodiscard]] const NSCodingClass& NSCodingClassOf<NSSet>();

/// A set of classes, made once.
template <class... T>
[[nodiscard]] NSCodingClasses NSCodingClassesOf() {
  static const NSCodingClass* const classes[] = {&NSCodingClassOf<T>()...};
  return classes;
}

/// Makes a class known before the program begins; for one object of it in the class's source.
template <class T>
class NSKnownCodingClass {
 public:
  NSKnownCodingClass() { static_cast<void>(NSCodingClassOf<T>()); }
};

}  // namespace ORLFoundation

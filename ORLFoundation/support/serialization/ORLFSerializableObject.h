/// An object whose properties are the entries of a dictionary, so that it is copied, compared and
/// archived as a whole. A subclass names itself and adds what it likes:
///
///     class Preferences final : public ORLFSerializableSubclass<Preferences> {
///      public:
///       static constexpr std::string_view kClassName = "Preferences";
///       using ORLFSerializableSubclass::ORLFSerializableSubclass;
///     };
///
///     const auto preferences = std::make_shared<Preferences>();
///     preferences->setValueForKey("en_US", "locale");     // goes to `data`
///     preferences->valueForKey("locale");
///     auto bytes = NSKeyedArchiver::archivedDataWithRootObject(preferences, true);
///     auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<Preferences>(*bytes);
///
/// Not safe on several threads.
#pragma once

#include <ORLFoundation/platform/archive/NSCodingClass.h>
#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSDictionary;
class NSMutableDictionary;

class ORLFSerializableObject : public NSObject, public NSSecureCoding {
 public:
  ORLFSerializableObject() = default;
  /// `initWithData:`  Keeps a mutable copy; nil is the same as no data.
  explicit ORLFSerializableObject(const std::shared_ptr<NSDictionary>& data);

  /// `allowedTopLevelClasses`  What may stand in an archived `data`, at any depth, in this order:
  /// arrays, dictionaries, sets, texts, numbers, dates, data, addresses, identifiers, `NSNull` and
  /// `ORLFDateRecurrenceRule`. A subclass that allows more has one of its own.
  [[nodiscard]] static NSCodingClasses allowedTopLevelClasses();

  /// `data`  Never nil: made when it is first asked for.
  [[nodiscard]] const std::shared_ptr<NSMutableDictionary>& data() const;
  void setData(std::shared_ptr<NSMutableDictionary> data);

  /// `supportsSecureCoding`
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  /// `initWithCoder:`  Reads "data". Fails the coder when that is no dictionary, or holds an object
  /// of a class that is not allowed.
  [[nodiscard]] static std::shared_ptr<ORLFSerializableObject> initWithCoder(NSCoder& coder);
  /// `encodeWithCoder:`  Writes "data".
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

  /// `valueForUndefinedKey:`, `setValue:forUndefinedKey:`  Read from and write to `data`; nil
  /// removes.
  [[nodiscard]] id valueForUndefinedKey(std::string_view key) const override;
  void setValueForUndefinedKey(const id& value, std::string_view key) override;

  [[nodiscard]] std::string className() const override { return "ORLFSerializableObject"; }
  /// `isEqual:`  Another object of exactly the same class with equal `data`.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `description`  "<Preferences: 0x55d0c8, data: {\n    locale = \"en_US\";\n}>".
  [[nodiscard]] std::string description() const override;
  /// `copyWithZone:`  A new object of the receiver's class with a mutable copy of `data`. What a
  /// subclass keeps elsewhere is not copied.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;
  /// Takes `data` from a coder, of the classes given.
  void decodeData(NSCoder& coder, NSCodingClasses classes);

 private:
  mutable std::shared_ptr<NSMutableDictionary> data_;
};

/// The base of a subclass named `Class::kClassName`, which archives and copies it as itself.
/// `Class` can be made without arguments. The name is part of stored files: it never changes. It is
/// known before the program begins, so that an archive opens where only the base is named.
template <class Class, class Base = ORLFSerializableObject>
class ORLFSerializableSubclass : public Base {
 public:
  using Base::Base;

  [[nodiscard]] static std::shared_ptr<Class> initWithCoder(NSCoder& coder) {
    auto object = std::make_shared<Class>();
    // Through the base, whose operation is protected.
    static_cast<ORLFSerializableSubclass&>(*object).decodeData(coder,
                                                               Class::allowedTopLevelClasses());
    return object;
  }
  [[nodiscard]] static const NSCodingClass& codingClass() {
    static const NSCodingClass& record =
        NSCodingClass::define<Class>(Class::kClassName, &Base::codingClass());
    return record;
  }
  [[nodiscard]] const NSCodingClass& classForCoder() const override {
    static_cast<void>(&kIsKnown);  // names it, so that there is one
    return codingClass();
  }
  [[nodiscard]] std::string className() const override { return std::string(Class::kClassName); }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<Class>();
  }

 private:
  static inline const NSKnownCodingClass<Class> kIsKnown;
};

}  // namespace ORLFoundation

/// What objects write themselves to, and are read from: values under keys. A class writes its
/// fields in `encodeWithCoder` and reads them, under the same keys, in `initWithCoder`.
///
///     void Loan::encodeWithCoder(NSCoder& coder) const {
///       coder.encodeInt64(term_, "term");
///       coder.encodeObject(rate_, "rate");
///     }
///     std::shared_ptr<Loan> Loan::initWithCoder(NSCoder& coder) {
///       return std::make_shared<Loan>(coder.decodeInt64("term"),
///                                     coder.decodeObjectOfClass<NSDecimalNumber>("rate"));
///     }
///
/// A missing key reads as nil, 0 or false. A value of the wrong kind, a class that is not allowed
/// and damage do so too, and fail the coder: everything read after the first failure is nil, 0 or
/// false, and whoever asked for the archive gets nil and the error. So `initWithCoder` need not
/// check as it goes.
///
/// A source that encodes or decodes objects includes Id.h, or the header of a collection, beside
/// this one, which every header of an archived class would else carry with it.
///
/// `NSKeyedArchiver` takes the encoding operations and raises `NSInvalidArgumentException` for the
/// others, `NSKeyedUnarchiver` the other way round. A coder is used from one thread at a time.
#pragma once

#include <ORLFoundation/platform/archive/NSCodingClass.h>
#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class id;
class NSData;

class NSCoder : public NSObject {
 public:
  /// `encodeObject:forKey:`  A reference; an object met before is written once. nil is written as
  /// such. Raises `NSInvalidArgumentException` for an object that cannot be archived.
  virtual void encodeObject(const id& object, std::string_view forKey);
  /// `encodeInt64:forKey:` and its siblings write their value in place.
  virtual void encodeInt64(std::int64_t value, std::string_view forKey);
  /// `encodeInt32:forKey:`
  void encodeInt32(std::int32_t value, std::string_view forKey) { encodeInt64(value, forKey); }
  /// `encodeInteger:forKey:`
  void encodeInteger(NSInteger value, std::string_view forKey) { encodeInt64(value, forKey); }
  /// `encodeBool:forKey:`
  virtual void encodeBool(bool value, std::string_view forKey);
  /// `encodeDouble:forKey:`
  virtual void encodeDouble(double value, std::string_view forKey);
  /// `encodeBytes:length:forKey:`
  virtual void encodeBytes(const NSData& bytes, std::string_view forKey);
  /// A list of references in place, as collections write their members.
  virtual void encodeObjects(const std::vector<id>& objects, std::string_view forKey);

  /// `containsValueForKey:`  true for a nil that was written.
  [[nodiscard]] virtual bool containsValueForKey(std::string_view key) const;
  /// `decodeInt64ForKey:`, `decodeIntegerForKey:`  Takes whole numbers only.
  [[nodiscard]] virtual std::int64_t decodeInt64(std::string_view forKey);
  [[nodiscard]] NSInteger decodeInteger(std::string_view forKey) { return decodeInt64(forKey); }
  /// `decodeInt32ForKey:`  A number that 32 bits cannot hold is a failure.
  [[nodiscard]] std::int32_t decodeInt32(std::string_view forKey);
  /// `decodeBoolForKey:`  A whole number counts as true unless it is 0.
  [[nodiscard]] virtual bool decodeBool(std::string_view forKey);
  /// `decodeDoubleForKey:`  Takes reals only.
  [[nodiscard]] virtual double decodeDouble(std::string_view forKey);
  /// `decodeBytesForKey:returnedLength:`
  [[nodiscard]] virtual std::optional<NSData> decodeBytes(std::string_view forKey);
  /// A text in place; `encodeObject` writes texts as references.
  [[nodiscard]] virtual std::optional<std::string> decodeText(std::string_view forKey);
  /// A list that `encodeObjects` wrote. Its members may be of the classes that are allowed for the
  /// object being read; a member that is nil is a failure.
  [[nodiscard]] virtual std::optional<std::vector<id>> decodeObjects(std::string_view forKey);
  /// The same for the members of a set and the keys of a dictionary, which are about to be hashed:
  /// collections among them must not add up to more than their archive has room for.
  [[nodiscard]] virtual std::optional<std::vector<id>> decodeKeys(std::string_view forKey);
  /// `decodeObjectOfClasses:forKey:`  An object of one of the classes or their subclasses. The
  /// members of a collection must be of the same classes.
  [[nodiscard]] virtual id decodeObject(NSCodingClasses ofClasses, std::string_view forKey);
  template <class... T>
  [[nodiscard]] auto decodeObjectOfClasses(std::string_view forKey) {
    return decodeObject(NSCodingClassesOf<T...>(), forKey);
  }
  /// `decodeObjectOfClass:forKey:`  The object as a T: a shared pointer, or an optional of a plain
  /// value.
  template <class T>
  [[nodiscard]] auto decodeObjectOfClass(std::string_view forKey) {
    return decodeObject(NSCodingClassesOf<T>(), forKey).template as<T>();
  }

  /// Announces the object that `initWithCoder` is about to fill, so that its members can refer back
  /// to it. Without this, an object that is met again while it is being read is a failure.
  virtual void setObjectBeingDecoded(const std::shared_ptr<NSObject>& object);
  /// `failWithError:`  Fails the coder, for a class that cannot use what it read. The first failure
  /// is the one that is told.
  virtual void failWithError(std::string_view localizedDescription);

  [[nodiscard]] std::string className() const override { return "NSCoder"; }
};

}  // namespace ORLFoundation

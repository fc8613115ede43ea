/// Reads keyed archives, binary or XML. The caller names the classes that it allows, and nothing of
/// another class is made: neither the class names nor the chains of superclasses in the archive are
/// trusted, only the records of `NSCodingClass`.
///
///     auto plan = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(bytes, &error);
///     id list = NSKeyedUnarchiver::unarchivedObjectOfClasses<NSArray, std::string>(bytes, &error);
///
/// Whatever the bytes, the answer is an object, or nil and an error: a damaged archive, a reference
/// to nothing, a collection that holds itself, nesting deeper than 128 objects, and values of the
/// wrong kind give nil. Time and memory are bounded by the archive's length.
#pragma once

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

namespace internal::archive {
class ArchiveReader;
}

class NSKeyedUnarchiver final : public NSCoder {
 public:
  /// `unarchivedObjectOfClass:fromData:error:`  The root object as a T.
  template <class T>
  [[nodiscard]] static auto unarchivedObjectOfClass(const NSData& fromData,
                                                    NSErrorSlot error = nullptr) {
    return unarchivedObject(NSCodingClassesOf<T>(), fromData, error).template as<T>();
  }
  /// `unarchivedObjectOfClasses:fromData:error:`
  template <class... T>
  [[nodiscard]] static id unarchivedObjectOfClasses(const NSData& fromData,
                                                    NSErrorSlot error = nullptr) {
    return unarchivedObject(NSCodingClassesOf<T...>(), fromData, error);
  }
  /// The same for classes in a list.
  [[nodiscard]] static id unarchivedObject(NSCodingClasses ofClasses, const NSData& fromData,
                                           NSErrorSlot error = nullptr);

  /// `initForReadingFromData:error:`  null for data that is no archive.
  [[nodiscard]] static std::shared_ptr<NSKeyedUnarchiver> initForReadingFromData(
      const NSData& data, NSErrorSlot error = nullptr);
  ~NSKeyedUnarchiver() override;

  // At the outermost these read what stands beside the root; in `initWithCoder`, the fields of the
  // object being read.
  [[nodiscard]] bool containsValueForKey(std::string_view key) const override;
  [[nodiscard]] std::int64_t decodeInt64(std::string_view forKey) override;
  [[nodiscard]] bool decodeBool(std::string_view forKey) override;
  [[nodiscard]] double decodeDouble(std::string_view forKey) override;
  [[nodiscard]] std::optional<NSData> decodeBytes(std::string_view forKey) override;
  [[nodiscard]] std::optional<std::string> decodeText(std::string_view forKey) override;
  [[nodiscard]] std::optional<std::vector<id>> decodeObjects(std::string_view forKey) override;
  [[nodiscard]] std::optional<std::vector<id>> decodeKeys(std::string_view forKey) override;
  [[nodiscard]] id decodeObject(NSCodingClasses ofClasses, std::string_view forKey) override;
  void setObjectBeingDecoded(const std::shared_ptr<NSObject>& object) override;
  void failWithError(std::string_view localizedDescription) override;

  /// `error`  The first failure; null while there is none.
  [[nodiscard]] std::shared_ptr<const NSError> error() const;

  [[nodiscard]] std::string className() const override { return "NSKeyedUnarchiver"; }

 private:
  explicit NSKeyedUnarchiver(const NSData& data);

  std::unique_ptr<internal::archive::ArchiveReader> reader_;
};

}  // namespace ORLFoundation

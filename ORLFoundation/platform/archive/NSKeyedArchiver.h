/// Writes objects with all that they refer to as a keyed archive: a property list in which each
/// object stands once, so that shared references stay shared and objects may refer to each other.
///
///     auto bytes = NSKeyedArchiver::archivedDataWithRootObject(plan, true, &error);
///
/// Texts, numbers, decimals, dates, data, addresses, identifiers, `NSNull`, arrays, dictionaries
/// and sets are written, and objects whose class is an `NSSecureCoding`. Equal texts, numbers and
/// other plain values are written once.
#pragma once

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// Under this key an archive of one object has it.
inline constexpr std::string_view NSKeyedArchiveRootObjectKey = "root";
/// Codes in `NSCocoaErrorDomain`.
inline constexpr NSInteger NSCoderReadCorruptError = 4864;
inline constexpr NSInteger NSCoderInvalidValueError = 4866;

class NSKeyedArchiver final : public NSCoder {
 public:
  /// `archivedDataWithRootObject:requiringSecureCoding:error:`  A binary archive of one object; nil
  /// for an object that cannot be archived, for a collection that holds itself, for nesting deeper
  /// than 128 objects, and, under secure coding, for a class that does not support it.
  [[nodiscard]] static std::optional<NSData> archivedDataWithRootObject(
      const id& rootObject, bool requiringSecureCoding, NSErrorSlot error = nullptr);

  /// `initRequiringSecureCoding:`
  explicit NSKeyedArchiver(bool requiringSecureCoding);
  ~NSKeyedArchiver() override;

  /// `outputFormat`  Binary unless it is set before the end of encoding.
  [[nodiscard]] NSPropertyListFormat outputFormat() const noexcept;
  void setOutputFormat(NSPropertyListFormat format) noexcept;

  // A key that begins with "$" is written with one more of them, which reading takes off.
  void encodeObject(const id& object, std::string_view forKey) override;
  void encodeInt64(std::int64_t value, std::string_view forKey) override;
  void encodeBool(bool value, std::string_view forKey) override;
  void encodeDouble(double value, std::string_view forKey) override;
  void encodeBytes(const NSData& bytes, std::string_view forKey) override;
  void encodeObjects(const std::vector<id>& objects, std::string_view forKey) override;

  /// `finishEncoding`, `encodedData`  The archive, with what was encoded so far. Raises
  /// `NSInvalidArgumentException` for a format that is not written.
  [[nodiscard]] NSData encodedData();

  [[nodiscard]] std::string className() const override { return "NSKeyedArchiver"; }

 private:
  class Writer;
  std::unique_ptr<Writer> writer_;
};

}  // namespace ORLFoundation

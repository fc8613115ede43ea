/// What archived classes derive from, beside `NSObject`. They also have two static operations:
/// `supportsSecureCoding`, and `initWithCoder`, which gives a new object or null. Sources include
/// NSCoder.h to write them; a header needs no more than this one.
#pragma once

namespace ORLFoundation {

class NSCoder;
class NSCodingClass;

class NSSecureCoding {
 public:
  virtual ~NSSecureCoding() = default;

  /// `encodeWithCoder:`
  virtual void encodeWithCoder(NSCoder& coder) const = 0;
  /// `classForCoder`  The class that the archive names.
  [[nodiscard]] virtual const NSCodingClass& classForCoder() const = 0;
};

}  // namespace ORLFoundation

/// Texts from bytes in a stated encoding.
#pragma once

#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <optional>
#include <string>

namespace ORLFoundation {

/// The encodings that are read; the numbers are stored and passed on.
enum NSStringEncoding : NSUInteger {
  NSASCIIStringEncoding = 1,
  NSUTF8StringEncoding = 4,
  NSWindowsCP1252StringEncoding = 12,
  NSMacOSRomanStringEncoding = 30,
};

/// `initWithData:encoding:`  nil when the bytes do not fit the encoding, and for an encoding that
/// is not listed here. Mac Roman takes all bytes; Windows Latin 1 leaves 81, 8D, 8F, 90 and 9D
/// without a character. A byte order mark before UTF-8 is left out of the text.
[[nodiscard]] std::optional<std::string> stringWithData(const NSData& data, NSUInteger encoding);

}  // namespace ORLFoundation

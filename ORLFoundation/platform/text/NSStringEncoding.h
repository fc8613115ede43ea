/// Texts from bytes in a stated encoding.
#pragma once

#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// The encodings that are read; the numbers are stored and passed on.
enum NSStringEncoding : NSUInteger {
  NSASCIIStringEncoding = 1,
  NSUTF8StringEncoding = 4,
  NSISOLatin1StringEncoding = 5,
  NSUTF16StringEncoding = 10,
  NSUnicodeStringEncoding = NSUTF16StringEncoding,
  NSWindowsCP1252StringEncoding = 12,
  NSMacOSRomanStringEncoding = 30,
  NSUTF16BigEndianStringEncoding = 0x90000100,
  NSUTF16LittleEndianStringEncoding = 0x94000100,
};

/// The code in `NSCocoaErrorDomain` of a text that does not fit an encoding, and the key in its
/// user information under which the encoding's number stands.
inline constexpr NSInteger NSFileWriteInapplicableStringEncodingError = 517;
inline constexpr std::string_view NSStringEncodingErrorKey = "NSStringEncoding";

/// `initWithData:encoding:`  nil when the bytes do not fit the encoding, and for an encoding that
/// is not listed here. Mac Roman and ISO Latin 1 take all bytes; Windows Latin 1 leaves 81, 8D, 8F,
/// 90 and 9D without a character. UTF-16 takes whole units and whole pairs of surrogates; without a
/// byte order mark and without an order in its name it is big-endian. A mark before UTF-8, and
/// before UTF-16 that leaves the order open, is left out of the text.
[[nodiscard]] std::optional<std::string> stringWithData(const NSData& data, NSUInteger encoding);

}  // namespace ORLFoundation

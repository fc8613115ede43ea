/// Texts into bytes of a stated encoding, at once or piece by piece.
///
///     NSStringBytes pieces(text, NSWindowsCP1252StringEncoding);
///     while (!pieces.remaining().empty()) {
///       const auto used = pieces.getBytes(buffer);
///       if (!used) return false;  // the character at the front has no place in the encoding
///       write(buffer, *used);
///     }
#pragma once

#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace ORLFoundation {

/// Bits; others have no effect.
enum NSStringEncodingConversionOptions : NSUInteger {
  /// A character that the encoding lacks is given by its base letter or a look-alike, else by "?".
  NSStringEncodingConversionAllowLossy = 1,
  /// A byte-order mark comes first where the encoding has one (`NSUTF16StringEncoding`).
  NSStringEncodingConversionExternalRepresentation = 2,
};

/// How many bytes at the front of a text, whole characters, an encoding writes as the very bytes
/// that stand there: ASCII in most, well-formed text in UTF-8, none in UTF-16 and in an encoding
/// that is not listed in `NSStringEncoding`.
[[nodiscard]] std::size_t orlfLengthOfKeptBytes(std::string_view text,
                                                NSUInteger encoding) noexcept;

/// `getBytes:maxLength:usedLength:encoding:options:range:remainingRange:`, which keeps what remains
/// of the text between calls. The text is a view that must live on; its broken bytes stand for
/// U+FFFD. UTF-16 is in the order of this machine.
class NSStringBytes {
 public:
  /// The least space that a call needs to get anything done.
  static constexpr std::size_t kLeastSpace = 64;

  /// A number that is not listed in `NSStringEncoding` converts nothing.
  NSStringBytes(std::string_view text, NSUInteger encoding, NSUInteger options = 0);

  /// Fills the buffer with whole characters from the front of what remains, up to one that the
  /// encoding lacks, and tells how many bytes it took. nil when not even the first could be
  /// converted. Raises `NSRangeException` for a buffer of less than the least space.
  std::optional<std::size_t> getBytes(std::span<std::uint8_t> buffer);
  [[nodiscard]] std::string_view remaining() const noexcept { return remaining_; }

 private:
  std::string_view remaining_;
  const NSUInteger encoding_;
  const bool isLossy_;
  bool needsMark_;
};

/// `dataUsingEncoding:allowLossyConversion:`  nil for a text with a character that the encoding
/// lacks, and for an encoding that is not listed in `NSStringEncoding`. UTF-16 begins with a
/// byte-order mark.
[[nodiscard]] std::optional<NSData> dataUsingEncoding(std::string_view string, NSUInteger encoding,
                                                      bool allowLossyConversion = false);

}  // namespace ORLFoundation

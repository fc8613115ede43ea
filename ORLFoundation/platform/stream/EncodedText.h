/// Texts written to streams in a stated encoding.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <string_view>

namespace ORLFoundation {
class NSOutputStream;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::stream {

/// Hands all bytes of the text to the stream in one write. false, with
/// `NSFileWriteInapplicableStringEncodingError` and nothing written, for a text that the encoding
/// does not hold and for an encoding that is not known; false, with the stream's own error, when
/// the write answers -1. A short count and 0 are successes, and the rest is not written.
bool writeText(NSOutputStream& stream, std::string_view text, NSUInteger encoding,
               NSErrorSlot error);

/// The failure of a text that the encoding does not hold: fills the slot and gives false.
bool refuseEncoding(NSUInteger encoding, NSErrorSlot error);

}  // namespace ORLFoundation::internal::stream

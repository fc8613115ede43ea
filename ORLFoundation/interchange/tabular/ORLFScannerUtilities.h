/// What a scanner reads of tables and of hexadecimal digits.
#pragma once

#include <ORLFoundation/interchange/tabular/ORLFTabularRows.h>
#include <ORLFoundation/platform/text/NSScanner.h>

#include <cstdint>

namespace ORLFoundation {

/// `csvRows`  The rows of the scanner's whole text, as `orlfEnumerateTabularRows` tells. The
/// separator is a semicolon when the line at the scanner's place holds one, else a comma. The
/// scanner then stands at its end and skips nothing.
[[nodiscard]] ORLFTabularRows csvRows(NSScanner& scanner);

/// `orlfScanHexDigits:intoInt:`  Takes exactly so many hexadecimal digits in either case, four bits
/// each, of which the last 32 bits are kept. false, with the place and the slot as they were, when
/// the text ends first or holds another character. A count of 0 or below gives true and the value
/// 0.
bool orlfScanHexDigits(NSScanner& scanner, std::int32_t count, std::uint32_t* intoInt);

}  // namespace ORLFoundation

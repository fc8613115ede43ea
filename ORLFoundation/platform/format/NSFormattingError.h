/// Codes that formatters of numbers and dates give in `NSCocoaErrorDomain`.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

/// What was typed cannot be read.
inline constexpr NSInteger NSFormattingError = 2048;

}  // namespace ORLFoundation

/// What stands in for the result of a decimal calculation that meets an error.
///
///     ORLFRoundingBehavior cents(NSRoundPlain, 2, ORLFDecimalErrorBehaviorReturnNil);
#pragma once

#include <cstdint>

namespace ORLFoundation {

/// What an error does. Every other value raises too, so that an unknown code never fails silently.
enum ORLFDecimalErrorBehavior : std::int32_t {
  ORLFDecimalErrorBehaviorRaise = 0,
  ORLFDecimalErrorBehaviorReturnNil = 1,
  ORLFDecimalErrorBehaviorReturnZero = 2,
};

}  // namespace ORLFoundation

/// A handler with a value of its own in each field, for tests.
#pragma once

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <gtest/gtest.h>

namespace orlftest {

/// A different value in each field, so that none can stand for another.
inline constexpr ORLFoundation::ORLFDecimalNumberHandler::Fields kHandlerFields = {
    .roundingMode = ORLFoundation::NSRoundBankers,
    .scale = -2,
    .exactnessBehavior = 11,
    .overflowBehavior = 12,
    .underflowBehavior = 13,
    .divideByZeroBehavior = 14};

inline void expectHandlerFields(const ORLFoundation::ORLFDecimalNumberHandler& handler) {
  EXPECT_EQ(handler.roundingMode(), kHandlerFields.roundingMode);
  EXPECT_EQ(handler.scale(), kHandlerFields.scale);
  EXPECT_EQ(handler.exactnessBehavior(), kHandlerFields.exactnessBehavior);
  EXPECT_EQ(handler.overflowBehavior(), kHandlerFields.overflowBehavior);
  EXPECT_EQ(handler.underflowBehavior(), kHandlerFields.underflowBehavior);
  EXPECT_EQ(handler.divideByZeroBehavior(), kHandlerFields.divideByZeroBehavior);
}

}  // namespace orlftest

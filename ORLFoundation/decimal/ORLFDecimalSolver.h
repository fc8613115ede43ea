/// Searches a decimal that a test accepts, by bisection.
///
///     auto seven = aproximateValueUsingLinearRegressionLowerBound(
///         std::nullopt, std::nullopt, toCents.get(),
///         [&](const NSDecimalNumber& candidate, bool&) { return candidate.compare(target); });
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <functional>
#include <optional>

namespace ORLFoundation {

/// Says whether the candidate is the answer (0), too high (positive) or too low (negative). Setting
/// `stop` ends the search without an answer.
using ORLFDecimalSolverTest =
    std::function<NSInteger(const NSDecimalNumber& candidate, bool& stop)>;

/// `aproximateValueUsingLinearRegressionLowerBound:upperBound:roundingBehavior:test:`  A bound that
/// is nil is searched in powers of ten; the range is then halved until the test accepts the
/// midpoint or it stops moving, so that the behaviour's scale sets the precision. The test's
/// function must rise with the candidate. nil for reversed bounds, for a stop, for a target outside
/// the given bounds, and where the behaviour gives nil for an error. Equal bounds are the answer
/// unasked.
///
/// Steps are not counted: the search takes a call for each halving down to the behaviour's scale,
/// and one for each power of ten. nil too when the largest decimals are no bound.
[[nodiscard]] std::optional<NSDecimalNumber> aproximateValueUsingLinearRegressionLowerBound(
    const std::optional<NSDecimalNumber>& lowerBound,
    const std::optional<NSDecimalNumber>& upperBound,
    const NSDecimalNumberBehaviors* roundingBehavior, const ORLFDecimalSolverTest& test);

}  // namespace ORLFoundation



#include <ORLFoundation/amortization/internal/ORLFRateSearch.h>

#include <cmath>

namespace ORLFoundation::internal::amortization {
namespace {

constexpr int kMostSteps = 50;
constexpr double kTolerance = 0.00001;

// Two rates and the worths at them.
struct Bracket {
  double low, high;
  double worthAtLow, worthAtHigh;
};

// Moves the end whose worth is nearer to zero: the lower one halfway toward -1, which it never
// reaches, or the upper one outward.
void widen(Bracket& bracket, const ORLFCashFlows& flows) {
  if (std::fabs(bracket.worthAtHigh) > std::fabs(bracket.worthAtLow)) {
    bracket.low = (bracket.low - 1.0) * 0.5;
    bracket.worthAtLow = flows.worthAt(bracket.low);
  } else {
    bracket.high = bracket.high + 1.6 * (bracket.high - bracket.low);
    bracket.worthAtHigh = flows.worthAt(bracket.high);
  }
}

Bracket bracketed(const ORLFCashFlows& flows) {
  Bracket bracket{0.0, 0.2, flows.worthAt(0.0), flows.worthAt(0.2)};
  for (int step = 0; step < kMostSteps && !(bracket.worthAtLow * bracket.worthAtHigh < 0); ++step) {
    widen(bracket, flows);
  }
  return bracket;
}

}  // namespace

std::optional<double> ORLFRateOfReturn(const ORLFCashFlows& flows) {
  const Bracket bracket = bracketed(flows);
  if (bracket.worthAtLow * bracket.worthAtHigh > 0) return std::nullopt;
  const bool rising = flows.worthAt(bracket.low) < 0;
  double rate = rising ? bracket.low : bracket.high;
  double width = rising ? bracket.high - bracket.low : bracket.low - bracket.high;
  for (int step = 0; step < kMostSteps; ++step) {
    width *= 0.5;
    const double middle = rate + width;
    const double worth = flows.worthAt(middle);
    if (std::fmin(std::fabs(width), std::fabs(worth)) < kTolerance) return middle;
    if (!(worth > 0)) rate = middle;
  }
  return std::nullopt;
}

}  // namespace ORLFoundation::internal::amortization

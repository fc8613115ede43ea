
#include <ORLFoundation/decimal/ORLFMathematicalAxis.h>

#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <typeinfo>

namespace ORLFoundation {
namespace {

// The step sizes that are tried, as divisors of the power of ten at hand.
constexpr int kDivisors[] = {1, 2, 4, 5};

// A double cut to a count; what no count holds becomes the nearest end.
NSUInteger countFromDouble(double value) {
  constexpr double kLimit = 18446744073709551616.0;  // two to the 64
  if (!(value > 0)) return 0;
  return value >= kLimit ? NSUIntegerMax : static_cast<NSUInteger>(value);
}

double zeroIfNotANumber(double value) { return std::isnan(value) ? 0.0 : value; }

// Zero without a sign: rounding up from below it, or a bound of -0.0, leaves one.
double withoutSignOfZero(double value) { return value == 0 ? 0.0 : value; }

// The step with the most steps below the requested count at one power of ten; nothing when every
// divisor gives too many.
std::optional<double> bestStep(double span, double magnitude, NSUInteger requestedStepCount) {
  NSUInteger best = 0;
  std::optional<double> stepSize;
  for (const int divisor : kDivisors) {
    const double step = magnitude / divisor;
    const NSUInteger count = countFromDouble(std::ceil(span / step));
    if (best < count && count < requestedStepCount) {
      stepSize = step;
      best = count;
    }
  }
  return stepSize;
}

// Searches upward through the powers of ten; nothing when the doubles end first.
std::optional<double> roundStep(double span, NSUInteger requestedStepCount) {
  for (double range = span; std::isfinite(range); range *= 10) {
    const double magnitude = std::pow(10.0, std::floor(std::log10(std::ceil(range))));
    if (const auto step = bestStep(span, magnitude, requestedStepCount)) return step;
  }
  return std::nullopt;
}

std::string decimalText(float number) {
  NSNumberFormatter formatter;
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  return formatter.stringFromDouble(static_cast<double>(number));
}

}  // namespace

ORLFMathematicalAxis::ORLFMathematicalAxis(double min, double max, NSUInteger requestedStepCount) {
  rescaleWithMin(min, max, requestedStepCount);
}

NSUInteger ORLFMathematicalAxis::rescaleWithMin(double min, double max,
                                                NSUInteger requestedStepCount) {
  const double low = min < max ? min : max;
  const double high = min == max ? low + 10 : (min < max ? max : min);
  if (!(high > low)) return stepCount_;
  const auto step = roundStep(high - low, requestedStepCount);
  if (!step) return stepCount_;
  stepSize_ = *step;
  axisMin_ = withoutSignOfZero(std::floor(low / stepSize_) * stepSize_);
  axisMax_ = withoutSignOfZero(std::ceil(high / stepSize_) * stepSize_);
  stepCount_ = countFromDouble((axisMax_ - axisMin_) / stepSize_);
  return stepCount_;
}

double ORLFMathematicalAxis::scaledValue(double value) const noexcept {
  return zeroIfNotANumber((value - axisMin_) / (axisMax_ - axisMin_));
}

double ORLFMathematicalAxis::unscaledValue(double value) const noexcept {
  return zeroIfNotANumber(value * (axisMax_ - axisMin_) + axisMin_);
}

double ORLFMathematicalAxis::valueForStepIndex(NSUInteger index) const noexcept {
  return static_cast<double>(index) * stepSize_ + axisMin_;
}

double ORLFMathematicalAxis::scaledValueForStepIndex(NSUInteger index) const noexcept {
  return scaledValue(valueForStepIndex(index));
}

bool ORLFMathematicalAxis::isOriginStepIndex(NSUInteger index) const noexcept {
  return valueForStepIndex(index) == 0.0;
}

std::string ORLFMathematicalAxis::labelForStepIndex(double index) const {
  const auto thousands = static_cast<float>(valueForStepIndex(countFromDouble(index)) / 1000.0);
  if (thousands > -1.0F && thousands < 1.0F) return decimalText(thousands * 1000.0F);
  const double whole = std::trunc(static_cast<double>(thousands));
  if (whole > -1000 && whole < 1000) return decimalText(thousands) + "K";
  return decimalText(static_cast<float>(whole / 1000.0)) + "M";
}

bool ORLFMathematicalAxis::isEqual(const NSObject* other) const {
  if (other == nullptr || typeid(*other) != typeid(*this)) return false;
  const auto& axis = static_cast<const ORLFMathematicalAxis&>(*other);
  return axis.axisMin_ == axisMin_ && axis.axisMax_ == axisMax_ && axis.stepSize_ == stepSize_ &&
         axis.stepCount_ == stepCount_;
}

NSUInteger ORLFMathematicalAxis::hash() const {
  const std::hash<double> hashOf;
  return hashOf(axisMin_) + 31 * hashOf(axisMax_) + 961 * hashOf(stepSize_) + stepCount_;
}

}  // namespace ORLFoundation

/// The scale of a chart axis over a range of values: round bounds, a round step, short labels.
/// It works in binary doubles.
///
///     ORLFMathematicalAxis axis(0, 93000, 6);
///     axis.axisMax();                // 100000, in five steps of 20000
///     axis.labelForStepIndex(1);     // "20K"
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <string>

namespace ORLFoundation {

class ORLFMathematicalAxis : public NSObject {
 public:
  /// `initWithMin:max:requestedStepCount:`  Scales at once, see `rescaleWithMin`.
  ORLFMathematicalAxis(double min, double max, NSUInteger requestedStepCount);

  /// `rescaleWithMin:max:requestedStepCount:`  Chooses, among steps of 1, 1/2, 1/4 and 1/5 of a
  /// power of ten, the one with the most steps below the requested count, and gives the new
  /// `stepCount`. The bounds may come in either order; equal bounds span ten. The step is never
  /// finer than 0.2, and widening to whole steps can make `stepCount` reach or pass the request.
  /// Bounds that are no numbers, or whose span no double holds, change nothing. A requested count
  /// of 0 or 1 is the caller's fault: no step is few enough.
  NSUInteger rescaleWithMin(double min, double max, NSUInteger requestedStepCount);

  /// A whole multiple of `stepSize`, as is `axisMax`.
  [[nodiscard]] double axisMin() const noexcept { return axisMin_; }
  [[nodiscard]] double axisMax() const noexcept { return axisMax_; }
  [[nodiscard]] double stepSize() const noexcept { return stepSize_; }
  [[nodiscard]] NSUInteger stepCount() const noexcept { return stepCount_; }

  /// `scaledValue:`  The value's place on the axis, 0 to 1 inside it; 0 where it has none.
  [[nodiscard]] double scaledValue(double value) const noexcept;
  /// `unscaledValue:`  The value at a place; 0 where there is none.
  [[nodiscard]] double unscaledValue(double value) const noexcept;
  /// `valueForStepIndex:`
  [[nodiscard]] double valueForStepIndex(NSUInteger index) const noexcept;
  /// `scaledValueForStepIndex:`
  [[nodiscard]] double scaledValueForStepIndex(NSUInteger index) const noexcept;
  /// `isOriginStepIndex:`  Whether the step stands at exactly 0.
  [[nodiscard]] bool isOriginStepIndex(NSUInteger index) const noexcept;
  /// `labelForStepIndex:`  In thousands ("2.5K") or millions ("2.5M"), in full below a thousand, in
  /// the current locale's marks. The index is cut to a whole number.
  [[nodiscard]] std::string labelForStepIndex(double index) const;

  [[nodiscard]] std::string className() const override { return "ORLFMathematicalAxis"; }
  /// `isEqual:`  An axis of the same class with the same bounds, step and count.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;

 private:
  double axisMin_ = 0;
  double axisMax_ = 0;
  double stepSize_ = 0;
  NSUInteger stepCount_ = 0;
};

}  // namespace ORLFoundation

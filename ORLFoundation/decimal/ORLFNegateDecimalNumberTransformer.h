/// Turns a decimal into its negative, and back by the same step. One instance is registered as a
/// value transformer under the class's name in every program that includes this header.
#pragma once

#include <ORLFoundation/platform/object/NSValueTransformer.h>

#include <string>

namespace ORLFoundation {

class id;

class ORLFNegateDecimalNumberTransformer : public NSValueTransformer {
 public:
  /// Registers the shared instance, the first time that it is called.
  static bool initialize();

  /// `transformedValueClass`
  [[nodiscard]] std::string transformedValueClass() const override { return "NSDecimalNumber"; }
  /// `allowsReverseTransformation`
  [[nodiscard]] bool allowsReverseTransformation() const override { return true; }
  /// `transformedValue:`  The negative of a number; nil for nil and for what is no number.
  [[nodiscard]] id transformedValue(const id& value) const override;
  /// `reverseTransformedValue:`  The same operation.
  [[nodiscard]] id reverseTransformedValue(const id& value) const override;

  [[nodiscard]] std::string className() const override {
    return "ORLFNegateDecimalNumberTransformer";
  }

 private:
  static inline const bool registered_ = initialize();
};

}  // namespace ORLFoundation

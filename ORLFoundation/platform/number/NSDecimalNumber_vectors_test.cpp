
#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/value/NSDecimal_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cstdlib>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::TsvRow;

/// Rounds under a mode to a scale and keeps the last error that it is told of, without an answer.
class Recording : public NSDecimalNumberBehaviors {
 public:
  Recording(NSRoundingMode mode, std::int16_t scale) : mode_(mode), scale_(scale) {}

  [[nodiscard]] NSRoundingMode roundingMode() const override { return mode_; }
  [[nodiscard]] std::int16_t scale() const override { return scale_; }
  [[nodiscard]] Optional exceptionDuringOperation(std::string_view /*operation*/,
                                                  NSCalculationError error,
                                                  const Optional& /*leftOperand*/,
                                                  const Optional& /*rightOperand*/) const override {
    error_ = error;
    return std::nullopt;
  }
  [[nodiscard]] NSCalculationError error() const { return error_; }

 private:
  NSRoundingMode mode_;
  std::int16_t scale_;
  mutable NSCalculationError error_ = NSCalculationNoError;
};

std::string described(const std::optional<NSDecimal>& value, NSCalculationError error) {
  return (value ? value->stringValue() : "nil") + " with error " +
         std::to_string(static_cast<NSUInteger>(error));
}

NSRoundingMode modeOf(const TsvRow& row) {
  return static_cast<NSRoundingMode>(row.unsignedInteger("mode"));
}

/// The row's result and error as `described` writes them; an error that the row leaves open is the
/// one that came.
std::string expectedOf(const TsvRow& row, NSCalculationError came) {
  const auto error =
      row["error"] ? static_cast<NSCalculationError>(row.unsignedInteger("error")) : came;
  if (!row["result"]) return described(std::nullopt, error);
  return described(NSDecimal::parse(row.text("result")), error);
}

/// The plain calculation gives value and error; under a behaviour the number gives the value when
/// there is no error, else hands the error over.
template <class Calculate, class Behave>
std::string checkCalculation(const TsvRow& row, Calculate calculate, Behave behave) {
  const NSRoundingMode mode = modeOf(row);
  const NSDecimalResult plain = calculate(mode);
  std::optional<NSDecimal> value = plain.value;
  if (plain.error > NSCalculationLossOfPrecision) value.reset();
  const std::string disagreement =
      orlftest::disagreement(expectedOf(row, plain.error), described(value, plain.error));
  if (!disagreement.empty()) return disagreement;

  const Recording behavior(mode, NSDecimalNoScale);
  const Optional behaved = behave(&behavior);
  if (behavior.error() != plain.error) return "the behaviour was told another error";
  if (behaved.has_value() != (plain.error == NSCalculationNoError))
    return "a result beside an error";
  return behaved && behaved->decimalValue() != plain.value ? "the behaviour changed the value" : "";
}

TEST(NSDecimalNumber, AgreesWithVectorsOfSums) {
  orlftest::runTsvVectors("decimals_add", [](const TsvRow& row) {
    const NSDecimalNumber left = number(row.text("left"));
    const NSDecimalNumber right = number(row.text("right"));
    return checkCalculation(
        row,
        [&](NSRoundingMode mode) {
          return NSDecimalAdd(left.decimalValue(), right.decimalValue(), mode);
        },
        [&](const Recording* behavior) { return left.decimalNumberByAdding(right, behavior); });
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfDifferences) {
  orlftest::runTsvVectors("decimals_subtract", [](const TsvRow& row) {
    const NSDecimalNumber left = number(row.text("left"));
    const NSDecimalNumber right = number(row.text("right"));
    return checkCalculation(
        row,
        [&](NSRoundingMode mode) {
          return NSDecimalSubtract(left.decimalValue(), right.decimalValue(), mode);
        },
        [&](const Recording* behavior) {
          return left.decimalNumberBySubtracting(right, behavior);
        });
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfProducts) {
  orlftest::runTsvVectors("decimals_multiply", [](const TsvRow& row) {
    const NSDecimalNumber left = number(row.text("left"));
    const NSDecimalNumber right = number(row.text("right"));
    return checkCalculation(
        row,
        [&](NSRoundingMode mode) {
          return NSDecimalMultiply(left.decimalValue(), right.decimalValue(), mode);
        },
        [&](const Recording* behavior) {
          return left.decimalNumberByMultiplyingBy(right, behavior);
        });
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfQuotients) {
  orlftest::runTsvVectors("decimals_divide", [](const TsvRow& row) {
    const NSDecimalNumber left = number(row.text("left"));
    const NSDecimalNumber right = number(row.text("right"));
    return checkCalculation(
        row,
        [&](NSRoundingMode mode) {
          return NSDecimalDivide(left.decimalValue(), right.decimalValue(), mode);
        },
        [&](const Recording* behavior) { return left.decimalNumberByDividingBy(right, behavior); });
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfPowers) {
  orlftest::runTsvVectors("decimals_power", [](const TsvRow& row) -> std::string {
    const NSDecimalNumber left = number(row.text("left"));
    const NSInteger power = row.integer("right");
    const NSDecimalResult plain = NSDecimalPower(left.decimalValue(), power, modeOf(row));
    if (row["error"] == "1") {
      if (plain.error != NSCalculationLossOfPrecision) return "expected a loss of precision";
      const NSDecimal expected = NSDecimal::parse(row.text("result"));
      // Where digits are lost the rows fix 30 of them.
      if (orlftest::agreesIn(30, expected, plain.value)) return "";
    }
    return checkCalculation(
        row, [&](NSRoundingMode mode) { return NSDecimalPower(left.decimalValue(), power, mode); },
        [&](const Recording* behavior) {
          return left.decimalNumberByRaisingToPower(power, behavior);
        });
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfPowersOfTen) {
  orlftest::runTsvVectors("decimals_power10", [](const TsvRow& row) {
    const NSDecimalNumber left = number(row.text("left"));
    const auto power = static_cast<std::int16_t>(row.integer("right"));
    return checkCalculation(
        row,
        [&](NSRoundingMode mode) {
          return NSDecimalMultiplyByPowerOf10(left.decimalValue(), power, mode);
        },
        [&](const Recording* behavior) {
          return left.decimalNumberByMultiplyingByPowerOf10(power, behavior);
        });
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfRounding) {
  orlftest::runTsvVectors("decimals_round", [](const TsvRow& row) {
    const NSDecimalNumber value = number(row.text("value"));
    const auto scale = static_cast<std::int16_t>(row.integer("scale"));
    const Recording behavior(modeOf(row), scale);
    const Optional rounded = value.decimalNumberByRoundingAccordingToBehavior(&behavior);
    std::optional<NSDecimal> came;
    if (rounded) came = rounded->decimalValue();
    return orlftest::disagreement(expectedOf(row, behavior.error()),
                                  described(came, behavior.error()));
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfComparisons) {
  orlftest::runTsvVectors("decimals_compare", [](const TsvRow& row) {
    const NSDecimalNumber left = number(row.text("left"));
    const NSDecimalNumber right = number(row.text("right"));
    return orlftest::disagreement(row.integer("result"), NSInteger{left.compare(right)});
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfTexts) {
  orlftest::runTsvVectors("decimals_parse", [](const TsvRow& row) {
    return orlftest::disagreement(row.text("decimal"), number(row.text("text")).stringValue());
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfDoubles) {
  orlftest::runTsvVectors("decimals_to_double", [](const TsvRow& row) {
    return orlftest::disagreement(row.real("double"), number(row.text("decimal")).doubleValue());
  });
}

TEST(NSDecimalNumber, AgreesWithVectorsOfMantissas) {
  orlftest::runTsvVectors("decimals_mantissa", [](const TsvRow& row) {
    const auto value = NSDecimalNumber::decimalNumberWithMantissa(
        row.unsignedInteger("mantissa"), static_cast<std::int16_t>(row.integer("exponent")),
        row.boolean("negative"));
    return orlftest::disagreement(row.text("decimal"), value.stringValue());
  });
}

}  // namespace
}  // namespace ORLFoundation

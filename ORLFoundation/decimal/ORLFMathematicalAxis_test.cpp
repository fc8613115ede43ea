
#include <ORLFoundation/decimal/ORLFMathematicalAxis.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cmath>
#include <limits>
#include <memory>

namespace ORLFoundation {
namespace {

using orlftest::Json;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

// Labels are written in the current locale.
class AxisTest : public testing::Test {
 protected:
  const Replaced<std::shared_ptr<NSLocale>> locale_{NSLocale::setCurrentLocale,
                                                    std::make_shared<NSLocale>("en_US")};
};

std::string fieldsDisagreement(const Json& out, const ORLFMathematicalAxis& axis) {
  const Json fields{{"axisMin", axis.axisMin()},
                    {"axisMax", axis.axisMax()},
                    {"stepSize", axis.stepSize()},
                    {"stepCount", axis.stepCount()}};
  for (const auto& [name, value] : fields.items())
    if (out.at(name) != value)
      return name + ": expected " + out.at(name).dump() + ", got " + value.dump();
  return "";
}

std::string labelsDisagreement(const Json& out, const ORLFMathematicalAxis& axis) {
  double index = 0;
  for (const Json& label : out.at("labels")) {
    const std::string message =
        orlftest::disagreement(label.get<std::string>(), axis.labelForStepIndex(index));
    if (!message.empty()) return message;
    ++index;
  }
  std::vector<NSUInteger> origins;
  for (NSUInteger step = 0; step <= axis.stepCount(); ++step)
    if (axis.isOriginStepIndex(step)) origins.push_back(step);
  return out.at("origins") == Json(origins) ? "" : "origins: got " + Json(origins).dump();
}

std::string scaledDisagreement(const Json& out, const ORLFMathematicalAxis& axis) {
  for (const Json& pair : out.at("scaled")) {
    const double scaled = axis.scaledValue(pair.at(0).get<double>());
    if (scaled != pair.at(1).get<double>()) return "scaled: got " + Json(scaled).dump();
  }
  return "";
}

using ORLFMathematicalAxisTest = AxisTest;

TEST_F(ORLFMathematicalAxisTest, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "decimals_axis",
      {{"axis", [](const Json& in, const Json& out) {
          const ORLFMathematicalAxis axis(in.at("min").get<double>(), in.at("max").get<double>(),
                                          in.at("requestedStepCount").get<NSUInteger>());
          for (const auto check : {fieldsDisagreement, labelsDisagreement, scaledDisagreement}) {
            const std::string message = check(out, axis);
            if (!message.empty()) return message;
          }
          return std::string();
        }}});
}

struct AxisCase {
  const char* name;
  double min, max;
  NSUInteger requested;
  double axisMin, axisMax, stepSize;
  NSUInteger stepCount;
};
const AxisCase kAxes[] = {
    {"LargestCountBelowTheRequestWins", 0, 100, 6, 0, 100, 20, 5},
    {"EqualBoundsSpanTenAndMayReachTheRequest", 3, 3, 6, 2, 14, 2, 6},
    {"FinestStepIsAFifth", 0, 0.5, 6, 0, 0.2 * 3, 0.2, 3},
    {"BoundsComeInEitherOrder", 100, 0, 6, 0, 100, 20, 5},
};

TEST_F(ORLFMathematicalAxisTest, MatchesTable) {
  for (const AxisCase& row : kAxes) {
    const ORLFMathematicalAxis axis(row.min, row.max, row.requested);
    EXPECT_EQ(axis.axisMin(), row.axisMin) << row.name;
    EXPECT_EQ(axis.axisMax(), row.axisMax) << row.name;
    EXPECT_EQ(axis.stepSize(), row.stepSize) << row.name;
    EXPECT_EQ(axis.stepCount(), row.stepCount) << row.name;
  }
}

TEST_F(ORLFMathematicalAxisTest, HasNoNegativeZero) {
  for (const ORLFMathematicalAxis& axis :
       {ORLFMathematicalAxis(-100, -5, 6), ORLFMathematicalAxis(-100, -0.0, 6),
        ORLFMathematicalAxis(-0.0, 100, 6), ORLFMathematicalAxis(-0.0, -0.0, 6)}) {
    EXPECT_TRUE(axis.axisMin() == 0 || axis.axisMax() == 0);
    EXPECT_FALSE(axis.axisMin() == 0 && std::signbit(axis.axisMin()));
    EXPECT_FALSE(axis.axisMax() == 0 && std::signbit(axis.axisMax()));
    for (NSUInteger index = 0; index <= axis.stepCount(); ++index) {
      const double value = axis.valueForStepIndex(index);
      EXPECT_FALSE(value == 0 && std::signbit(value)) << index;
    }
  }
}

struct LabelCase {
  const char* name;
  double min, max;
  NSUInteger requested;
  double index;
  const char* label;
};
const LabelCase kLabels[] = {
    {"Zero", 0, 1000, 3, 0, "0"},
    {"BelowAThousandInFull", 0, 1000, 3, 1, "500"},
    {"AThousand", 0, 1000, 3, 2, "1K"},
    {"Thousands", 0, 10000, 5, 1, "2.5K"},
    {"Negative", -10000, 0, 5, 3, "-2.5K"},
    {"NegativeBelowAThousand", -1000, 0, 3, 1, "-500"},
    {"HundredsOfThousands", 0, 1000000, 5, 3, "750K"},
    {"AMillion", 0, 1000000, 5, 4, "1M"},
    {"Millions", 0, 10000000, 5, 1, "2.5M"},
    {"Thousandths", 0, 0.5, 6, 1, "0.2"},
    {"GroupedMillions", 0, 1e10, 5, 1, "2,500M"},
    {"LastThousand", 999000, 1000000, 3, 0, "999K"},
    {"BehindTheLastThousand", 999000, 1000000, 3, 1, "999.5K"},
    {"LastThousandBelowZero", -1000000, -999000, 3, 2, "-999K"},
    {"AMillionBelowZero", -1000000, -999000, 3, 0, "-1M"},
};

TEST_F(ORLFMathematicalAxisTest, LabelsAreInThousandsAndMillions) {
  for (const LabelCase& row : kLabels)
    EXPECT_EQ(ORLFMathematicalAxis(row.min, row.max, row.requested).labelForStepIndex(row.index),
              row.label)
        << row.name;
}

TEST_F(ORLFMathematicalAxisTest, LabelsTakeTheLocalesMarks) {
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("de_DE"));
  EXPECT_EQ(ORLFMathematicalAxis(0, 10000, 5).labelForStepIndex(1), "2,5K");
}

TEST_F(ORLFMathematicalAxisTest, LabelIndexIsCutAndHasNoSign) {
  const ORLFMathematicalAxis axis(0, 100, 6);
  EXPECT_EQ(axis.labelForStepIndex(1.9), "20");
  EXPECT_EQ(axis.labelForStepIndex(-3), "0");
  EXPECT_EQ(axis.labelForStepIndex(kNotANumber), "0");
  // Two to the 64 is the first that no count holds: it counts as the largest.
  EXPECT_EQ(axis.labelForStepIndex(18446744073709551616.0), axis.labelForStepIndex(kInfinity));
  EXPECT_NE(axis.labelForStepIndex(kInfinity), "0");
}

TEST_F(ORLFMathematicalAxisTest, ScalingAndUnscalingAreInverse) {
  const ORLFMathematicalAxis axis(-3, 7, 8);
  for (double value = -10; value < 10; value += 0.37)
    EXPECT_NEAR(axis.unscaledValue(axis.scaledValue(value)), value, 1e-12);
  EXPECT_EQ(axis.scaledValueForStepIndex(0), 0);
  EXPECT_EQ(axis.scaledValueForStepIndex(axis.stepCount()), 1);
  EXPECT_EQ(axis.valueForStepIndex(2), 0);
  EXPECT_TRUE(axis.isOriginStepIndex(2));
  EXPECT_FALSE(axis.isOriginStepIndex(1));
}

TEST_F(ORLFMathematicalAxisTest, PlacesThatAreNoNumberAreZero) {
  const ORLFMathematicalAxis axis(0, 100, 6);
  EXPECT_EQ(axis.scaledValue(kNotANumber), 0);
  EXPECT_EQ(axis.unscaledValue(kNotANumber), 0);
}

struct UnscalableCase {
  const char* name;
  double min, max;
};
const UnscalableCase kUnscalable[] = {
    {"MinIsNoNumber", kNotANumber, 1},
    {"MaxIsNoNumber", 1, kNotANumber},
    {"Infinite", 0, kInfinity},
    {"InfiniteBothWays", -kInfinity, kInfinity},
    {"SpanThatNoDoubleHolds", -1.7e308, 1.7e308},
    {"EqualBoundsThatTenDoesNotMove", 1e300, 1e300},
};

TEST_F(ORLFMathematicalAxisTest, BoundsThatCannotBeScaledChangeNothing) {
  for (const UnscalableCase& row : kUnscalable) {
    ORLFMathematicalAxis axis(0, 100, 6);
    EXPECT_EQ(axis.rescaleWithMin(row.min, row.max, 6), 5U) << row.name;
    EXPECT_TRUE(axis.isEqual(std::make_shared<ORLFMathematicalAxis>(0, 100, 6).get())) << row.name;
  }
}

TEST_F(ORLFMathematicalAxisTest, RequestsForNoStepEndWhereTheDoublesDoAndChangeNothing) {
  for (const NSUInteger requested : {NSUInteger{0}, NSUInteger{1}}) {
    ORLFMathematicalAxis axis(0, 100, 6);
    EXPECT_EQ(axis.rescaleWithMin(0, 1, requested), 5U);
    EXPECT_EQ(axis.axisMax(), 100);
  }
}

TEST_F(ORLFMathematicalAxisTest, RescalingGivesTheNewCount) {
  ORLFMathematicalAxis axis(0, 100, 6);
  EXPECT_EQ(axis.rescaleWithMin(0, 0.5, 6), 3U);
  EXPECT_EQ(axis.stepCount(), 3U);
  EXPECT_EQ(axis.stepSize(), 0.2);
}

TEST_F(ORLFMathematicalAxisTest, SweptAxesHoldTheirBoundsInWholeSteps) {
  for (int exponent = -3; exponent < 12; ++exponent) {
    for (int low = -20; low <= 20; low += 3) {
      for (NSUInteger requested = 2; requested < 14; ++requested) {
        const double unit = std::pow(10.0, exponent);
        const double min = low * unit * 1.07;
        const double max = min + 7.3 * unit;
        const ORLFMathematicalAxis axis(min, max, requested);
        EXPECT_LE(axis.axisMin(), min);
        EXPECT_GE(axis.axisMax(), max);
        EXPECT_GE(axis.stepSize(), 0.2);
        EXPECT_LE(axis.stepCount(), requested + 1);
        EXPECT_GE(axis.stepCount(), 1U);
      }
    }
  }
}

TEST_F(ORLFMathematicalAxisTest, EqualityLooksAtTheFieldsAndTheClass) {
  class OtherAxis : public ORLFMathematicalAxis {
    using ORLFMathematicalAxis::ORLFMathematicalAxis;
  };
  const auto axis = std::make_shared<ORLFMathematicalAxis>(0, 100, 6);
  EXPECT_TRUE(axis->isEqual(std::make_shared<ORLFMathematicalAxis>(1, 99, 6).get()));
  EXPECT_EQ(axis->hash(), std::make_shared<ORLFMathematicalAxis>(1, 99, 6)->hash());
  EXPECT_FALSE(axis->isEqual(std::make_shared<ORLFMathematicalAxis>(0, 1000, 6).get()));
  EXPECT_FALSE(axis->isEqual(std::make_shared<OtherAxis>(0, 100, 6).get()));
  EXPECT_FALSE(axis->isEqual(nullptr));
}

TEST_F(ORLFMathematicalAxisTest, DiffersByItsStepAloneAndByItsBoundsAlone) {
  const ORLFMathematicalAxis axis(0, 100, 6);
  const ORLFMathematicalAxis inHalves(0, 100, 3);
  const ORLFMathematicalAxis moved(100, 200, 6);
  ASSERT_EQ(inHalves.axisMax(), axis.axisMax());
  ASSERT_EQ(moved.stepSize(), axis.stepSize());
  EXPECT_FALSE(axis.isEqual(&inHalves));
  EXPECT_FALSE(axis.isEqual(&moved));
}

}  // namespace
}  // namespace ORLFoundation

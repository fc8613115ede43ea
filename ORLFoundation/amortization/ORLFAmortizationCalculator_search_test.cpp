// The search for a rate, step by step: against its rules written down once more, over flows of all
// sizes, and at the edges where one comparison decides.

#include <ORLFoundation/amortization/ORLFAmortizationCalculator_testing.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Doubles;
using orlftest::rateOf;

/// Rate and worth of the two ends, then halving, as the rules put it.
class RuledSearch {
 public:
  RuledSearch(const Doubles& times, const Doubles& values) : times_(times), values_(values) {}

  [[nodiscard]] std::string rate() const {
    double x1 = 0.0, x2 = 0.2, f1 = worth(x1), f2 = worth(x2);
    for (int widening = 1; widening <= 50; ++widening) {
      if (f1 * f2 < 0) break;
      if (std::abs(f2) > std::abs(f1)) {
        x1 = (x1 - 1.0) * 0.5;
        f1 = worth(x1);
      } else {
        x2 = x2 + 1.6 * (x2 - x1);
        f2 = worth(x2);
      }
    }
    if (f1 * f2 > 0) return "nil";
    const bool isNegative = worth(x1) < 0;
    double r = isNegative ? x1 : x2;
    double d = isNegative ? x2 - x1 : x1 - x2;
    for (int pass = 1; pass <= 50; ++pass) {
      d = d * 0.5;
      const double m = r + d;
      const double fm = worth(m);
      if (std::abs(d) < 0.00001 || std::abs(fm) < 0.00001) return seventeenPlaces(m);
      if (fm > 0) continue;
      r = m;
    }
    return "nil";
  }

 private:
  [[nodiscard]] double worth(double rate) const {
    double sum = 0.0;
    for (std::size_t i = 0; i < times_.size(); ++i)
      sum += values_[i] / std::pow(rate + 1.0, times_[i]);
    return sum;
  }

  static std::string seventeenPlaces(double rate) {
    char text[400];
    std::snprintf(text, sizeof text, "%0.17f", rate);
    return number(text).stringValue();
  }

  const Doubles& times_;
  const Doubles& values_;
};

std::string found(const Doubles& times, const Doubles& values) {
  const std::string rate = textOf(rateOf(times, values));
  EXPECT_EQ(rate, RuledSearch(times, values).rate());
  return rate;
}

TEST(InternalRateOfReturn, FollowsItsRulesOverFlowsOfAllSizes) {
  std::mt19937_64 engine(10);
  const auto pick = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
  };
  int rates = 0;
  for (int round = 0; round < 3000; ++round) {
    Doubles times, values;
    const double size = std::pow(10.0, pick(-4, round % 5 == 0 ? 160 : 7));
    for (std::size_t i = 0, count = 1 + engine() % 6; i < count; ++i) {
      times.push_back(round % 3 == 0 ? pick(-30, 30) : static_cast<double>(i));
      values.push_back(engine() % 8 == 0 ? 0 : pick(-1, 1) * size);
    }
    rates += found(times, values) != "nil" ? 1 : 0;
  }
  EXPECT_GT(rates, 1000);
  EXPECT_LT(rates, 2900);
}

TEST(InternalRateOfReturn, IsSearchedFromTheUpperEndWhereTheLowerOneIsWorthLessThanOne) {
  EXPECT_EQ(found({0, 1}, {-1, 1.1}).substr(0, 5), "0.100");
}

TEST(InternalRateOfReturn, WidensPastAnUpperEndThatIsWorthExactlyNothing) {
  // 120 in a year are worth exactly 100 at 0.2: the ends are no pair of signs yet.
  ASSERT_EQ(120 / 1.2, 100);
  EXPECT_EQ(found({0, 1}, {100, -120}).substr(0, 6), "0.2000");
  EXPECT_EQ(found({0, 1}, {-100, 120}).substr(0, 6), "0.2000");
}

TEST(InternalRateOfReturn, TakesFlowsTooSmallForAProductLikeNone) {
  EXPECT_EQ(found({0, 1}, {1e-200, 1e-200}), found({}, {}));
}

TEST(InternalRateOfReturn, IsSearchedFromTheUpperEndWhereTheLowerOneIsWorthNothing) {
  // Toward -1 the worth is too small for a double, and has no sign.
  EXPECT_EQ(found({-22}, {-1000}).substr(0, 2), "-0");
}

TEST(InternalRateOfReturn, HalvesFiftyTimesAndNoMore) {
  // The first widening moves the lower end, the next 24 the upper one, to 6 thousand million.
  const double scale = 1e15, slope = 4e24;
  EXPECT_NE(found({0, 1, 2, 3}, {-scale, slope, -1.95 * slope, slope}), "nil");
  // 26 widenings of the upper end, to 12 thousand million: a halving more would be needed.
  EXPECT_EQ(found({0, 1}, {-scale, scale * 8e9}), "nil");
}

TEST(InternalRateOfReturn, IsNoRateAtExactlyTheTolerance) {
  // At 0.1, 0.05, 0.025 and 0.0125 the far debt is worth nothing beside 0.00001.
  EXPECT_EQ(found({0, 5000}, {0.00001, -1}), "0.00625");
}

}  // namespace
}  // namespace ORLFoundation

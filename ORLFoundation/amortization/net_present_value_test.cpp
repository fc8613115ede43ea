#include <ORLFoundation/amortization/net_present_value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

extern "C" double orlf_test_value_from_c(void);

namespace {

using Doubles = std::vector<double>;

TEST(NetPresentValue, IsZeroOfNothingAndThePlainSumAtARateOfZero) {
  EXPECT_EQ(net_present_value(nullptr, nullptr, 0, 0.05), 0.0);
  const double times[] = {0, 1, 2.5};
  const double values[] = {-100, 60, 50.25};
  EXPECT_EQ(net_present_value(times, values, 3, 0), 10.25);
}

// Sums from tests/data/reference/rates.py.
struct WorthCase {
  const char* name;
  Doubles times, values;
  double rate, worth;
};
const WorthCase kWorths[] = {
    {"Investment", {0, 1, 2, 3}, {-1000, 400, 400, 400}, 0.08, 30.83879489915155},
    {"NegativeRate", {0, 1, 2, 3}, {-1000, 400, 400, 400}, -0.5, 4600},
    {"PartsOfYears", {0, 0.5, 1.25}, {10, 20, 30}, 0.1, 55.69981786699304},
    {"PastFlowsGrow", {-1, 0}, {100, 50}, 0.25, 175},
};

TEST(NetPresentValue, IsTheSumOfDiscountedValues) {
  for (const WorthCase& row : kWorths)
    EXPECT_NEAR(net_present_value(row.times.data(), row.values.data(),
                                  static_cast<std::int64_t>(row.times.size()), row.rate),
                row.worth, std::fabs(row.worth) * 1e-14)
        << row.name;
}

TEST(NetPresentValue, OfAnAnnuityIsItsClosedForm) {
  for (int count = 1; count <= 400; count += 7) {
    const Doubles values(static_cast<std::size_t>(count), 100.0);
    Doubles times;
    for (int year = 1; year <= count; ++year) times.push_back(year);
    for (const double rate : {-0.02, 0.01, 0.05, 0.3}) {
      const double worth = 100 * (1 - std::pow(1 + rate, -count)) / rate;
      EXPECT_NEAR(net_present_value(times.data(), values.data(), count, rate), worth,
                  std::fabs(worth) * 1e-12);
    }
  }
}

TEST(NetPresentValue, IsCalledFromC) { EXPECT_NEAR(orlf_test_value_from_c(), 0, 1e-12); }

}  // namespace

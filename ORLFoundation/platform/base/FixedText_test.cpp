#include <ORLFoundation/platform/base/FixedText.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace ORLFoundation::internal::base {
namespace {

using Limits = std::numeric_limits<double>;

/// What the C library prints, in the C locale of the tests.
template <int Places>
std::string printed(double value) {
  char text[400];
  const int length = std::snprintf(text, sizeof text, "%.*f", Places, value);
  return {text, static_cast<std::size_t>(length)};
}

template <int Places>
void expectPrinted(double value) {
  EXPECT_EQ(FixedText<Places>(value).view(), printed<Places>(value));
}

TEST(FixedText, HasItsPlacesRoundedFromTheExactValue) {
  EXPECT_EQ(FixedText<6>(0.1).view(), "0.100000");
  EXPECT_EQ(FixedText<4>(1.0 / 3).view(), "0.3333");
  EXPECT_EQ(FixedText<1>(0.25).view(), "0.2");
  EXPECT_EQ(FixedText<1>(0.75).view(), "0.8");
  EXPECT_EQ(FixedText<2>(1.005).view(), "1.00");
  EXPECT_EQ(FixedText<17>(0.1).view(), "0.10000000000000001");
  EXPECT_EQ(FixedText<6>(-0.0).view(), "-0.000000");
}

TEST(FixedText, HoldsTheLongestDoubles) {
  for (const double value :
       {Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min()}) {
    expectPrinted<1>(value);
    expectPrinted<6>(value);
    expectPrinted<17>(value);
  }
  EXPECT_EQ(FixedText<6>(Limits::lowest()).view().size(), 317U);
}

TEST(FixedText, NamesWhatIsNoNumber) {
  EXPECT_EQ(FixedText<6>(Limits::infinity()).view(), "inf");
  EXPECT_EQ(FixedText<6>(-Limits::infinity()).view(), "-inf");
  EXPECT_EQ(FixedText<6>(Limits::quiet_NaN()).view(), "nan");
}

TEST(FixedText, AgreesWithPrintfOverAllBits) {
  std::mt19937_64 engine(12);
  for (int i = 0; i < 2000; ++i) {
    expectPrinted<4>(std::bit_cast<double>(std::uint64_t{engine()}));
    expectPrinted<6>(static_cast<double>(static_cast<std::int64_t>(engine())) / 1e9);
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::base

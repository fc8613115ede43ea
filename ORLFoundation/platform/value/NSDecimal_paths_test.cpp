// The short ways of sums, products, quotients, rounding and reading give what the general ones
// give, for what no caller should make too: exponents out of range, not-a-number, zeros of any
// exponent.
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/internal/DecimalReader.h>
#include <ORLFoundation/platform/value/internal/PowersOfTen.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

namespace ways = internal::value;

class WildSource {
 public:
  explicit WildSource(unsigned seed) : engine_(seed) {}

  int between(int from, int to) { return std::uniform_int_distribution<int>(from, to)(engine_); }

  NSDecimal any() {
    if (between(0, 40) == 0) return NSDecimal::notANumber();
    return {mantissa(), exponent(), between(0, 1) == 1};
  }
  /// Of an exponent at or near that of the other.
  NSDecimal near(const NSDecimal& other) {
    if (other.isNaN()) return any();
    return {mantissa(), other.exponent() + (between(0, 1) == 0 ? 0 : between(-40, 40)),
            between(0, 1) == 1};
  }
  NSRoundingMode mode() { return static_cast<NSRoundingMode>(between(0, 4)); }
  NSInteger scale() {
    constexpr std::array<NSInteger, 6> kWild = {std::numeric_limits<NSInteger>::min(),
                                                std::numeric_limits<NSInteger>::max(),
                                                -32768,
                                                32767,
                                                -128,
                                                128};
    return between(0, 9) == 0 ? kWild[static_cast<std::size_t>(between(0, 5))] : between(-60, 60);
  }

 private:
  ways::Wide mantissa() {
    const ways::Wide bits = ways::Wide{engine_()} << 64 | engine_();
    constexpr std::array<ways::Wide, 6> kBounds = {0,
                                                   ways::Wide{1} << 62,
                                                   ways::Wide{1} << 64,
                                                   NSDecimal::kMantissaEnd,
                                                   NSDecimal::kMantissaEnd / 2,
                                                   ways::powerOfTen(19)};
    switch (between(0, 3)) {
      case 0: {
        // Next to where one word, or 38 digits, end.
        const ways::Wide bound = kBounds[static_cast<std::size_t>(between(0, 5))];
        return (bound + static_cast<ways::Wide>(between(0, 3))) % NSDecimal::kMantissaEnd;
      }
      case 1:
        return (roundMantissa() * ways::powerOfTen(between(0, 18))) % NSDecimal::kMantissaEnd;
      default:
        return bits % ways::powerOfTen(between(1, NSDecimal::kMostDigits));
    }
  }
  /// Digits with zeros and fives behind them, where ties and quotients without a rest are.
  ways::Wide roundMantissa() { return static_cast<ways::Wide>(between(0, 999)) * 5; }

  int exponent() {
    switch (between(0, 3)) {
      case 0:
        return between(-4, 0);
      case 1:
        return between(-40, 40);
      case 2:
        return between(NSDecimal::kSmallestExponent, NSDecimal::kLargestExponent);
      default:
        return between(-32768, 32767);
    }
  }

  std::mt19937_64 engine_;
};

bool areOneForm(const NSDecimal& left, const NSDecimal& right) {
  return left.isNaN() == right.isNaN() && left.mantissa() == right.mantissa() &&
         left.exponent() == right.exponent() && left.isNegative() == right.isNegative();
}

bool areEqual(const NSDecimalResult& left, const NSDecimalResult& right) {
  return left.error == right.error && left.value == right.value;
}

constexpr int kPairs = 150000;

TEST(NSDecimalPaths, SumsAreThoseOfTheGeneralWay) {
  WildSource source(1);
  for (int i = 0; i < kPairs; ++i) {
    const NSDecimal left = source.any(), right = source.near(left);
    const NSRoundingMode mode = source.mode();
    const NSDecimalResult sum = NSDecimalAdd(left, right, mode);
    ASSERT_TRUE(areEqual(sum, ways::addLong(left, right, mode))) << i;
    if (left.exponent() == right.exponent()) {
      ASSERT_TRUE(areOneForm(sum.value, ways::addLong(left, right, mode).value)) << i;
    }
    ASSERT_TRUE(
        areEqual(NSDecimalSubtract(left, right, mode), ways::addLong(left, right.negated(), mode)))
        << i;
  }
}

TEST(NSDecimalPaths, ProductsAreThoseOfTheGeneralWay) {
  WildSource source(2);
  for (int i = 0; i < kPairs; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    const NSRoundingMode mode = source.mode();
    ASSERT_TRUE(
        areEqual(NSDecimalMultiply(left, right, mode), ways::multiplyLong(left, right, mode)))
        << i;
  }
}

TEST(NSDecimalPaths, QuotientsAreThoseOfTheGeneralWay) {
  WildSource source(3);
  for (int i = 0; i < kPairs; ++i) {
    const NSDecimal left = source.any(), right = source.any();
    const NSRoundingMode mode = source.mode();
    const NSDecimalResult quotient = NSDecimalDivide(left, right, mode);
    const NSDecimalResult general = ways::divideLong(left, right, mode);
    ASSERT_EQ(quotient.error, general.error) << i;
    ASSERT_TRUE(areOneForm(quotient.value, general.value)) << i;
  }
}

TEST(NSDecimalPaths, RoundedNumbersAreThoseOfTheGeneralWay) {
  WildSource source(4);
  for (int i = 0; i < kPairs; ++i) {
    const NSDecimal number = source.any();
    const NSInteger scale = source.scale();
    const NSRoundingMode mode = source.mode();
    ASSERT_TRUE(areEqual(NSDecimalRound(number, scale, mode), ways::roundLong(number, scale, mode)))
        << i << " at " << scale;
  }
}

/// In a place of its own, and among digits: a byte read before its beginning or behind its end is
/// found out.
void expectOneReading(std::string_view text, std::string_view mark) {
  const std::vector<char> exact(text.begin(), text.end());
  const std::string_view given(exact.data(), exact.size());
  const NSDecimal expected = ways::readDecimal(given, mark);
  ASSERT_TRUE(areOneForm(NSDecimal::parse(given, mark), expected))
      << text << " with the mark " << mark;
  static const std::string around(40, '7');
  const std::string whole = around + std::string(text) + around;
  const std::string_view inside = std::string_view(whole).substr(around.size(), text.size());
  ASSERT_TRUE(areOneForm(NSDecimal::parse(inside, mark), expected))
      << text << " with the mark " << mark;
}

TEST(NSDecimalPaths, ReadsTextsOfEachLengthWithTheMarkAtEachPlace) {
  constexpr std::string_view kDigits = "90817263549081726354908172635490817263549081726354";
  for (const std::string_view sign : {"", "-", "+"}) {
    for (std::size_t length = 0; length <= 44; ++length) {
      const std::string_view digits = kDigits.substr(0, length);
      expectOneReading(std::string(sign) + std::string(digits), ".");
      expectOneReading(std::string(sign) + std::string(length, '0'), ".");
      for (std::size_t place = 0; place <= length; ++place) {
        std::string text(digits);
        expectOneReading(std::string(sign) + text.insert(place, "."), ".");
        expectOneReading(text + "e2", ".");
        expectOneReading("000" + text, ".");
      }
    }
  }
}

TEST(NSDecimalPaths, ReadsStrayCharactersAtEachPlace) {
  for (const std::string_view mark : {".", ",", "", "5", "-", "e", "\xB7", "\xC2\xB7"}) {
    for (const std::string_view other : {".", ",", "-", "e", "E", "/", ":", "5", "\xB7", "\xC2\xB7",
                                         "\x89", "\xFF", "\x1E", " ", "\xC2"}) {
      for (std::size_t length : {1U, 3U, 4U, 7U, 8U, 9U, 15U, 16U, 17U, 23U, 24U, 32U, 39U, 40U}) {
        for (std::size_t place = 0; place <= length; ++place) {
          std::string text(length, '9');
          expectOneReading(text.insert(place, other), mark);
          expectOneReading(text.insert(length / 2, mark), mark);
        }
      }
    }
  }
}

TEST(NSDecimalPaths, ReadsStrayCharactersWithEachMark) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string mark(1, static_cast<char>(byte));
    for (const char other : {'.', '/', ' ', '\x01', '\x80', '\xFF'}) {
      for (const std::size_t length : {3U, 7U, 11U, 15U, 20U, 39U}) {
        for (const char digit : {'0', '1', '9'}) {
          for (std::size_t place = 0; place <= length; ++place) {
            std::string text(length, digit);
            expectOneReading(text.insert(place, 1, other), mark);
          }
        }
      }
    }
  }
}

TEST(NSDecimalPaths, ReadsDigitsAmongStrayCharactersOnly) {
  for (std::size_t length = 1; length <= 44; ++length) {
    for (std::size_t digits = 0; digits <= length; ++digits) {
      for (std::size_t place = 0; place + digits <= length; ++place) {
        const std::string text = std::string(place, '/') + std::string(digits, '0') +
                                 std::string(length - place - digits, '/');
        expectOneReading(text, "0");
        expectOneReading(text, "/");
      }
    }
  }
}

TEST(NSDecimalPaths, ReadsEachZeroAsThePlainOne) {
  for (const std::string_view sign : {"", "-", "+"}) {
    for (std::size_t length = 1; length <= 44; ++length) {
      for (std::size_t place = 0; place <= length; ++place) {
        const std::string text = std::string(sign) + std::string(length, '0').insert(place, ".");
        for (const std::string_view power : {"", "e5", "e-5", "e-999"}) {
          expectOneReading(text + std::string(power), ".");
          ASSERT_TRUE(areOneForm(NSDecimal::parse(text + std::string(power)), NSDecimal()))
              << text << power;
        }
      }
    }
  }
}

}  // namespace
}  // namespace ORLFoundation

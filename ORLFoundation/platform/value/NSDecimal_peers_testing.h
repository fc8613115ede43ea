/// The peers of the decimals' benchmark, each with the same few operations. Those that are not
/// installed are left out.
#pragma once

#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/NSDecimal_testing.h>

#include <array>
#include <boost/multiprecision/cpp_dec_float.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
#define ORLF_HAS_DECIMAL128 1
#endif

namespace orlftest {

using namespace ORLFoundation;

using DecFloat = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<38>,
                                               boost::multiprecision::et_off>;

struct BoostFloat {
  using Number = DecFloat;
  static Number parse(const std::string& text) { return Number(text); }
  static Number add(const Number& a, const Number& b) { return a + b; }
  static Number multiply(const Number& a, const Number& b) { return a * b; }
  static Number divide(const Number& a, const Number& b) { return a / b; }
  static Number round(const Number& a) {
    static const Number hundred(100), half(0.5);
    const Number moved = a * hundred;
    return trunc(moved < 0 ? Number(moved - half) : Number(moved + half)) / hundred;
  }
  static bool less(const Number& a, const Number& b) { return a < b; }
  static std::string print(const Number& a) { return a.str(0, std::ios_base::fixed); }
  static bool agrees(const NSDecimal& expected, const Number& actual) {
    return agreesIn(30, expected, NSDecimal::parse(actual.str(38, std::ios_base::scientific)));
  }
};

#ifdef ORLF_HAS_DECIMAL128
/// The compiler's decimals of 34 digits. It has no text functions for them, so that operands and
/// results pass through our digits.
struct Decimal128 {
  typedef float Number __attribute__((mode(TD)));

  static Number whole(unsigned long long value) { return static_cast<Number>(value); }

  static Number of(const NSDecimal& value) {
    const Number ten = whole(10), word = whole(1ULL << 32) * whole(1ULL << 32);
    const auto high = static_cast<unsigned long long>(value.mantissa() >> 64);
    Number number = whole(high) * word + whole(value.shortMantissa());
    for (int i = value.exponent(); i < 0; ++i) number /= ten;
    for (int i = value.exponent(); i > 0; --i) number *= ten;
    return value.isNegative() ? -number : number;
  }
  static Number parse(const std::string& text) { return of(NSDecimal::parse(text)); }
  static Number add(Number a, Number b) { return a + b; }
  static Number multiply(Number a, Number b) { return a * b; }
  static Number divide(Number a, Number b) { return a / b; }
  /// For numbers whose hundredfold fits 64 bits.
  static Number round(Number a) {
    static const Number half = whole(1) / whole(2), hundred = whole(100), zero = whole(0);
    const Number moved = a * hundred;
    const auto cents = static_cast<long long>(moved < zero ? moved - half : moved + half);
    return static_cast<Number>(cents) / hundred;
  }
  static bool less(Number a, Number b) { return a < b; }
  static bool agrees(const NSDecimal& expected, Number actual) {
    const Number wanted = of(expected);
    const Number off = wanted < actual ? actual - wanted : wanted - actual;
    static const Number part = of(NSDecimal(1, -30, false));
    return off <= (wanted < whole(0) ? -wanted : wanted) * part;
  }
};
#endif

/// A number of a peer that is a library of its own and takes whole arrays (tests/peers).
struct alignas(16) ArrayNumber {
  std::array<std::uint64_t, 2> words;
};
/// A text with a zero byte behind it.
struct ArrayText {
  const char* start;
  std::size_t size;
};
using ArrayCalculation = void(const ArrayNumber* left, const ArrayNumber* right,
                              ArrayNumber* results, std::size_t count);
using ArrayReader = void(const ArrayText* texts, ArrayNumber* results, std::size_t count);
using ArrayWriter = std::size_t(const ArrayNumber* number, char* text);

#ifdef ORLF_HAS_BID
extern "C" {
ArrayCalculation bid_peer_add, bid_peer_multiply, bid_peer_divide, bid_peer_round;
ArrayReader bid_peer_parse;
ArrayWriter bid_peer_print;
}
/// Intel's decimals of 34 digits.
struct IntelBid {
  static constexpr ArrayCalculation *kAdd = bid_peer_add, *kMultiply = bid_peer_multiply,
                                    *kDivide = bid_peer_divide, *kRound = bid_peer_round;
  static constexpr ArrayReader* kParse = bid_peer_parse;
  static constexpr ArrayWriter* kPrint = bid_peer_print;
  static constexpr int kDigits = 30;
};
#endif

#ifdef ORLF_HAS_RUST_DECIMAL
extern "C" {
ArrayCalculation rust_decimal_add, rust_decimal_multiply, rust_decimal_divide, rust_decimal_round;
ArrayReader rust_decimal_parse;
ArrayWriter rust_decimal_print;
}
/// Rust's decimals, of at most 28 digits and 28 places: small quotients have fewer digits.
struct RustDecimal {
  static constexpr ArrayCalculation *kAdd = rust_decimal_add, *kMultiply = rust_decimal_multiply,
                                    *kDivide = rust_decimal_divide, *kRound = rust_decimal_round;
  static constexpr ArrayReader* kParse = rust_decimal_parse;
  static constexpr ArrayWriter* kPrint = rust_decimal_print;
  static constexpr int kDigits = 18;
};
#endif

}  // namespace orlftest

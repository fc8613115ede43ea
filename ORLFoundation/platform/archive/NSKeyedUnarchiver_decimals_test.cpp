#include <ORLFoundation/platform/archive/NSKeyedArchive_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <string_view>

namespace {

using namespace orlftest;

struct DecimalCase {
  std::string_view text;
  std::int64_t exponent, length;
  bool negative;
  std::int64_t order;
  std::string_view words;  // in hex; garbage may follow
};
const DecimalCase kDecimals[] = {
    {"0", 0, 0, false, 1, "abcd"},
    {"NaN", 0, 0, true, 1, "abcd"},
    {"1", 0, 1, false, 1, "0100 ffff"},
    {"1", 0, 1, false, 2, "0001 ffff"},
    {"65535", 0, 1, false, 1, "ffff"},
    {"9999", 0, 1, false, 1, "0f27"},
    {"9999", 0, 1, false, 2, "270f"},
    {"10240", 1, 1, false, 1, "0004"},
    {"10240", 1, 1, false, 2, "0400"},
    {"100000", 5, 1, false, 1, "0100"},
    {"-1", 0, 1, true, 1, "0100"},
    {"-100.23", -2, 1, true, 2, "2727"},
    {"-100.2", -1, 1, true, 2, "03ea"},
    {"12.34", -2, 1, false, 1, "d204"},
    {"65537", 0, 2, false, 1, "0100 0100 beef"},
    {"65537", 0, 2, false, 2, "0001 0001 beef"},
    {"99999999999999999999999999999999999999", 0, 8, false, 1, "ffffffff3f228a097ac4865aa84c3b4b"},
    // 2^128 - 1 has 39 digits.
    {"340282366920938463463374607431768211460", 0, 8, false, 1, "ffffffffffffffffffffffffffffffff"},
};

id decimalEntry(const DecimalCase& row) {
  std::string words = textOfHex(row.words);
  words.resize(16, '\x5A');
  return dictionary({{"NS.exponent", row.exponent},
                     {"NS.length", row.length},
                     {"NS.negative", row.negative},
                     {"NS.compact", true},
                     {"NS.mantissa.bo", row.order},
                     {"NS.mantissa", NSData(std::string_view(words))},
                     {"$class", uid(2)}});
}

TEST(NSKeyedUnarchiver, ReadsDecimalsOfEitherByteOrderUnderEitherName) {
  for (const DecimalCase& row : kDecimals) {
    for (const char* name : {"NSDecimalNumberPlaceholder", "NSDecimalNumber"}) {
      const auto decimal = NSKeyedUnarchiver::unarchivedObjectOfClass<NSDecimalNumber>(
          archiveOf({decimalEntry(row), classNamed(name)}));
      ASSERT_TRUE(decimal) << row.text;
      EXPECT_EQ(decimal->stringValue(), row.text);
    }
  }
}

TEST(NSKeyedUnarchiver, RefusesDecimalsThatAreNone) {
  const DecimalCase rows[] = {
      {"too long", 0, 9, false, 1, "01"},
      {"negative length", 0, -1, false, 1, "01"},
      {"unknown order", 0, 1, false, 3, "01"},
      {"exponent too large", 128, 1, false, 1, "01"},
      {"exponent too small", -129, 1, false, 1, "01"},
      {"digits past the exponents", 127, 8, false, 1, "ffffffffffffffffffffffffffffffff"},
  };
  for (const DecimalCase& row : rows)
    EXPECT_NE(refusal(archiveOf({decimalEntry(row), classNamed("NSDecimalNumber")})), "no error")
        << row.text;
  EXPECT_NE(refusal(archiveOf({dictionary({{"NS.length", 2},
                                           {"NS.mantissa", NSData(std::string_view("abc"))},
                                           {"$class", uid(2)}}),
                               classNamed("NSDecimalNumber")})),
            "no error");
}

TEST(NSKeyedUnarchiver, TakesAPlainNumberOrTextForADecimal) {
  using Unarchiver = NSKeyedUnarchiver;
  const LogCapture log;
  EXPECT_EQ(Unarchiver::unarchivedObjectOfClass<NSDecimalNumber>(archived(-12)),
            NSDecimalNumber("-12"));
  EXPECT_EQ(Unarchiver::unarchivedObjectOfClass<NSDecimalNumber>(archived(NSUIntegerMax)),
            NSDecimalNumber("18446744073709551615"));
  EXPECT_EQ(Unarchiver::unarchivedObjectOfClass<NSDecimalNumber>(archived(0.1)),
            NSDecimalNumber("0.1"));
  EXPECT_EQ(Unarchiver::unarchivedObjectOfClass<NSDecimalNumber>(archived("1.25")),
            NSDecimalNumber("1.25"));
  EXPECT_EQ(log.lines().size(), 4U);
  for (const id& other : {id("text"), id(std::nan("")), id(true), id(NSDate())})
    EXPECT_FALSE(Unarchiver::unarchivedObjectOfClass<NSDecimalNumber>(archived(other)));
}

}  // namespace

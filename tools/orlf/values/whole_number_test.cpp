#include "values/whole_number.h"

#include <gtest/gtest.h>

#include "cli/failure.h"

namespace {

using orlftool::readWholeArgument;
using orlftool::readWholeNumber;

TEST(WholeNumber, IsDecimalTextWithOrWithoutASign) {
  EXPECT_EQ(readWholeNumber("0"), 0);
  EXPECT_EQ(readWholeNumber("010"), 10);
  EXPECT_EQ(readWholeNumber("-08"), -8);
  EXPECT_EQ(readWholeNumber("+7"), 7);
  EXPECT_EQ(readWholeNumber("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(readWholeNumber("-9223372036854775808"), INT64_MIN);
}

TEST(WholeNumber, IsNoOtherText) {
  for (const char* text : {"", "x", "0x10", "0b1", "1.0", "1e3", " 1", "1 ", "+", "-", "+-1", "--1",
                           "1_000", "1,000", "9223372036854775808", "-9223372036854775809"})
    EXPECT_EQ(readWholeNumber(text), std::nullopt) << text;
}

TEST(WholeNumber, IsQuotedAsTypedWhereItDoesNotFit) {
  EXPECT_EQ(readWholeArgument("--day", "031", 1, 31), 31);
  EXPECT_EQ(readWholeArgument("--day", "1", 1, 31), 1);
  for (const char* text : {"032", "0", "x"}) {
    try {
      (void)readWholeArgument("--day", text, 1, 31);
      FAIL() << text;
    } catch (const orlftool::UsageFailure& failure) {
      EXPECT_EQ(failure.what(),
                std::string("--day: expected a whole number from 1 to 31, got '") + text + "'");
    }
  }
}

}  // namespace
